#include "nastytexts.h"

#include "store/databasetextconverter.h"
#include "store/objectdatabase.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#endif

namespace {

using Store = ObjectDataBase;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

Store::SUBINDEX_DATA_T subIndex(const QString &text)
{
    Store::SUBINDEX_DATA_T sub;
    sub.name = sub.description = sub.denotation = text;
    sub.datatype = 9;
    sub.defaultvalue = sub.currentvalue = sub.varname = text;
    sub.lowlimit = sub.uplimit = sub.allowedaccesstypes = text;
    sub.accesstype = QStringLiteral("rww");
    sub.pdomapping = PDOMapping::TPDO;
    sub.size = 4000000000U;
    sub.defaultineds = sub.limitineds = sub.refuseread = sub.refusewrite = true;
    sub.dcfcomponent = sub.cyclicread = sub.changedbyuser = sub.sharedlines = true;
    sub.managedbytsk = sub.nvstorage = true;
    sub.implementation = 5;
    sub.category = 2;
    sub.writedefaulttoeds = 2;
    sub.wizardsource = 454;
    sub.signalid = 77;
    sub.metadata = {{QStringLiteral("key"), text}, {QStringLiteral("other"), QString()}};
    return sub;
}

/// A project with the text in every place that can hold one, on lines 0 and 10.
void fillProject(Store &store, const QString &text)
{
    QVERIFY(store.createNewDataBase());
    Store::NODE_DATA_T node;
    node.name = node.edspath = node.prefix = node.outputpath = node.iconpath = text;
    node.tpdocnt = 4;
    node.ismaster = node.excludegeneration = true;
    node.generatedcf = false;
    QVERIFY(store.addNode(10, node));
    store.setNodeSqlValue(QStringLiteral("10"), QStringLiteral("lssslave"), 1);
    store.setNodeSqlValue(QStringLiteral("10"), QStringLiteral("multilinedata"), 70000);
    store.setGeneralSetting(QStringLiteral("plain"), text);
    store.setGeneralSetting(text, QStringLiteral("value"));
    store.setGeneralSetting(QStringLiteral("/a//b/ c\\d%41=ü;[e]"), text);
    store.setMiscSetting(QStringLiteral("note"), text);
    store.setJ1939Setting(QStringLiteral("note"), text);
    store.setDescriptionSetting(QStringLiteral("VendorName"), text);
    store.setDescriptionLine(10);
    store.setDescriptionSetting(QStringLiteral("Comment"), text);
    for (const quint8 line : {0, 10}) {
        Store::INDEX_DATA_T object;
        object.name = object.description = object.deviceclass = text;
        object.datatype = 9;
        object.objecttype = 9;
        object.category = 0;
        object.fwsupported = true;
        object.metadata = {{text, text}, {QStringLiteral("a/b"), text}, {QString(), text}};
        QVERIFY(store.addIndex(line, 0x2000, object));
        QVERIFY(store.addIndex(line, 0xFFFF, Store::INDEX_DATA_T()));
        QVERIFY(store.addSubIndex(line, 0x2000, 0, Store::SUBINDEX_DATA_T()));
        QVERIFY(store.addSubIndex(line, 0x2000, 255, subIndex(text)));
        for (const quint8 direction : {Store::receive, Store::transmit}) {
            Store::PGN pgn;
            pgn.name = pgn.desc = text;
            pgn.priority = 6;
            pgn.cycleTime = 1000;
            pgn.direction = direction;
            pgn.fdDataId = 0xFFFFFFFF;
            QVERIFY(store.addPGN(line, 0x1FEF2, pgn));
            Store::SPN spn;
            spn.name = spn.defaultValue = spn.varName = text;
            spn.pos = 1;
            QVERIFY(store.addSPN(line, 0x1FEF2, direction, 110, spn));
            spn.pos = 0;
            QVERIFY(store.addSPN(line, 0x1FEF2, direction, 520192, spn));
        }
        store.setUDSServiceSessions(line, UDS::SID::RoutineControl, text);
        store.setUDSServiceUserLevels(line, UDS::SID::RoutineControl, text);
        store.setUDSAuthentication(line, UDS::SID::RoutineControl, text);
    }
}

} // namespace

class TestDatabaseTextConverter : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_path = m_folder.filePath(QStringLiteral("p%1.vxmt").arg(++m_count)); }

    void roundTrip_data() { NastyTexts::addRows(); }
    void roundTrip();
    void oldRows();
    void missingColumns();
    void linesOfTheFile();
    void leftOutTables();
    void rewrittenFile();
    void rowsWithoutOwnKeys();
    void unreadable_data();
    void unreadable();
    void cutOff();
    void unwritable_data();
    void unwritable();
    void diskFull();
    void unknownParts();
    void readableBySettings();

private:
    [[nodiscard]] QString write(Store &store)
    {
        DatabaseTextConverter converter(store, m_path);
        return converter.convertSqlToText() ? QString() : converter.errorText();
    }
    [[nodiscard]] QString read(Store &store)
    {
        if (!store.createNewDataBase())
            return QStringLiteral("no database");
        DatabaseTextConverter converter(store, m_path);
        return converter.convertTextToSql() ? QString() : converter.errorText();
    }

    QTemporaryDir m_folder;
    QString m_path;
    int m_count = 0;
};

void TestDatabaseTextConverter::roundTrip()
{
    QFETCH(QString, text);
    Store store;
    fillProject(store, text);
    QCOMPARE(write(store), QString());
    const QByteArray first = contentOf(m_path);
    Store copy;
    QCOMPARE(read(copy), QString());

    for (const quint8 line : {0, 10}) {
        Store::INDEX_DATA_T object;
        QVERIFY(copy.getIndexData(line, 0x2000, object));
        QCOMPARE(object.name, text);
        QCOMPARE(object.deviceclass, text);
        QCOMPARE(object.metadata.value(text), text);
        QCOMPARE(object.metadata.value(QStringLiteral("a/b")), text);
        QVERIFY(object.fwsupported);
        Store::SUBINDEX_DATA_T sub;
        QVERIFY(copy.getSubIndexData(line, 0x2000, 255, sub));
        QCOMPARE(sub.denotation, text);
        QCOMPARE(sub.defaultvalue, text);
        QCOMPARE(sub.uplimit, text);
        QCOMPARE(sub.size, 4000000000U);
        QCOMPARE(sub.pdomapping, PDOMapping(PDOMapping::TPDO));
        QCOMPARE(sub.metadata, subIndex(text).metadata);
        QVERIFY(sub.changedbyuser && sub.nvstorage && sub.refusewrite);
        const QList<quint32> rows = {520192, 110};
        QCOMPARE(copy.getSPNList(line, 0x1FEF2, Store::receive), rows);
        Store::SPN spn;
        QVERIFY(copy.getSPN(line, 0x1FEF2, Store::transmit, 110, spn));
        QCOMPARE(spn.varName, text);
        Store::PGN pgn;
        QVERIFY(copy.getPGN(line, 0x1FEF2, Store::receive, pgn));
        QCOMPARE(pgn.desc, text);
        QCOMPARE(pgn.fdDataId, 0xFFFFFFFF);
        QCOMPARE(copy.getUDSServiceUserLevels(line, UDS::SID::RoutineControl), text);
    }
    QCOMPARE(copy.getGeneralSetting(QStringLiteral("/a//b/ c\\d%41=ü;[e]")), text);
    QCOMPARE(copy.getJ1939Setting(QStringLiteral("note")), text);
    Store::NODE_DATA_T node;
    QVERIFY(copy.getNodeData(10, node));
    QCOMPARE(node.prefix, text);
    QCOMPARE(node.multilinedata, 70000U);
    QVERIFY(node.lssslave && !node.generatedcf);
    copy.setDescriptionLine(10);
    QCOMPARE(copy.getDescriptionSetting(QStringLiteral("Comment")), text);

    QCOMPARE(write(copy), QString());
    QCOMPARE(contentOf(m_path), first);
    Store other;
    QCOMPARE(read(other), QString());
    QCOMPARE(other.contentHash(), copy.contentHash());
}

/// Rows of old projects hold NULL where columns were added.
void TestDatabaseTextConverter::oldRows()
{
    Store store;
    fillProject(store, QStringLiteral("text"));
    QVERIFY(store.executeSql(QStringLiteral(
        "update SubObjects0 set defaultvalue=NULL, size=NULL, name=NULL, metadata=NULL")));
    QVERIFY(store.executeSql(QStringLiteral("update Nodes set lssslave=NULL, name=NULL")));
    QVERIFY(store.executeSql(QStringLiteral("insert into Connections values(NULL,1,2,3,4,5,6)")));
    QVERIFY(store.executeSql(QStringLiteral("insert into GeneralSettings values('null',NULL)")));
    QVERIFY(store.executeSql(QStringLiteral("insert into GeneralSettings values(NULL,'a')")));
    QVERIFY(store.executeSql(QStringLiteral("insert into GeneralSettings values(NULL,'b')")));
    QCOMPARE(write(store), QString());
    QVERIFY(store.executeSql(QStringLiteral(
        "select count(*) from SubObjects0 where defaultvalue='' and size=0 and name=0")));
    QVERIFY(store.statementResults().value(0).startsWith(u'2'));
    QVERIFY(store.executeSql(QStringLiteral("select count(*) from Connections where prodnode=0")));
    QVERIFY(store.statementResults().value(0).startsWith(u'1'));
    Store copy;
    QCOMPARE(read(copy), QString());
    Store::SUBINDEX_DATA_T sub;
    QVERIFY(copy.getSubIndexData(0, 0x2000, 255, sub));
    QCOMPARE(sub.name + sub.defaultvalue, QString());
    QCOMPARE(sub.denotation, QStringLiteral("text"));
    QVERIFY(copy.generalSettingExists(QStringLiteral("null")));
}

/// What a person leaves out of a text has the defaults of new rows.
void TestDatabaseTextConverter::missingColumns()
{
    writeFile(m_path, "[Nodes]\n0\\name=Line\n[Objects0]\n0x1000\\name=Device type\n"
                      "[SubObjects0]\n0x1000\\0\\DATATYPE=0x7\n[SPNs0]\n65226\\1213\\85\\name=s\n");
    Store store;
    QCOMPARE(read(store), QString());
    Store::NODE_DATA_T node;
    QVERIFY(store.getNodeData(0, node));
    QCOMPARE(node.name, QStringLiteral("Line"));
    QCOMPARE(node.prefix, QStringLiteral("_"));
    QVERIFY(node.generatedcf);
    Store::SUBINDEX_DATA_T sub;
    QVERIFY(store.getSubIndexData(0, 0x1000, 0, sub));
    const Store::SUBINDEX_DATA_T fresh;
    QCOMPARE(sub.datatype, 7);
    QCOMPARE(sub.accesstype, fresh.accesstype);
    QCOMPARE(sub.allowedaccesstypes, fresh.allowedaccesstypes);
    QCOMPARE(sub.category, fresh.category);
    Store::SPN spn;
    QVERIFY(store.getSPN(0, 65226, Store::transmit, 1213, spn));
    QCOMPARE(spn.implementation, Store::SPN().implementation);
    QVERIFY(store.getUDSServiceActive(0, UDS::SID::EcuReset));
    QCOMPARE(store.getDescriptionSetting(QStringLiteral("BaudRate_125")), QStringLiteral("1"));
}

void TestDatabaseTextConverter::linesOfTheFile()
{
    writeFile(m_path, "[Objects3]\n[PGNs200]\n[SubObjects254]\n0x1000\\0\\datatype=7\n"
                      "[Objects007]\n[Objects999]\n[Nodes]\n12\\name=a\n");
    Store store;
    QCOMPARE(read(store), QString());
    QCOMPARE(store.getLines(), QList<quint8>({3, 12, 200}));
    QVERIFY(!store.descriptionSettingExists(QStringLiteral("VendorName")));
    QCOMPARE(write(store), QString());
    Store copy;
    QCOMPARE(read(copy), QString());
    QCOMPARE(copy.getLines(), store.getLines());
}

void TestDatabaseTextConverter::leftOutTables()
{
    Store store;
    fillProject(store, QStringLiteral("text"));
    for (const quint8 line : {Store::comparisonLine, Store::stagingLine}) {
        QVERIFY(store.addNode(line, Store::NODE_DATA_T()));
        QVERIFY(store.addIndex(line, 0x3000, Store::INDEX_DATA_T()));
    }
    Store::CANID message;
    message.direction = Store::receive;
    QVERIFY(store.addCANID(0, 0x123, message));
    store.setEnergyBusSetting(QStringLiteral("device_cnt"), QStringLiteral("1"));
    QVERIFY(store.executeSql(QStringLiteral("create table Foreign7 (a text)")));
    QVERIFY(store.executeSql(QStringLiteral("create table Objects99999999999 (a text)")));
    QCOMPARE(write(store), QString());
    Store copy;
    QCOMPARE(read(copy), QString());
    QCOMPARE(copy.getLines(), QList<quint8>({0, 10}));
    QVERIFY(copy.getCANIDList(0).isEmpty());
    QVERIFY(copy.getEnergyBusSettingKeys().isEmpty());
    const QByteArray content = contentOf(m_path);
    for (const char *name : {"254]", "255]", "CANIDs", "EnergyBus", "Foreign", "Strings"})
        QVERIFY2(!content.contains(name), name);
}

/// A file rewritten with the same size in the same moment must not be read as it was before.
void TestDatabaseTextConverter::rewrittenFile()
{
    for (int i = 0; i < 20; ++i) {
        writeFile(m_path, "[GeneralSettings]\na=" + QByteArray::number(10 + i) + '\n');
        Store store;
        QCOMPARE(read(store), QString());
        QCOMPARE(store.getGeneralSetting(QStringLiteral("a")), QString::number(10 + i));
    }
}

/// The tables of signals have no unique key.
void TestDatabaseTextConverter::rowsWithoutOwnKeys()
{
    Store store;
    fillProject(store, QStringLiteral("text"));
    QVERIFY(store.executeSql(QStringLiteral("insert into SPNs0 select * from SPNs0")));
    QVERIFY(store.executeSql(QStringLiteral("insert into PGNs0 select * from PGNs0")));
    QCOMPARE(write(store), QString());
    const QByteArray first = contentOf(m_path);
    Store copy;
    QCOMPARE(read(copy), QString());
    QCOMPARE(copy.getSPNList(0, 0x1FEF2, Store::receive).size(), 4);
    QCOMPARE(write(copy), QString());
    QCOMPARE(contentOf(m_path), first);
}

void TestDatabaseTextConverter::unreadable_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("where");
    const auto add = [](const char *name, const QByteArray &content, const char *where) {
        QTest::newRow(name) << content << QString::fromLatin1(where);
    };
    add("empty", "", "empty");
    add("only blanks", " \n\n", "no project");
    add("another text", "[Paths]\na=b\n", "no project");
    add("binary", QByteArray("SQLite format 3\0\1\2", 18), "text");
    add("16 bit text", QByteArray("\xFF\xFE[\0N\0", 6), "text");
    add("not UTF-8", "[GeneralSettings]\na=\xE4\xF6\n", "line 2");
    add("key not UTF-8", "[GeneralSettings]\n\xE4=1\n", "line 2");
    add("no assignment", "[GeneralSettings]\na=1\nb\n", "line 3");
    add("open quotes", "[GeneralSettings]\na=\"1\n\n", "line 2");
    add("group twice", "[Objects0]\n[Nodes]\n[Objects0]\n", "line 3");
    add("setting twice", "[MiscSettings]\na=1\na=1\n", "line 3");
    add("row twice", "[Objects0]\n1\\name=\n2\\name=\n1\\category=1\n", "line 4");
    add("column twice", "[Objects0]\n1\\name=a\n1\\name=b\n", "line 3");
    add("column twice, once empty", "[Objects0]\n1\\name=a\n1\\name=\n", "line 3");
    add("metadata twice", "[Objects0]\n1\\metadata\\a=1\n1\\metadata\\a=1\n", "line 3");
    add("other key", "[Objects0]\n0x1000\\objectindex=4097\n", "line 2");
    add("no column", "[SubObjects0]\n0x1000\\name=1\n", "line 2");
    add("bad index", "[Objects0]\nx\\name=1\n", "line 2");
    add("large index", "[Objects0]\n0x10000\\name=1\n", "line 2");
    add("huge index", "[Objects0]\n99999999999999999999\\name=1\n", "line 2");
    add("negative subindex", "[SubObjects0]\n1\\-1\\name=1\n", "line 2");
    add("scratch line", "[Nodes]\n254\\name=1\n", "line 2");
    add("no number", "[Objects0]\n1\\name=\n1\\datatype=text\n", "line 3");
}

void TestDatabaseTextConverter::unreadable()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, where);
    writeFile(m_path, content);
    Store store;
    QVERIFY(store.createNewDataBase());
    const QString before = store.contentHash();
    DatabaseTextConverter converter(store, m_path);
    QVERIFY(!converter.convertTextToSql());
    QVERIFY2(converter.errorText().startsWith(m_path), qPrintable(converter.errorText()));
    QVERIFY2(converter.errorText().contains(where), qPrintable(converter.errorText()));
    QCOMPARE(store.contentHash(), before);
}

/// A saved file, cut at any place, is refused or at least no longer what it was.
void TestDatabaseTextConverter::cutOff()
{
    Store store;
    fillProject(store, QStringLiteral("a; \"b\"\n"));
    store.setMiscSetting(QStringLiteral("FileHash"), QStringLiteral("0123"));
    QCOMPARE(write(store), QString());
    const QByteArray whole = contentOf(m_path);
    const qsizetype last = whole.indexOf("[UDSSettings10]");
    QVERIFY(last > 0);
    Store cut;
    for (qsizetype size = whole.size() - 1; size >= 0; size -= size > last + 2000 ? 67 : 419) {
        writeFile(m_path, whole.first(size));
        const QString error = read(cut);
        const bool marked = whole.first(size).contains("FileHash=0123\n");
        if (size <= last && marked)
            QVERIFY2(!error.isEmpty(), qPrintable(QString::number(size)));
        if (size > last && whole.at(size - 1) != '\n')
            QVERIFY2(!error.isEmpty(), qPrintable(QString::number(size)));
    }
}

void TestDatabaseTextConverter::unwritable_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("folder missing") << QStringLiteral("missing/p.vxmt");
    QTest::newRow("folder") << QStringLiteral("folder");
    QTest::newRow("below a file") << QStringLiteral("readonly.vxmt/p.vxmt");
    QTest::newRow("read-only") << QStringLiteral("readonly.vxmt");
    QTest::newRow("full") << QStringLiteral("/dev/full");
}

void TestDatabaseTextConverter::unwritable()
{
    QFETCH(QString, name);
    if (name.startsWith(u'/') && !QFileInfo::exists(name))
        QSKIP("no such device here");
    QTemporaryDir folder;
    QDir(folder.path()).mkdir(QStringLiteral("folder"));
    const QString readOnly = folder.filePath(QStringLiteral("readonly.vxmt"));
    writeFile(readOnly, "old");
    QFile::setPermissions(readOnly, QFile::ReadOwner);
    m_path = name.startsWith(u'/') ? name : folder.filePath(name);
    Store store;
    fillProject(store, QStringLiteral("text"));
    const QString error = write(store);
    QVERIFY2(error.startsWith(m_path + QLatin1String(": ")), qPrintable(error));
    QCOMPARE(contentOf(readOnly), QByteArray("old"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).size(), 2);
    // What can't be written can't be read either, but for the old file.
    if (name != QLatin1String("readonly.vxmt"))
        QVERIFY(!read(store).isEmpty());
}

/// The limit of a file's size stands for a disk that fills up while the file is written.
void TestDatabaseTextConverter::diskFull()
{
#ifdef Q_OS_UNIX
    Store store;
    fillProject(store, QString(200000, u'x'));
    QCOMPARE(write(store), QString());
    const QByteArray whole = contentOf(m_path);
    store.setGeneralSetting(QStringLiteral("new"), QStringLiteral("1"));
    rlimit old;
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &old), 0);
    for (const rlim_t size : {rlim_t(0), rlim_t(70000), rlim_t(whole.size())}) {
        const rlimit limit = {size, old.rlim_max};
        signal(SIGXFSZ, SIG_IGN);
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
        const QString error = write(store);
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &old), 0);
        QVERIFY2(error.startsWith(m_path), qPrintable(error));
        QVERIFY(contentOf(m_path) == whole);
        QCOMPARE(QDir(m_folder.path()).entryList({QFileInfo(m_path).fileName() + u'*'}).size(), 1);
    }
    QCOMPARE(write(store), QString());
    QVERIFY(contentOf(m_path) != whole);
#else
    QSKIP("no such limit on this system");
#endif
}

/// Files of later versions, and comments, do no harm.
void TestDatabaseTextConverter::unknownParts()
{
    writeFile(m_path, "; by hand\n[Future]\na\\b\\c=1\n[CANIDs0]\n1\\name=x\n[Objects0]\n"
                      "0x1000\\colour=red\n0x1000\\name=a ; note\n0x1000\\style\\x=1\n");
    Store store;
    QCOMPARE(read(store), QString());
    QCOMPARE(store.getIndexName(0, 0x1000), QStringLiteral("a"));
    store.setBlockUpdates(true);
    DatabaseTextConverter converter(store, m_path);
    QVERIFY(!converter.convertTextToSql());
    store.setBlockUpdates(false);
}

void TestDatabaseTextConverter::readableBySettings()
{
    Store store;
    fillProject(store, QStringLiteral("it's @ \"1\", ü\n"));
    QCOMPARE(write(store), QString());
    QSettings settings(m_path, QSettings::IniFormat);
    const auto text = [&](const char *key) {
        return settings.value(QLatin1String(key)).toString();
    };
    QCOMPARE(text("Nodes/10/prefix"), QStringLiteral("it's @ \"1\", ü\n"));
    QCOMPARE(text("GeneralSettings/plain"), QStringLiteral("it's @ \"1\", ü\n"));
    QCOMPARE(text("Objects10/0x2000/description"), QStringLiteral("it's @ \"1\", ü\n"));
    QCOMPARE(text("SubObjects0/0x2000/0xff/accesstype"), QStringLiteral("rww"));
    QCOMPARE(text("SubObjects0/0x2000/0xff/metadata/key"), QStringLiteral("it's @ \"1\", ü\n"));
    QCOMPARE(text("PGNs0/130802/85/priority"), QStringLiteral("6"));
    QCOMPARE(text("UDSSettings0/16/active"), QStringLiteral("1"));
    QCOMPARE(settings.status(), QSettings::NoError);
}

QTEST_GUILESS_MAIN(TestDatabaseTextConverter)
#include "tst_databasetextconverter.moc"
