#include "store/undomanager.h"
#include "tests/support/storefile.h"

#include <QDir>
#include <QRandomGenerator>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <filesystem>
#include <semaphore>
#include <thread>

using namespace Qt::StringLiterals;
using namespace StoreTest;
using Store = ObjectDataBase;

namespace {

const char *const applicationKey = "Undo Test 1.0";

QString dataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
}

QString undoFolder()
{
    return dataFolder() + u"/undo_%1"_s.arg(QCoreApplication::applicationPid());
}

QStringList snapshots()
{
    return QDir(undoFolder()).entryList(QDir::Files, QDir::Time | QDir::Reversed);
}

void setDepth(const QVariant &depth)
{
    QSettings settings(u"tolvex"_s, QString::fromLatin1(applicationKey));
    settings.clear();
    if (depth.isValid())
        settings.setValue(u"General/undomaxdepth"_s, depth);
}

void makeOld(const QString &folder, int days)
{
    namespace fs = std::filesystem;
    fs::last_write_time(fs::path(folder.toStdString()),
                        fs::file_time_type::clock::now() - std::chrono::hours(24 * days + 1));
}

/// Edits of every kind that a project knows.
void editAtRandom(Store &store, QRandomGenerator &random)
{
    const auto pick = [&](int count) { return static_cast<quint16>(random.bounded(count)); };
    // Few texts, or most of the time would go into the table of strings.
    const QString text = u"it's %1"_s.arg(pick(40));
    const auto index = static_cast<quint16>(0x2000 + pick(6));
    const std::function<void()> edits[] = {
        [&] { store.addIndex(0, index, {.name = text}); },
        [&] {
            store.addIndex(0, index, {.name = text, .metadata = {{text, text}}});
            store.addSubIndex(0, index, static_cast<quint8>(pick(3)), sub(text, text));
        },
        [&] { store.deleteIndex(0, index); },
        [&] { store.setGeneralSetting(u"key%1"_s.arg(pick(4)), text); },
        [&] { store.addPGN(0, 65000U + pick(3), {.name = text, .direction = Store::transmit}); },
        [&] { store.addCANID(0, 0x100U + pick(3), {.name = text, .direction = Store::receive}); },
        [&] {
            if (store.lineExists(1))
                store.deleteNode(1);
            else if (pick(8) == 0) // its many tables make everything slow
                store.addNode(1, {.name = text});
        },
        [&] { store.setDescriptionSetting(u"FileName"_s, text); },
        [&] { store.executeSql(u"update Nodes set name = '%1'"_s.arg(random.generate())); }};
    edits[pick(9)]();
}

} // namespace

class TestUndoManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        setIdentity();
        qApp->setProperty("AppNameWithVersion", QString::fromLatin1(applicationKey));
    }

    void init()
    {
        m_store = std::make_shared<Store>();
        QVERIFY(m_store->createNewDataBase());
    }

    void cleanup()
    {
        m_manager.reset();
        m_store.reset();
        QVERIFY(!QFileInfo::exists(undoFolder()));
    }

    void aBurstIsOneStep()
    {
        attach();
        const QString before = m_store->contentHash();
        QVERIFY(!m_manager->canUndo());
        QSignalSpy states(m_manager.get(), &UndoManager::canUndoChanged);
        for (int i = 0; i < 10000; ++i)
            edit(QString::number(i));
        QVERIFY(states.isEmpty());
        QTRY_VERIFY_WITH_TIMEOUT(m_manager->canUndo(), 3000);
        QCOMPARE(states.takeLast().value(0).toBool(), true);
        QCOMPARE(snapshots().size(), 2);
        QTest::qWait(600); // nothing is left of it
        QCOMPARE(snapshots().size(), 2);

        QSignalSpy restored(m_manager.get(), &UndoManager::restored);
        QSignalSpy notes(m_store.get(), &Store::updateNotify);
        m_manager->undo();
        QCOMPARE(m_store->contentHash(), before);
        QCOMPARE(restored.size(), 1);
        QCOMPARE(notes.size(), 1);
        QCOMPARE(notes[0][0].value<Store::ChangeSet>().kind, Store::ProjectReplaced);
        QVERIFY(!m_manager->canUndo() && m_manager->canRedo());
        m_manager->undo(); // there is none
        m_manager->redo();
        QCOMPARE(edited(), u"9999"_s);
        QVERIFY(m_manager->canUndo() && !m_manager->canRedo());
        m_manager->redo();
        QCOMPARE(restored.size(), 2);
    }

    void undoWithinTheBurst()
    {
        attach();
        edit(u"1"_s);
        m_manager->undo();
        QCOMPARE(edited(), QString());
        m_manager->redo();
        QCOMPARE(edited(), u"1"_s);
        QTest::qWait(600); // the burst's timer must not find anything left
        QCOMPARE(snapshots().size(), 2);
    }

    void aWriteEndsRedo()
    {
        attach();
        step(u"1"_s);
        step(u"2"_s);
        m_manager->undo();
        m_manager->undo();
        QVERIFY(m_manager->canRedo());
        QSignalSpy states(m_manager.get(), &UndoManager::canRedoChanged);
        edit(u"3"_s);
        QVERIFY(!m_manager->canRedo());
        QCOMPARE(states.size(), 1);
        QCOMPARE(snapshots().size(), 1);
        m_manager->redo();
        QCOMPARE(edited(), u"3"_s);
        m_manager->undo();
        QCOMPARE(edited(), QString());
    }

    void depthBoundsStepsAndFiles()
    {
        depthBounds({}, 20);
        depthBounds(u"many"_s, 20);
        depthBounds(3, 3);
        for (const int lowest : {1, 0, -7})
            depthBounds(lowest, 1);
    }
    void depthBounds(const QVariant &setting, int depth)
    {
        m_manager.reset();
        init();
        attach(setting);
        QSignalSpy limits(m_manager.get(), &UndoManager::historyLimitReached);
        constexpr int edits = 25;
        for (int i = 1; i <= edits; ++i) {
            step(QString::number(i));
            QCOMPARE(snapshots().size(), qMin(i, depth) + 1);
            QCOMPARE(limits.size(), qMax(0, i - depth));
        }
        qint64 used = 0;
        const QFileInfoList files = QDir(undoFolder()).entryInfoList(QDir::Files);
        for (const QFileInfo &file : files)
            used += file.size();
        QVERIFY(used <= (depth + 1) * files.last().size() * 2);

        int undone = 0;
        for (; m_manager->canUndo(); ++undone)
            m_manager->undo();
        QCOMPARE(undone, depth);
        QCOMPARE(edited(), QString::number(edits - depth));
        QCOMPARE(snapshots().size(), depth + 1); // undone steps count too
        while (m_manager->canRedo())
            m_manager->redo();
        QCOMPARE(edited(), QString::number(edits));
    }

    void suspensionHidesWrites()
    {
        attach();
        edit(u"before"_s);
        m_manager->beginSuspend();
        {
            const UndoManager::Suspension nested(*m_manager);
            m_store->setMiscSetting(u"SaveToolVersion"_s, u"x"_s);
        }
        QTest::qWait(700);
        QCOMPARE(snapshots().size(), 1); // the timer ran out in between
        m_manager->undo();
        QCOMPARE(edited(), u"before"_s);
        m_manager->endSuspend();
        QTRY_COMPARE_WITH_TIMEOUT(snapshots().size(), 2, 3000);

        m_manager->endSuspend(); // one too many
        {
            const UndoManager::Suspension again(*m_manager);
            edit(u"hidden"_s);
        }
        QTest::qWait(700);
        QCOMPARE(snapshots().size(), 2);
        m_manager->undo();
        QCOMPARE(edited(), QString());
        m_manager->redo();
        QCOMPARE(edited(), u"before"_s);
    }

    void blockedWritesKeepUndoAway()
    {
        attach();
        step(u"1"_s);
        step(u"2"_s);
        m_manager->undo();
        QSignalSpy restored(m_manager.get(), &UndoManager::restored);
        for (const auto block :
             {&Store::setBlockUpdates, &Store::setGenerating, &Store::setThreadBlock}) {
            (m_store.get()->*block)(true);
            m_manager->undo();
            m_manager->redo();
            (m_store.get()->*block)(false);
            QVERIFY(restored.isEmpty());
            QCOMPARE(edited(), u"1"_s);
        }
        m_manager->redo();
        QCOMPARE(edited(), u"2"_s);
    }

    void aSnapshotThatHasGone()
    {
        attach();
        for (int i = 1; i <= 3; ++i)
            step(QString::number(i));
        m_manager->undo(); // snapshots of nothing, 1, 2 and, to be made again, 3
        const QString folder = undoFolder();
        const auto hide = [&](int number, bool hidden) {
            const QString path = folder + u"/snap_%1.db"_s.arg(number);
            const QString away = path + u".away"_s;
            QVERIFY(hidden ? QFile::rename(path, away) : QFile::rename(away, path));
        };
        QSignalSpy restored(m_manager.get(), &UndoManager::restored);
        hide(2, true);
        m_manager->undo();
        QCOMPARE(edited(), u"2"_s);
        QVERIFY(m_manager->canUndo() && m_manager->canRedo());
        hide(4, true);
        m_manager->redo();
        QCOMPARE(edited(), u"2"_s);
        QVERIFY(restored.isEmpty());
        hide(2, false);
        hide(4, false);
        m_manager->redo();
        QCOMPARE(edited(), u"3"_s);
        m_manager->undo();
        m_manager->undo();
        QCOMPARE(edited(), u"1"_s);
        step(u"4"_s); // a failed step leaves nothing suspended
        m_manager->undo();
        QCOMPARE(edited(), u"1"_s);
    }

    void aFailedSnapshotEndsUndo()
    {
        attach();
        step(u"1"_s);
        QSignalSpy undoStates(m_manager.get(), &UndoManager::canUndoChanged);
        QVERIFY(QDir(undoFolder()).removeRecursively());
        QTest::ignoreMessage(QtDebugMsg,
                             QRegularExpression(u"takeSnapshot.*snapshot failed, undo "
                                                "disabled:.*no copy of the project can be made"_s));
        step(u"2"_s);
        QVERIFY(!m_manager->canUndo() && !m_manager->canRedo());
        QCOMPARE(undoStates.takeLast().value(0).toBool(), false);
        QVERIFY(QDir().mkpath(undoFolder()));
        step(u"3"_s);
        QVERIFY(snapshots().isEmpty());
        m_manager->undo();
        QCOMPARE(edited(), u"3"_s); // the edits themselves are safe

        m_manager->setDatabase(m_store);
        step(u"4"_s);
        m_manager->undo();
        QCOMPARE(edited(), u"3"_s);
    }

    void aSlowStatementEndsUndo()
    {
        attach();
        step(u"1"_s);
        std::binary_semaphore inFlight(0);
        std::binary_semaphore goOn(0);
        connect(
            m_store.get(), &Store::databaseWriteExecuted, this,
            [&] {
                if (QThread::currentThread() == thread())
                    return;
                inFlight.release();
                goOn.acquire();
            },
            Qt::DirectConnection);
        edit(u"2"_s);
        std::thread slow([&] { m_store->executeSql(u"update Nodes set name = 'x'"_s); });
        inFlight.acquire();
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression(u"undo disabled:.*snapshot aborted, "
                                                            "queries of other threads"_s));
        m_manager->undo();
        goOn.release();
        slow.join();
        disconnect(m_store.get(), nullptr, this, nullptr);
        QVERIFY(!m_manager->canUndo());
        QVERIFY(snapshots().isEmpty());
        QCOMPARE(edited(), u"2"_s);
    }

    void writesOfOtherThreadsCount()
    {
        attach();
        std::thread worker([&] {
            for (int i = 0; i < 100; ++i)
                m_store->setGeneralSetting(u"edited"_s, QString::number(i));
        });
        worker.join();
        QVERIFY(!m_manager->canUndo());
        QTRY_VERIFY_WITH_TIMEOUT(m_manager->canUndo(), 3000);
        QCOMPARE(snapshots().size(), 2);
        m_manager->undo();
        QCOMPARE(edited(), QString());
    }

    /// However long an importer pauses between two writes, nobody takes its block away.
    void anImportIsOneStep()
    {
        attach();
        std::binary_semaphore written(0);
        std::binary_semaphore goOn(0);
        bool blockedToTheEnd = true;
        std::thread importer([&] {
            m_store->setThreadBlock(true);
            const auto watch = connect(
                m_store.get(), &Store::blockStateChanged, this, [&] { blockedToTheEnd = false; },
                Qt::DirectConnection);
            m_store->setGeneralSetting(u"edited"_s, u"1"_s);
            written.release();
            goOn.acquire();
            m_store->setGeneralSetting(u"edited"_s, u"2"_s);
            disconnect(watch);
            m_store->setThreadBlock(false);
        });
        written.acquire();
        QTest::qWait(700); // the burst would be over by now
        m_manager->undo();
        QCOMPARE(snapshots().size(), 1);
        goOn.release();
        importer.join();
        QVERIFY(blockedToTheEnd);
        QTRY_VERIFY_WITH_TIMEOUT(m_manager->canUndo(), 3000);
        QCOMPARE(snapshots().size(), 2);
        QCOMPARE(edited(), u"2"_s);
        m_manager->undo();
        QCOMPARE(edited(), QString());
    }

    void anotherStoreStartsAnew()
    {
        attach();
        step(u"1"_s);
        step(u"2"_s);
        m_manager->undo();
        const auto former = m_store;
        m_store = std::make_shared<Store>();
        QVERIFY(m_store->createNewDataBase());
        m_manager->setDatabase(m_store);
        QVERIFY(!m_manager->canUndo() && !m_manager->canRedo());
        QCOMPARE(snapshots().size(), 1);
        former->setGeneralSetting(u"edited"_s, u"3"_s);
        m_manager->handleDebounceTimeout();
        QVERIFY(!m_manager->canUndo());
        step(u"4"_s);
        m_manager->setDatabase(nullptr);
        QVERIFY(!m_manager->canUndo() && snapshots().isEmpty());
        step(u"5"_s);
        m_manager->undo();
        m_manager->redo();
        QCOMPARE(edited(), u"5"_s);
    }

    void oldFoldersGo()
    {
        const QTemporaryDir outside;
        const QDir data(dataFolder());
        const auto make = [&](const QString &name, int days) {
            QVERIFY(data.mkpath(name + u"/below"_s));
            QFile file(data.filePath(name + u"/below/snap_1.db"_s));
            QVERIFY(file.open(QIODevice::WriteOnly));
            makeOld(data.filePath(name), days);
        };
        make(u"undo_1"_s, 8);
        make(u"undo_2"_s, 6);
        make(u"keep_3"_s, 100);
        QFile::remove(data.filePath(u"undo_link"_s)); // of a run that failed
        QVERIFY(QFile::link(outside.path(), data.filePath(u"undo_link"_s)));
        makeOld(outside.path(), 100);
        // Of a run that was killed, and of this one, which is a week without an edit.
        const QString abandoned = data.filePath(u"vxedatatemp_1_2"_s);
        QVERIFY(QFile(abandoned).open(QIODevice::WriteOnly));
        makeOld(abandoned, 8);
        makeOld(m_store->workingFiles().constLast(), 8);
        attach();
        QVERIFY(!QFile::exists(abandoned));
        QVERIFY(QFile::exists(m_store->workingFiles().constLast()));
        QVERIFY(!data.exists(u"undo_1"_s));
        QVERIFY(data.exists(u"undo_2/below/snap_1.db"_s));
        QVERIFY(data.exists(u"keep_3/below/snap_1.db"_s));
        QVERIFY(QFileInfo::exists(outside.path()));
        QVERIFY(QFile::remove(data.filePath(u"undo_link"_s)));
        for (const char *name : {"undo_2", "keep_3"})
            QVERIFY(QDir(data.filePath(QLatin1String(name))).removeRecursively());
    }

    void everyStateComesBack()
    {
        attach(2000);
        QRandomGenerator random(20260101);
        bool written = false;
        connect(m_store.get(), &Store::databaseWriteExecuted, this, [&] { written = true; });
        QStringList states{m_store->contentHash()};
        for (int i = 0; i < 1000; ++i) {
            for (written = false; !written;)
                editAtRandom(*m_store, random);
            m_manager->handleDebounceTimeout();
            states.append(m_store->contentHash());
        }
        QVERIFY(QSet<QString>(states.begin(), states.end()).size() > 800);
        for (qsizetype i = states.size() - 2; i >= 0; --i) {
            m_manager->undo();
            QCOMPARE(m_store->contentHash(), states[i]);
        }
        QVERIFY(!m_manager->canUndo());
        for (qsizetype i = 1; i < states.size(); ++i) {
            m_manager->redo();
            QCOMPARE(m_store->contentHash(), states[i]);
        }
        QVERIFY(!m_manager->canRedo());
        QCOMPARE(m_store->workingFiles().size(), 1);
        disconnect(m_store.get(), nullptr, this, nullptr);
    }

    /// Edits, steps, undo and redo in any order against what they are meant to give.
    void randomWalk()
    {
        constexpr qsizetype depth = 4;
        attach(int(depth));
        QRandomGenerator random(7);
        QList<QString> states{QString()};
        qsizetype now = 0;
        QString open; // an edit that is no step yet
        const auto endStep = [&] {
            if (open.isEmpty())
                return;
            states.resize(now + 1);
            states.append(std::exchange(open, QString()));
            if (states.size() > depth + 1)
                states.removeFirst();
            now = states.size() - 1;
        };
        for (int i = 1; i <= 600; ++i) {
            switch (random.bounded(4)) {
            case 0:
                open = QString::number(i);
                edit(open);
                states.resize(now + 1);
                break;
            case 1:
                m_manager->handleDebounceTimeout();
                endStep();
                break;
            case 2:
                m_manager->undo();
                endStep();
                now = qMax<qsizetype>(0, now - 1);
                break;
            default:
                m_manager->redo();
                now = qMin(states.size() - 1, now + 1);
                break;
            }
            QCOMPARE(edited(), open.isEmpty() ? states[now] : open);
            QCOMPARE(m_manager->canUndo(), now > 0);
            QCOMPARE(m_manager->canRedo(), now < states.size() - 1);
            QCOMPARE(snapshots().size(), states.size());
        }
    }

private:
    void edit(const QString &value) { QVERIFY(m_store->setGeneralSetting(u"edited"_s, value)); }
    /// An edit with a snapshot of its own, without the wait for it.
    void step(const QString &value)
    {
        edit(value);
        m_manager->handleDebounceTimeout();
    }
    QString edited() { return m_store->getGeneralSetting(u"edited"_s); }
    void attach(const QVariant &depth = {})
    {
        setDepth(depth);
        m_manager = std::make_unique<UndoManager>();
        m_manager->setDatabase(m_store);
    }

    std::shared_ptr<Store> m_store;
    std::unique_ptr<UndoManager> m_manager;
};

QTEST_GUILESS_MAIN(TestUndoManager)
#include "tst_undomanager.moc"
