#include "store/schema.h"
#include "tests/store/storetest.h"

#include <QTemporaryDir>

using namespace StoreTest;

namespace {

QStringList failures;

void collect(QtMsgType, const QMessageLogContext &, const QString &text)
{
    if (text.contains(QLatin1String("failed")) || text.contains(QLatin1String("error")))
        failures.append(text);
}

} // namespace

class TestStoreMigration : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }
    void init();
    void cleanup() { qInstallMessageHandler(nullptr); }
    void newFileHasTheWholeSchema();
    void currentFileOpensWithoutFailure();
    void grownColumnsKeepTheirValues();
    void fileWithoutSignalTables();
    void oldVersionsGetTheirColumns();
    void lineTypes_data();
    void lineTypes();
    void udsServices();
    void signalDirections();
    void positionsAndCounts();
    void lineListsFit();
    void groupsInBothForms();

private:
    QString makeProject();
    QString m_file;
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestStoreMigration::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_file = m_dir->filePath(QStringLiteral("a.vxmp"));
    failures.clear();
    qInstallMessageHandler(collect);
}

QString TestStoreMigration::makeProject()
{
    ObjectDataBase store;
    store.createNewDataBase();
    store.setGeneralSetting(QStringLiteral("line0type"), QStringLiteral("1"));
    store.addIndex(0, 0x2000, {.name = QStringLiteral("object")});
    ObjectDataBase::SUBINDEX_DATA_T data = sub(QStringLiteral("sub"), QStringLiteral("1"));
    data.uplimit = QStringLiteral("0xFF");
    data.denotation = QStringLiteral("den");
    store.addSubIndex(0, 0x2000, 0, data);
    store.saveDatabaseAsSql(m_file);
    return m_file;
}

void TestStoreMigration::newFileHasTheWholeSchema()
{
    makeProject();
    for (const Schema::Table &table : Schema::tables()) {
        const QString suffix = table.scope == Schema::Scope::Line ? QStringLiteral("0") : QString();
        const QString name = QLatin1String(table.name) + suffix;
        QCOMPARE(
            runOn(m_file, {QStringLiteral("select name from pragma_table_info('%1')").arg(name)}),
            Schema::columnNames(table));
    }
    // Spacing is part of the format.
    QCOMPARE(
        runOn(m_file, {QStringLiteral("select sql from sqlite_master where name='PGNs0'")}).first(),
        QStringLiteral(
            "CREATE TABLE PGNs0 (number integer not null, edp_dp_key integer, priority "
            "integer, cycletime_ms integer, inhibittime_ms integer, mappingcount integer, "
            "direction integer, name integer, desc integer,issafe integer,srvt_ms integer, "
            "FD_TrailerFormat integer,FD_AssuranceType integer,FD_AssuranceDataSize "
            "integer,multisourceaddress integer,safetytype integer,FD_DataId integer)"));
    QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
}

void TestStoreMigration::currentFileOpensWithoutFailure()
{
    makeProject();
    ObjectDataBase store;
    QVERIFY(store.openDataBase(m_file));
    QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
    QVERIFY(store.saveDatabase());
    ObjectDataBase again;
    QVERIFY(again.openDataBase(m_file));
    QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
}

void TestStoreMigration::grownColumnsKeepTheirValues()
{
    // A file of the first generation: limits are integers, there is no uniqueness, and columns
    // have grown in another order than a new table has them.
    makeProject();
    runOn(m_file,
          {QStringLiteral("drop table SubObjects0"),
           QStringLiteral("create table SubObjects0 (objectindex integer not null, subindex "
                          "integer not null, varname text, name integer, datatype integer not "
                          "null, accesstype text not null, defaultvalue text, currentvalue text, "
                          "pdomapping integer, lowlimit integer, uplimit integer, size integer, "
                          "defaultineds integer, limitineds integer, refuseread integer, "
                          "refusewrite integer, allowedaccesstypes text, implementation integer "
                          "not null, description integer, category integer, nvstorage integer, "
                          "cyclicread integer, changedbyuser integer)"),
           QStringLiteral("insert into SubObjects0 values(8192,0,'var',1,5,'rw','7','8',1,2,300,4,"
                          "1,1,0,1,'ro,rw',2,0,2,1,1,1)"),
           QStringLiteral("drop table Objects0"),
           QStringLiteral("create table Objects0 (objectindex integer primary key, name integer, "
                          "datatype integer not null, objecttype integer not null, description "
                          "integer, category integer)"),
           QStringLiteral("insert into Objects0 values(8192,1,5,7,0,2)"),
           QStringLiteral("update MiscSettings set value='99' where item='DatabaseVersion'")});
    ObjectDataBase store;
    QVERIFY(store.openDataBase(m_file));
    ObjectDataBase::SUBINDEX_DATA_T data;
    QVERIFY(store.getSubIndexData(0, 0x2000, 0, data));
    QCOMPARE(data.varname, QStringLiteral("var"));
    QCOMPARE(data.uplimit, QStringLiteral("300"));
    QCOMPARE(data.category, quint8(2));
    QVERIFY(data.nvstorage && data.cyclicread && data.changedbyuser && data.refusewrite);
    QVERIFY(!data.refuseread && !data.dcfcomponent && !data.sharedlines);
    QCOMPARE(data.writedefaulttoeds, quint8(0));

    ObjectDataBase::INDEX_DATA_T object{.name = QStringLiteral("n"),
                                        .deviceclass = QStringLiteral("class")};
    for (const quint16 index : {0x2000, 0x2001})
        QVERIFY(store.addIndex(0, index, object));
    for (const quint16 index : {0x2000, 0x2001}) {
        ObjectDataBase::INDEX_DATA_T read;
        QVERIFY(store.getIndexData(0, index, read));
        QCOMPARE(read.deviceclass, QStringLiteral("class"));
        QVERIFY(!read.fwsupported);
    }
    data.uplimit = QStringLiteral("0xFF");
    QVERIFY(store.addSubIndex(0, 0x2000, 0, data));
    QCOMPARE(store.getSubIndices(0, 0x2000).size(), 1);
    QVERIFY(store.getSubIndexData(0, 0x2000, 0, data));
    QCOMPARE(data.uplimit, QStringLiteral("0xFF"));
}

void TestStoreMigration::fileWithoutSignalTables()
{
    makeProject();
    runOn(m_file,
          {QStringLiteral("insert into Nodes (nodeId) values(3)"),
           QStringLiteral("drop table SPNs0"), QStringLiteral("drop table PGNs0"),
           QStringLiteral("drop table CANIDs0"), QStringLiteral("drop table DataElements0"),
           QStringLiteral("drop table Connections"),
           QStringLiteral("update MiscSettings set value='90' where item='DatabaseVersion'")});
    ObjectDataBase store;
    QVERIFY(store.openDataBase(m_file));
    QVERIFY(store.addPGN(0, 100, {.number = 100, .direction = 85}));
    QVERIFY(store.addSPN(0, 100, 85, 7, {.defaultValue = QStringLiteral("3"), .bitPosition = 9}));
    ObjectDataBase::SPN spn;
    QVERIFY(store.getSPN(0, 100, 85, 7, spn));
    QCOMPARE(spn.bitPosition, quint16(9));
    QCOMPARE(spn.defaultValue, QStringLiteral("3"));
    QVERIFY(store.loadSPNCache(0));
    store.clearSPNCache();
    for (const quint8 line : {0, 3}) {
        QVERIFY(store.addCANID(line, 1, {.direction = 85}));
        QVERIFY(store.addDataElement(line, 1, 85, 1, {.bitPos = 3}));
    }
    QVERIFY(store.saveDatabase());
    ObjectDataBase again;
    QVERIFY(again.openDataBase(m_file));
    QVERIFY(again.getSPN(0, 100, 85, 7, spn));
    QCOMPARE(spn.bitPosition, quint16(9));
}

void TestStoreMigration::oldVersionsGetTheirColumns()
{
    makeProject();
    runOn(m_file,
          {QStringLiteral("drop table UDSSettings0"),
           QStringLiteral("create table UDSSettings0 (sid integer not null, active integer, "
                          "sessions text, userlevels text, UNIQUE(sid))"),
           QStringLiteral("insert into UDSSettings0 values(16,1,'1','2')"),
           QStringLiteral("drop table DataElements0"),
           QStringLiteral("create table DataElements0 (canid integer not null, number integer not "
                          "null, datatype integer, implementation integer, varname text, "
                          "defaultvalue text, name integer, desc integer, pos integer, bitsize "
                          "integer, direction integer)"),
           QStringLiteral("update MiscSettings set value='104' where item='DatabaseVersion'")});
    ObjectDataBase store;
    QVERIFY(store.openDataBase(m_file));
    store.setUDSAuthentication(0, UDS::SID(16), QStringLiteral("role"));
    QCOMPARE(store.getUDSAuthentication(0, UDS::SID(16)), QStringLiteral("role"));
    QCOMPARE(store.getUDSServiceUserLevels(0, UDS::SID(16)), QStringLiteral("2"));
    QVERIFY(store.addDataElement(0, 1, 119, 1, {.bitPos = 3}));
    QVERIFY(store.saveDatabase());
    QCOMPARE(runOn(m_file, {QStringLiteral("select value from MiscSettings where "
                                           "item='DatabaseVersion'")}),
             QStringList{QStringLiteral("107")});
}

void TestStoreMigration::lineTypes_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<bool>("withPgns");
    QTest::addColumn<int>("type");
    QTest::newRow("canopen tool") << "CANopen Quillforge 3.1" << true << 1;
    QTest::newRow("j1939 tool") << "J1939 Quillforge 3.1" << false << 2;
    QTest::newRow("more objects") << "" << false << 1;
    QTest::newRow("more groups") << "" << true << 2;
}

void TestStoreMigration::lineTypes()
{
    QFETCH(QString, tool);
    QFETCH(bool, withPgns);
    QFETCH(int, type);
    makeProject();
    QStringList statements = {
        QStringLiteral("delete from GeneralSettings where item='line0type'"),
        QStringLiteral("update MiscSettings set value='' where item='SaveToolType'"),
        QStringLiteral("update MiscSettings set value='%1' where item='CreateToolVersion'")
            .arg(tool)};
    if (withPgns)
        statements.append(
            QStringLiteral("insert into PGNs0 (number,direction) values(1,85),(2,85)"));
    runOn(m_file, statements);
    ObjectDataBase store;
    QVERIFY(store.openDataBase(m_file));
    QCOMPARE(store.getLineType(0), type);
}

void TestStoreMigration::udsServices()
{
    makeProject();
    runOn(m_file, {QStringLiteral("drop table UDSSettings0")});
    ObjectDataBase store;
    QVERIFY(store.openDataBase(m_file));
    QCOMPARE(store.getUDSServices(0).size(), 17);
    QCOMPARE(store.getUDSServiceSessions(0, UDS::SID::RoutineControl), QStringLiteral("1,2,3,4"));
    QCOMPARE(store.getUDSServiceSessions(0, UDS::SID::SecurityAccess), QStringLiteral("2,3,4"));
    store.setUDSServiceActive(0, UDS::SID::SecurityAccess, false);
    QVERIFY(store.saveDatabase());
    ObjectDataBase again;
    QVERIFY(again.openDataBase(m_file));
    QVERIFY(!again.getUDSServiceActive(0, UDS::SID::SecurityAccess));
}

void TestStoreMigration::signalDirections()
{
    makeProject();
    runOn(
        m_file,
        {QStringLiteral("update MiscSettings set value='' where item='SaveToolType'"),
         QStringLiteral("update GeneralSettings set value='2' where item='line0type'"),
         QStringLiteral("update MiscSettings set value='99' where item='DatabaseVersion'"),
         QStringLiteral("insert into PGNs0 (number,direction) values(1,85),(2,119),(2,85)"),
         QStringLiteral("insert into SPNs0 (pgnnumber,spnnumber,direction,pos) values(1,10,119,0),"
                        "(2,20,NULL,0),(2,21,119,1)")});
    ObjectDataBase store;
    QVERIFY(store.openDataBase(m_file));
    QCOMPARE(store.getSPNList(0, 1, 85), QList<quint32>{10});
    QCOMPARE(store.getSPNList(0, 1, 119), QList<quint32>());
    QCOMPARE(store.getSPNList(0, 2, 119), (QList<quint32>{20, 21}));
    QCOMPARE(store.getSPNList(0, 2, 85), QList<quint32>{20});
    QCOMPARE(store.getMappingCount(0, 2, 119), quint16(2));
}

void TestStoreMigration::positionsAndCounts()
{
    makeProject();
    runOn(m_file,
          {QStringLiteral("update MiscSettings set value='104' where item='DatabaseVersion'"),
           QStringLiteral("insert into PGNs0 (number,direction,mappingcount,edp_dp_key) "
                          "values(1,85,9,0),(2,85,NULL,1),(3,NULL,NULL,NULL)"),
           QStringLiteral("insert into SPNs0 (pgnnumber,spnnumber,direction,pos,datatype,"
                          "bitposition) values(1,10,85,0,6,0),(1,11,85,1,100,0),(1,12,85,2,5,0)"),
           QStringLiteral("insert into CANIDs0 (id,direction) values(5,119)"),
           QStringLiteral("insert into DataElements0 (canid,number,direction,datatype,bitpos) "
                          "values(5,0,119,7,0),(5,1,119,1,0)")});
    ObjectDataBase store;
    QVERIFY(store.openDataBase(m_file));
    ObjectDataBase::SPN spn;
    QVERIFY(store.getSPN(0, 1, 85, 12, spn));
    QCOMPARE(spn.bitPosition, quint16(18));
    ObjectDataBase::DataElement element;
    QVERIFY(store.getDataElement(0, 5, 119, 1, element));
    QCOMPARE(element.bitPos, quint16(32));
    QCOMPARE(store.getMappingCount(0, 1, 85), quint16(3));
    store.executeSql(QStringLiteral("select count(*) from PGNs0 where mappingcount is NULL"));
    QCOMPARE(store.statementResults().first().section(u' ', 0, 0), QStringLiteral("0"));
    QCOMPARE(store.getPGNList(0, 85), (QList<quint32>{1, 0x10002}));
    QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
}

void TestStoreMigration::lineListsFit()
{
    {
        ObjectDataBase store;
        store.createNewDataBase();
        store.addNode(1, {});
        store.setGeneralSetting(QStringLiteral("co_node_id"), QStringLiteral("5"));
        store.setGeneralSetting(QStringLiteral("nmtmaster"), QStringLiteral("1,2,3"));
        store.setGeneralSetting(QStringLiteral("user_defines"), QStringLiteral("a,b,c"));
        QVERIFY(store.saveDatabase(m_file));
    }
    ObjectDataBase store;
    QVERIFY(store.openDataBase(m_file));
    QCOMPARE(store.getGeneralSetting(QStringLiteral("co_node_id")), QStringLiteral("5,"));
    QCOMPARE(store.getGeneralSetting(QStringLiteral("nmtmaster")), QStringLiteral("1,2"));
    QCOMPARE(store.getGeneralSetting(QStringLiteral("user_defines")), QStringLiteral("a,b,c"));
}

void TestStoreMigration::groupsInBothForms()
{
    makeProject();
    runOn(m_file, {QStringLiteral("insert into Groups values('g','1,2')")});
    {
        ObjectDataBase store;
        QVERIFY(store.openDataBase(m_file));
        QVERIFY(store.saveDatabase());
    }
    QCOMPARE(runOn(m_file, {QStringLiteral("select name from Groups")}).size(), 1);
    runOn(m_file, {QStringLiteral("drop table Groups")});
    ObjectDataBase store;
    QVERIFY(store.openDataBase(m_file));
    QVERIFY(store.executeSql(QStringLiteral("insert into Groups values(1,'g','1')")));
}

QTEST_GUILESS_MAIN(TestStoreMigration)
#include "tst_store_migration.moc"
