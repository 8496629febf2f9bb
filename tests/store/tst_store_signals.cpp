#include "tests/support/records.h"
#include "tests/support/storefile.h"

using namespace Qt::StringLiterals;
using namespace StoreTest;
using namespace TestRecords;
using Store = ObjectDataBase;

/// J1939 parameter groups and raw CAN messages.
class TestStoreSignals : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }

    void init() { m_store = std::make_unique<TestStore>(); }

    void keepsEveryField()
    {
        auto pgn = filled<Store::PGN>();
        pgn.number = 0x2FFFF;
        pgn.direction = 119;
        pgn.edpDpKey = 0;
        auto spn = filled<Store::SPN>();
        spn.pgn = pgn.number;
        spn.spn = 500000;
        auto message = filled<Store::CANID>();
        message.id = 5;
        auto element = filled<Store::DataElement>();
        element.canId = 5;
        element.number = 7;
        spn.direction = message.direction = element.direction = 119;
        for (int pass = 0; pass < 2; ++pass) {
            QVERIFY(m_store->addPGN(0, pgn.number, pgn));
            QVERIFY(m_store->addSPN(0, pgn.number, 119, spn.spn, spn));
            QVERIFY(m_store->addCANID(0, 5, message) &&
                    m_store->addDataElement(0, 5, 119, 7, element));
            Store::PGN readPgn;
            QVERIFY(m_store->getPGN(0, pgn.number, 119, readPgn));
            QCOMPARE(valuesOf(readPgn), valuesOf(pgn));
            QCOMPARE(m_store->getPGNList(0).size(), 1);
            Store::SPN readSpn;
            QVERIFY(m_store->getSPN(0, pgn.number, 119, 500000, readSpn));
            QCOMPARE(valuesOf(readSpn), valuesOf(spn));
            QCOMPARE(m_store->getSPNName(0, pgn.number, 500000, 119), spn.name);
            QCOMPARE(m_store->getSPNDataType(0, pgn.number, 500000, 119), spn.dataType);
            Store::CANID readMessage;
            QVERIFY(m_store->getCANID(0, 5, 119, readMessage));
            QCOMPARE(valuesOf(readMessage), valuesOf(message));
            Store::DataElement readElement;
            QVERIFY(m_store->getDataElement(0, 5, 119, 7, readElement));
            QCOMPARE(valuesOf(readElement), valuesOf(element));
        }
    }

    void directionsAreIndependent()
    {
        for (const quint8 direction : {85, 119}) {
            QVERIFY(m_store->addPGN(0, 100,
                                    {.name = QString::number(direction), .direction = direction}));
            QVERIFY(m_store->addSPN(0, 100, direction, direction, {}));
        }
        m_store->deletePGN(0, 100, 85);
        QVERIFY(!m_store->pgnExists(0, 100, 85));
        QCOMPARE(m_store->getPGNName(0, 100, 119), u"119"_s);
        QCOMPARE(m_store->getSPNList(0, 100, 85), QList<quint32>());
        QCOMPARE(m_store->getSPNList(0, 100, 119), QList<quint32>{119});
        Store::PGN pgn;
        QVERIFY(!m_store->getPGN(0, 100, 85, pgn));
    }

    void safeGroupsAreLeftOut()
    {
        m_store->addPGN(0, 3, {.direction = 85, .isSafe = 1});
        m_store->addPGN(0, 2, {.direction = 119});
        m_store->addPGN(0, 1, {.direction = 85});
        m_store->executeSql(u"update PGNs0 set issafe = NULL where number = 1"_s);
        QCOMPARE(m_store->getPGNList(0), (QList<quint32>{1, 2, 3}));
        QCOMPARE(m_store->getPGNList(0, 0, true), (QList<quint32>{1, 2}));
        QCOMPARE(m_store->getPGNList(0, 85, true), QList<quint32>{1});
    }

    void realignment()
    {
        struct
        {
            QList<std::tuple<quint16, quint16, quint16>> rows; // data type, bit size, position
            bool force;
            QList<int> expected;
        } const cases[] = {
            {{{5, 0, 4}}, false, {4}},
            {{{5, 0, 4}}, true, {4}},
            {{{5, 0, 0}, {100, 0, 0}, {6, 0, 0}}, false, {0, 8, 10}}, // never laid out
            {{{5, 0, 0}, {5, 0, 8}, {5, 0, 8}}, false, {0, 8, 8}},    // edited
            {{{5, 0, 0}, {5, 0, 0}, {5, 0, 32}}, false, {0, 0, 32}},
            {{{5, 0, 0}, {5, 0, 8}, {5, 0, 8}}, true, {0, 8, 16}},
            {{{120, 24, 0}, {121, 0, 0}, {10, 16, 0}, {5, 99, 0}}, false, {0, 24, 24, 40}}};
        quint32 pgn = 0;
        for (const auto &[rows, force, expected] : cases) {
            quint16 pos = 250; // across the width of a byte
            ++pgn;
            for (const auto &[type, size, position] : rows) {
                m_store->addSPN(
                    0, pgn, 85, 1000 - pos,
                    {.pos = pos, .dataType = type, .bitSize = size, .bitPosition = position});
                ++pos;
            }
            m_store->realignSPNs(0, 85, pgn, force);
            QCOMPARE(positions(pgn), expected);
        }
    }

    void elementsRealign()
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

    void copiesGroups()
    {
        TestStore source;
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

    void foldsPageKeys()
    {
        m_store->addPGN(0, 0x1234, {.number = 0x1234, .edpDpKey = 2, .direction = 85});
        m_store->addSPN(0, 0x1234, 85, 5, {.spn = 5});
        m_store->addPGN(0, 0x21235, {.name = u"kept"_s, .direction = 85});
        m_store->addPGN(0, 0x1235, {.number = 0x1235, .edpDpKey = 2, .direction = 85});
        for (int opening = 0; opening < 2; ++opening) {
            m_store->foldPageKeys(0);
            QCOMPARE(m_store->getPGNList(0), (QList<quint32>{0x1235, 0x21234, 0x21235}));
        }
        QCOMPARE(m_store->getPGNName(0, 0x21235, 85), u"kept"_s);
        QCOMPARE(m_store->getSPNList(0, 0x21234, 85), QList<quint32>{5});
    }

    void cacheAnswers()
    {
        m_store->addPGN(0, 1, {.direction = 85});
        m_store->addSPN(0, 1, 85, 20, {.pos = 0, .defaultValue = u"a"_s});
        m_store->addSPN(0, 1, 85, 10, {.pos = 1});
        QVERIFY(m_store->loadSPNCache(0));
        m_store->executeSql(u"update SPNs0 set defaultvalue = 'b'"_s);
        Store::SPN spn;
        QVERIFY(m_store->getSPN(0, 1, 85, 20, spn));
        QCOMPARE(spn.defaultValue, u"a"_s);
        QCOMPARE(m_store->getSPNList(0, 1, 85), (QList<quint32>{20, 10}));
        m_store->addSPN(0, 1, 85, 30, {.pos = 2}); // ends what the cache has of the line
        QCOMPARE(m_store->getSPNList(0, 1, 85), (QList<quint32>{20, 10, 30}));
        QVERIFY(m_store->getSPN(0, 1, 85, 20, spn));
        QCOMPARE(spn.defaultValue, u"b"_s);
    }

    void canMessages()
    {
        QVERIFY(m_store->addCANID(0, 256, {.name = u"std"_s, .cycleTime = 50, .direction = 85}));
        QVERIFY(m_store->addCANID(0, 256 | 0x20000000, {.name = u"ext"_s, .direction = 85}));
        QVERIFY(m_store->addDataElement(0, 256, 85, 1, {.name = u"e"_s}));
        QCOMPARE(m_store->getCANIDList(0, 85), (QList<quint32>{256, 256 | 0x20000000}));
        QCOMPARE(m_store->getCANIDName(0, 256 | 0x20000000, 85), u"ext"_s);
        QCOMPARE(m_store->getDataElementName(0, 256, 85, 1), u"e"_s);
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

private:
    QList<int> positions(quint32 pgn)
    {
        QList<int> list;
        for (const quint32 number : m_store->getSPNList(0, pgn, 85)) {
            Store::SPN spn;
            m_store->getSPN(0, pgn, 85, number, spn);
            list.append(spn.bitPosition);
        }
        return list;
    }
    std::unique_ptr<Store> m_store;
};

QTEST_GUILESS_MAIN(TestStoreSignals)
#include "tst_store_signals.moc"
