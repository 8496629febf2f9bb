#include "resources/templates/projecttemplates.h"
#include "session/projectsession.h"
#include "session/versionnotes.h"
#include "store/undomanager.h"
#include "tests/app/projectfixture.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString canopenEdition = u"CANopen Quillforge"_s;
const QString j1939Edition = u"J1939 Quillforge"_s;
const QString canEdition = u"CAN Quillforge"_s;
const QString energyBusEdition = u"EnergyBus Marlwright"_s;

/// A session with a store of its own.
struct Opened
{
    Opened()
    {
        const auto store = std::make_shared<ObjectDataBase>();
        store->createNewDataBase();
        session.setStore(store);
    }
    /// Empty if the project is open and up to date.
    QString open(const QString &path)
    {
        const QString error = session.open(path);
        if (error.isEmpty())
            notes = session.bringUpToDate(ProjectSession::Notes::All);
        return error;
    }
    void setNodeId(const QString &value) { store().setGeneralSetting(u"co_node_id"_s, value); }
    void step(const QString &nodeId)
    {
        setNodeId(nodeId);
        session.undo().handleDebounceTimeout();
    }
    ObjectDataBase &store() { return session.store(); }

    ProjectSession session;
    QStringList notes;
};

using Story = void (*)(Opened &);

} // namespace

/// What an open project is, without a window.
class TestProjectSession : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

    QString project(const QString &name, const ProjectFixture::Options &options = {})
    {
        const QString path = m_folder.filePath(name);
        return ProjectFixture::save(path, options) ? path : QString();
    }

private slots:
    void init() { QCoreApplication::setApplicationName(canopenEdition); }

    void unsavedIsWhatDiffersFromTheFile_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<Story>("story");
        QTest::addColumn<int>("count");
        const auto row = [](const char *name, Story story, int count) {
            QTest::addRow("%s, database", name) << u"vxmp"_s << story << count;
            QTest::addRow("%s, text", name) << u"vxmt"_s << story << count;
        };
        row(
            "set back by hand",
            [](Opened &o) {
                o.setNodeId(u"7"_s);
                o.setNodeId(u"32"_s);
            },
            0);
        row(
            "object deleted and copied back",
            [](Opened &o) {
                o.store().copyIndex(0, 0x2000, 0, 0x2001);
                o.store().deleteIndex(0, 0x2000);
                o.store().moveIndex(0, 0x2001, 0, 0x2000);
            },
            0);
        row(
            "twice the same setting, and an object",
            [](Opened &o) {
                o.setNodeId(u"7"_s);
                o.setNodeId(u"8"_s);
                o.store().setSubIndexDefaultValue(0, 0x2000, 0, u"5"_s);
                o.store().addIndex(0, 0x2001, {});
            },
            3);
        row(
            "edited after a save",
            [](Opened &o) {
                o.setNodeId(u"7"_s);
                QCOMPARE(o.session.save(), QString());
                o.setNodeId(u"32"_s);
            },
            1);
        row(
            "undone, and a key that saving writes",
            [](Opened &o) {
                o.step(u"7"_s);
                o.session.undo().undo();
                o.store().setMiscSetting(u"SaveToolVersion"_s, u"1"_s);
            },
            0);
    }

    void unsavedIsWhatDiffersFromTheFile()
    {
        QFETCH(QString, suffix);
        QFETCH(Story, story);
        Opened opened;
        QCOMPARE(opened.open(project(u"device."_s + suffix)), QString());
        story(opened);
        const QString before = opened.store().contentHash();
        const ProjectSession::Unsaved unsaved = opened.session.findUnsaved();
        QTEST(unsaved.count, "count");
        QCOMPARE(unsaved.readError, QString());
        QCOMPARE(opened.store().contentHash(), before);
    }

    void aNewProjectIsComparedWithItsBegin_data()
    {
        QTest::addColumn<QString>("edition");
        QTest::addColumn<int>("type");
        QTest::newRow("CANopen") << canopenEdition << 0;
        QTest::newRow("J1939") << j1939Edition << 0;
        QTest::newRow("EnergyBus") << energyBusEdition << 0;
        QTest::newRow("CAN, J1939") << canEdition << 2;
        QTest::newRow("CAN, both") << canEdition << 6;
    }

    void aNewProjectIsComparedWithItsBegin()
    {
        QFETCH(QString, edition);
        QFETCH(int, type);
        QCoreApplication::setApplicationName(edition);
        Opened opened;
        (void)opened.session.startNew(type); // there may be no template
        QVERIFY(opened.session.isAtSavedState());
        QCOMPARE(opened.session.findUnsaved().count, 0);
        opened.store().addIndex(0, 0x2000, {});
        QVERIFY(!opened.session.isAtSavedState());
        QCOMPARE(opened.session.findUnsaved().count, 1);
        opened.store().deleteIndex(0, 0x2000);
        QCOMPARE(opened.session.findUnsaved().count, 0);
    }

    /// What opening corrects is none of the user's modifications.
    void correctionsOfOlderProjectsDoNotCount()
    {
        const QString path = project(u"device.vxmp"_s);
        {
            ObjectDataBase store;
            QVERIFY(store.openDataBase(path));
            store.setGeneralSetting(u"udsserver_version"_s, u"5"_s);
            store.setGeneralSetting(u"drv_group_filter"_s, u"1"_s);
            QVERIFY(store.saveDatabase());
        }
        Opened opened;
        QCOMPARE(opened.open(path), QString());
        QCOMPARE(opened.store().getGeneralSetting(u"udsserver_version"_s), u"6"_s);
        QCOMPARE(opened.session.findUnsaved().count, 0);
        opened.setNodeId(u"7"_s);
        QCOMPARE(opened.session.findUnsaved().count, 1);
    }

    void failedOpenKeepsWhatIsThere_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("missing") << u"none.vxmp"_s << QByteArray();
        QTest::newRow("missing text") << u"none.vxmt"_s << QByteArray();
        QTest::newRow("another suffix") << u"a.db"_s << QByteArray("x");
        QTest::newRow("no suffix") << u"device"_s << QByteArray("x");
        QTest::newRow("no database") << u"a.vxmp"_s << QByteArray(5000, 'x');
        QTest::newRow("no text project") << u"a.vxmt"_s << QByteArray("no project");
        QTest::newRow("no path") << QString() << QByteArray();
    }

    void failedOpenKeepsWhatIsThere()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        const QString bad = name.isEmpty() ? name : m_folder.filePath(name);
        QFile broken(bad);
        QVERIFY(content.isEmpty() ||
                (broken.open(QIODevice::WriteOnly) && broken.write(content) > 0));
        broken.close();
        const QString good = project(u"good.vxmp"_s);
        Opened opened;
        QCOMPARE(opened.open(good), QString());
        opened.step(u"7"_s);
        QVERIFY(!opened.open(bad).isEmpty());
        QCOMPARE(opened.session.filePath(), good);
        QVERIFY(opened.session.undo().canUndo());
        QCOMPARE(opened.session.save(), QString());
        QCOMPARE(ProjectFixture::generalSetting(good, u"co_node_id"_s), u"7"_s);
    }

    void version3ProjectsAreNoted_data()
    {
        QTest::addColumn<QString>("edition");
        QTest::addColumn<QString>("version");
        QTest::addColumn<int>("wanted");
        QTest::addColumn<bool>("copyExists");
        QTest::addColumn<QStringList>("notes"); // the first words that tell one from another
        const int all = int(ProjectSession::Notes::All);
        const QString common = u"co_common.c"_s;
        const QString memory = u"co_memcpy.c"_s;
        const QString copy = u"A copy"_s;
        const auto row = [](const char *name, const QString &edition, const char *version,
                            int wanted, bool copyExists, const QStringList &notes) {
            QTest::newRow(name) << edition << QString::fromLatin1(version) << wanted << copyExists
                                << notes;
        };
        row("3.6", canopenEdition, "3.6.0", all, false, {common, copy});
        row("3.6, CAN", canEdition, "3.6.2", all, false, {common, copy});
        row("3.8, J1939", j1939Edition, "3.8.9", all, false, {memory, copy});
        row("3.6, no notes", canopenEdition, "3.6.0", int(ProjectSession::Notes::SkipStackFiles),
            false, {copy});
        row("3.6, network tool", canopenEdition, "3.6.0", int(ProjectSession::Notes::None), false,
            {});
        row("3.8, copy there", canopenEdition, "3.8.0", all, true, {memory});
        row("3.9", canEdition, "3.9.0", all, false, {copy});
        row("4.0", canopenEdition, "4.0.0", all, false, {});
        row("EnergyBus", energyBusEdition, "3.6.0", all, false, {u"re-apply EnergyBus"_s});
    }

    void version3ProjectsAreNoted()
    {
        QFETCH(QString, edition);
        QFETCH(QString, version);
        QFETCH(int, wanted);
        QFETCH(bool, copyExists);
        QFETCH(QStringList, notes);
        QCoreApplication::setApplicationName(edition);
        const QString path = project(u"old.vxmp"_s, {.savedByVersion = version});
        const QString copy = path + u".bak_v3"_s;
        QFile::remove(copy);
        if (copyExists)
            QVERIFY(QFile::copy(path, copy));
        QFile original(path);
        QVERIFY(original.open(QIODevice::ReadOnly));
        const QByteArray before = original.readAll();

        Opened opened;
        QCOMPARE(opened.session.open(path), QString());
        const QStringList told = opened.session.bringUpToDate(ProjectSession::Notes(wanted));
        QCOMPARE(told.size(), notes.size());
        for (qsizetype i = 0; i < told.size(); ++i)
            QVERIFY2(told[i].contains(notes[i]), qPrintable(told[i]));
        const bool noted = !notes.isEmpty() && notes.first().startsWith(u"co_"_s);
        QCOMPARE(opened.store().getMiscSetting(u"PreviousToolVersion"_s),
                 noted ? version : QString());
        const bool copied = notes.contains(u"A copy"_s);
        QCOMPARE(QFile::exists(copy), copied || copyExists);
        if (copied) {
            QCOMPARE(told.last(), VersionNotes::copyKept(copy, path));
            QFile kept(copy);
            QVERIFY(kept.open(QIODevice::ReadOnly));
            QCOMPARE(kept.readAll(), before);
        }
    }

    void aStateBesideACorrectionIsNotSaved()
    {
        Opened opened;
        QCOMPARE(opened.open(project(u"device.vxmp"_s)), QString());
        opened.step(u"7"_s);
        opened.step(u"8"_s);
        opened.session.noteCorrection();
        QCOMPARE(opened.session.save(), QString());
        opened.session.undo().undo();
        opened.session.undo().redo();
        QVERIFY(!opened.session.isAtSavedState()); // the correction is in the file alone
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(u"tolvex"_s);
    QCoreApplication::setApplicationVersion(u"4.3.3"_s);
    ProjectTemplates::makeAvailable();
    TestProjectSession test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_projectsession.moc"
