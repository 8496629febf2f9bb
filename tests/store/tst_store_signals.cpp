#include "tests/store/storetest.h"

using namespace StoreTest;
using Store = ObjectDataBase;

/// J1939 parameter groups and raw CAN messages.
class TestStoreSignals : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }
    void init();
    void keepsEveryField();
    void directionsAreIndependent();
    void safeGroupsAreLeftOut();
    void realignment_data();
    void realignment();
    void elementsRealign();
    void copiesGroups();
    void foldsPageKeys();
    void cacheAnswers();
    void canMessages();

private:
    QList<int> positions(quint32 pgn);
    std::unique_ptr<Store> m_store;
};

void TestStoreSignals::init()
{
    m_store = std::make_unique<Store>();
    QVERIFY(m_store->createNewDataBase());
}

void TestStoreSignals::keepsEveryField()
{
    const Store::PGN pgn{.name = QStringLiteral("it's"),
                         .desc = QStringLiteral("d"),
                         .number = 0x2FFFF,
                         .edpDpKey = 0,
                         .priority = 6,
                         .cycleTime = 60000,
                         .inhibitTime = 5,
                         .mappingCount = 3,
                         .direction = 119,
                         .srvt = 7,
                         .isSafe = 1,
                         .fdTrailerFormat = 5,
                         .fdAssuranceType = 3,
                         .fdAssuranceDataSize = 8,
                         .multiSourceAddress = 4,
                         .safetyType = 2,
                         .fdDataId = 4000000000u};
    for (int pass = 0; pass < 2; ++pass) {
        QVERIFY(m_store->addPGN(0, pgn.number, pgn));
        Store::PGN read;
        QVERIFY(m_store->getPGN(0, pgn.number, 119, read));
        QCOMPARE(read.name, pgn.name);
        QCOMPARE(read.cycleTime, pgn.cycleTime);
        QCOMPARE(read.srvt, pgn.srvt);
        QCOMPARE(read.safetyType, pgn.safetyType);
        QCOMPARE(read.fdDataId, pgn.fdDataId);
        QCOMPARE(read.multiSourceAddress, pgn.multiSourceAddress);
        QCOMPARE(m_store->getPGNList(0).size(), 1);
        Store::SPN spn{.pos = 2,
                       .name = QStringLiteral("s"),
                       .desc = QStringLiteral("'"),
                       .defaultValue = QStringLiteral("it's"),
                       .dataType = 120,
                       .implementation = 0,
                       .varName = QStringLiteral("v'"),
                       .bitSize = 1000,
                       .slotDf = 99,
                       .bitPosition = 33};
        QVERIFY(m_store->addSPN(0, pgn.number, 119, 500000, spn));
        Store::SPN back;
        QVERIFY(m_store->getSPN(0, pgn.number, 119, 500000, back));
        QCOMPARE(back.defaultValue, spn.defaultValue);
        QCOMPARE(back.varName, spn.varName);
        QCOMPARE(back.bitSize, spn.bitSize);
        QCOMPARE(back.slotDf, spn.slotDf);
        QCOMPARE(back.spn, 500000u);
        QCOMPARE(back.pgn, pgn.number);
        QCOMPARE(m_store->getSPNName(0, pgn.number, 500000, 119), spn.name);
        QCOMPARE(m_store->getSPNDataType(0, pgn.number, 500000, 119), spn.dataType);
    }
}

void TestStoreSignals::directionsAreIndependent()
{
    for (const quint8 direction : {85, 119}) {
        QVERIFY(
            m_store->addPGN(0, 100, {.name = QString::number(direction), .direction = direction}));
        QVERIFY(m_store->addSPN(0, 100, direction, direction, {}));
    }
    m_store->deletePGN(0, 100, 85);
    QVERIFY(!m_store->pgnExists(0, 100, 85));
    QCOMPARE(m_store->getPGNName(0, 100, 119), QStringLiteral("119"));
    QCOMPARE(m_store->getSPNList(0, 100, 85), QList<quint32>());
    QCOMPARE(m_store->getSPNList(0, 100, 119), QList<quint32>{119});
    Store::PGN pgn;
    QVERIFY(!m_store->getPGN(0, 100, 85, pgn));
}

void TestStoreSignals::safeGroupsAreLeftOut()
{
    m_store->addPGN(0, 3, {.direction = 85, .isSafe = 1});
    m_store->addPGN(0, 2, {.direction = 119});
    m_store->addPGN(0, 1, {.direction = 85});
    m_store->executeSql(QStringLiteral("update PGNs0 set issafe = NULL where number = 1"));
    QCOMPARE(m_store->getPGNList(0), (QList<quint32>{1, 2, 3}));
    QCOMPARE(m_store->getPGNList(0, 0, true), (QList<quint32>{1, 2}));
    QCOMPARE(m_store->getPGNList(0, 85, true), QList<quint32>{1});
}

QList<int> TestStoreSignals::positions(quint32 pgn)
{
    QList<int> list;
    for (const quint32 number : m_store->getSPNList(0, pgn, 85)) {
        Store::SPN spn;
        m_store->getSPN(0, pgn, 85, number, spn);
        list.append(spn.bitPosition);
    }
    return list;
}

void TestStoreSignals::realignment_data()
{
    using Row = QList<std::tuple<int, int, int>>; // data type, bit size, position
    QTest::addColumn<Row>("rows");
    QTest::addColumn<bool>("force");
    QTest::addColumn<QList<int>>("expected");
    QTest::newRow("one signal") << Row{{5, 0, 4}} << false << QList<int>{4};
    QTest::newRow("one signal forced") << Row{{5, 0, 4}} << true << QList<int>{4};
    QTest::newRow("never laid out")
        << Row{{5, 0, 0}, {100, 0, 0}, {6, 0, 0}} << false << QList<int>{0, 8, 10};
    QTest::newRow("edited") << Row{{5, 0, 0}, {5, 0, 8}, {5, 0, 8}} << false << QList<int>{0, 8, 8};
    QTest::newRow("edited behind two at 0")
        << Row{{5, 0, 0}, {5, 0, 0}, {5, 0, 32}} << false << QList<int>{0, 0, 32};
    QTest::newRow("edited, forced")
        << Row{{5, 0, 0}, {5, 0, 8}, {5, 0, 8}} << true << QList<int>{0, 8, 16};
    QTest::newRow("strings count their own size")
        << Row{{120, 24, 0}, {121, 0, 0}, {10, 16, 0}, {5, 99, 0}} << false
        << QList<int>{0, 24, 24, 40};
}

void TestStoreSignals::realignment()
{
    using Row = QList<std::tuple<int, int, int>>;
    QFETCH(Row, rows);
    QFETCH(bool, force);
    QFETCH(QList<int>, expected);
    for (int i = 0; i < rows.size(); ++i) {
        const auto [type, size, position] = rows.at(i);
        m_store->addSPN(0, 7, 85, quint32(100 - i),
                        {.pos = quint16(i + 250), // across the width of a byte

                         .dataType = quint16(type),
                         .bitSize = quint16(size),
                         .bitPosition = quint16(position)});
    }
    m_store->realignSPNs(0, 85, 7, force);
    QCOMPARE(positions(7), expected);
}

void TestStoreSignals::elementsRealign()
{
    for (quint32 i = 0; i < 3; ++i)
        m_store->addDataElement(0, 1, 85, i, {.dataType = CAN::UNSIGNED16});
    m_store->realignDataElements(0, 85, 1);
    Store::DataElement element;
    QVERIFY(m_store->getDataElement(0, 1, 85, 2, element));
    QCOMPARE(element.bitPos, quint16(32));
    element.bitPos = 5;
    element.pos = 77;
    m_store->addDataElement(0, 1, 85, 2, element);
    m_store->realignDataElements(0, 85, 1);
    QVERIFY(m_store->getDataElement(0, 1, 85, 2, element));
    QCOMPARE(element.bitPos, quint16(5));
    QCOMPARE(element.pos, quint8(0)); // an update leaves the row's place alone
}

void TestStoreSignals::copiesGroups()
{
    Store source;
    QVERIFY(source.createNewDataBase());
    for (const quint32 number : {0u, 65280u, 0x3FFFFu, 0x40000u})
        source.addPGN(0, number, {.number = number, .direction = 119});
    source.addSPN(0, 65280, 119, 2, {.pos = 0, .implementation = 0});
    source.addSPN(0, 65280, 119, 1, {.pos = 1, .implementation = 2});
    m_store->addPGN(0, 65280, {.direction = 119});
    m_store->addSPN(0, 65280, 119, 99, {});
    Store::copyPGNs(*m_store, source, 0, 0, 0x3FFFF);
    QCOMPARE(m_store->getPGNList(0), (QList<quint32>{0, 65280, 0x3FFFF}));
    QCOMPARE(m_store->getSPNList(0, 65280, 119), (QList<quint32>{2, 1}));
    QVERIFY(!Store::copyPGN(*m_store, source, 0, 0, 5, 119, 119));
    for (const int rule : {0, 2}) {
        QVERIFY(Store::copyPGN(*m_store, source, 0, 0, 65280, 119, 85, rule));
        for (const quint32 number : {1u, 2u}) {
            Store::SPN spn;
            QVERIFY(m_store->getSPN(0, 65280, 85, number, spn));
            QCOMPARE(int(spn.implementation), rule);
        }
    }
}

void TestStoreSignals::foldsPageKeys()
{
    m_store->addPGN(0, 0x1234, {.number = 0x1234, .edpDpKey = 2, .direction = 85});
    m_store->addSPN(0, 0x1234, 85, 5, {.spn = 5});
    m_store->addPGN(0, 0x21235, {.name = QStringLiteral("kept"), .direction = 85});
    m_store->addPGN(0, 0x1235, {.number = 0x1235, .edpDpKey = 2, .direction = 85});
    for (int opening = 0; opening < 2; ++opening) {
        m_store->foldPageKeys(0);
        QCOMPARE(m_store->getPGNList(0), (QList<quint32>{0x1235, 0x21234, 0x21235}));
    }
    QCOMPARE(m_store->getPGNName(0, 0x21235, 85), QStringLiteral("kept"));
    QCOMPARE(m_store->getSPNList(0, 0x21234, 85), QList<quint32>{5});
}

void TestStoreSignals::cacheAnswers()
{
    m_store->addPGN(0, 1, {.direction = 85});
    m_store->addSPN(0, 1, 85, 20, {.pos = 0, .defaultValue = QStringLiteral("a")});
    m_store->addSPN(0, 1, 85, 10, {.pos = 1});
    QVERIFY(m_store->loadSPNCache(0));
    m_store->executeSql(QStringLiteral("update SPNs0 set defaultvalue = 'b'"));
    Store::SPN spn;
    QVERIFY(m_store->getSPN(0, 1, 85, 20, spn));
    QCOMPARE(spn.defaultValue, QStringLiteral("a"));
    QCOMPARE(m_store->getSPNList(0, 1, 85), (QList<quint32>{20, 10}));
    m_store->addSPN(0, 1, 85, 30, {.pos = 2}); // ends what the cache has of the line
    QCOMPARE(m_store->getSPNList(0, 1, 85), (QList<quint32>{20, 10, 30}));
    QVERIFY(m_store->getSPN(0, 1, 85, 20, spn));
    QCOMPARE(spn.defaultValue, QStringLiteral("b"));
}

void TestStoreSignals::canMessages()
{
    QVERIFY(m_store->addCANID(0, 256,
                              {.name = QStringLiteral("std"), .cycleTime = 50, .direction = 85}));
    QVERIFY(
        m_store->addCANID(0, 256 | 0x20000000, {.name = QStringLiteral("ext"), .direction = 85}));
    QVERIFY(m_store->addDataElement(0, 256, 85, 1, {.name = QStringLiteral("e")}));
    QCOMPARE(m_store->getCANIDList(0, 85), (QList<quint32>{256, 256 | 0x20000000}));
    QCOMPARE(m_store->getCANIDName(0, 256 | 0x20000000, 85), QStringLiteral("ext"));
    QCOMPARE(m_store->getDataElementName(0, 256, 85, 1), QStringLiteral("e"));
    m_store->deleteCANID(0, 256 | 0x20000000, 85);
    QCOMPARE(m_store->getDataElementList(0, 256, 85), QList<quint32>{1});
    QVERIFY(Store::copyCANID(*m_store, *m_store, 0, 0, 256, 85, 119));
    QCOMPARE(m_store->getDataElementList(0, 256, 119), QList<quint32>{1});
    m_store->deleteCANID(0, 256, 85);
    QVERIFY(!m_store->canIdExists(0, 256, 85));
    QVERIFY(m_store->getDataElementList(0, 256, 85).isEmpty());
    Store::CANID message;
    QVERIFY(m_store->getCANID(0, 256, 119, message));
    QCOMPARE(message.cycleTime, quint16(50));
}

QTEST_GUILESS_MAIN(TestStoreSignals)
#include "tst_store_signals.moc"
