#include "tests/support/storefile.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace StoreTest;
using Store = ObjectDataBase;

class TestStoreLines : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }

    void init() { m_store = std::make_unique<TestStore>(); }

    void nodesAreUpdatedInPart()
    {
        QVERIFY(m_store->addIndex(0, 0x1000, {.name = u"kept"_s}));
        m_store->setUDSServiceActive(0, UDS::SID::EcuReset, false);
        m_store->setNodeSqlValue(u"0"_s, u"isbootupmanager"_s, 1);
        m_store->setNodeSqlValue(u"0"_s, u"multilinedata"_s, 77);
        QVERIFY(m_store->addNode(
            0, {.name = u"it's"_s, .tpdocnt = 512, .ismaster = true, .generatedcf = false}));
        Store::NODE_DATA_T node;
        QVERIFY(m_store->getNodeData(0, node));
        QCOMPARE(node.name, u"it's"_s);
        QCOMPARE(node.tpdocnt, quint16(512));
        QVERIFY(node.ismaster && !node.generatedcf && node.isbootupmanager);
        QCOMPARE(node.multilinedata, 77u);
        QCOMPARE(m_store->getIndexName(0, 0x1000), u"kept"_s);
        QVERIFY(!m_store->getUDSServiceActive(0, UDS::SID::EcuReset));
        QVERIFY(!m_store->getNodeData(9, node));
    }

    void newLineInherits()
    {
        m_store->setGeneralSetting(u"co_node_id"_s, u"5"_s);
        QSignalSpy changes(m_store.get(), &Store::updateNotify);
        QVERIFY(m_store->addNode(1, {}));
        const auto last = changes.last().at(0).value<Store::ChangeSet>();
        QCOMPARE(last.kind, Store::NodeAdded);
        QCOMPARE(last.line, quint8(1));
        QCOMPARE(m_store->getGeneralSetting(u"co_node_id"_s), u"5,5"_s);
        QCOMPARE(m_store->getGeneralSetting(u"nmtmaster"_s), QString());
        QVERIFY(m_store->lineExists(1));
        QCOMPARE(m_store->getUDSServices(1).size(), 5);
        QCOMPARE(m_store->getUDSServiceSessions(1, UDS::SID::TesterPresent), u"1"_s);
        m_store->setDescriptionLine(1);
        QCOMPARE(m_store->getDescriptionSetting(u"BaudRate_125"_s), u"1"_s);
        QVERIFY(m_store->getDescriptionSettingKeys().contains("BaudRate_125_1"_L1));
        for (const quint8 scratch : {Store::comparisonLine, Store::stagingLine}) {
            QVERIFY(m_store->addNode(scratch, {}));
            QCOMPARE(m_store->getGeneralSetting(u"co_node_id"_s), u"5,5"_s);
        }
        QVERIFY(m_store->getDescriptionSettingKeys().contains("BaudRate_125_255"_L1));
    }

    void deletingALine()
    {
        QVERIFY(m_store->addNode(1, {}));
        QVERIFY(m_store->addNode(2, {}));
        m_store->setGeneralSetting(u"line1type"_s, u"1"_s);
        m_store->setGeneralSetting(u"co_node_id"_s, u"1,2,3"_s);
        m_store->setJ1939Setting(u"startaddress"_s, u"4,5,6"_s);
        const QStringList freeTexts = {u"user_defines"_s, u"hw_defines"_s, u"note_3"_s,
                                       u"targetsettings_0_defines"_s, u"applicationheader"_s};
        for (const QString &key : freeTexts)
            m_store->setGeneralSetting(key, u"a(1,2,3)"_s);
        m_store->executeSql(u"insert into Connections values(0,1,1,1,1,1,0)"_s);
        m_store->cacheAllSubs(1);
        QVERIFY(m_store->deleteNode(1));
        QCOMPARE(m_store->getLines(), (QList<quint8>{0, 2}));
        QVERIFY(!m_store->executeSql(u"select * from Objects1"_s));
        QVERIFY(!m_store->generalSettingExists(u"line1type"_s));
        QCOMPARE(m_store->getGeneralSetting(u"co_node_id"_s), u"1,3"_s);
        QCOMPARE(m_store->getJ1939Setting(u"startaddress"_s), u"4,6"_s);
        for (const QString &key : freeTexts)
            QCOMPARE(m_store->getGeneralSetting(key), u"a(1,2,3)"_s);
        QVERIFY(m_store->executeSql(u"select * from Connections"_s));
        QVERIFY(m_store->statementResults().isEmpty());
        QVERIFY(!m_store->getDescriptionSettingKeys().contains("OrderCode_1"_L1));
        QSignalSpy changes(m_store.get(), &Store::updateNotify);
        QVERIFY(m_store->deleteNode(7));
        QCOMPARE(changes.size(), 1);
        QCOMPARE(changes.first().at(0).value<Store::ChangeSet>().kind, Store::NodeDeleted);
    }

    void deletingLinesTenAndTwenty()
    {
        for (const quint8 line : {10, 20}) {
            QVERIFY(m_store->addNode(line, {}));
            QVERIFY(m_store->deleteNode(line));
        }
        QVERIFY(m_store->descriptionSettingExists(u"BaudRate_10"_s));
        QVERIFY(m_store->descriptionSettingExists(u"BaudRate_20"_s));
        for (const QString &key : m_store->getDescriptionSettingKeys())
            QVERIFY2(!key.endsWith("_10_10"_L1) && !key.endsWith("_20_20"_L1), qPrintable(key));
    }

    void settingsNotifyOnChangeOnly()
    {
        QSignalSpy changes(m_store.get(), &Store::updateNotify);
        const auto kinds = [&] {
            QList<int> list;
            for (const auto &call : changes)
                list.append(int(call.at(0).value<Store::ChangeSet>().kind));
            changes.clear();
            return list;
        };
        const QString key = u"it's"_s;
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

    void descriptionLines()
    {
        QSignalSpy changes(m_store.get(), &Store::updateNotify);
        m_store->setDescriptionSetting(u"VendorName"_s, u"zero"_s);
        m_store->setDescriptionLine(1);
        m_store->setDescriptionSetting(u"VendorName"_s, u"one"_s);
        QCOMPARE(changes.last().at(0).value<Store::ChangeSet>().line, quint8(1));
        m_store->setDescriptionLine(0);
        QCOMPARE(m_store->getDescriptionSetting(u"VendorName"_s), u"zero"_s);
        QCOMPARE(m_store->getDescriptionSetting(u"VendorName_1"_s), u"one"_s);
    }

    void lineLists()
    {
        const QString key = u"receivebuffersize"_s;
        QVERIFY(m_store->setGeneralSettingForLine(key, u"10"_s, 2));
        QCOMPARE(m_store->getGeneralSetting(key), u",,10"_s);
        QVERIFY(m_store->setGeneralSettingForLine(key, u"5"_s, 0));
        QCOMPARE(
            (QStringList{m_store->getGeneralSetting(key), m_store->getGeneralLineSetting(key, 1),
                         m_store->getGeneralLineSetting(key, 9),
                         m_store->getGeneralLineSetting(u"none"_s, 3)}),
            (QStringList{"5,,10", "", "10", ""}));
        m_store->setJ1939Setting(key, u"1,2"_s);
        QCOMPARE(
            (QStringList{m_store->getJ1939LineSetting(key, 1), m_store->getJ1939LineSetting(key, 4),
                         m_store->getJ1939OwnLineSetting(key, 4)}),
            (QStringList{"2", "2", ""}));
        QVERIFY(m_store->setJ1939LineSetting(key, u"5"_s, 4));
        QCOMPARE(m_store->getJ1939Setting(key), u"1,2,,,5"_s);
        m_store->setGeneralSetting(u"line3type"_s, u"5"_s);
        QCOMPARE(m_store->getLineType(3), 5);
        QCOMPARE(m_store->getLineType(4), 0);
    }

    void udsRowsAreWrittenWhole()
    {
        const auto sid = UDS::SID::SecurityAccess;
        m_store->setUDSServiceSessions(0, sid, u"1,0x40"_s);
        m_store->setUDSAuthentication(0, sid, u"it's"_s);
        m_store->setUDSServiceActive(0, sid, true);
        QSignalSpy changes(m_store.get(), &Store::updateNotify);
        for (int pass = 0; pass < 2; ++pass)
            m_store->setUDSServiceUserLevels(0, sid, u"2"_s);
        QCOMPARE(changes.size(), 1);
        QCOMPARE(changes.first().at(0).value<Store::ChangeSet>().kind,
                 Store::GeneralSettingChanged);
        QVERIFY(m_store->getUDSServiceActive(0, sid));
        QCOMPARE(m_store->getUDSServiceSessions(0, sid), u"1,0x40"_s);
        QCOMPARE(m_store->getUDSAuthentication(0, sid), u"it's"_s);
        QVERIFY(!m_store->getUDSServiceActive(0, UDS::SID::LinkControl));
    }

    void copiesALine()
    {
        Store::SUBINDEX_DATA_T data = sub(u"s"_s, u"1"_s);
        data.metadata = {{u"k"_s, u"v"_s}};
        m_store->addIndex(0, 0x0FFF, {.name = u"below"_s});
        m_store->addIndex(0, 0x2000, {.metadata = data.metadata});
        m_store->addSubIndex(0, 0x2000, 1, data);
        m_store->addPGN(0, 0x3FFFF, {.number = 0x3FFFF, .direction = 85});
        m_store->addSPN(0, 0x3FFFF, 85, 3, {.spn = 3});
        m_store->addPGN(0, 0x40000, {.number = 0x40000, .direction = 85});
        m_store->addCANID(0, 0x20000100, {.id = 0x20000100, .direction = 119});
        m_store->setUDSServiceSessions(0, UDS::SID::EcuReset, u"it's"_s);
        const QString hash = m_store->contentHash();
        QVERIFY(Store::copyLine(*m_store, *m_store, 0, 0));
        QCOMPARE(m_store->contentHash(), hash);
        TestStore other;
        for (Store *target : {m_store.get(), static_cast<Store *>(&other)}) {
            QVERIFY(target->addNode(1, {}));
            target->addIndex(1, 0x2000, {.name = u"former"_s});
            target->addSubIndex(1, 0x2000, 9, {});
            QVERIFY(Store::copyLine(*target, *m_store, 0, 1));
            QCOMPARE(target->getIndices(1), QList<quint16>{0x2000});
            QCOMPARE(target->getIndexName(1, 0x2000), u"unnamed object"_s);
            QCOMPARE(target->getSubIndices(1, 0x2000), QList<quint8>{1});
            Store::SUBINDEX_DATA_T copy;
            QVERIFY(target->getSubIndexData(1, 0x2000, 1, copy));
            QCOMPARE(copy.metadata, data.metadata);
            QCOMPARE(target->getPGNList(1), QList<quint32>{0x3FFFF});
            QCOMPARE(target->getSPNList(1, 0x3FFFF, 85), QList<quint32>{3});
            QCOMPARE(target->getCANIDList(1, 119), QList<quint32>{0x20000100});
            QCOMPARE(target->getUDSServiceSessions(1, UDS::SID::EcuReset), u"it's"_s);
        }
    }

    void copiesSettings()
    {
        TestStore source;
        source.setGeneralSetting(u"it's"_s, u"'"_s);
        source.setDescriptionSetting(u"VendorName"_s, u"v"_s);
        m_store->setGeneralSetting(u"own"_s, u"gone"_s);
        QVERIFY(m_store->copySettings(source));
        QCOMPARE(m_store->getGeneralSetting(u"it's"_s), u"'"_s);
        QCOMPARE(m_store->getDescriptionSetting(u"VendorName"_s), u"v"_s);
        QVERIFY(!m_store->generalSettingExists(u"own"_s));
    }

private:
    std::unique_ptr<Store> m_store;
};

QTEST_GUILESS_MAIN(TestStoreLines)
#include "tst_store_lines.moc"
