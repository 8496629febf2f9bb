#include "canopen/canopentypes.h"
#include "generators/base/dictionaryfacts.h"
#include "generators/base/dictionaryfactsspecifiers.h"
#include "tests/generatedc/testproject.h"

#include <QTest>

using namespace CAN;

namespace {

using Facts = DictionaryFacts;

constexpr auto u8 = std::size_t(TableGroup::U8);
constexpr auto u16 = std::size_t(TableGroup::U16);
constexpr auto u32 = std::size_t(TableGroup::U32);

Facts factsOf(TestProject &project, bool addressRows = false)
{
    return Facts::collect(project.store(), DictionaryOptions::of(project.store(), addressRows));
}

} // namespace

class TestDictionaryFacts : public QObject
{
    Q_OBJECT

private slots:
    void literals_data()
    {
        QTest::addColumn<quint16>("dataType");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("automatic");
        QTest::addColumn<QByteArray>("decimal");
        const auto row = [](quint16 dataType, const char *text, const char *automatic,
                            const char *decimal = nullptr) {
            QTest::addRow("%d %s", dataType, text)
                << dataType << QString(text) << QByteArray(automatic)
                << QByteArray(decimal ? decimal : automatic);
        };
        row(UNSIGNED8, "017", "(UNSIGNED8)15u", "(UNSIGNED8)17u");
        row(UNSIGNED8, " 0x1f ", "(UNSIGNED8)31u");
        row(UNSIGNED8, "300", "(UNSIGNED8)300u");
        row(UNSIGNED8, "x", "(UNSIGNED8)0u");
        row(UNSIGNED8, "08", "(UNSIGNED8)0u", "(UNSIGNED8)8u");
        row(UNSIGNED32, "$NodeId+0x580", "(UNSIGNED32)1408u");
        row(UNSIGNED32, "$NODEID", "(UNSIGNED32)0u");
        row(UNSIGNED32, "0x80000000 + $NODEID", "(UNSIGNED32)2147483648u");
        row(INTEGER8, "-128", "(INTEGER8)-128");
        row(INTEGER8, "0xFF", "(INTEGER8)255");
        row(INTEGER32, "-99999999999999999999", "(INTEGER32)(-9223372036854775807 - 1)");
        row(INTEGER24, "-2", "I24_SET(0xff,0xff,0xfe)");
        row(UNSIGNED24, "0x123456", "U24_SET(0x12,0x34,0x56)");
        row(UNSIGNED40, "1", "U40_SET(0x00,0x00,0x00,0x00,0x01)");
        row(UNSIGNED48, "0xA1B2C3D4E5F6", "U48_SET(0xa1,0xb2,0xc3,0xd4,0xe5,0xf6)");
        row(UNSIGNED64, "18446744073709551615", "U64_SET(0xff,0xff,0xff,0xff,0xff,0xff,0xff,0xff)");
        row(REAL32, "0.1", "(REAL32)0.1f");
        row(REAL32, "3", "(REAL32)3.0f");
        row(REAL32, "1e-40", "(REAL32)1e-40f");
        row(REAL32, "-1e99", "(REAL32)(-1.0f / 0.0f)");
        row(REAL64, "-2", "U64_SET(0xc0,0x00,0x00,0x00,0x00,0x00,0x00,0x00)");
        row(INTEGER40, "-2", "U40_SET(0xff,0xff,0xff,0xff,0xfe)");
    }

    void literals()
    {
        QFETCH(quint16, dataType);
        QFETCH(QString, text);
        const TableGroup group = DictionaryTypes::of(dataType).group;
        quint64 value = 0;
        DictionaryTypes::parse(dataType, text, NumberText::Base::Automatic, value);
        QTEST(DictionaryTypes::literal(group, value), "automatic");
        DictionaryTypes::parse(dataType, text, NumberText::Base::Decimal, value);
        QTEST(DictionaryTypes::literal(group, value), "decimal");
    }

    void specifiers_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("sub");
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<int>("value");
        const auto row = [](int index, int sub, const char *suffix, int value) {
            QTest::addRow("0x%x:%d", index, sub) << index << sub << QString(suffix) << value;
        };
        row(0x1000, 0, "", 0);
        row(0x1004, 0, "", 0);
        row(0x1005, 0, "_SYNC", 0x1005);
        row(0x1016, 0, "", 0);
        row(0x1016, 1, "_ERRCTRL", 0x1016);
        row(0x1029, 1, "_ERRCTRL", 0x1029);
        row(0x1029, 2, "", 0);
        row(0x1200, 1, "_SDO_SERVER", 1);
        row(0x127F, 1, "_SDO_SERVER", 0x80);
        row(0x12FF, 3, "_SDO_CLIENT", 0x80);
        row(0x1380, 1, "_SRDO", 0x1380);
        row(0x13F1, 1, "", 0);
        row(0x13FF, 0, "_SRDO", 0x13FF);
        row(0x1400, 0, "", 0);
        row(0x15FF, 2, "_RPDO", 0x200);
        row(0x1600, 0, "_RMAP", 1);
        row(0x19FF, 1, "_TPDO", 0x200);
        row(0x1BFF, 8, "_TMAP", 0x200);
        row(0x1C00, 1, "", 0);
        row(0x1F82, 0, "_NMT", 0x1F82);
        row(0x1F90, 1, "_FLYMA", 0x1F90);
        row(0xFFFF, 0, "", 0);
    }

    void specifiers()
    {
        QFETCH(int, index);
        QFETCH(int, sub);
        const ServiceSpecifier specifier = serviceSpecifier(quint16(index), quint8(sub));
        QTEST(QString(specifier.suffix), "suffix");
        QTEST(int(specifier.value), "value");
    }

    /// Constants are sets in the order of first appearance, variables have slots of their own.
    void tables()
    {
        TestProject project(true);
        project.object(0, 0x1018, CANopen::RECORD, "Identity",
                       {constant(UNSIGNED32, "7"), constant(UNSIGNED32, "9"),
                        constant(UNSIGNED32, "0x7"), constant(UNSIGNED32, "0")});
        project.variable(0, 0x2000, "a", managed(UNSIGNED32, "9"));
        project.variable(0, 0x2001, "b", managed(UNSIGNED32, "9"));
        project.variable(0, 0x2002, "time", managed(TIME_OF_DAY, "1"));
        project.variable(0, 0x0020, "type definition", managed(UNSIGNED8, "1"));
        const Facts facts = factsOf(project);

        QCOMPARE(facts.constants[u32], (std::vector<quint64>{7, 9, 0}));
        QCOMPARE(facts.managed[u32].size(), 2u);
        QCOMPARE(facts.find(0, 0x1018, 3)->position, 0u);
        QCOMPARE(facts.find(0, 0x2001, 0)->position, 1u);
        QCOMPARE(facts.find(0, 0x2001, 0)->defaultPosition, 1u);
        QCOMPARE(int(facts.find(0, 0x2002, 0)->dataType), int(UNSIGNED48));
        QCOMPARE(facts.description.size(), 8u);
        QCOMPARE(facts.assignment.size(), 4u);
        QVERIFY(facts.hasExtendedTypes);
        QVERIFY(!facts.find(0, 0x2000, 1) && !facts.findObject(0, 0x0020));
    }

    void sharedObjects()
    {
        TestProject project(true);
        project.addLine(1);
        for (const quint8 line : {0, 1}) {
            project.addDevice(line);
            auto shared = managed(UNSIGNED16, "5");
            shared.sharedlines = true;
            project.variable(line, 0x2000, "shared", shared);
            project.variable(line, 0x2001, "own", managed(UNSIGNED16, "6"));
        }
        auto onlyHere = managed(UNSIGNED16, "5");
        onlyHere.sharedlines = true;
        project.variable(1, 0x2002, "shared with nobody", onlyHere);
        const Facts facts = factsOf(project);

        QVERIFY(facts.multiLine && facts.lineForm);
        QCOMPARE(facts.activeLines, (QList<quint8>{0, 1}));
        QCOMPARE(facts.findObject(1, 0x2000)->firstRow, facts.findObject(0, 0x2000)->firstRow);
        QVERIFY(facts.findObject(1, 0x2001)->firstRow != facts.findObject(0, 0x2001)->firstRow);
        QCOMPARE(facts.findObject(1, 0x2002)->rowCount, 1u);
        // Heartbeat time, shared, two of their own, and the one of line 1.
        QCOMPARE(facts.managed[u16].size(), 6u);
        QCOMPARE(facts.lines[1].assignRows, facts.lines[0].assignRows + 1);
        QCOMPARE(facts.lines[1].firstAssignRow, quint32(facts.lines[0].assignRows));
    }

    void compactRuns()
    {
        TestProject project(true);
        project.setting("compact_array_description", "1");
        using Subs = std::vector<TestProject::Sub>;
        const auto like = managed(UNSIGNED16, "7");
        project.object(0, 0x11FF, CANopen::ARRAY, "too low", Subs(4, like));
        project.object(0, 0x2000, CANopen::ARRAY, "run", Subs(4, like));
        project.object(0, 0x2001, CANopen::ARRAY, "too short", Subs(1, like));
        Subs differing(4, like);
        differing[2].nvstorage = true;
        project.object(0, 0x2002, CANopen::ARRAY, "last one alone", differing);
        differing[2] = like;
        differing[1].name = "Another";
        project.object(0, 0x2003, CANopen::ARRAY, "other name", differing);
        Subs implementations(4, like);
        implementations[0].implementation = implementations[1].implementation =
            CANopen::ManagedConst;
        project.object(0, 0x2004, CANopen::ARRAY, "other class", implementations);
        project.object(0, 0x2005, CANopen::ARRAY, "application",
                       Subs(4, application(UNSIGNED16, "7", "list[$z]")));
        project.object(0, 0x2006, CANopen::ARRAY, "gap", Subs(4, like));
        project.store().deleteSubIndex(0, 0x2006, 3);
        const Facts facts = factsOf(project);

        const QMap<quint16, int> firsts = {{0x11FF, 255}, {0x2000, 1},  {0x2001, 255},
                                           {0x2002, 255}, {0x2003, 3},  {0x2004, 3},
                                           {0x2005, 1},   {0x2006, 255}};
        for (auto it = firsts.begin(); it != firsts.end(); ++it)
            QCOMPARE(facts.findObject(0, it.key())->compactFrom, *it);
        QCOMPARE(facts.findObject(0, 0x2000)->rowCount, 2u);
        QVERIFY(facts.find(0, 0x2000, 1)->has(Facts::Compact));
        // Every subindex of a run keeps its slot.
        QCOMPARE(facts.find(0, 0x2000, 4)->position, facts.find(0, 0x2000, 1)->position + 3);
        // From the address of one application variable no other can be reached.
        QCOMPARE(factsOf(project, true).findObject(0, 0x2005)->compactFrom, 255);
    }

    void safetyVariables()
    {
        TestProject project(true);
        project.setting("static_srdo_data", "1");
        project.object(0, 0x1381, CANopen::RECORD, "SRDO mapping",
                       {constant(UNSIGNED32, "0x20000010"), constant(UNSIGNED32, "0x20010010")});
        project.variable(0, 0x2000, "plain", managed(UNSIGNED16, "0"));
        project.variable(0, 0x2001, "inverted", application(UNSIGNED16, "0", "safe"));
        project.variable(0, 0x2002, "other", managed(UNSIGNED16, "0"));
        const Facts facts = factsOf(project);
        QCOMPARE(QByteArray(facts.find(0, 0x2000, 0)->specifier), QByteArray("_SRDO"));
        QCOMPARE(QByteArray(facts.find(0, 0x2001, 0)->specifier), QByteArray("_SRDO"));
        QCOMPARE(QByteArray(facts.find(0, 0x2002, 0)->specifier), QByteArray("_VAR"));
        QCOMPARE(facts.srdoEntries[u16], 2);
    }

    void counts()
    {
        TestProject project(true);
        project.addDevice(0);
        project.pdo(0, 0x1400, {0x20000010});
        project.pdo(0, 0x1800, {0x20000010, 0x20000010, 0x20000010}, true);
        project.object(0, 0x1016, CANopen::ARRAY, "consumers",
                       std::vector<TestProject::Sub>(3, managed(UNSIGNED32, "0")));
        project.object(0, 0x1A05, CANopen::RECORD, "scanner", {});
        project.store().addSubIndex(0, 0x1A05, 0, constant(UNSIGNED8, "254"));
        auto stored = managed(UNSIGNED16, "1");
        stored.nvstorage = true;
        project.variable(0, 0x2000, "stored", stored);
        auto virtualSub = managed(UNSIGNED8, "1");
        virtualSub.implementation = CANopen::VirtualObject;
        project.object(0, 0x2001, CANopen::RECORD, "virtual", {virtualSub, virtualSub});
        const Facts facts = factsOf(project);
        const Facts::LineCounts &counts = facts.lines.front();

        QCOMPARE(counts.transmitPdos, 1);
        QCOMPARE(counts.transmitMappings, 2);
        QCOMPARE(counts.dynamicTransmitMappings, 1);
        QCOMPARE(counts.transmitMpdos, 1);
        QCOMPARE(counts.heartbeatConsumers, 3);
        QCOMPARE(counts.sdoServers, 1);
        QCOMPARE(facts.maxMapEntries, 3);
        QCOMPARE(counts.nvStorage.size(), 1);
        QCOMPARE(facts.virtualCounts[u8], 3);
        QCOMPARE(facts.virtualDescription.size(), 3u);
        QCOMPARE(facts.virtualAssignment.size(), 1u);
        QVERIFY(!facts.findObject(0, 0x2001)->isAssigned);
        QCOMPARE(facts.lines.front().assignRows, int(facts.objects.size()) - 1);
    }

    /// Positions are 16 bit numbers: more is told, never cut off silently.
    void tooManyEntries()
    {
        TestProject project(true);
        QList<ObjectDataBase::SubEntry> subs;
        for (int index = 0x2000; index < 0x2000 + 260; ++index) {
            project.object(0, quint16(index), CANopen::ARRAY, "big", {});
            for (int sub = 0; sub < 254; ++sub)
                subs.append({0, quint16(index), quint8(sub), managed(UNSIGNED8, "1")});
        }
        project.store().addSubIndices(subs);
        const Facts facts = factsOf(project);
        QCOMPARE(facts.problems.size(), 2);
        QVERIFY(facts.problems.first().contains("od_u8"));
        QVERIFY(facts.problems.last().contains("od_description"));
    }
};

QTEST_GUILESS_MAIN(TestDictionaryFacts)
#include "tst_dictionaryfacts.moc"
