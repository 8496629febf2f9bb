#include "checkcases.h"

namespace {

using Project = TestProject;
using Sub = TestProject::Sub;

const QString error = "<strong>Error: </strong>";
const QString disabledText = "<i>Corrected: Object 0x%1</i>: The COB-ID of this PDO has been "
                             "disabled (%2), because it does not contain active mapping entries.";
const QString enabledEmptyText =
    error + "Object 0x%1: PDO is enabled but its mapping table (0x%2) is empty (sub 0 = 0).";
const QString collisionText =
    error + "Object 0x%1: COB-ID '%2' is already used by PDO object 0x%3.";
const QString predefinedText = "Warning: Object 0x%1-0x01: The COB-ID for this PDO does not follow "
                               "the pre-defined connection set.";
const QString predefinedNote =
    "Enable CANopen Stack Settings -> Overwrite pre-defined connection set and call "
    "userOverwriteCobIdSettings() to use these COB-ID settings.\n\n";

/// The first entry of the TPDO, or another object's subindex.
Change entry(const char *value, quint16 index = 0x1A00, quint8 subindex = 1)
{
    return [=](Project &p) { p.value(index, subindex, QLatin1String(value)); };
}

Change target(const std::function<void(Sub &)> &change)
{
    return [=](Project &p) { p.edit(0x2000, 2, change); };
}

/// A second TPDO or RPDO.
Change pdo(quint16 communication, const char *cobId, const QStringList &entries = {"0x20000108"},
           const char *access = "const", const char *count = nullptr)
{
    return [=](Project &p) {
        p.pdo(communication, QLatin1String(cobId), entries, access);
        if (count != nullptr) {
            p.value(static_cast<quint16>(communication + 0x200), 0, QLatin1String(count));
        }
    };
}

/// An object of 64 bits and one of 8 in the TPDO.
Change longPdo(bool canFd, const char *count)
{
    return [=](Project &p) {
        p.variable(0x2100, "0", [](Sub &sub) {
            sub.datatype = CAN::UNSIGNED64;
            sub.pdomapping = PDOMapping::TPDO;
        });
        p.pdo(0x1810, "$NODEID+0x190", {"0x21000040", "0x20000108"}, "rw");
        p.value(0x1A10, 0, QLatin1String(count));
        if (canFd) {
            p.general("canfd_supported", "1");
            p.remove(0x1000);
            p.array(0x1000, {"0x191"}, Make::type(CAN::UNSIGNED32));
        }
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
        p.general("bitwise_mapping", QLatin1String(bitwise));
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

Change notInEds(quint8 subindex)
{
    return
        [=](Project &p) { p.edit(0x1800, subindex, [](Sub &sub) { sub.writedefaulttoeds = 0; }); };
}

QList<CheckCase> mappingCases()
{
    const QString mapped = "Object 0x%1: %2";
    return {
        {"no communication object",
         [](Project &p) { p.remove(0x1800); },
         {error + "Object 0x1a00: The corresponding PDO communication parameter object 0x1800 does "
                  "not exist."},
         1,
         [](Project &p) {
             p.remove(0x1800);
             p.remove(0x1A00);
         }},
        {"empty mapping",
         pdo(0x1810, "$NODEID+0x80000190", {}),
         {error + "Object 0x1a10 of line 0: The PDO mapping table does not contain any mapped "
                  "object."},
         1,
         pdo(0x1810, "$NODEID+0x190", {}, "const", "254")},
        {"mixed access",
         [](Project &p) { p.edit(0x1A00, 2, Make::access("rw")); },
         {error + "Object 0x1a00: All subindices of a PDO mapping object must have the same access "
                  "type. (const for static mapping or rw for dynamic mapping"},
         1,
         [](Project &p) {
             p.edit(0x1A00, 1, Make::access("ro"));
             p.edit(0x1A00, 2, Make::access("ro"));
             p.edit(0x1A00, 0, Make::access("ro"));
         }},
        {"empty entry",
         entry("0", 0x1A00, 2),
         {error + "Object 0x1a00:2 is an active mapping entry but maps no object (empty entry)."},
         1,
         entry("0x00050008")}, // a dummy
        {"mapped object missing",
         entry("0x200A0308"),
         {error + "Object 0x1a00: The mapped object 0x200a:03 does not exist."},
         1,
         entry("0x20000208")},
        {"mapping forbidden",
         target([](Sub &sub) { sub.pdomapping = PDOMapping::Forbidden; }),
         // the SRDO maps it too
         {error + "Object 0x1a00: PDO mapping is not allowed for object 0x2000:02.",
          error + "Object 0x1381: The PDO mapping must be enabled for object 0x2000:02 to use it "
                  "in an SRDO."},
         2,
         target([](Sub &sub) { sub.pdomapping = PDOMapping::TPDO; })},
        {"entry too short",
         target(Make::type(CAN::UNSIGNED16)),
         {"Warning: Object 0x1a00: The size of the mapped object 0x2000:02 is too small."},
         0,
         target(Make::type(CAN::INTEGER8))},
        {"entry too long",
         entry("0x20000210"),
         {error + "Object 0x1a00: The size of the mapped object 0x2000:02 is too large."},
         1,
         entry("0x20000208")},
        {"access in a TPDO",
         target(Make::access("rww")),
         {error + "Object 0x1a00: The access right of the mapped object 0x2000:02 does not fit for "
                  "a TPDO."},
         1,
         target(Make::access("ro"))},
        {"access in an RPDO",
         [](Project &p) { p.edit(0x2000, 1, Make::access("rwr")); },
         {error + "Object 0x1600: The access right of the mapped object 0x2000:01 does not fit for "
                  "an RPDO."},
         1,
         target(Make::access("rwr"))},
        {"PDO too long",
         longPdo(false, "2"),
         {error + "Object 0x1a10: Size of PDO exceeds the limit. "},
         1,
         longPdo(true, "2")},
        {"inactive entry is not added",
         longPdo(true, "3"),
         {error + "Object 0x1a10:  Invalid number of mapping entries."},
         1,
         longPdo(false, "1")},
        {"number of entries",
         pdo(0x1810, "$NODEID+0x190", {"0x20000108"}, "rw", "64"),
         {error + "Object 0x1a10:  Invalid number of mapping entries."},
         1,
         pdo(0x1810, "$NODEID+0x190", {"0x20000108"}, "rw", "65")},
        {"empty dynamic TPDO",
         pdo(0x1803, "$NODEID+0x480", {"0x20000108"}, "rw", "0"),
         {disabledText.arg("1803", "$NODEID+0x80000480")},
         0,
         pdo(0x1803, "$NODEID+0x80000480", {"0x20000108"}, "rw", "0")},
        {"empty fifth TPDO",
         pdo(0x1804, "$NODEID+0x490", {"0x20000108"}, "rw", "0"),
         {enabledEmptyText.arg("1804", "1a04")},
         1,
         pdo(0x1804, "$NODEID+0xC0000490", {"0x20000108"}, "rw", "0")},
        {"bitwise not enabled",
         inactiveBit(1, "0"),
         {error + "Bitwise mapping not enabled in general settings. Correct general settings or "
                  "PDO mapping."},
         1,
         inactiveBit(1, "1")},
        {"bitwise granularity",
         inactiveBit(8, "1"),
         {"<strong>Warning: </strong>Bitwise mapping cannot be used with a granularity of 8. "
          "Correct device description settings or PDO mapping."},
         0,
         inactiveBit(1, "1")},
        // an error that does not stop the run
        {"dynamic granularity",
         inactiveBit(0, "1"),
         {error + "Dynamic mapping cannot be used with a granularity of 0. Correct device "
                  "description settings or PDO mapping."},
         0,
         [](Project &p) { p.granularity(0); }},
    };
}

QList<CheckCase> communicationCases()
{
    return {
        {"no mapping object",
         [](Project &p) { p.remove(0x1600); },
         {error + "Object 0x1400: The corresponding PDO mapping object 0x1600 does not exist."},
         1,
         [](Project &p) {
             p.remove(0x1400);
             p.remove(0x1600);
         }},
        {"COB-ID not in the EDS",
         notInEds(1),
         {"<strong>Hint: </strong>Subindex 1 of 0x1800 should have its default value in the EDS "
          "file."},
         0,
         [](Project &p) { p.edit(0x1800, 1, [](Sub &sub) { sub.writedefaulttoeds = 2; }); }},
        {"transmission type not in the EDS",
         notInEds(2),
         {"<strong>Hint: </strong>Subindex 2 of 0x1800 should have its default value in the EDS "
          "file."},
         0,
         [](Project &p) { p.edit(0x1800, 2, [](Sub &sub) { sub.writedefaulttoeds = 2; }); }},
        {"COB-ID twice",
         pdo(0x1810, " $NODEID+384 "),
         {collisionText.arg("1810", "$NODEID+384", "1800")},
         1,
         pdo(0x1810, "0x180")},
        {"COB-ID of an RPDO and a TPDO",
         pdo(0x1410, "$NODEID+0x40000180"),
         {collisionText.arg("1800", "$NODEID+0x180", "1410")},
         1,
         pdo(0x1410, "$NODEID+0x80000180")},
        {"event timer",
         times("1000", "100"),
         {"<strong>Warning: </strong>Subindex 3 and 5 of 0x1800: Event timer value should be "
          "greater than inhibit time value."},
         0,
         times("999", "100")},
        {"connection set",
         entry("$NODEID+0x181", 0x1800),
         {predefinedText.arg("1800"), predefinedNote},
         0,
         entry("$NODEID+0xC0000180", 0x1800)},
        {"connection set of two",
         [](Project &p) {
             entry("0x180", 0x1800)(p);
             entry("0x201", 0x1400)(p);
             p.general("overwrite_predef", "no");
         },
         {predefinedText.arg("1400"), predefinedText.arg("1800"), predefinedNote},
         0,
         [](Project &p) {
             entry("0x180", 0x1800)(p);
             p.general("overwrite_predef", "1");
         }},
    };
}

QList<CheckCase> srdoCases()
{
    return {
        {"SRDO without mapping",
         [](Project &p) { p.remove(0x1381); },
         {error + "Object 0x1301: The corresponding SRDO mapping object 0x1381 does not exist."},
         1,
         [](Project &p) { p.remove(0x1301); }},
        {"SRDO maps nothing",
         entry("0x2000FF08", 0x1381, 2),
         {error + "Object 0x1381: The object 0x2000:ff mapped into an SRDO does not exist."},
         1,
         entry("0x20000208", 0x1381, 1)},
        {"SRDO maps a managed variable",
         target(Make::implementation(CANopen::ManagedVariable)),
         {error + "Object 0x1381: The object 0x2000:02 mapped into an SRDO must be an application "
                  "variable."},
         1,
         target(Make::implementation(CANopen::Variable, "other"))},
    };
}

} // namespace

QList<CheckCase> pdoCases()
{
    return mappingCases() + communicationCases() + srdoCases();
}
