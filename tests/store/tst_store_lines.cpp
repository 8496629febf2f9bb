#include "tests/store/storetest.h"

#include <QSignalSpy>

using namespace StoreTest;
using Store = ObjectDataBase;

class TestStoreLines : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }
    void init();
    void nodesAreUpdatedInPart();
    void newLineInherits();
    void deletingALine();
    void deletingLinesTenAndTwenty();
    void settingsNotifyOnChangeOnly();
    void descriptionLines();
    void lineLists();
    void udsRowsAreWrittenWhole();
    void copiesALine();
    void copiesSettings();

private:
    std::unique_ptr<Store> m_store;
};

void TestStoreLines::init()
{
    m_store = std::make_unique<Store>();
    QVERIFY(m_store->createNewDataBase());
}

void TestStoreLines::nodesAreUpdatedInPart()
{
    QVERIFY(m_store->addIndex(0, 0x1000, {.name = QStringLiteral("kept")}));
    m_store->setUDSServiceActive(0, UDS::SID::EcuReset, false);
    m_store->setNodeSqlValue(QStringLiteral("0"), QStringLiteral("isbootupmanager"), 1);
    m_store->setNodeSqlValue(QStringLiteral("0"), QStringLiteral("multilinedata"), 77);
    QVERIFY(m_store->addNode(
        0,
        {.name = QStringLiteral("it's"), .tpdocnt = 512, .ismaster = true, .generatedcf = false}));
    Store::NODE_DATA_T node;
    QVERIFY(m_store->getNodeData(0, node));
    QCOMPARE(node.name, QStringLiteral("it's"));
    QCOMPARE(node.tpdocnt, quint16(512));
    QVERIFY(node.ismaster && !node.generatedcf && node.isbootupmanager);
    QCOMPARE(node.multilinedata, 77u);
    QCOMPARE(m_store->getIndexName(0, 0x1000), QStringLiteral("kept"));
    QVERIFY(!m_store->getUDSServiceActive(0, UDS::SID::EcuReset));
    QVERIFY(!m_store->getNodeData(9, node));
}

void TestStoreLines::newLineInherits()
{
    m_store->setGeneralSetting(QStringLiteral("co_node_id"), QStringLiteral("5"));
    QSignalSpy changes(m_store.get(), &Store::updateNotify);
    QVERIFY(m_store->addNode(1, {}));
    const auto last = changes.last().at(0).value<Store::ChangeSet>();
    QCOMPARE(last.kind, Store::NodeAdded);
    QCOMPARE(last.line, quint8(1));
    QCOMPARE(m_store->getGeneralSetting(QStringLiteral("co_node_id")), QStringLiteral("5,5"));
    QCOMPARE(m_store->getGeneralSetting(QStringLiteral("nmtmaster")), QString());
    QVERIFY(m_store->lineExists(1));
    QCOMPARE(m_store->getUDSServices(1).size(), 5);
    QCOMPARE(m_store->getUDSServiceSessions(1, UDS::SID::TesterPresent), QStringLiteral("1"));
    m_store->setDescriptionLine(1);
    QCOMPARE(m_store->getDescriptionSetting(QStringLiteral("BaudRate_125")), QStringLiteral("1"));
    QVERIFY(m_store->getDescriptionSettingKeys().contains(QLatin1String("BaudRate_125_1")));
    for (const quint8 scratch : {Store::comparisonLine, Store::stagingLine}) {
        QVERIFY(m_store->addNode(scratch, {}));
        QCOMPARE(m_store->getGeneralSetting(QStringLiteral("co_node_id")), QStringLiteral("5,5"));
    }
    QVERIFY(m_store->getDescriptionSettingKeys().contains(QLatin1String("BaudRate_125_255")));
}

void TestStoreLines::deletingALine()
{
    QVERIFY(m_store->addNode(1, {}));
    QVERIFY(m_store->addNode(2, {}));
    m_store->setGeneralSetting(QStringLiteral("line1type"), QStringLiteral("1"));
    m_store->setGeneralSetting(QStringLiteral("co_node_id"), QStringLiteral("1,2,3"));
    m_store->setJ1939Setting(QStringLiteral("startaddress"), QStringLiteral("4,5,6"));
    const QStringList freeTexts = {
        QStringLiteral("user_defines"), QStringLiteral("hw_defines"), QStringLiteral("note_3"),
        QStringLiteral("targetsettings_0_defines"), QStringLiteral("applicationheader")};
    for (const QString &key : freeTexts)
        m_store->setGeneralSetting(key, QStringLiteral("a(1,2,3)"));
    m_store->executeSql(QStringLiteral("insert into Connections values(0,1,1,1,1,1,0)"));
    m_store->cacheAllSubs(1);
    QVERIFY(m_store->deleteNode(1));
    QCOMPARE(m_store->getLines(), (QList<quint8>{0, 2}));
    QVERIFY(!m_store->executeSql(QStringLiteral("select * from Objects1")));
    QVERIFY(!m_store->generalSettingExists(QStringLiteral("line1type")));
    QCOMPARE(m_store->getGeneralSetting(QStringLiteral("co_node_id")), QStringLiteral("1,3"));
    QCOMPARE(m_store->getJ1939Setting(QStringLiteral("startaddress")), QStringLiteral("4,6"));
    for (const QString &key : freeTexts)
        QCOMPARE(m_store->getGeneralSetting(key), QStringLiteral("a(1,2,3)"));
    QVERIFY(m_store->executeSql(QStringLiteral("select * from Connections")));
    QVERIFY(m_store->statementResults().isEmpty());
    QVERIFY(!m_store->getDescriptionSettingKeys().contains(QLatin1String("OrderCode_1")));
    QSignalSpy changes(m_store.get(), &Store::updateNotify);
    QVERIFY(m_store->deleteNode(7));
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().at(0).value<Store::ChangeSet>().kind, Store::NodeDeleted);
}

void TestStoreLines::deletingLinesTenAndTwenty()
{
    for (const quint8 line : {10, 20}) {
        QVERIFY(m_store->addNode(line, {}));
        QVERIFY(m_store->deleteNode(line));
    }
    QVERIFY(m_store->descriptionSettingExists(QStringLiteral("BaudRate_10")));
    QVERIFY(m_store->descriptionSettingExists(QStringLiteral("BaudRate_20")));
    for (const QString &key : m_store->getDescriptionSettingKeys())
        QVERIFY2(!key.endsWith(QLatin1String("_10_10")) && !key.endsWith(QLatin1String("_20_20")),
                 qPrintable(key));
}

void TestStoreLines::settingsNotifyOnChangeOnly()
{
    QSignalSpy changes(m_store.get(), &Store::updateNotify);
    const auto kinds = [&] {
        QList<int> list;
        for (const auto &call : changes)
            list.append(int(call.at(0).value<Store::ChangeSet>().kind));
        changes.clear();
        return list;
    };
    const QString key = QStringLiteral("it's");
    for (int i = 0; i < 2; ++i) {
        QVERIFY(m_store->setGeneralSetting(key, key));
        QVERIFY(m_store->setDescriptionSetting(key, key));
        QVERIFY(m_store->setEnergyBusSetting(key, key));
        QVERIFY(m_store->setMiscSetting(key, key));
        QVERIFY(m_store->setJ1939Setting(key, key));
    }
    QCOMPARE(kinds(), (QList<int>{9, 10, 11, 12, 13}));
    QVERIFY(m_store->setGeneralSetting(key, QString()));
    QVERIFY(m_store->generalSettingExists(key));
    QVERIFY(m_store->deleteEnergyBusSetting(key));
    QVERIFY(!m_store->energyBusSettingExists(key));
    QCOMPARE(kinds(), (QList<int>{9, 11}));
}

void TestStoreLines::descriptionLines()
{
    QSignalSpy changes(m_store.get(), &Store::updateNotify);
    m_store->setDescriptionSetting(QStringLiteral("VendorName"), QStringLiteral("zero"));
    m_store->setDescriptionLine(1);
    m_store->setDescriptionSetting(QStringLiteral("VendorName"), QStringLiteral("one"));
    QCOMPARE(changes.last().at(0).value<Store::ChangeSet>().line, quint8(1));
    m_store->setDescriptionLine(0);
    QCOMPARE(m_store->getDescriptionSetting(QStringLiteral("VendorName")), QStringLiteral("zero"));
    QCOMPARE(m_store->getDescriptionSetting(QStringLiteral("VendorName_1")), QStringLiteral("one"));
}

void TestStoreLines::lineLists()
{
    const QString key = QStringLiteral("receivebuffersize");
    QVERIFY(m_store->setGeneralSettingForLine(key, QStringLiteral("10"), 2));
    QCOMPARE(m_store->getGeneralSetting(key), QStringLiteral(",,10"));
    QVERIFY(m_store->setGeneralSettingForLine(key, QStringLiteral("5"), 0));
    QCOMPARE(m_store->getGeneralSetting(key), QStringLiteral("5,,10"));
    QCOMPARE(m_store->getGeneralLineSetting(key, 1), QString());
    QCOMPARE(m_store->getGeneralLineSetting(key, 9), QStringLiteral("10"));
    QCOMPARE(m_store->getGeneralLineSetting(QStringLiteral("none"), 3), QString());
    m_store->setJ1939Setting(key, QStringLiteral("1,2"));
    QCOMPARE(m_store->getJ1939LineSetting(key, 1), QStringLiteral("2"));
    QCOMPARE(m_store->getJ1939LineSetting(key, 4), QStringLiteral("2"));
    QCOMPARE(m_store->getJ1939OwnLineSetting(key, 4), QString());
    QVERIFY(m_store->setJ1939LineSetting(key, QStringLiteral("5"), 4));
    QCOMPARE(m_store->getJ1939Setting(key), QStringLiteral("1,2,,,5"));
    m_store->setGeneralSetting(QStringLiteral("line3type"), QStringLiteral("5"));
    QCOMPARE(m_store->getLineType(3), 5);
    QCOMPARE(m_store->getLineType(4), 0);
}

void TestStoreLines::udsRowsAreWrittenWhole()
{
    const auto sid = UDS::SID::SecurityAccess;
    m_store->setUDSServiceSessions(0, sid, QStringLiteral("1,0x40"));
    m_store->setUDSAuthentication(0, sid, QStringLiteral("it's"));
    m_store->setUDSServiceActive(0, sid, true);
    QSignalSpy changes(m_store.get(), &Store::updateNotify);
    for (int pass = 0; pass < 2; ++pass)
        m_store->setUDSServiceUserLevels(0, sid, QStringLiteral("2"));
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().at(0).value<Store::ChangeSet>().kind, Store::GeneralSettingChanged);
    QVERIFY(m_store->getUDSServiceActive(0, sid));
    QCOMPARE(m_store->getUDSServiceSessions(0, sid), QStringLiteral("1,0x40"));
    QCOMPARE(m_store->getUDSAuthentication(0, sid), QStringLiteral("it's"));
    QVERIFY(!m_store->getUDSServiceActive(0, UDS::SID::LinkControl));
}

void TestStoreLines::copiesALine()
{
    Store::SUBINDEX_DATA_T data = sub(QStringLiteral("s"), QStringLiteral("1"));
    data.metadata = {{QStringLiteral("k"), QStringLiteral("v")}};
    m_store->addIndex(0, 0x0FFF, {.name = QStringLiteral("below")});
    m_store->addIndex(0, 0x2000, {.metadata = data.metadata});
    m_store->addSubIndex(0, 0x2000, 1, data);
    m_store->addPGN(0, 0x3FFFF, {.number = 0x3FFFF, .direction = 85});
    m_store->addSPN(0, 0x3FFFF, 85, 3, {.spn = 3});
    m_store->addPGN(0, 0x40000, {.number = 0x40000, .direction = 85});
    m_store->addCANID(0, 0x20000100, {.id = 0x20000100, .direction = 119});
    m_store->setUDSServiceSessions(0, UDS::SID::EcuReset, QStringLiteral("it's"));
    const QString hash = m_store->contentHash();
    QVERIFY(Store::copyLine(*m_store, *m_store, 0, 0));
    QCOMPARE(m_store->contentHash(), hash);
    Store other;
    QVERIFY(other.createNewDataBase());
    for (Store *target : {m_store.get(), &other}) {
        QVERIFY(target->addNode(1, {}));
        target->addIndex(1, 0x2000, {.name = QStringLiteral("former")});
        target->addSubIndex(1, 0x2000, 9, {});
        QVERIFY(Store::copyLine(*target, *m_store, 0, 1));
        QCOMPARE(target->getIndices(1), QList<quint16>{0x2000});
        QCOMPARE(target->getIndexName(1, 0x2000), QStringLiteral("unnamed object"));
        QCOMPARE(target->getSubIndices(1, 0x2000), QList<quint8>{1});
        Store::SUBINDEX_DATA_T copy;
        QVERIFY(target->getSubIndexData(1, 0x2000, 1, copy));
        QCOMPARE(copy.metadata, data.metadata);
        QCOMPARE(target->getPGNList(1), QList<quint32>{0x3FFFF});
        QCOMPARE(target->getSPNList(1, 0x3FFFF, 85), QList<quint32>{3});
        QCOMPARE(target->getCANIDList(1, 119), QList<quint32>{0x20000100});
        QCOMPARE(target->getUDSServiceSessions(1, UDS::SID::EcuReset), QStringLiteral("it's"));
    }
}

void TestStoreLines::copiesSettings()
{
    Store source;
    QVERIFY(source.createNewDataBase());
    source.setGeneralSetting(QStringLiteral("it's"), QStringLiteral("'"));
    source.setDescriptionSetting(QStringLiteral("VendorName"), QStringLiteral("v"));
    m_store->setGeneralSetting(QStringLiteral("own"), QStringLiteral("gone"));
    QVERIFY(m_store->copySettings(source));
    QCOMPARE(m_store->getGeneralSetting(QStringLiteral("it's")), QStringLiteral("'"));
    QCOMPARE(m_store->getDescriptionSetting(QStringLiteral("VendorName")), QStringLiteral("v"));
    QVERIFY(!m_store->generalSettingExists(QStringLiteral("own")));
}

QTEST_GUILESS_MAIN(TestStoreLines)
#include "tst_store_lines.moc"
