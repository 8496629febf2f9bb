#include "tests/store/storetest.h"
#include "tests/support/filesizelimit.h"

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

using namespace StoreTest;

class TestStoreLifecycle : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }
    void init();
    void createsWorkingCopy();
    void savesNewFileAndBackup();
    void opensWithoutTouchingTheFile();
    void refusesUnusableFiles_data();
    void refusesUnusableFiles();
    void refusalKeepsTheOpenProject();
    void readOnlyFileOpensButIsNotSavedOver();
    void refusesTargets();
    void fullTargetKeepsTheOldProject();
    void refusesHostileFiles_data();
    void refusesHostileFiles();
    void refusesWhatIsNoOrdinaryFile();
    void savedFileStaysWhatItWas();
    void brokenWorkingCopyIsNotSaved();
    void foreignChangeIsNoticedOnce();
    void hashIsIndependentOfLayout();
    void referenceDatabaseMarksItsRows();
    void purgeDropsUnusedTexts();
    void scratchLinesAreNotSaved();
    void editions_data();
    void editions();
    void textProjects();
    void textProjectThatIsNone();
    void snapshots();
    void killedSaverLosesNothing();

private:
    QString path(const char *name) const { return m_dir->filePath(QLatin1String(name)); }
    QString makeProject(const char *name);

    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestStoreLifecycle::init()
{
    setIdentity();
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

QString TestStoreLifecycle::makeProject(const char *name)
{
    const QString file = path(name);
    ObjectDataBase store;
    store.createNewDataBase();
    store.setGeneralSetting(QStringLiteral("line0type"), QStringLiteral("1"));
    store.addIndex(0, 0x2000, {.name = QStringLiteral("first")});
    store.addSubIndex(0, 0x2000, 0, sub(QStringLiteral("first"), QStringLiteral("7")));
    if (!store.saveDatabaseAsSql(file))
        qFatal("%s", qPrintable(store.lastErrorText()));
    return file;
}

void TestStoreLifecycle::createsWorkingCopy()
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
        QCOMPARE(one.getMiscSetting(QStringLiteral("DatabaseVersion")), QStringLiteral("107"));
        QCOMPARE(one.getMiscSetting(QStringLiteral("CreateToolName")),
                 QStringLiteral("CANopen Quillforge"));
        files = one.workingFiles() + two.workingFiles();
        QCOMPARE(QSet<QString>(files.begin(), files.end()).size(), 2);
        for (const QString &file : files)
            QVERIFY2(QFileInfo(file).fileName().startsWith(QLatin1String("vxedatatemp_")),
                     qPrintable(file));
    }
    for (const QString &file : files)
        QVERIFY(!QFile::exists(file));
}

void TestStoreLifecycle::savesNewFileAndBackup()
{
    const QString file = makeProject("a.vxmp");
    QVERIFY(!QFile::exists(file + QLatin1String(".bak")));
    const QByteArray first = contentOf(file);
    ObjectDataBase store;
    QVERIFY(store.openDataBase(file));
    QCOMPARE(store.projectPath(), file);
    store.setIndexName(0, 0x2000, QStringLiteral("second"));
    QVERIFY(store.saveDatabase());
    QCOMPARE(contentOf(file + QLatin1String(".bak")), first);
    QVERIFY(store.saveDatabase(path("b.vxmp")));
    QCOMPARE(store.projectPath(), path("b.vxmp"));

    ObjectDataBase again;
    QVERIFY(again.openDataBase(path("b.vxmp")));
    QVERIFY(again.lastErrorText().isEmpty());
    QVERIFY(!again.wasExternallyModified());
    QCOMPARE(again.getIndexName(0, 0x2000), QStringLiteral("second"));
    QCOMPARE(again.getMiscSetting(QStringLiteral("FileHash")).size(), 64);
    QCOMPARE(again.getMiscSetting(QStringLiteral("SaveToolVersion")), QStringLiteral("4.3.3"));
}

void TestStoreLifecycle::opensWithoutTouchingTheFile()
{
    const QString file = makeProject("a.vxmp");
    runOn(file, {QStringLiteral("delete from DescriptionSettings"),
                 QStringLiteral("drop table UDSSettings0")});
    const QByteArray before = contentOf(file);
    ObjectDataBase store;
    QVERIFY(store.openDataBase(file));
    QCOMPARE(store.getDescriptionSetting(QStringLiteral("OrderCode")),
             QStringLiteral("0815-BUY-ME"));
    QCOMPARE(contentOf(file), before);
}

void TestStoreLifecycle::refusesUnusableFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("hasText");
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("text") << QByteArray("[General]\nkey=value\n").repeated(500) << true;
    QTest::newRow("zeros") << QByteArray(100000, '\0') << true;
    const QString file = [] {
        QTemporaryDir dir;
        const QString name = dir.filePath(QStringLiteral("p.vxmp"));
        ObjectDataBase store;
        store.createNewDataBase();
        for (int i = 0; i < 300; ++i) {
            store.addIndex(0, quint16(0x2000 + i), {.name = QStringLiteral("object %1").arg(i)});
            store.addSubIndex(0, quint16(0x2000 + i), 0, sub(QStringLiteral("object %1").arg(i)));
        }
        store.saveDatabaseAsSql(name);
        return QString::fromLatin1(contentOf(name).toBase64());
    }();
    const QByteArray good = QByteArray::fromBase64(file.toLatin1());
    QTest::newRow("truncated early") << good.left(5000) << true;
    QTest::newRow("truncated late") << good.left(good.size() * 3 / 4) << true;
    QByteArray damaged = good;
    damaged.replace(good.size() / 2, 6000, QByteArray(6000, '\x5A'));
    QTest::newRow("damaged") << damaged << true;
    // Only the entries of an index: every table can still be read.
    QByteArray wrongIndex = good;
    constexpr int pageSize = 4096;
    constexpr char indexLeaf = 10;
    for (qsizetype page = pageSize; page < wrongIndex.size(); page += pageSize) {
        if (wrongIndex.at(page) == indexLeaf && wrongIndex.at(page + 4) > 10)
            wrongIndex[page + pageSize - 1] = char(wrongIndex.at(page + pageSize - 1) ^ 1);
    }
    QTest::newRow("damaged index") << wrongIndex << true;
}

void TestStoreLifecycle::refusesUnusableFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, hasText);
    const QString file = path("broken.vxmp");
    QFile f(file);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(content);
    f.close();
    ObjectDataBase store;
    QVERIFY(!store.openDataBase(file));
    QCOMPARE(!store.lastErrorText().isEmpty(), hasText);
    QCOMPARE(contentOf(file), content);
}

void TestStoreLifecycle::refusalKeepsTheOpenProject()
{
    ObjectDataBase store;
    QVERIFY(store.openDataBase(makeProject("a.vxmp")));
    store.setIndexName(0, 0x2000, QStringLiteral("edited"));
    runOn(path("foreign.vxmp"), {QStringLiteral("create table other (x)")});
    QVERIFY(!store.openDataBase(path("foreign.vxmp")));
    QVERIFY(store.lastErrorText().isEmpty());
    for (const QString &bad : {path("missing.vxmp"), m_dir->path()}) {
        QVERIFY(!store.openDataBase(bad));
        QVERIFY2(store.lastErrorText().startsWith(QLatin1String("Error detected: ") + bad),
                 qPrintable(store.lastErrorText()));
    }
    QVERIFY(!store.openDataBase(QString()));
    store.setBlockUpdates(true);
    QVERIFY(!store.createNewDataBase());
    store.setBlockUpdates(false);
    QCOMPARE(store.projectPath(), path("a.vxmp"));
    QCOMPARE(store.getIndexName(0, 0x2000), QStringLiteral("edited"));
    QVERIFY(store.saveDatabase());
}

void TestStoreLifecycle::readOnlyFileOpensButIsNotSavedOver()
{
    const QString file = makeProject("a.vxmp");
    {
        ObjectDataBase store;
        QVERIFY(store.openDataBase(file));
        QVERIFY(store.saveDatabase());
    }
    const QString backup = file + QLatin1String(".bak");
    const QByteArray content = contentOf(file);
    const QByteArray backupContent = contentOf(backup);
    QVERIFY(QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadUser));
    ObjectDataBase store;
    QVERIFY(store.openDataBase(file));
    store.setIndexName(0, 0x2000, QStringLiteral("edited"));
    QVERIFY(!store.saveDatabase());
    QVERIFY(store.lastErrorText().contains(QLatin1String("read-only")));
    QCOMPARE(contentOf(file), content);
    QCOMPARE(contentOf(backup), backupContent);
    QVERIFY(store.saveDatabase(path("b.vxmp")));
}

void TestStoreLifecycle::refusesTargets()
{
    ObjectDataBase store;
    QVERIFY(store.createNewDataBase());
    for (const QString &target :
         {QString(), m_dir->path(), path("no/such/folder.vxmp"), path("no/such/folder.vxmt")}) {
        QVERIFY2(!store.saveDatabase(target), qPrintable(target));
        QVERIFY(!store.lastErrorText().isEmpty());
    }
    QVERIFY(store.projectPath().isEmpty());
}

void TestStoreLifecycle::fullTargetKeepsTheOldProject()
{
#ifdef Q_OS_LINUX
    const QString folder = path("small");
    QDir().mkpath(folder);
    if (geteuid() != 0 || mount("tmpfs", qPrintable(folder), "tmpfs", 0, "size=300k") != 0)
        QSKIP("needs the right to mount a small file system");
    const QString file = folder + QLatin1String("/a.vxmp");
    ObjectDataBase store;
    QVERIFY(store.createNewDataBase());
    const bool saved = store.saveDatabase(file);
    for (int i = 0; i < 2000; ++i)
        store.addIndex(0, quint16(0x2000 + i), {.name = QString(300, u'n') + QString::number(i)});
    const bool savedOver = store.saveDatabase(file);
    const QString error = store.lastErrorText();
    ObjectDataBase other;
    const bool opened = other.openDataBase(file);
    const int objects = int(other.getIndices(0).size());
    const QStringList left = QDir(folder).entryList(QDir::Files | QDir::Hidden);
    // The folder takes no new file, and the disk has no room to write over the one that is there.
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner);
    const QByteArray content = contentOf(file);
    const bool savedInPlace = store.saveDatabase(file);
    const bool isUntouched = contentOf(file) == content;
    for (int i = 0; i < 2000; ++i)
        store.deleteIndex(0, quint16(0x2000 + i));
    store.purgeStrings();
    store.executeSql(QStringLiteral("VACUUM"));
    const bool smallerFits = store.saveDatabase(file);
    umount(qPrintable(folder));
    QVERIFY(saved && opened);
    QVERIFY(!savedOver && !savedInPlace);
    QVERIFY2(error.startsWith(file), qPrintable(error));
    QCOMPARE(objects, 0);
    QCOMPARE(left, QStringList(QStringLiteral("a.vxmp")));
    QVERIFY(isUntouched && smallerFits);
    QVERIFY(store.saveDatabase(path("elsewhere.vxmp")));
#endif
}

void TestStoreLifecycle::refusesHostileFiles_data()
{
    QTest::addColumn<QStringList>("statements");
    QTest::addColumn<QString>("word");
    QTest::newRow("endless view")
        << QStringList{"drop table Nodes",
                       "create view Nodes as with recursive n(i) as (select 0 union all select i+1 "
                       "from n) select i as nodeId from n"}
        << "view";
    QTest::newRow("trigger") << QStringList("create trigger t after update on MiscSettings begin "
                                            "delete from SubObjects0; end")
                             << "trigger";
    QTest::newRow("computed column")
        << QStringList("create table X (a, b as (hex(zeroblob(100000000))))") << "computed";
    QTest::newRow("line") << QStringList("insert into Nodes (nodeId) values (300)") << "line";
    QStringList tables;
    for (int i = 0; i < 5000; ++i)
        tables.append(QStringLiteral("create table t%1 (a)").arg(i));
    QTest::newRow("tables") << QStringList{"PRAGMA synchronous=OFF", "begin"} + tables +
                                   QStringList("commit")
                            << "tables";
}

void TestStoreLifecycle::refusesHostileFiles()
{
    QFETCH(QStringList, statements);
    QFETCH(QString, word);
    const QString file = makeProject("hostile.vxmp");
    runOn(file, statements);
    ObjectDataBase store;
    QVERIFY(!store.openDataBase(file));
    QVERIFY2(store.lastErrorText().contains(word), qPrintable(store.lastErrorText()));
}

/// What a reader would wait for, or never come to the end of, and a writer would replace.
void TestStoreLifecycle::refusesWhatIsNoOrdinaryFile()
{
#ifdef Q_OS_LINUX
    const QString pipe = path("pipe.vxmt");
    QCOMPARE(mkfifo(qPrintable(pipe), 0666), 0);
    QVERIFY(QFile::link(pipe, path("link.vxmp")));
    QVERIFY(QFile::link(QStringLiteral("/dev/zero"), path("device.vxmt")));
    ObjectDataBase store;
    QVERIFY(store.createNewDataBase());
    for (const QString &strange : {pipe, path("link.vxmp"), path("device.vxmt")}) {
        QVERIFY(!store.openDataBase(strange));
        QVERIFY2(store.lastErrorText().contains(u"no ordinary file"),
                 qPrintable(store.lastErrorText()));
        QVERIFY(!store.saveDatabase(strange));
        QVERIFY(!QFileInfo(strange).isFile());
    }
#endif
}

void TestStoreLifecycle::savedFileStaysWhatItWas()
{
    const QString file = makeProject("a.vxmp");
    const QByteArray users = contentOf(file);
    const QString link = path("link.vxmp");
    QVERIFY(QFile::link(file, link));
    QVERIFY(QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup |
                                            QFile::ExeOther));
    const QFile::Permissions permissions = QFile::permissions(file);
    ObjectDataBase store;
    QVERIFY(store.openDataBase(link));
    store.setBackupRule(ObjectDataBase::BackupRule::FirstSave);
    for (const char *name : {"once", "twice"}) {
        store.setIndexName(0, 0x2000, QString::fromLatin1(name));
        QVERIFY2(store.saveDatabase(), qPrintable(store.lastErrorText()));
    }
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(QFile::permissions(file), permissions);
    QCOMPARE(contentOf(file + QLatin1String(".bak")), users);
    ObjectDataBase other;
    QVERIFY(other.openDataBase(file));
    QCOMPARE(other.getIndexName(0, 0x2000), QStringLiteral("twice"));
}

void TestStoreLifecycle::brokenWorkingCopyIsNotSaved()
{
    const QString file = makeProject("a.vxmp");
    const QByteArray users = contentOf(file);
    ObjectDataBase store;
    QVERIFY(store.openDataBase(file));
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
    QCOMPARE(contentOf(file + QLatin1String(".bak")), users);

    // Damage that no statement has met yet.
    QFile working(store.workingFiles().constLast());
    QVERIFY(working.open(QIODevice::ReadWrite) && working.seek(working.size() / 2));
    working.write(QByteArray(8192, '\x5A'));
    working.close();
    QVERIFY(!store.saveDatabase() && store.isDamaged());
    ObjectDataBase other;
    QVERIFY(other.openDataBase(file));
}

void TestStoreLifecycle::foreignChangeIsNoticedOnce()
{
    const QString file = makeProject("a.vxmp");
    runOn(file, {QStringLiteral("update SubObjects0 set defaultvalue='8'")});
    {
        ObjectDataBase store;
        QVERIFY(store.openDataBase(file));
        QVERIFY(store.wasExternallyModified());
        QCOMPARE(store.getMiscSetting(QStringLiteral("TamperLog")).count(u';'), 0);
        QVERIFY(store.saveDatabase());
    }
    {
        ObjectDataBase store;
        QVERIFY(store.openDataBase(file));
        QVERIFY(!store.wasExternallyModified());
        QVERIFY(!store.getMiscSetting(QStringLiteral("TamperLog")).isEmpty());
    }
    runOn(file, {QStringLiteral("update SubObjects0 set defaultvalue='9'")});
    {
        ObjectDataBase store;
        QVERIFY(store.openDataBase(file));
        QCOMPARE(store.getMiscSetting(QStringLiteral("TamperLog")).count(u';'), 1);
    }
    runOn(file, {QStringLiteral("delete from MiscSettings where item='FileHash'")});
    ObjectDataBase store;
    QVERIFY(store.openDataBase(file));
    QVERIFY(!store.wasExternallyModified());
}

void TestStoreLifecycle::hashIsIndependentOfLayout()
{
    ObjectDataBase store;
    QVERIFY(store.openDataBase(makeProject("a.vxmp")));
    const QString before = store.contentHash();
    QVERIFY(store.executeSql(QStringLiteral("VACUUM")));
    QCOMPARE(store.contentHash(), before);
    // Neighbouring values must not run into each other, nor a text into the next column.
    store.setSubIndexDefaultValue(0, 0x2000, 0, QStringLiteral("7|"));
    const QString one = store.contentHash();
    QVERIFY(one != before);
    ObjectDataBase::SUBINDEX_DATA_T data;
    QVERIFY(store.getSubIndexData(0, 0x2000, 0, data));
    data.metadata.insert(QStringLiteral("key"), QStringLiteral("value"));
    store.addSubIndex(0, 0x2000, 0, data);
    QVERIFY(store.contentHash() != one);

    // The hash by its definition, over the store's own file.
    QVERIFY(store.saveDatabase());
    QCryptographicHash hash(QCryptographicHash::Sha256);
    const QStringList tables =
        runOn(path("a.vxmp"),
              {QStringLiteral("SELECT name FROM sqlite_master WHERE type='table' ORDER BY name")});
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("hash"));
    db.setDatabaseName(path("a.vxmp"));
    QVERIFY(db.open());
    for (const QString &table : tables) {
        hash.addData(table.toUtf8() + '\n');
        QSqlQuery query(db);
        const QString where = table == QLatin1String("MiscSettings")
                                  ? QStringLiteral(" WHERE item NOT IN ('FileHash','TamperLog')")
                                  : QString();
        QVERIFY(
            query.exec(QStringLiteral("SELECT * FROM \"%1\"%2 ORDER BY rowid").arg(table, where)));
        while (query.next()) {
            for (int column = 0; query.value(column).isValid(); ++column)
                hash.addData(query.value(column).toString().toUtf8() + '|');
            hash.addData(QByteArrayView("\n"));
        }
    }
    db.close();
    QCOMPARE(store.getMiscSetting(QStringLiteral("FileHash")),
             QString::fromLatin1(hash.result().toHex()));
}

void TestStoreLifecycle::referenceDatabaseMarksItsRows()
{
    ObjectDataBase store;
    QVERIFY(store.openDataBase(makeProject("a.vxmp")));
    ObjectDataBase::SUBINDEX_DATA_T data = sub(QStringLiteral("x"));
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

void TestStoreLifecycle::purgeDropsUnusedTexts()
{
    const QString file = makeProject("a.vxmp");
    ObjectDataBase store;
    QVERIFY(store.openDataBase(file));
    store.addIndex(0, 0x3000, {.name = QStringLiteral("gone"), .description = QStringLiteral("d")});
    store.addCANID(0, 5, {.id = 5, .name = QStringLiteral("message"), .direction = 85});
    store.deleteIndex(0, 0x3000);
    QVERIFY(store.saveDatabase());
    const QStringList texts = runOn(file, {QStringLiteral("select string from Strings")});
    QVERIFY(!texts.contains(QLatin1String("gone")));
    QVERIFY(texts.contains(QLatin1String("message")));
    // A purged text that is used again reads as it was written, now and after the next open.
    store.addIndex(0, 0x3000, {.name = QStringLiteral("gone")});
    QCOMPARE(store.getIndexName(0, 0x3000), QStringLiteral("gone"));
    QVERIFY(store.saveDatabase());
    ObjectDataBase other;
    QVERIFY(other.openDataBase(file));
    QCOMPARE(other.getIndexName(0, 0x3000), QStringLiteral("gone"));
}

void TestStoreLifecycle::scratchLinesAreNotSaved()
{
    ObjectDataBase store;
    QVERIFY(store.openDataBase(makeProject("a.vxmp")));
    for (const quint8 line : {ObjectDataBase::comparisonLine, ObjectDataBase::stagingLine}) {
        QVERIFY(store.addNode(line, {}));
        QVERIFY(store.addIndex(line, 0x1000, {.name = QStringLiteral("scratch")}));
    }
    QVERIFY(store.saveDatabase());
    QCOMPARE(store.getLines(), QList<quint8>{0});
    const QStringList tables = runOn(
        path("a.vxmp"), {QStringLiteral("select name from sqlite_master where name like '%25_'")});
    QVERIFY2(tables.isEmpty(), qPrintable(tables.join(u',')));
    const QStringList keys = runOn(
        path("a.vxmp"), {QStringLiteral("select item from DescriptionSettings where item like "
                                        "'%\\_25_' escape '\\' and item not like 'Baud%'")});
    QVERIFY2(keys.isEmpty(), qPrintable(keys.join(u',')));
}

void TestStoreLifecycle::editions_data()
{
    QTest::addColumn<QByteArray>("savedBy");
    QTest::addColumn<QByteArray>("openedBy");
    QTest::addColumn<QString>("type");
    QTest::addColumn<bool>("allowed");
    const QByteArray canopen = "CANopen Quillforge";
    const QByteArray j1939 = "J1939 Quillforge";
    QTest::newRow("own") << canopen << canopen << "5" << true;
    QTest::newRow("canopen refuses j1939") << j1939 << canopen << "2" << false;
    QTest::newRow("canopen takes its own type") << j1939 << canopen << "1" << true;
    QTest::newRow("canopen refuses both") << j1939 << canopen << "5" << false;
    QTest::newRow("j1939 refuses canopen") << canopen << j1939 << "1" << false;
    QTest::newRow("type 6 marks nothing") << canopen << j1939 << "6" << true;
    QTest::newRow("can edition takes all")
        << canopen << QByteArray("CAN Quillforge") << "5" << true;
    QTest::newRow("energybus takes all")
        << j1939 << QByteArray("EnergyBus Marlwright") << "2" << true;
}

void TestStoreLifecycle::editions()
{
    QFETCH(QByteArray, savedBy);
    QFETCH(QByteArray, openedBy);
    QFETCH(QString, type);
    QFETCH(bool, allowed);
    setIdentity(savedBy);
    ObjectDataBase store;
    QVERIFY(store.createNewDataBase());
    store.setGeneralSetting(QStringLiteral("line0type"), type);
    QVERIFY(store.saveDatabase(path("a.vxmp")));
    setIdentity(openedBy);
    ObjectDataBase other;
    QSignalSpy wrong(&other, &ObjectDataBase::wrongTool);
    QCOMPARE(other.openDataBase(path("a.vxmp")), allowed);
    QCOMPARE(wrong.size(), allowed ? 0 : 1);
    QCOMPARE(other.lastErrorText(),
             allowed ? QString() : QStringLiteral("File was not created with this tool."));
}

void TestStoreLifecycle::textProjects()
{
    ObjectDataBase store;
    QVERIFY(store.openDataBase(makeProject("a.vxmp")));
    QVERIFY(store.addNode(1, {}));
    QVERIFY2(store.saveDatabase(path("a.vxmt")), qPrintable(store.lastErrorText()));
    QCOMPARE(store.projectPath(), path("a.vxmt"));
    const QByteArray first = contentOf(path("a.vxmt"));
    ObjectDataBase other;
    QVERIFY(other.openDataBase(path("a.vxmt")));
    QVERIFY(!other.wasExternallyModified());
    QCOMPARE(other.getLines(), (QList<quint8>{0, 1}));
    QCOMPARE(other.getIndexName(0, 0x2000), QStringLiteral("first"));
    QVERIFY(other.saveDatabase());
    QCOMPARE(contentOf(path("a.vxmt")), first);
    QFile f(path("a.vxmt"));
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(QByteArray(first).replace("first", "other"));
    f.close();
    QVERIFY(other.openDataBase(path("a.vxmt")));
    QVERIFY(other.wasExternallyModified());
}

void TestStoreLifecycle::textProjectThatIsNone()
{
    ObjectDataBase store;
    QVERIFY(store.openDataBase(makeProject("a.vxmp")));
    store.setIndexName(0, 0x2000, QStringLiteral("edited"));
    QVERIFY(!store.openDataBase(path("missing.vxmt")));
    QVERIFY(store.lastErrorText().startsWith(path("missing.vxmt")));
    QCOMPARE(store.projectPath(), path("a.vxmp"));
    QCOMPARE(store.getIndexName(0, 0x2000), QStringLiteral("edited"));
}

void TestStoreLifecycle::snapshots()
{
    ObjectDataBase store;
    QVERIFY(store.openDataBase(makeProject("a.vxmp")));
    store.cacheAllSubs(0);
    const QString before = store.contentHash();
    const QString snapshot = path("snap it's.db");
    QVERIFY(store.takeSnapshot(snapshot));
    const QByteArray content = contentOf(snapshot);
    store.setIndexName(0, 0x2000, QStringLiteral("later"));
    store.addSubIndex(0, 0x2000, 0, sub(QStringLiteral("later"), QStringLiteral("99")));
    QSignalSpy changes(&store, &ObjectDataBase::updateNotify);
    QVERIFY(store.restoreSnapshot(snapshot));
    QCOMPARE(changes.size(), 1);
    QCOMPARE(store.contentHash(), before);
    QCOMPARE(store.getIndexName(0, 0x2000), QStringLiteral("first"));
    QCOMPARE(store.getSubIndexDefaultValue(0, 0x2000, 0), QStringLiteral("7"));
    QVERIFY(store.addIndex(0, 0x2001, {.name = QStringLiteral("new")}));
    QCOMPARE(contentOf(snapshot), content);
    QVERIFY(!store.restoreSnapshot(path("none.db")));
    QCOMPARE(store.lastErrorText(),
             QStringLiteral("snapshot '%1' does not exist").arg(path("none.db")));
    QCOMPARE(store.getIndexName(0, 0x2001), QStringLiteral("new"));
}

void TestStoreLifecycle::killedSaverLosesNothing()
{
    const QString file = path("a.vxmp");
    ObjectDataBase store;
    QVERIFY(store.createNewDataBase());
    store.setGeneralSetting(QStringLiteral("line0type"), QStringLiteral("1"));
    for (int i = 0; i < 60; ++i)
        store.addIndex(0, quint16(0x2000 + i), {.name = QStringLiteral("0")});
    QVERIFY(store.saveDatabase(file));

    for (int round = 0; round < 25; ++round) {
        QProcess saver;
        saver.start(QCoreApplication::applicationDirPath() + QLatin1String("/store_saver"), {file});
        QVERIFY(saver.waitForStarted());
        while (!saver.readAllStandardOutput().contains("ready"))
            QVERIFY(saver.waitForReadyRead(20000));
        QThread::usleep(QRandomGenerator::global()->bounded(60000));
        saver.kill();
        QVERIFY(saver.waitForFinished());

        ObjectDataBase found;
        const bool whole = found.openDataBase(file) && !found.wasExternallyModified();
        if (!whole) {
            QVERIFY2(found.openDataBase(file + QLatin1String(".bak")),
                     qPrintable(found.lastErrorText()));
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
             (QStringList{QStringLiteral("a.vxmp"), QStringLiteral("a.vxmp.bak")}));
}

QTEST_GUILESS_MAIN(TestStoreLifecycle)
#include "tst_store_lifecycle.moc"
