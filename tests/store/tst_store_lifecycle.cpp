#include "tests/support/filesizelimit.h"
#include "tests/support/storefile.h"

#include <QCryptographicHash>
#include <QProcess>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>

#ifdef Q_OS_LINUX
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;
using namespace StoreTest;

class TestStoreLifecycle : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }

    void init()
    {
        setIdentity();
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void createsWorkingCopy()
    {
        QStringList files;
        {
            ObjectDataBase one;
            ObjectDataBase two;
            QSignalSpy changes(&one, &ObjectDataBase::updateNotify);
            QVERIFY(one.createNewDataBase());
            QVERIFY(two.createNewDataBase());
            QVERIFY(!changes.isEmpty());
            QCOMPARE(one.getLines(), QList<quint8>{0});
            QCOMPARE(one.getMiscSetting(u"DatabaseVersion"_s), u"107"_s);
            QCOMPARE(one.getMiscSetting(u"CreateToolName"_s), u"CANopen Quillforge"_s);
            files = one.workingFiles() + two.workingFiles();
            QCOMPARE(QSet<QString>(files.begin(), files.end()).size(), 2);
            for (const QString &file : files)
                QVERIFY2(QFileInfo(file).fileName().startsWith("vxedatatemp_"_L1),
                         qPrintable(file));
        }
        for (const QString &file : files)
            QVERIFY(!QFile::exists(file));
    }

    void savesNewFileAndBackup()
    {
        const QString file = makeProject("a.vxmp");
        QVERIFY(!QFile::exists(file + ".bak"_L1));
        const QByteArray first = contentOf(file);
        TestStore store(file);
        QCOMPARE(store.projectPath(), file);
        store.setIndexName(0, 0x2000, u"second"_s);
        QVERIFY(store.saveDatabase());
        QCOMPARE(contentOf(file + ".bak"_L1), first);
        QVERIFY(store.saveDatabase(path("b.vxmp")));
        QCOMPARE(store.projectPath(), path("b.vxmp"));

        TestStore again(path("b.vxmp"));
        QVERIFY(again.lastErrorText().isEmpty());
        QVERIFY(!again.wasExternallyModified());
        QCOMPARE(again.getIndexName(0, 0x2000), u"second"_s);
        QCOMPARE(again.getMiscSetting(u"FileHash"_s).size(), 64);
        QCOMPARE(again.getMiscSetting(u"SaveToolVersion"_s), u"4.3.3"_s);
    }

    void opensWithoutTouchingTheFile()
    {
        const QString file = makeProject("a.vxmp");
        runOn(file, {u"delete from DescriptionSettings"_s, u"drop table UDSSettings0"_s});
        const QByteArray before = contentOf(file);
        TestStore store(file);
        QCOMPARE(store.getDescriptionSetting(u"OrderCode"_s), u"0815-BUY-ME"_s);
        QCOMPARE(contentOf(file), before);
    }

    void refusesUnusableFiles()
    {
        const QString file = path("broken.vxmp");
        TestStore project;
        for (int i = 0; i < 300; ++i) {
            project.addIndex(0, quint16(0x2000 + i), {.name = u"object %1"_s.arg(i)});
            project.addSubIndex(0, quint16(0x2000 + i), 0, sub(u"object %1"_s.arg(i)));
        }
        QVERIFY(project.saveDatabaseAsSql(file));
        const QByteArray good = contentOf(file);
        QByteArray damaged = good;
        damaged.replace(good.size() / 2, 6000, QByteArray(6000, '\x5A'));
        // Only the entries of an index: every table can still be read.
        QByteArray wrongIndex = good;
        constexpr int pageSize = 4096;
        constexpr char indexLeaf = 10;
        for (qsizetype page = pageSize; page < wrongIndex.size(); page += pageSize) {
            if (wrongIndex.at(page) == indexLeaf && wrongIndex.at(page + 4) > 10)
                wrongIndex[page + pageSize - 1] = char(wrongIndex.at(page + pageSize - 1) ^ 1);
        }
        for (const QByteArray &content :
             {QByteArray(), QByteArray("[General]\nkey=value\n").repeated(500),
              QByteArray(100000, '\0'), good.left(5000), good.left(good.size() * 3 / 4), damaged,
              wrongIndex}) {
            writeFile(file, content);
            ObjectDataBase store;
            QVERIFY(!store.openDataBase(file));
            QCOMPARE(store.lastErrorText().isEmpty(), content.isEmpty());
            QVERIFY(contentOf(file) == content);
        }
    }

    void refusalKeepsTheOpenProject()
    {
        TestStore store(makeProject("a.vxmp"));
        store.setIndexName(0, 0x2000, u"edited"_s);
        runOn(path("foreign.vxmp"), {u"create table other (x)"_s});
        QVERIFY(!store.openDataBase(path("foreign.vxmp")));
        QVERIFY(store.lastErrorText().isEmpty());
        QVERIFY(!store.openDataBase(path("missing.vxmt")));
        QVERIFY(store.lastErrorText().startsWith(path("missing.vxmt")));
        for (const QString &bad : {path("missing.vxmp"), m_dir->path()}) {
            QVERIFY(!store.openDataBase(bad));
            QVERIFY2(store.lastErrorText().startsWith("Error detected: "_L1 + bad),
                     qPrintable(store.lastErrorText()));
        }
        QVERIFY(!store.openDataBase(QString()));
        store.setBlockUpdates(true);
        QVERIFY(!store.createNewDataBase());
        store.setBlockUpdates(false);
        QCOMPARE(store.projectPath(), path("a.vxmp"));
        QCOMPARE(store.getIndexName(0, 0x2000), u"edited"_s);
        QVERIFY(store.saveDatabase());
    }

    void readOnlyFileOpensButIsNotSavedOver()
    {
        const QString file = makeProject("a.vxmp");
        {
            TestStore store(file);
            QVERIFY(store.saveDatabase());
        }
        const QString backup = file + ".bak"_L1;
        const QByteArray content = contentOf(file);
        const QByteArray backupContent = contentOf(backup);
        QVERIFY(QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadUser));
        TestStore store(file);
        store.setIndexName(0, 0x2000, u"edited"_s);
        QVERIFY(!store.saveDatabase());
        QVERIFY(store.lastErrorText().contains("read-only"_L1));
        QCOMPARE(contentOf(file), content);
        QCOMPARE(contentOf(backup), backupContent);
        QVERIFY(store.saveDatabase(path("b.vxmp")));
    }

    void refusesTargets()
    {
        TestStore store;
        for (const QString &target :
             {QString(), m_dir->path(), path("no/such/folder.vxmp"), path("no/such/folder.vxmt")}) {
            QVERIFY2(!store.saveDatabase(target), qPrintable(target));
            QVERIFY(!store.lastErrorText().isEmpty());
        }
        QVERIFY(store.projectPath().isEmpty());
    }

    void fullTargetKeepsTheOldProject()
    {
#ifdef Q_OS_LINUX
        const QString folder = path("small");
        QDir().mkpath(folder);
        if (geteuid() != 0 || mount("tmpfs", qPrintable(folder), "tmpfs", 0, "size=300k") != 0)
            QSKIP("needs the right to mount a small file system");
        const QString file = folder + "/a.vxmp"_L1;
        TestStore store;
        const bool saved = store.saveDatabase(file);
        for (int i = 0; i < 2000; ++i)
            store.addIndex(0, quint16(0x2000 + i),
                           {.name = QString(300, u'n') + QString::number(i)});
        const bool savedOver = store.saveDatabase(file);
        const QString error = store.lastErrorText();
        ObjectDataBase other;
        const bool opened = other.openDataBase(file);
        const int objects = int(other.getIndices(0).size());
        const QStringList left = QDir(folder).entryList(QDir::Files | QDir::Hidden);
        // The folder takes no new file, and the disk has no room to write over the one that is
        // there.
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner);
        const QByteArray content = contentOf(file);
        const bool savedInPlace = store.saveDatabase(file);
        const bool isUntouched = contentOf(file) == content;
        for (int i = 0; i < 2000; ++i)
            store.deleteIndex(0, quint16(0x2000 + i));
        store.purgeStrings();
        store.executeSql(u"VACUUM"_s);
        const bool smallerFits = store.saveDatabase(file);
        umount(qPrintable(folder));
        QVERIFY(saved && opened);
        QVERIFY(!savedOver && !savedInPlace);
        QVERIFY2(error.startsWith(file), qPrintable(error));
        QCOMPARE(objects, 0);
        QCOMPARE(left, QStringList(u"a.vxmp"_s));
        QVERIFY(isUntouched && smallerFits);
        QVERIFY(store.saveDatabase(path("elsewhere.vxmp")));
#endif
    }

    void refusesHostileFiles()
    {
        QStringList tables{u"PRAGMA synchronous=OFF"_s, u"begin"_s};
        for (int i = 0; i < 5000; ++i)
            tables.append(u"create table t%1 (a)"_s.arg(i));
        tables.append(u"commit"_s);
        const std::pair<QStringList, const char *> rows[] = {
            {{"drop table Nodes", "create view Nodes as with recursive n(i) as (select 0 union all "
                                  "select i+1 from n) select i as nodeId from n"},
             "view"},
            {{"create trigger t after update on MiscSettings begin delete from SubObjects0; end"},
             "trigger"},
            {{"create table X (a, b as (hex(zeroblob(100000000))))"}, "computed"},
            {{"insert into Nodes (nodeId) values (300)"}, "line"},
            {tables, "tables"}};
        for (const auto &[statements, word] : rows) {
            const QString file = makeProject("hostile.vxmp");
            runOn(file, statements);
            ObjectDataBase store;
            QVERIFY2(!store.openDataBase(file), word);
            QVERIFY2(store.lastErrorText().contains(QLatin1String(word)),
                     qPrintable(store.lastErrorText()));
            QVERIFY(QFile::remove(file));
        }
    }

    /// What a reader would wait for, or never come to the end of, and a writer would replace.
    void refusesWhatIsNoOrdinaryFile()
    {
#ifdef Q_OS_LINUX
        const QString pipe = path("pipe.vxmt");
        QCOMPARE(mkfifo(qPrintable(pipe), 0666), 0);
        QVERIFY(QFile::link(pipe, path("link.vxmp")));
        QVERIFY(QFile::link(u"/dev/zero"_s, path("device.vxmt")));
        TestStore store;
        for (const QString &strange : {pipe, path("link.vxmp"), path("device.vxmt")}) {
            QVERIFY(!store.openDataBase(strange));
            QVERIFY2(store.lastErrorText().contains(u"no ordinary file"),
                     qPrintable(store.lastErrorText()));
            QVERIFY(!store.saveDatabase(strange));
            QVERIFY(!QFileInfo(strange).isFile());
        }
#endif
    }

    void savedFileStaysWhatItWas()
    {
        const QString file = makeProject("a.vxmp");
        const QByteArray users = contentOf(file);
        const QString link = path("link.vxmp");
        QVERIFY(QFile::link(file, link));
        QVERIFY(QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner |
                                                QFile::ReadGroup | QFile::ExeOther));
        const QFile::Permissions permissions = QFile::permissions(file);
        TestStore store(link);
        store.setBackupRule(ObjectDataBase::BackupRule::FirstSave);
        for (const char *name : {"once", "twice"}) {
            store.setIndexName(0, 0x2000, QString::fromLatin1(name));
            QVERIFY2(store.saveDatabase(), qPrintable(store.lastErrorText()));
        }
        QVERIFY(QFileInfo(link).isSymLink());
        QCOMPARE(QFile::permissions(file), permissions);
        QCOMPARE(contentOf(file + ".bak"_L1), users);
        TestStore other(file);
        QCOMPARE(other.getIndexName(0, 0x2000), u"twice"_s);
    }

    void brokenWorkingCopyIsNotSaved()
    {
        const QString file = makeProject("a.vxmp");
        const QByteArray users = contentOf(file);
        TestStore store(file);
        const QString snapshot = path("good.db");
        QVERIFY(store.takeSnapshot(snapshot));
        {
            // Nothing can be added from here on, as on a full disk.
            const FileSizeLimit limit(unsigned(QFileInfo(store.workingFiles().constLast()).size()));
            for (int i = 0; i < 500 && !store.isDamaged(); ++i)
                store.addIndex(0, quint16(0x3000 + i), {.name = QString(300, u'n')});
        }
        if (!FileSizeLimit::isSupported())
            QSKIP("needs a limit for the size of files");
        QVERIFY(store.isDamaged());
        for (const QString &target : {file, path("a.vxmt")}) {
            QVERIFY(!store.saveDatabase(target));
            QVERIFY2(store.lastErrorText().startsWith(target), qPrintable(store.lastErrorText()));
        }
        QVERIFY(!store.takeSnapshot(path("bad.db")));
        QCOMPARE(contentOf(file), users);
        QVERIFY(store.restoreSnapshot(snapshot) && store.saveDatabase());
        QCOMPARE(contentOf(file + ".bak"_L1), users);

        // Damage that no statement has met yet.
        QFile working(store.workingFiles().constLast());
        QVERIFY(working.open(QIODevice::ReadWrite) && working.seek(working.size() / 2));
        working.write(QByteArray(8192, '\x5A'));
        working.close();
        QVERIFY(!store.saveDatabase() && store.isDamaged());
        TestStore other(file);
    }

    void foreignChangeIsNoticedOnce()
    {
        const QString file = makeProject("a.vxmp");
        runOn(file, {u"update SubObjects0 set defaultvalue='8'"_s});
        {
            TestStore store(file);
            QVERIFY(store.wasExternallyModified());
            QCOMPARE(store.getMiscSetting(u"TamperLog"_s).count(u';'), 0);
            QVERIFY(store.saveDatabase());
        }
        {
            TestStore store(file);
            QVERIFY(!store.wasExternallyModified());
            QVERIFY(!store.getMiscSetting(u"TamperLog"_s).isEmpty());
        }
        runOn(file, {u"update SubObjects0 set defaultvalue='9'"_s});
        {
            TestStore store(file);
            QCOMPARE(store.getMiscSetting(u"TamperLog"_s).count(u';'), 1);
        }
        runOn(file, {u"delete from MiscSettings where item='FileHash'"_s});
        TestStore store(file);
        QVERIFY(!store.wasExternallyModified());
    }

    void hashIsIndependentOfLayout()
    {
        TestStore store(makeProject("a.vxmp"));
        const QString before = store.contentHash();
        QVERIFY(store.executeSql(u"VACUUM"_s));
        QCOMPARE(store.contentHash(), before);
        // Neighbouring values must not run into each other, nor a text into the next column.
        store.setSubIndexDefaultValue(0, 0x2000, 0, u"7|"_s);
        const QString one = store.contentHash();
        QVERIFY(one != before);
        ObjectDataBase::SUBINDEX_DATA_T data;
        QVERIFY(store.getSubIndexData(0, 0x2000, 0, data));
        data.metadata.insert(u"key"_s, u"value"_s);
        store.addSubIndex(0, 0x2000, 0, data);
        QVERIFY(store.contentHash() != one);

        // The hash by its definition, over the store's own file.
        QVERIFY(store.saveDatabase());
        QCryptographicHash hash(QCryptographicHash::Sha256);
        const QStringList tables = runOn(
            path("a.vxmp"), {u"SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"_s});
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"hash"_s);
        db.setDatabaseName(path("a.vxmp"));
        QVERIFY(db.open());
        for (const QString &table : tables) {
            hash.addData(table.toUtf8() + '\n');
            QSqlQuery query(db);
            const QString where = table == "MiscSettings"_L1
                                      ? u" WHERE item NOT IN ('FileHash','TamperLog')"_s
                                      : QString();
            QVERIFY(query.exec(u"SELECT * FROM \"%1\"%2 ORDER BY rowid"_s.arg(table, where)));
            while (query.next()) {
                for (int column = 0; query.value(column).isValid(); ++column)
                    hash.addData(query.value(column).toString().toUtf8() + '|');
                hash.addData(QByteArrayView("\n"));
            }
        }
        db.close();
        QCOMPARE(store.getMiscSetting(u"FileHash"_s), QString::fromLatin1(hash.result().toHex()));
    }

    void referenceDatabaseMarksItsRows()
    {
        TestStore store(makeProject("a.vxmp"));
        ObjectDataBase::SUBINDEX_DATA_T data = sub(u"x"_s);
        data.changedbyuser = true;
        store.addSubIndex(0, 0x2001, 0, data);
        QVERIFY(store.saveDatabase(path("b.vxmp")));
        QVERIFY(store.getSubIndexData(0, 0x2001, 0, data));
        QVERIFY(data.changedbyuser);
        QVERIFY(store.saveDatabase(path("b.data")));
        QVERIFY(store.getSubIndexData(0, 0x2001, 0, data));
        QVERIFY(!data.changedbyuser);
        QCOMPARE(data.wizardsource, quint16(454));
    }

    void purgeDropsUnusedTexts()
    {
        const QString file = makeProject("a.vxmp");
        TestStore store(file);
        store.addIndex(0, 0x3000, {.name = u"gone"_s, .description = u"d"_s});
        store.addCANID(0, 5, {.id = 5, .name = u"message"_s, .direction = 85});
        store.deleteIndex(0, 0x3000);
        QVERIFY(store.saveDatabase());
        const QStringList texts = runOn(file, {u"select string from Strings"_s});
        QVERIFY(!texts.contains("gone"_L1));
        QVERIFY(texts.contains("message"_L1));
        // A purged text that is used again reads as it was written, now and after the next open.
        store.addIndex(0, 0x3000, {.name = u"gone"_s});
        QCOMPARE(store.getIndexName(0, 0x3000), u"gone"_s);
        QVERIFY(store.saveDatabase());
        TestStore other(file);
        QCOMPARE(other.getIndexName(0, 0x3000), u"gone"_s);
    }

    void scratchLinesAreNotSaved()
    {
        TestStore store(makeProject("a.vxmp"));
        for (const quint8 line : {ObjectDataBase::comparisonLine, ObjectDataBase::stagingLine}) {
            QVERIFY(store.addNode(line, {}));
            QVERIFY(store.addIndex(line, 0x1000, {.name = u"scratch"_s}));
        }
        QVERIFY(store.saveDatabase());
        QCOMPARE(store.getLines(), QList<quint8>{0});
        const QStringList tables =
            runOn(path("a.vxmp"), {u"select name from sqlite_master where name like '%25_'"_s});
        QVERIFY2(tables.isEmpty(), qPrintable(tables.join(u',')));
        const QStringList keys =
            runOn(path("a.vxmp"), {u"select item from DescriptionSettings where item like "
                                   "'%\\_25_' escape '\\' and item not like 'Baud%'"_s});
        QVERIFY2(keys.isEmpty(), qPrintable(keys.join(u',')));
    }

    void editions()
    {
        const char *const canopen = "CANopen Quillforge";
        const char *const j1939 = "J1939 Quillforge";
        struct
        {
            const char *savedBy;
            const char *openedBy;
            const char *lineType;
            bool allowed;
        } const rows[] = {{canopen, canopen, "5", true},
                          {j1939, canopen, "2", false},
                          {j1939, canopen, "1", true},
                          {j1939, canopen, "5", false},
                          {canopen, j1939, "1", false},
                          {canopen, j1939, "6", true},
                          {canopen, "CAN Quillforge", "5", true},
                          {j1939, "EnergyBus Marlwright", "2", true}};
        for (const auto &[savedBy, openedBy, lineType, allowed] : rows) {
            setIdentity(savedBy);
            TestStore store;
            store.setGeneralSetting(u"line0type"_s, QString(lineType));
            QVERIFY(store.saveDatabase(path("a.vxmp")));
            setIdentity(openedBy);
            ObjectDataBase other;
            QSignalSpy wrong(&other, &ObjectDataBase::wrongTool);
            QCOMPARE(other.openDataBase(path("a.vxmp")), allowed);
            QCOMPARE(wrong.size(), allowed ? 0 : 1);
            QCOMPARE(other.lastErrorText(),
                     allowed ? QString() : u"File was not created with this tool."_s);
        }
    }

    void textProjects()
    {
        TestStore store(makeProject("a.vxmp"));
        QVERIFY(store.addNode(1, {}));
        QVERIFY2(store.saveDatabase(path("a.vxmt")), qPrintable(store.lastErrorText()));
        QCOMPARE(store.projectPath(), path("a.vxmt"));
        const QByteArray first = contentOf(path("a.vxmt"));
        TestStore other(path("a.vxmt"));
        QVERIFY(!other.wasExternallyModified());
        QCOMPARE(other.getLines(), (QList<quint8>{0, 1}));
        QCOMPARE(other.getIndexName(0, 0x2000), u"first"_s);
        QVERIFY(other.saveDatabase());
        QCOMPARE(contentOf(path("a.vxmt")), first);
        writeFile(path("a.vxmt"), QByteArray(first).replace("first", "other"));
        QVERIFY(other.openDataBase(path("a.vxmt")));
        QVERIFY(other.wasExternallyModified());
    }

    void snapshots()
    {
        TestStore store(makeProject("a.vxmp"));
        store.cacheAllSubs(0);
        const QString before = store.contentHash();
        const QString snapshot = path("snap it's.db");
        QVERIFY(store.takeSnapshot(snapshot));
        const QByteArray content = contentOf(snapshot);
        store.setIndexName(0, 0x2000, u"later"_s);
        store.addSubIndex(0, 0x2000, 0, sub(u"later"_s, u"99"_s));
        QSignalSpy changes(&store, &ObjectDataBase::updateNotify);
        QVERIFY(store.restoreSnapshot(snapshot));
        QCOMPARE(changes.size(), 1);
        QCOMPARE(store.contentHash(), before);
        QCOMPARE(store.getIndexName(0, 0x2000), u"first"_s);
        QCOMPARE(store.getSubIndexDefaultValue(0, 0x2000, 0), u"7"_s);
        QVERIFY(store.addIndex(0, 0x2001, {.name = u"new"_s}));
        QCOMPARE(contentOf(snapshot), content);
        QVERIFY(!store.restoreSnapshot(path("none.db")));
        QCOMPARE(store.lastErrorText(), u"snapshot '%1' does not exist"_s.arg(path("none.db")));
        QCOMPARE(store.getIndexName(0, 0x2001), u"new"_s);
    }

    void killedSaverLosesNothing()
    {
        const QString file = path("a.vxmp");
        TestStore store;
        store.setGeneralSetting(u"line0type"_s, u"1"_s);
        for (int i = 0; i < 60; ++i)
            store.addIndex(0, quint16(0x2000 + i), {.name = u"0"_s});
        QVERIFY(store.saveDatabase(file));

        for (int round = 0; round < 25; ++round) {
            QProcess saver;
            saver.start(QCoreApplication::applicationDirPath() + "/store_saver"_L1, {file});
            QVERIFY(saver.waitForStarted());
            while (!saver.readAllStandardOutput().contains("ready"))
                QVERIFY(saver.waitForReadyRead(20000));
            QThread::usleep(QRandomGenerator::global()->bounded(60000));
            saver.kill();
            QVERIFY(saver.waitForFinished());

            ObjectDataBase found;
            const bool whole = found.openDataBase(file) && !found.wasExternallyModified();
            if (!whole) {
                QVERIFY2(found.openDataBase(file + ".bak"_L1), qPrintable(found.lastErrorText()));
                QVERIFY(!found.wasExternallyModified());
            }
            const QList<quint16> indices = found.getIndices(0);
            QCOMPARE(indices.size(), 60);
            for (const quint16 index : indices)
                QCOMPARE(found.getIndexName(0, index), found.getIndexName(0, indices.first()));
            if (!whole)
                QVERIFY(found.saveDatabase(file));
        }
        QVERIFY(store.saveDatabase(file));
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden),
                 (QStringList{u"a.vxmp"_s, u"a.vxmp.bak"_s}));
    }

private:
    QString path(const char *name) const
    {
        return m_dir->filePath(QLatin1String(name));
    }

    QString makeProject(const char *name)
    {
        const QString file = path(name);
        TestStore store;
        store.setGeneralSetting(u"line0type"_s, u"1"_s);
        store.addIndex(0, 0x2000, {.name = u"first"_s});
        store.addSubIndex(0, 0x2000, 0, sub(u"first"_s, u"7"_s));
        if (!store.saveDatabaseAsSql(file))
            qFatal("%s", qPrintable(store.lastErrorText()));
        return file;
    }

    std::unique_ptr<QTemporaryDir> m_dir;
};

QTEST_GUILESS_MAIN(TestStoreLifecycle)
#include "tst_store_lifecycle.moc"
