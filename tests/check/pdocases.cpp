#include "checkcases.h"

namespace {

using Project = TestProject;
using Sub = TestProject::Sub;

/// The first entry of the TPDO, or another object's subindex.
Change entry(const char *value, quint16 index = 0x1A00, quint8 subindex = 1)
{
    return values({{index, subindex, value}});
}

Change target(const std::function<void(Sub &)> &change)
{
    return edited(0x2000, 2, change);
}

/// A second TPDO or RPDO.
Change pdo(quint16 communication, const char *cobId, const QStringList &entries = {"0x20000108"},
           const char *access = "const", const char *count = nullptr)
{
    return [=](Project &p) {
        p.pdo(communication, QLatin1String(cobId), entries, access);
        if (count != nullptr)
            p.value(static_cast<quint16>(communication + 0x200), 0, QLatin1String(count));
    };
}

/// An object of 64 bits and one of 8 in the TPDO.
Change longPdo(bool onCanFd, const char *count)
{
    return [=](Project &p) {
        p.variable(0x2100, "0", [](Sub &sub) {
            sub.datatype = CAN::UNSIGNED64;
            sub.pdomapping = PDOMapping::TPDO;
        });
        p.pdo(0x1810, "$NODEID+0x190", {"0x21000040", "0x20000108"}, "rw");
        p.value(0x1A10, 0, QLatin1String(count));
        if (onCanFd)
            canFd(p);
    };
}

/// A bit in an entry of a dynamic PDO that is not active.
Change inactiveBit(int granularity, const char *bitwise)
{
    return [=](Project &p) {
        p.variable(0x2100, "0", [](Sub &sub) {
            sub.datatype = CAN::BOOLEAN;
            sub.pdomapping = PDOMapping::Default;
        });
        p.pdo(0x1810, "$NODEID+0x190", {"0x20000108", "0x21000001"}, "rw");
        p.value(0x1A10, 0, "1");
        p.granularity(granularity);
        p.general("bitwise_mapping", bitwise);
    };
}

Change times(const char *inhibit, const char *event)
{
    return [=](Project &p) {
        p.sub(0x1800, 3, QLatin1String(inhibit), Make::type(CAN::UNSIGNED16));
        p.sub(0x1800, 5, QLatin1String(event), Make::type(CAN::UNSIGNED16));
        p.value(0x1800, 0, "5");
    };
}

/// 0 keeps a subindex of the TPDO out of the EDS, 2 puts it in.
Change inEds(quint8 subindex, quint8 choice)
{
    return edited(0x1800, subindex, Make::inEds(choice));
}

QList<CheckCase> mappingCases()
{
    return {
        {"no communication object", 1, "CO-PDO-NO-COMMUNICATION 1a00 1800", removed({0x1800}),
         removed({0x1800, 0x1A00})},
        {"empty mapping", 1, "CO-PDO-EMPTY 1a10 0", pdo(0x1810, "$NODEID+0x80000190", {}),
         pdo(0x1810, "$NODEID+0x190", {}, "const", "254")},
        {"mixed access", 1, "CO-PDO-ACCESS-MIXED 1a00", edited(0x1A00, 2, Make::access("rw")),
         edited(0x1A00, 1, Make::access("ro")) + edited(0x1A00, 2, Make::access("ro")) +
             edited(0x1A00, 0, Make::access("ro"))},
        {"empty entry", 1, "CO-PDO-ENTRY-EMPTY 1a00 2", entry("0", 0x1A00, 2),
         entry("0x00050008")}, // a dummy
        {"mapped object missing", 1, "CO-PDO-MAPPED-MISSING 1a00 200a 03", entry("0x200A0308"),
         entry("0x20000208")},
        {"mapping forbidden", 2,
         "CO-PDO-MAPPED-FORBIDDEN 1a00 2000 02; CO-SRDO-MAPPED-FORBIDDEN 1381 2000 02",
         target([](Sub &sub) { sub.pdomapping = PDOMapping::Forbidden; }),
         target([](Sub &sub) { sub.pdomapping = PDOMapping::TPDO; })},
        {"entry too short", 0, "CO-PDO-MAPPED-SMALL 1a00 2000 02",
         target(Make::type(CAN::UNSIGNED16)), target(Make::type(CAN::INTEGER8))},
        {"entry too long", 1, "CO-PDO-MAPPED-LARGE 1a00 2000 02", entry("0x20000210"),
         entry("0x20000208")},
        {"access in a TPDO", 1, "CO-PDO-ACCESS-TPDO 1a00 2000 02", target(Make::access("rww")),
         target(Make::access("ro"))},
        {"access in an RPDO", 1, "CO-PDO-ACCESS-RPDO 1600 2000 01",
         edited(0x2000, 1, Make::access("rwr")), target(Make::access("rwr"))},
        {"PDO too long", 1, "CO-PDO-LENGTH 1a10", longPdo(false, "2"), longPdo(true, "2")},
        {"inactive entry is not added", 1, "CO-PDO-COUNT 1a10", longPdo(true, "3"),
         longPdo(false, "1")},
        {"number of entries", 1, "CO-PDO-COUNT 1a10",
         pdo(0x1810, "$NODEID+0x190", {"0x20000108"}, "rw", "64"),
         pdo(0x1810, "$NODEID+0x190", {"0x20000108"}, "rw", "65")},
        {"empty dynamic TPDO", 0, "CO-PDO-DISABLED 1803 $NODEID+0x80000480",
         pdo(0x1803, "$NODEID+0x480", {"0x20000108"}, "rw", "0"),
         pdo(0x1803, "$NODEID+0x80000480", {"0x20000108"}, "rw", "0")},
        {"empty fifth TPDO", 1, "CO-PDO-ENABLED-EMPTY 1804 1a04",
         pdo(0x1804, "$NODEID+0x490", {"0x20000108"}, "rw", "0"),
         pdo(0x1804, "$NODEID+0xC0000490", {"0x20000108"}, "rw", "0")},
        {"bitwise not enabled", 1, "CO-PDO-BITWISE", inactiveBit(1, "0"), inactiveBit(1, "1")},
        {"bitwise granularity", 0, "CO-PDO-BITWISE-GRANULARITY", inactiveBit(8, "1"),
         inactiveBit(1, "1")},
        // an error that does not stop the run
        {"dynamic granularity", 0, "CO-PDO-DYNAMIC-GRANULARITY", inactiveBit(0, "1"),
         [](Project &p) { p.granularity(0); }},
    };
}

QList<CheckCase> communicationCases()
{
    return {
        {"no mapping object", 1, "CO-PDO-NO-MAPPING 1400 1600", removed({0x1600}),
         removed({0x1400, 0x1600})},
        {"COB-ID not in the EDS", 0, "CO-PDO-EDS-COBID 1800", inEds(1, 0), inEds(1, 2)},
        {"transmission type not in the EDS", 0, "CO-PDO-EDS-TYPE 1800", inEds(2, 0), inEds(2, 2)},
        {"COB-ID twice", 1, "CO-PDO-OVERLAP 1810 $NODEID+384 1800", pdo(0x1810, " $NODEID+384 "),
         pdo(0x1810, "0x180")},
        {"COB-ID of an RPDO and a TPDO", 1, "CO-PDO-OVERLAP 1800 $NODEID+0x180 1410",
         pdo(0x1410, "$NODEID+0x40000180"), pdo(0x1410, "$NODEID+0x80000180")},
        {"event timer", 0, "CO-PDO-TIMES 1800", times("1000", "100"), times("999", "100")},
        {"connection set", 0, "CO-PDO-PREDEFINED 1800; CO-PDO-PREDEFINED-NOTE",
         entry("$NODEID+0x181", 0x1800), entry("$NODEID+0xC0000180", 0x1800)},
        {"connection set of two", 0,
         "CO-PDO-PREDEFINED 1400; CO-PDO-PREDEFINED 1800; CO-PDO-PREDEFINED-NOTE",
         values({{0x1800, 1, "0x180"}, {0x1400, 1, "0x201"}}) +
             settings({{"overwrite_predef", "no"}}),
         values({{0x1800, 1, "0x180"}}) + settings({{"overwrite_predef", "1"}})},
    };
}

QList<CheckCase> srdoCases()
{
    return {
        {"SRDO without mapping", 1, "CO-SRDO-NO-MAPPING 1301 1381", removed({0x1381}),
         removed({0x1301})},
        {"SRDO maps nothing", 1, "CO-SRDO-MAPPED-MISSING 1381 2000 ff",
         entry("0x2000FF08", 0x1381, 2), entry("0x20000208", 0x1381, 1)},
        {"SRDO maps a managed variable", 1, "CO-SRDO-MAPPED-MANAGED 1381 2000 02",
         target(Make::implementation(CANopen::ManagedVariable)),
         target(Make::implementation(CANopen::Variable, "other"))},
    };
}

} // namespace

QList<CheckCase> pdoCases()
{
    return mappingCases() + communicationCases() + srdoCases();
}
