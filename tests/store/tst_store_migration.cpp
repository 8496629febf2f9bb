#include "store/schema.h"
#include "tests/support/storefile.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace {

QStringList failures;

void collect(QtMsgType, const QMessageLogContext &, const QString &text)
{
    if (text.contains("failed"_L1) || text.contains("error"_L1))
        failures.append(text);
}

} // namespace

class TestStoreMigration : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_file = m_dir->filePath(u"a.vxmp"_s);
        failures.clear();
        qInstallMessageHandler(collect);
    }

    void cleanup() { qInstallMessageHandler(nullptr); }

    void newFileHasTheWholeSchema()
    {
        makeProject();
        for (const Schema::Table &table : Schema::tables()) {
            const QString suffix = table.scope == Schema::Scope::Line ? u"0"_s : QString();
            const QString name = QLatin1String(table.name) + suffix;
            QCOMPARE(runOn(m_file, {u"select name from pragma_table_info('%1')"_s.arg(name)}),
                     Schema::columnNames(table));
        }
        // Spacing is part of the format.
        QCOMPARE(runOn(m_file, {u"select sql from sqlite_master where name='PGNs0'"_s}).first(),
                 u"CREATE TABLE PGNs0 (number integer not null, edp_dp_key integer, priority "
                 "integer, cycletime_ms integer, inhibittime_ms integer, mappingcount integer, "
                 "direction integer, name integer, desc integer,issafe integer,srvt_ms integer, "
                 "FD_TrailerFormat integer,FD_AssuranceType integer,FD_AssuranceDataSize "
                 "integer,multisourceaddress integer,safetytype integer,FD_DataId integer)"_s);
        QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
    }

    void currentFileOpensWithoutFailure()
    {
        makeProject();
        TestStore store(m_file);
        QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
        QVERIFY(store.saveDatabase());
        TestStore again(m_file);
        QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
    }

    void grownColumnsKeepTheirValues()
    {
        // A file of the first generation: limits are integers, there is no uniqueness, and columns
        // have grown in another order than a new table has them.
        TestStore store(
            makeProject({u"drop table SubObjects0"_s,
                         u"create table SubObjects0 (objectindex integer not null, subindex "
                         "integer not null, varname text, name integer, datatype integer not "
                         "null, accesstype text not null, defaultvalue text, currentvalue text, "
                         "pdomapping integer, lowlimit integer, uplimit integer, size integer, "
                         "defaultineds integer, limitineds integer, refuseread integer, "
                         "refusewrite integer, allowedaccesstypes text, implementation integer "
                         "not null, description integer, category integer, nvstorage integer, "
                         "cyclicread integer, changedbyuser integer)"_s,
                         u"insert into SubObjects0 values(8192,0,'var',1,5,'rw','7','8',1,2,300,4,"
                         "1,1,0,1,'ro,rw',2,0,2,1,1,1)"_s,
                         u"drop table Objects0"_s,
                         u"create table Objects0 (objectindex integer primary key, name integer, "
                         "datatype integer not null, objecttype integer not null, description "
                         "integer, category integer)"_s,
                         u"insert into Objects0 values(8192,1,5,7,0,2)"_s,
                         u"update MiscSettings set value='99' where item='DatabaseVersion'"_s}));
        ObjectDataBase::SUBINDEX_DATA_T data;
        QVERIFY(store.getSubIndexData(0, 0x2000, 0, data));
        QCOMPARE(data.varname, u"var"_s);
        QCOMPARE(data.uplimit, u"300"_s);
        QCOMPARE(data.category, quint8(2));
        QVERIFY(data.nvstorage && data.cyclicread && data.changedbyuser && data.refusewrite);
        QVERIFY(!data.refuseread && !data.dcfcomponent && !data.sharedlines);
        QCOMPARE(data.writedefaulttoeds, quint8(0));

        ObjectDataBase::INDEX_DATA_T object{.name = u"n"_s, .deviceclass = u"class"_s};
        for (const quint16 index : {0x2000, 0x2001})
            QVERIFY(store.addIndex(0, index, object));
        for (const quint16 index : {0x2000, 0x2001}) {
            ObjectDataBase::INDEX_DATA_T read;
            QVERIFY(store.getIndexData(0, index, read));
            QCOMPARE(read.deviceclass, u"class"_s);
            QVERIFY(!read.fwsupported);
        }
        data.uplimit = u"0xFF"_s;
        QVERIFY(store.addSubIndex(0, 0x2000, 0, data));
        QCOMPARE(store.getSubIndices(0, 0x2000).size(), 1);
        QVERIFY(store.getSubIndexData(0, 0x2000, 0, data));
        QCOMPARE(data.uplimit, u"0xFF"_s);
    }

    void fileWithoutSignalTables()
    {
        TestStore store(
            makeProject({u"insert into Nodes (nodeId) values(3)"_s, u"drop table SPNs0"_s,
                         u"drop table PGNs0"_s, u"drop table CANIDs0"_s,
                         u"drop table DataElements0"_s, u"drop table Connections"_s,
                         u"update MiscSettings set value='90' where item='DatabaseVersion'"_s}));
        QVERIFY(store.addPGN(0, 100, {.number = 100, .direction = 85}));
        QVERIFY(store.addSPN(0, 100, 85, 7, {.defaultValue = u"3"_s, .bitPosition = 9}));
        ObjectDataBase::SPN spn;
        QVERIFY(store.getSPN(0, 100, 85, 7, spn));
        QCOMPARE(spn.bitPosition, quint16(9));
        QCOMPARE(spn.defaultValue, u"3"_s);
        QVERIFY(store.loadSPNCache(0));
        store.clearSPNCache();
        for (const quint8 line : {0, 3}) {
            QVERIFY(store.addCANID(line, 1, {.direction = 85}));
            QVERIFY(store.addDataElement(line, 1, 85, 1, {.bitPos = 3}));
        }
        QVERIFY(store.saveDatabase());
        TestStore again(m_file);
        QVERIFY(again.getSPN(0, 100, 85, 7, spn));
        QCOMPARE(spn.bitPosition, quint16(9));
    }

    void oldVersionsGetTheirColumns()
    {
        TestStore store(makeProject(
            {u"drop table UDSSettings0"_s,
             u"create table UDSSettings0 (sid integer not null, active integer, "
             "sessions text, userlevels text, UNIQUE(sid))"_s,
             u"insert into UDSSettings0 values(16,1,'1','2')"_s, u"drop table DataElements0"_s,
             u"create table DataElements0 (canid integer not null, number integer not "
             "null, datatype integer, implementation integer, varname text, "
             "defaultvalue text, name integer, desc integer, pos integer, bitsize "
             "integer, direction integer)"_s,
             u"update MiscSettings set value='104' where item='DatabaseVersion'"_s}));
        store.setUDSAuthentication(0, UDS::SID(16), u"role"_s);
        QCOMPARE(store.getUDSAuthentication(0, UDS::SID(16)), u"role"_s);
        QCOMPARE(store.getUDSServiceUserLevels(0, UDS::SID(16)), u"2"_s);
        QVERIFY(store.addDataElement(0, 1, 119, 1, {.bitPos = 3}));
        QVERIFY(store.saveDatabase());
        QCOMPARE(runOn(m_file, {u"select value from MiscSettings where "
                                "item='DatabaseVersion'"_s}),
                 QStringList{u"107"_s});
    }

    void lineTypes()
    {
        struct
        {
            const char *tool;
            bool withPgns;
            int type;
        } const rows[] = {{"CANopen Quillforge 3.1", true, 1},
                          {"J1939 Quillforge 3.1", false, 2},
                          {"", false, 1},
                          {"", true, 2}};
        for (const auto &[tool, withPgns, type] : rows) {
            QStringList statements{
                "delete from GeneralSettings where item='line0type'",
                "update MiscSettings set value='' where item='SaveToolType'",
                u"update MiscSettings set value='%1' where item='CreateToolVersion'"_s.arg(tool)};
            if (withPgns)
                statements.append("insert into PGNs0 (number,direction) values(1,85),(2,85)");
            QCOMPARE(TestStore(makeProject(statements)).getLineType(0), type);
        }
    }

    void udsServices()
    {
        TestStore store(makeProject({u"drop table UDSSettings0"_s}));
        QCOMPARE(store.getUDSServices(0).size(), 17);
        QCOMPARE(store.getUDSServiceSessions(0, UDS::SID::RoutineControl), u"1,2,3,4"_s);
        QCOMPARE(store.getUDSServiceSessions(0, UDS::SID::SecurityAccess), u"2,3,4"_s);
        store.setUDSServiceActive(0, UDS::SID::SecurityAccess, false);
        QVERIFY(store.saveDatabase());
        TestStore again(m_file);
        QVERIFY(!again.getUDSServiceActive(0, UDS::SID::SecurityAccess));
    }

    void signalDirections()
    {
        TestStore store(makeProject(
            {u"update MiscSettings set value='' where item='SaveToolType'"_s,
             u"update GeneralSettings set value='2' where item='line0type'"_s,
             u"update MiscSettings set value='99' where item='DatabaseVersion'"_s,
             u"insert into PGNs0 (number,direction) values(1,85),(2,119),(2,85)"_s,
             u"insert into SPNs0 (pgnnumber,spnnumber,direction,pos) values(1,10,119,0),"
             "(2,20,NULL,0),(2,21,119,1)"_s}));
        QCOMPARE(store.getSPNList(0, 1, 85), QList<quint32>{10});
        QCOMPARE(store.getSPNList(0, 1, 119), QList<quint32>());
        QCOMPARE(store.getSPNList(0, 2, 119), (QList<quint32>{20, 21}));
        QCOMPARE(store.getSPNList(0, 2, 85), QList<quint32>{20});
        QCOMPARE(store.getMappingCount(0, 2, 119), quint16(2));
    }

    void positionsAndCounts()
    {
        TestStore store(
            makeProject({u"update MiscSettings set value='104' where item='DatabaseVersion'"_s,
                         u"insert into PGNs0 (number,direction,mappingcount,edp_dp_key) "
                         "values(1,85,9,0),(2,85,NULL,1),(3,NULL,NULL,NULL)"_s,
                         u"insert into SPNs0 (pgnnumber,spnnumber,direction,pos,datatype,"
                         "bitposition) values(1,10,85,0,6,0),(1,11,85,1,100,0),(1,12,85,2,5,0)"_s,
                         u"insert into CANIDs0 (id,direction) values(5,119)"_s,
                         u"insert into DataElements0 (canid,number,direction,datatype,bitpos) "
                         "values(5,0,119,7,0),(5,1,119,1,0)"_s}));
        ObjectDataBase::SPN spn;
        QVERIFY(store.getSPN(0, 1, 85, 12, spn));
        QCOMPARE(spn.bitPosition, quint16(18));
        ObjectDataBase::DataElement element;
        QVERIFY(store.getDataElement(0, 5, 119, 1, element));
        QCOMPARE(element.bitPos, quint16(32));
        QCOMPARE(store.getMappingCount(0, 1, 85), quint16(3));
        store.executeSql(u"select count(*) from PGNs0 where mappingcount is NULL"_s);
        QCOMPARE(store.statementResults().first().section(u' ', 0, 0), u"0"_s);
        QCOMPARE(store.getPGNList(0, 85), (QList<quint32>{1, 0x10002}));
        QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
    }

    void lineListsFit()
    {
        {
            TestStore store;
            store.addNode(1, {});
            store.setGeneralSetting(u"co_node_id"_s, u"5"_s);
            store.setGeneralSetting(u"nmtmaster"_s, u"1,2,3"_s);
            store.setGeneralSetting(u"user_defines"_s, u"a,b,c"_s);
            QVERIFY(store.saveDatabase(m_file));
        }
        TestStore store(m_file);
        QCOMPARE((QStringList{store.getGeneralSetting(u"co_node_id"_s),
                              store.getGeneralSetting(u"nmtmaster"_s),
                              store.getGeneralSetting(u"user_defines"_s)}),
                 (QStringList{"5,", "1,2", "a,b,c"}));
    }

    void groupsInBothForms()
    {
        QVERIFY(TestStore(makeProject({"insert into Groups values('g','1,2')"})).saveDatabase());
        QCOMPARE(runOn(m_file, {u"select name from Groups"_s}).size(), 1);
        runOn(m_file, {u"drop table Groups"_s});
        QVERIFY(TestStore(m_file).executeSql(u"insert into Groups values(1,'g','1')"_s));
    }

private:
    /// The file of a small project, changed by these statements.
    QString makeProject(const QStringList &statements = {})
    {
        TestStore store;
        store.setGeneralSetting(u"line0type"_s, u"1"_s);
        store.addIndex(0, 0x2000, {.name = u"object"_s});
        ObjectDataBase::SUBINDEX_DATA_T data = sub(u"sub"_s, u"1"_s);
        data.uplimit = u"0xFF"_s;
        data.denotation = u"den"_s;
        store.addSubIndex(0, 0x2000, 0, data);
        store.saveDatabaseAsSql(m_file);
        runOn(m_file, statements);
        return m_file;
    }
    QString m_file;
    std::unique_ptr<QTemporaryDir> m_dir;
};

QTEST_GUILESS_MAIN(TestStoreMigration)
#include "tst_store_migration.moc"
