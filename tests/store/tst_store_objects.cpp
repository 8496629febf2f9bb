#include "tests/store/storetest.h"

#include <QSignalSpy>
#include <QTemporaryDir>

using namespace StoreTest;
using Store = ObjectDataBase;

class TestStoreObjects : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }
    void init();
    void keepsEveryField();
    void keepsAwkwardTexts();
    void brokenTextsHarmNothing();
    void metadataFollowsItsRules();
    void batchIsSilent();
    void batchOfObjects_data();
    void batchOfObjects();
    void findsAndLists();
    void cachesAnswerLikeTheDatabase();
    void singleColumnWrites();
    void deletesConnections();
    void copiesAndMoves();
    void refusesWhileBlocked();
    void notifications();

private:
    std::unique_ptr<Store> m_store;
};

void TestStoreObjects::init()
{
    m_store = std::make_unique<Store>();
    QVERIFY(m_store->createNewDataBase());
}

namespace {

Store::SUBINDEX_DATA_T fullRecord()
{
    Store::SUBINDEX_DATA_T data;
    data.name = QStringLiteral("name");
    data.datatype = CAN::INTEGER32;
    data.accesstype = QStringLiteral("rww");
    data.defaultvalue = QStringLiteral("$NODEID+0x180");
    data.currentvalue = QStringLiteral("12");
    data.pdomapping = PDOMapping::TPDO;
    data.lowlimit = QStringLiteral("-5");
    data.uplimit = QStringLiteral("0x7FFFFFFF");
    data.size = 4000000000u;
    data.defaultineds = true;
    data.limitineds = true;
    data.refuseread = true;
    data.refusewrite = true;
    data.dcfcomponent = true;
    data.cyclicread = true;
    data.allowedaccesstypes = QStringLiteral("ro,rw");
    data.implementation = CANopen::VirtualObject;
    data.description = QStringLiteral("one\ntwo");
    data.varname = QStringLiteral("a.b[2]");
    data.category = 2;
    data.writedefaulttoeds = 2;
    data.changedbyuser = true;
    data.wizardsource = 454;
    data.sharedlines = true;
    data.denotation = QStringLiteral("denotation");
    data.managedbytsk = true;
    data.signalid = 4123456789u;
    data.nvstorage = true;
    data.metadata = {{QStringLiteral("eds_define"), QStringLiteral("a'b")}};
    return data;
}

/// All fields as texts, for comparison with a message that names the field.
QStringList fields(const Store::SUBINDEX_DATA_T &d)
{
    QStringList list;
    const auto add = [&](const char *name, const QVariant &value) {
        list.append(QLatin1String(name) + u'=' + value.toString());
    };
    add("name", d.name), add("datatype", d.datatype), add("access", d.accesstype);
    add("default", d.defaultvalue), add("current", d.currentvalue);
    add("mapping", d.pdomapping.toUInt()), add("low", d.lowlimit), add("up", d.uplimit);
    add("size", d.size), add("defaultineds", d.defaultineds), add("limitineds", d.limitineds);
    add("refuseread", d.refuseread), add("refusewrite", d.refusewrite), add("dcf", d.dcfcomponent);
    add("cyclic", d.cyclicread), add("allowed", d.allowedaccesstypes);
    add("impl", d.implementation), add("desc", d.description), add("var", d.varname);
    add("category", d.category), add("writedefault", d.writedefaulttoeds);
    add("changed", d.changedbyuser), add("wizard", d.wizardsource), add("shared", d.sharedlines);
    add("denotation", d.denotation), add("tsk", d.managedbytsk), add("signal", d.signalid);
    add("nv", d.nvstorage);
    for (auto it = d.metadata.cbegin(); it != d.metadata.cend(); ++it)
        list.append(it.key() + u'=' + it.value());
    return list;
}

} // namespace

void TestStoreObjects::keepsEveryField()
{
    const Store::SUBINDEX_DATA_T written = fullRecord();
    QVERIFY(m_store->addSubIndex(0, 0x2000, 255, written));
    Store::SUBINDEX_DATA_T read;
    QVERIFY(m_store->getSubIndexData(0, 0x2000, 255, read));
    QCOMPARE(fields(read), fields(written));
    QVERIFY(m_store->cacheAllSubs(0));
    QVERIFY(m_store->getSubIndexData(0, 0x2000, 255, read));
    QCOMPARE(fields(read), fields(written));

    const Store::INDEX_DATA_T object{.name = QStringLiteral("n"),
                                     .datatype = 7,
                                     .objecttype = 9,
                                     .description = QStringLiteral("d"),
                                     .category = 2,
                                     .deviceclass = QStringLiteral("c"),
                                     .fwsupported = true,
                                     .metadata = {{QStringLiteral("k"), QStringLiteral("v")}}};
    QVERIFY(m_store->addIndex(0, 0xFFFF, object));
    for (int pass = 0; pass < 2; ++pass) {
        Store::INDEX_DATA_T back;
        QVERIFY(m_store->getIndexData(0, 0xFFFF, back));
        QCOMPARE(back.name, object.name);
        QCOMPARE(back.datatype, object.datatype);
        QCOMPARE(back.objecttype, object.objecttype);
        QCOMPARE(back.description, object.description);
        QCOMPARE(back.category, object.category);
        QCOMPARE(back.deviceclass, object.deviceclass);
        QCOMPARE(back.fwsupported, object.fwsupported);
        QCOMPARE(back.metadata, object.metadata);
        m_store->cacheAllSubs(0);
    }
}

void TestStoreObjects::keepsAwkwardTexts()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("a.vxmp"));
    for (int i = 0; i < awkwardTexts().size(); ++i) {
        const QString &text = awkwardTexts().at(i);
        const auto index = quint16(0x2000 + i);
        QVERIFY(m_store->addIndex(
            0, index,
            {.name = text, .description = text, .deviceclass = text, .metadata = {{text, text}}}));
        // Whatever the data type, every text of a row survives.
        for (const quint16 type : {CAN::UNSIGNED8, CAN::VISIBLE_STRING}) {
            Store::SUBINDEX_DATA_T data = sub(text, text, type);
            data.currentvalue = data.lowlimit = data.uplimit = data.varname = text;
            data.accesstype = data.allowedaccesstypes = data.description = data.denotation = text;
            QVERIFY(m_store->addSubIndex(0, index, quint8(type), data));
        }
        QVERIFY(m_store->setGeneralSetting(QStringLiteral("k") + text, text));
        QVERIFY(m_store->setDescriptionSetting(QStringLiteral("k") + text, text));
        QVERIFY(m_store->setMiscSetting(QStringLiteral("k") + text, text));
        QVERIFY(m_store->setEnergyBusSetting(QStringLiteral("k") + text, text));
        QVERIFY(m_store->setJ1939Setting(QStringLiteral("k") + text, text));
        m_store->setUDSServiceUserLevels(0, UDS::SID(0x40 + i), text);
    }
    QVERIFY(m_store->addNode(1, {.name = awkwardTexts().at(2), .prefix = awkwardTexts().at(1)}));
    QVERIFY(m_store->saveDatabase(file));
    Store other;
    QVERIFY(other.openDataBase(file));
    QVERIFY(!other.wasExternallyModified());
    Store::NODE_DATA_T node;
    QVERIFY(other.getNodeData(1, node));
    QCOMPARE(node.name, awkwardTexts().at(2));
    for (int i = 0; i < awkwardTexts().size(); ++i) {
        const QString &text = awkwardTexts().at(i);
        const auto index = quint16(0x2000 + i);
        Store::INDEX_DATA_T object;
        QVERIFY(other.getIndexData(0, index, object));
        QCOMPARE(object.name, text);
        QCOMPARE(object.description, text);
        QCOMPARE(object.metadata.value(text), text);
        QVERIFY(other.findIndices(0, QStringLiteral("name"), text).contains(index));
        for (const quint16 type : {CAN::UNSIGNED8, CAN::VISIBLE_STRING}) {
            Store::SUBINDEX_DATA_T data;
            QVERIFY(other.getSubIndexData(0, index, quint8(type), data));
            for (const QString &field :
                 {data.name, data.defaultvalue, data.currentvalue, data.lowlimit, data.uplimit,
                  data.varname, data.accesstype, data.allowedaccesstypes, data.description,
                  data.denotation})
                QCOMPARE(field, text);
        }
        const QString key = QStringLiteral("k") + text;
        for (const QString &value : {other.getGeneralSetting(key), other.getDescriptionSetting(key),
                                     other.getMiscSetting(key), other.getEnergyBusSetting(key),
                                     other.getJ1939Setting(key)})
            QCOMPARE(value, text);
        QCOMPARE(other.getUDSServiceUserLevels(0, UDS::SID(0x40 + i)), text);
    }
}

void TestStoreObjects::brokenTextsHarmNothing()
{
    const QString half = QStringLiteral("a") + QChar(0xD800) + QStringLiteral("'b");
    const QString nul = QStringLiteral("a") + QChar(0) + QStringLiteral("'b");
    for (const QString &text : {half, nul}) {
        QVERIFY(m_store->addSubIndex(0, 0x2000, 0, sub(text, text)));
        QVERIFY(m_store->setGeneralSetting(QStringLiteral("k"), text));
        QCOMPARE(m_store->getSubIndexDefaultValue(0, 0x2000, 0).right(2), QStringLiteral("'b"));
        QCOMPARE(m_store->getGeneralSetting(QStringLiteral("k")).right(2), QStringLiteral("'b"));
    }
}

void TestStoreObjects::metadataFollowsItsRules()
{
    const Store::MetaData map = {{QStringLiteral("a"), QStringLiteral("1")}};
    QVERIFY(m_store->addIndex(0, 0x2000, {.name = QStringLiteral("x"), .metadata = map}));
    QVERIFY(m_store->addIndex(0, 0x2000, {.name = QStringLiteral("y")}));
    Store::INDEX_DATA_T object;
    QVERIFY(m_store->getIndexData(0, 0x2000, object));
    QCOMPARE(object.name, QStringLiteral("y"));
    QCOMPARE(object.metadata, map);

    Store::SUBINDEX_DATA_T data = sub(QStringLiteral("x"));
    data.metadata = map;
    QVERIFY(m_store->addSubIndex(0, 0x2000, 1, data));
    const auto all = m_store->getAllMetaData(0);
    QCOMPARE(all.size(), 2);
    QCOMPARE(all.value({0x2000, -1}), map);
    QCOMPARE(all.value({0x2000, 1}), map);
    QVERIFY(m_store->addSubIndex(0, 0x2000, 1, sub(QStringLiteral("x"))));
    QVERIFY(m_store->getSubIndexData(0, 0x2000, 1, data));
    QVERIFY(data.metadata.isEmpty());
    for (const char *blob : {"0", "NULL", "x'00000000'", "x'0000000500'", "x'ffffffffffff'"}) {
        QVERIFY(m_store->executeSql(QStringLiteral("update SubObjects0 set metadata = ") +
                                    QLatin1String(blob)));
        data.metadata = map;
        QVERIFY(m_store->getSubIndexData(0, 0x2000, 1, data));
        QVERIFY2(data.metadata.isEmpty(), blob);
    }
}

void TestStoreObjects::batchIsSilent()
{
    QVERIFY(m_store->addSubIndices({}));
    m_store->cacheAllSubs(0);
    QSignalSpy changes(m_store.get(), &Store::updateNotify);
    QList<Store::SubEntry> entries;
    for (int i = 0; i < 200; ++i)
        entries.append({0, 0x3000, quint8(i), sub(QStringLiteral("it's %1").arg(i))});
    QVERIFY(m_store->addSubIndices(entries));
    QCOMPARE(changes.size(), 0);
    QCOMPARE(m_store->getSubIndices(0, 0x3000).size(), 200);
    QCOMPARE(m_store->getSubIndexName(0, 0x3000, 199), QStringLiteral("it's 199"));
    // A row that can't be written is told, and the others are.
    QVERIFY(m_store->executeSql(QStringLiteral(
        "create trigger t before insert on SubObjects0 when new.objectindex = 0x3001 and "
        "new.subindex = 3 begin select raise(abort,'no'); end")));
    for (Store::SubEntry &entry : entries)
        entry.index = 0x3001;
    QVERIFY(!m_store->addSubIndices(entries));
    QCOMPARE(m_store->getSubIndices(0, 0x3001).size(), 199);
    QVERIFY(!m_store->executeSql(QStringLiteral("alter table Nodes add lssslave integer, x")));
    QVERIFY2(m_store->statementResults().first().contains(QLatin1String("syntax error")),
             qPrintable(m_store->statementResults().first()));
    // No text has the id 0, even where a foreign row gives it one.
    QVERIFY(m_store->executeSql(QStringLiteral("insert into Strings values(0,'foreign')")));
    m_store->setObjectIndexSqlValue(QStringLiteral("Objects0"), QStringLiteral("9999"),
                                    QStringLiteral("category"), 1);
    QCOMPARE(m_store->getIndexName(0, 9999), QString());
    m_store->setIndexName(0, 9999, QStringLiteral("foreign"));
    QCOMPARE(m_store->getIndexName(0, 9999), QStringLiteral("foreign"));
}

void TestStoreObjects::batchOfObjects_data()
{
    QTest::addColumn<bool>("withoutKey");
    QTest::newRow("own table") << false;
    QTest::newRow("table of another program, without the key") << true;
}

void TestStoreObjects::batchOfObjects()
{
    QFETCH(bool, withoutKey);
    const Store::MetaData former = {{QStringLiteral("k"), QStringLiteral("v")}};
    const Store::MetaData later = {{QStringLiteral("l"), QStringLiteral("w")}};
    QVERIFY(m_store->addIndex(0, 0x2000, {.name = QStringLiteral("old"), .metadata = former}));
    if (withoutKey) {
        QVERIFY(m_store->executeSql(QStringLiteral("create table t as select * from Objects0")));
        QVERIFY(m_store->executeSql(QStringLiteral("drop table Objects0")));
        QVERIFY(m_store->executeSql(QStringLiteral("alter table t rename to Objects0")));
    }
    m_store->cacheAllSubs(0);
    QList<Store::IndexEntry> entries;
    for (int i = 0; i < 250; ++i)
        entries.append({0, quint16(0x2000 + i), {.name = QStringLiteral("it's %1").arg(i)}});
    entries[7].data.metadata = later;
    entries.append({0, 0x2001, {.name = QStringLiteral("twice"), .category = 1}});
    QSignalSpy changes(m_store.get(), &Store::updateNotify);
    QVERIFY(m_store->addIndices(entries));
    QCOMPARE(changes.size(), entries.size());
    QCOMPARE(changes.last().first().value<Store::ChangeSet>().index, quint16(0x2001));
    QCOMPARE(m_store->getIndices(0).size(), 250);
    QCOMPARE(m_store->getIndexName(0, 0x20F9), QStringLiteral("it's 249"));
    QCOMPARE(m_store->getIndexName(0, 0x2001), QStringLiteral("twice"));
    Store::INDEX_DATA_T data;
    QVERIFY(m_store->getIndexData(0, 0x2000, data));
    QCOMPARE(data.name, QStringLiteral("it's 0"));
    QCOMPARE(data.metadata, former);
    QVERIFY(m_store->getIndexData(0, 0x2007, data));
    QCOMPARE(data.metadata, later);
}

void TestStoreObjects::findsAndLists()
{
    for (const int index : {0x6000, 0x1000, 0x2000, 0x1A00})
        QVERIFY(m_store->addIndex(0, quint16(index), {.name = QStringLiteral("same")}));
    QCOMPARE(m_store->getIndices(0), (QList<quint16>{0x1000, 0x1A00, 0x2000, 0x6000}));
    QCOMPARE(m_store->getIndices(0, 0x1001, 0x2000), (QList<quint16>{0x1A00, 0x2000}));
    for (const int subindex : {3, 0, 200})
        QVERIFY(m_store->addSubIndex(0, 0x2000, quint8(subindex), sub(QStringLiteral("s"))));
    QCOMPARE(m_store->getSubIndices(0, 0x2000), (QList<quint8>{0, 3, 200}));
    Store::SUBINDEX_DATA_T mappable = sub(QStringLiteral("m"), QStringLiteral("0x10"));
    mappable.pdomapping = PDOMapping::Allowed;
    QVERIFY(m_store->addSubIndex(0, 0x6000, 1, mappable));
    QCOMPARE(m_store->getMappableSubIndices(0), (QList<Store::SubIndexKey>{{0x6000, 1}}));
    QCOMPARE(m_store->findSubIndices(0, QStringLiteral("defaultvalue"), QStringLiteral("0x10")),
             (QList<Store::SubIndexKey>{{0x6000, 1}}));
    QCOMPARE(m_store->findSubIndices(0, QStringLiteral("name"), QStringLiteral("s")).size(), 3);
    QCOMPARE(m_store->findIndices(0, QStringLiteral("name"), QStringLiteral("none")).size(), 0);
    QVERIFY(!m_store->indexExists(0, 0x1234));
    QVERIFY(m_store->subIndexExists(0, 0x2000, 200));
}

void TestStoreObjects::cachesAnswerLikeTheDatabase()
{
    QVERIFY(m_store->addIndex(0, 0x2000, {.name = QStringLiteral("o")}));
    QVERIFY(m_store->addSubIndex(0, 0x2000, 1, sub(QStringLiteral("one"), QStringLiteral("1"))));
    QVERIFY(m_store->cacheAllSubs(0));
    // Changes behind the store's back stay unseen: these reads come from the cache.
    QVERIFY(m_store->executeSql(QStringLiteral("update SubObjects0 set defaultvalue='99'")));
    QCOMPARE(m_store->getSubIndexDefaultValue(0, 0x2000, 1), QStringLiteral("1"));
    // Changes through the store are seen, whichever operation makes them.
    QVERIFY(m_store->setSubIndexDefaultValue(0, 0x2000, 1, QStringLiteral("2")));
    QCOMPARE(m_store->getSubIndexDefaultValue(0, 0x2000, 1), QStringLiteral("2"));
    m_store->setSubIndexName(0, 0x2000, 1, QStringLiteral("renamed"));
    QCOMPARE(m_store->getSubIndexName(0, 0x2000, 1), QStringLiteral("renamed"));
    QVERIFY(m_store->addSubIndex(0, 0x2000, 5, sub(QStringLiteral("five"))));
    QCOMPARE(m_store->getSubIndices(0, 0x2000), (QList<quint8>{1, 5}));
    m_store->cacheAllSubs(0);
    QVERIFY(m_store->deleteSubIndex(0, 0x2000, 1));
    QVERIFY(!m_store->subIndexExists(0, 0x2000, 1));
    m_store->cacheAllSubs(0);
    m_store->setIndexName(0, 0x2000, QStringLiteral("p"));
    QCOMPARE(m_store->getIndexName(0, 0x2000), QStringLiteral("p"));
    m_store->cacheAllSubs(0);
    QVERIFY(m_store->deleteIndex(0, 0x2000));
    QVERIFY(m_store->getIndices(0).isEmpty());
    QVERIFY(!m_store->subIndexExists(0, 0x2000, 5));
    // The cache of one index leaves the others alone.
    QVERIFY(m_store->addSubIndex(0, 0x2000, 1, sub(QStringLiteral("a"))));
    QVERIFY(m_store->cacheAllSubs(0, 0x2000));
    QVERIFY(m_store->addSubIndex(0, 0x2001, 1, sub(QStringLiteral("b"))));
    QVERIFY(m_store->subIndexExists(0, 0x2001, 1));
}

void TestStoreObjects::singleColumnWrites()
{
    const QString table = QStringLiteral("SubObjects0");
    const QString index = QStringLiteral("8192");
    m_store->setSubindexSqlValue(table, index, QStringLiteral("1"), QStringLiteral("name"),
                                 QStringLiteral("it's"));
    m_store->setSubindexSqlValue(table, index, QStringLiteral("1"), QStringLiteral("uplimit"),
                                 QStringLiteral("  1   2 "));
    QCOMPARE(m_store->getSubIndexName(0, 0x2000, 1), QStringLiteral("it's"));
    Store::SUBINDEX_DATA_T data;
    QVERIFY(m_store->getSubIndexData(0, 0x2000, 1, data));
    QCOMPARE(data.uplimit, QStringLiteral("1 2"));
    m_store->setSubindexSqlValue(table, index, QStringLiteral("1"), QStringLiteral("uplimit"),
                                 QStringLiteral("  "));
    m_store->setSubindexSqlValue(table, index, QStringLiteral("1"), QStringLiteral("uplimit"), {});
    QVERIFY(m_store->getSubIndexData(0, 0x2000, 1, data));
    QCOMPARE(data.uplimit, QStringLiteral("1 2"));
    m_store->setObjectIndexSqlValue(QStringLiteral("Objects0"), index,
                                    QStringLiteral("description"), QStringLiteral("d"));
    Store::INDEX_DATA_T object;
    QVERIFY(m_store->getIndexData(0, 0x2000, object));
    QCOMPARE(object.description, QStringLiteral("d"));
    // A row that a setter makes is found behind a cached walk.
    QVERIFY(m_store->cacheAllSubs(0));
    m_store->setSubindexSqlValue(table, index, QStringLiteral("2"), QStringLiteral("uplimit"), 7);
    QVERIFY(m_store->subIndexExists(0, 0x2000, 2));
    // The line of metadata is the last digit of the table's name.
    QVERIFY(m_store->addNode(10, {}));
    QVERIFY(m_store->addSubIndex(10, 0x2000, 1, sub(QStringLiteral("ten"))));
    const QByteArray blob = QByteArray::fromHex("00000001000000020061000000020062"); // {"a": "b"}
    m_store->setSubindexSqlValue(QStringLiteral("SubObjects10"), index, QStringLiteral("1"),
                                 QStringLiteral("metadata"), blob);
    QVERIFY(m_store->getSubIndexData(0, 0x2000, 1, data));
    QCOMPARE(data.metadata.value(QStringLiteral("a")), QStringLiteral("b"));
    QVERIFY(m_store->getSubIndexData(10, 0x2000, 1, data));
    QVERIFY(data.metadata.isEmpty());
}

void TestStoreObjects::deletesConnections()
{
    const auto connections = [this] {
        m_store->executeSql(QStringLiteral("select count(*) from Connections"));
        return m_store->statementResults().value(0).section(u' ', 0, 0).toInt();
    };
    const auto connect = [this] {
        m_store->executeSql(QStringLiteral("delete from Connections"));
        m_store->executeSql(QStringLiteral("insert into Connections values(0,8192,1,1,1,1,0)"));
        m_store->executeSql(QStringLiteral("insert into Connections values(1,1,1,0,8192,1,0)"));
        m_store->executeSql(QStringLiteral("insert into Connections values(0,8192,2,0,8192,3,0)"));
    };
    connect();
    QVERIFY(m_store->deleteSubIndex(0, 0x2000, 1, true));
    QCOMPARE(connections(), 3);
    QVERIFY(m_store->deleteSubIndex(0, 0x2000, 1));
    QCOMPARE(connections(), 1);
    connect();
    QVERIFY(m_store->deleteIndex(0, 0x2000, true));
    QCOMPARE(connections(), 3);
    QVERIFY(m_store->deleteIndex(0, 0x2000));
    QCOMPARE(connections(), 0);
}

void TestStoreObjects::copiesAndMoves()
{
    Store library;
    QVERIFY(library.createNewDataBase());
    QVERIFY(library.addIndex(0, 0x1018, {.name = QStringLiteral("identity"), .objecttype = 9}));
    QVERIFY(library.addSubIndex(0, 0x1018, 1, fullRecord()));
    QVERIFY(m_store->addSubIndex(0, 0x2000, 9, sub(QStringLiteral("old"))));
    QVERIFY(m_store->addIndex(0, 0x2000, {.name = QStringLiteral("old")}));
    QSignalSpy changes(m_store.get(), &Store::updateNotify);
    QVERIFY(m_store->copyIndex(0, 0x1018, 0, 0x2000, &library));
    int subNotes = 0;
    for (const auto &call : changes)
        subNotes += call.at(0).value<Store::ChangeSet>().kind == Store::SubIndexAdded;
    QCOMPARE(subNotes, 1);
    QCOMPARE(m_store->getSubIndices(0, 0x2000), QList<quint8>{1});
    Store::SUBINDEX_DATA_T data;
    QVERIFY(m_store->getSubIndexData(0, 0x2000, 1, data));
    QCOMPARE(fields(data), fields(fullRecord()));
    QVERIFY(m_store->moveIndex(0, 0x2000, 0, 0x2000));
    QVERIFY(m_store->moveIndex(0, 0x2000, 0, 0x3000));
    QVERIFY(!m_store->indexExists(0, 0x2000));
    QCOMPARE(m_store->getIndexName(0, 0x3000), QStringLiteral("identity"));
    QVERIFY(!m_store->moveIndex(0, 0x4000, 0, 0x3000));
    QVERIFY(m_store->indexExists(0, 0x3000));
}

void TestStoreObjects::refusesWhileBlocked()
{
    QVERIFY(m_store->addIndex(0, 0x2000, {.name = QStringLiteral("o")}));
    QVERIFY(m_store->addSubIndex(0, 0x2000, 0, sub(QStringLiteral("s"), QStringLiteral("1"))));
    const QString before = m_store->contentHash();
    const std::function<void(bool)> modes[] = {[this](bool on) { m_store->setBlockUpdates(on); },
                                               [this](bool on) { m_store->setGenerating(on); }};
    for (const auto &setMode : modes) {
        setMode(true);
        QVERIFY(!m_store->addIndex(0, 0x2001, {}));
        QVERIFY(!m_store->addSubIndex(0, 0x2000, 1, {}));
        QVERIFY(!m_store->addIndices({{0, 0x2001, {}}}));
        QVERIFY(!m_store->addSubIndices({{0, 0x2000, 1, {}}}));
        QVERIFY(!m_store->deleteIndex(0, 0x2000));
        QVERIFY(!m_store->deleteSubIndex(0, 0x2000, 0));
        QVERIFY(!m_store->setSubIndexDefaultValue(0, 0x2000, 0, QStringLiteral("2")));
        QVERIFY(!m_store->copyIndex(0, 0x2000, 0, 0x2001));
        QVERIFY(!m_store->moveIndex(0, 0x2000, 0, 0x2001));
        QVERIFY(!m_store->addNode(1, {}));
        QVERIFY(!m_store->deleteNode(0));
        QVERIFY(!m_store->setGeneralSetting(QStringLiteral("a"), QStringLiteral("b")));
        QVERIFY(!m_store->setMiscSetting(QStringLiteral("a"), QStringLiteral("b")));
        QVERIFY(!m_store->setDescriptionSetting(QStringLiteral("a"), QStringLiteral("b")));
        QVERIFY(!m_store->setEnergyBusSetting(QStringLiteral("a"), QStringLiteral("b")));
        QVERIFY(!m_store->setJ1939Setting(QStringLiteral("a"), QStringLiteral("b")));
        QVERIFY(!m_store->deleteEnergyBusSetting(QStringLiteral("a")));
        QVERIFY(!m_store->addPGN(0, 1, {}));
        QVERIFY(!m_store->addSPN(0, 1, 85, 1, {}));
        QVERIFY(!m_store->addCANID(0, 1, {}));
        QVERIFY(!m_store->addDataElement(0, 1, 85, 1, {}));
        QVERIFY(!m_store->copySettings(*m_store));
        QVERIFY(!Store::copyLine(*m_store, *m_store, 0, 0));
        QVERIFY(!m_store->createNewDataBase());
        QVERIFY(!m_store->openDataBase(m_store->workingFiles().first()));
        QVERIFY(!m_store->lastErrorText().isEmpty());
        m_store->setIndexName(0, 0x2000, QStringLiteral("z"));
        m_store->setNodeSqlValue(QStringLiteral("0"), QStringLiteral("name"), QStringLiteral("z"));
        m_store->setUDSServiceActive(0, UDS::SID::EcuReset, false);
        setMode(false);
        QCOMPARE(m_store->contentHash(), before);
    }
    QVERIFY(m_store->addIndex(0, 0x2001, {}));
}

void TestStoreObjects::notifications()
{
    QList<Store::ChangeSet> seen;
    connect(m_store.get(), &Store::updateNotify, this,
            [&](const Store::ChangeSet &change) { seen.append(change); });
    m_store->addIndex(0, 0x2000, {});
    m_store->addSubIndex(0, 0x2000, 3, {});
    m_store->setIndexName(0, 0x2000, QStringLiteral("n"));
    m_store->setSubIndexName(0, 0x2000, 3, QStringLiteral("n"));
    m_store->setSubIndexDefaultValue(0, 0x2000, 3, QStringLiteral("1"));
    m_store->setObjectIndexSqlValue(QStringLiteral("Objects0"), QStringLiteral("8192"),
                                    QStringLiteral("category"), 1);
    m_store->setSubindexSqlValue(QStringLiteral("SubObjects0"), QStringLiteral("8192"),
                                 QStringLiteral("3"), QStringLiteral("uplimit"), 1);
    m_store->setNodeSqlValue(QStringLiteral("0"), QStringLiteral("name"), QStringLiteral("n"));
    m_store->deleteSubIndex(0, 0x2000, 3);
    m_store->deleteIndex(0, 0x2000);
    m_store->addPGN(0, 65280, {.number = 65280, .direction = 119});
    m_store->addSPN(0, 65280, 119, 7, {});
    m_store->deleteSPN(0, 65280, 7, 119);
    m_store->deletePGN(0, 65280, 119);
    m_store->addCANID(0, 0x123, {.id = 0x123, .direction = 85});
    m_store->addDataElement(0, 0x123, 85, 2, {});
    m_store->deleteDataElement(0, 0x123, 2, 85);
    m_store->deleteCANID(0, 0x123, 85);
    QList<int> kinds;
    for (const Store::ChangeSet &change : seen)
        kinds.append(int(change.kind));
    QCOMPARE(kinds, (QList<int>{1, 2, 1, 2, 2, 1, 2, 6, 4, 3, 15, 19, 20, 16, 17, 21, 20, 18}));
    QCOMPARE(seen.at(1).index, quint16(0x2000));
    QCOMPARE(seen.at(1).subindex, quint8(3));
    QCOMPARE(seen.at(6).subindex, quint8(3));
    QCOMPARE(seen.at(12).spn, 7u);
    QCOMPARE(seen.at(16).element, 2u);
    QCOMPARE(seen.at(16).direction, quint8(85));
}

QTEST_GUILESS_MAIN(TestStoreObjects)
#include "tst_store_objects.moc"
