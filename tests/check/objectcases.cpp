#include "checkcases.h"

namespace {

using Project = TestProject;
using Sub = TestProject::Sub;

const QString error = "<strong>Error: </strong>";
const QString conversionText = error + "Value conversion failed with Object 0x2100-0x%1.";
const QString subText = error + "Object 0x2100-0x00: ";

/// A new variable 0x2100.
Change variable(const char *value, const std::function<void(Sub &)> &change)
{
    return [=](Project &p) { p.variable(0x2100, QLatin1String(value), change); };
}

Change typed(quint16 datatype, const char *value)
{
    return variable(value, Make::type(datatype));
}

Change named(quint8 implementation, const char *name)
{
    return variable("1", Make::implementation(implementation, name));
}

Change accessed(const char *access, quint8 implementation)
{
    return variable("1", [=](Sub &sub) {
        sub.accesstype = QLatin1String(access);
        sub.implementation = implementation;
    });
}

Change ofKind(quint16 datatype, quint8 implementation)
{
    return variable("", [=](Sub &sub) {
        sub.datatype = datatype;
        sub.implementation = implementation;
        sub.varname = QStringLiteral("text");
    });
}

Change limited(const char *value, const char *low, const char *high,
               quint16 datatype = CAN::UNSIGNED8)
{
    return variable(value, [=](Sub &sub) {
        sub.limitineds = true;
        sub.lowlimit = QLatin1String(low);
        sub.uplimit = QLatin1String(high);
        sub.datatype = datatype;
    });
}

/// A new record 0x2100 of the subindices 0, 1 and 3.
Change record(const char *zero, const std::function<void(Sub &)> &change = {})
{
    return [=](Project &p) {
        p.array(0x2100, {"1", "1", "1"});
        p.setObjectType(0x2100, CANopen::RECORD);
        p.remove(0x2100, 2);
        p.value(0x2100, 0, QLatin1String(zero));
        if (change) {
            p.edit(0x2100, 0, change);
        }
    };
}

void withoutDefault(Sub &sub)
{
    sub.defaultineds = false;
    sub.writedefaulttoeds = 2;
}

Change mapping(const char *access, const char *count)
{
    return [=](Project &p) {
        p.pdo(0x1A10 - 0x200, "$NODEID+0x80000190", {"0x20000108", "0x20000208", "0x20000108"},
              access);
        p.value(0x1A10, 0, QLatin1String(count));
        p.granularity(8);
    };
}

QList<CheckCase> valueCases()
{
    const auto tenth = [](const char *value) {
        return [=](Project &p) {
            p.array(0x2100, {"1", "1", "1", "1", "1", "1", "1", "1", "1", QLatin1String(value)});
        };
    };
    return {
        // printed once, counted twice, and the subindex decimal
        {"unsigned", tenth("1x"), {conversionText.arg("10")}, 2, tenth("300")},
        {"node-ID in lower case",
         typed(CAN::UNSIGNED32, "$nodeid+0x100"),
         {conversionText.arg("0")},
         2,
         typed(CAN::UNSIGNED32, "$NODEID+0x100")},
        {"octal",
         typed(CAN::UNSIGNED16, "08"),
         {conversionText.arg("0")},
         2,
         typed(CAN::UNSIGNED16, "07")},
        {"signed",
         typed(CAN::INTEGER16, "0x80000000"),
         {conversionText.arg("0")},
         2,
         typed(CAN::INTEGER40, "0x80000000")},
        {"real",
         typed(CAN::REAL32, "1,5"),
         {conversionText.arg("0")},
         2,
         typed(CAN::REAL32, "-1.5e3")},
        {"bits", typed(CAN::BITS7, "x"), {conversionText.arg("0")}, 2, typed(CAN::BITS9, "x")},
        {"56 bits",
         typed(CAN::UNSIGNED48, "x"),
         {conversionText.arg("0")},
         2,
         typed(CAN::UNSIGNED56, "x")},
    };
}

QList<CheckCase> subZeroCases()
{
    const QString corrected =
        "<i>Corrected: Object 0x%1</i>: The value of subindex 0 does not fit to the highest "
        "subindex.";
    return {
        {"no subindices",
         [](Project &p) { p.object(0x2100, CANopen::ARRAY); },
         {error + "Object 0x2100: This array does not contain any sub-indices"},
         1,
         [](Project &p) { p.object(0x2100, CANopen::VAR); }},
        {"highest subindex", record("2"), {corrected.arg("2100")}, 0, record("0x103")},
        {"error field is exempt",
         [](Project &p) { p.setObjectName(0x1003, ""); },
         {error + "Object 0x1003: The object does not have a name. (Required for EDS)"},
         1,
         [](Project &p) {
             p.value(0x1003, 0, "0");
             p.edit(0x1003, 0, withoutDefault);
         }},
        {"static mapping",
         mapping("const", "2"),
         {corrected.arg("1a10")},
         0,
         mapping("const", "254")},
        {"default value flag",
         record("3", withoutDefault),
         {error + "Object 0x2100-0:The 'default value' flag must be set for this subindex."},
         1,
         [](Project &p) {
             mapping("rw", "2")(p);
             p.edit(0x1A10, 0, withoutDefault);
         }},
        {"constant subindex 0",
         record("3", Make::implementation(CANopen::Variable, "count")),
         {"<i>Corrected: Object 0x2100-0</i>:'Managed Const' is used as implementation type for "
          "this subindex."},
         0,
         record("3", Make::implementation(CANopen::VirtualObject))},
        {"constant subindex 0, not of a DOMAIN",
         record("2", Make::implementation(CANopen::Variable, "text")),
         {corrected.arg("2100"),
          "<i>Corrected: Object 0x2100-0</i>:'Managed Const' is used as implementation type for "
          "this subindex."},
         0,
         [](Project &p) {
             record("2", Make::implementation(CANopen::Variable, "text"))(p);
             p.setObjectType(0x2100, CANopen::DOMAIN_OBJECT);
         }},
        {"subindex 0 not in the EDS",
         record("3", [](Sub &sub) { sub.writedefaulttoeds = 0; }),
         {"Warning: Object 0x2100-0:The defaultvalue of this subindex should be written into the "
          "EDS/XDD file."},
         0,
         record("3", [](Sub &sub) { sub.writedefaulttoeds = 2; })},
    };
}

QList<CheckCase> subIndexCases()
{
    const QString managed = subText + "The implementation type 'Managed Variable' is not possible "
                                      "for %1";
    return {
        {"object name",
         [](Project &p) { p.setObjectName(0x2010, ""); },
         {error + "Object 0x2010: The object does not have a name. (Required for EDS)"},
         1,
         [](Project &p) { p.edit(0x2010, 0, [](Sub &sub) { sub.name.clear(); }); }},
        {"variable with subindices",
         [](Project &p) { p.sub(0x2010, 1, "1"); },
         {error + "Object 0x2010: The object is a VARIABLE but has multiple subindices."},
         1,
         [](Project &p) {
             p.sub(0x2010, 1, "1");
             p.setObjectType(0x2010, CANopen::RECORD);
             p.value(0x2010, 0, "1");
         }},
        {"limit check off",
         [](Project &p) { p.general("limit_check", "0"); },
         {"Warning: Object 0x2010-0x00: Limit Check is activated, but it is deactivated in the "
          "global settings."},
         0,
         [](Project &p) {
             p.general("limit_check", "0");
             p.edit(0x2010, 0, [](Sub &sub) { sub.limitineds = false; });
         }},
        {"name of an entry",
         [](Project &p) { p.edit(0x1F81, 2, [](Sub &sub) { sub.name = ""; }); },
         {error + "Object 0x1f81-0x02: The object does not have a name. (Required for EDS)"},
         1,
         [](Project &p) { p.edit(0x1017, 0, [](Sub &sub) { sub.name = ""; }); }},
        {"variable name",
         named(CANopen::Variable, ""),
         {subText + "The variable name is missing."},
         1,
         named(CANopen::VirtualObject, "")},
        {"variable name with a blank",
         named(CANopen::Variable, "a b"),
         {subText + "The variable name contains invalid characters like spaces or commas."},
         1,
         named(CANopen::Variable, "myData[3].value")},
        {"variable name with a line break",
         named(CANopen::Variable, "a\nb"),
         {subText + "The variable name contains invalid characters like spaces or commas."},
         1,
         named(CANopen::ManagedVariable, "a\tb")},
        {"variable name with a semicolon",
         named(CANopen::Variable, "a;b"),
         {subText + "The variable name contains invalid characters like spaces or commas."},
         1,
         named(CANopen::ManagedVariable, "a;b")},
        {"access type",
         accessed("RW", 0),
         {subText + "The access type 'RW' is invalid. Use ro, rw, const, wo, rww or rwr instead."},
         1,
         accessed("rwr", 0)},
        {"constant that is written",
         accessed("rww", CANopen::ManagedConst),
         {subText + "The implementation type is Managed Const, but the access type allows write "
                    "access."},
         1,
         accessed("const", CANopen::ManagedConst)},
        {"octet string",
         ofKind(CAN::OCTET_STRING, 0),
         {managed.arg("octet strings.")},
         1,
         ofKind(CAN::OCTET_STRING, CANopen::Variable)},
        {"visible string",
         ofKind(CAN::VISIBLE_STRING, 0),
         {managed.arg("visible strings. Use 'Managed Const' or 'Variable' instead.")},
         1,
         ofKind(CAN::VISIBLE_STRING, CANopen::Variable)},
        {"UTF8 string",
         ofKind(CAN::UTF8_STRING, 0),
         {managed.arg("UTF8 strings. Use 'Managed Const' or 'Variable' instead.")},
         1,
         ofKind(CAN::UTF8_STRING, CANopen::Variable)},
        {"data type",
         typed(0, "x"),
         {subText + "Unknown or unsupported datatype."},
         1,
         typed(CAN::DOMAIN_TYPE, "")},
        {"default above the limit",
         limited("300", "0", "255"),
         {subText + "The defaultvalue is not in the range of the limits."},
         1,
         limited("300", "0", "0x7FFFFF")},
        {"default below the limit",
         limited("-3", "-2", "2", CAN::INTEGER8),
         {subText + "The defaultvalue is not in the range of the limits."},
         1,
         limited("$NODEID+1", "5", "4", CAN::UNSIGNED32)},
        {"limit that can't be read",
         limited("1", "0", "x"),
         {subText + "The defaultvalue is not in the range of the limits."},
         1,
         limited("1", "5", "4", CAN::DOMAIN_TYPE)},
        {"variable used twice",
         named(CANopen::Variable, "a.b[2]"),
         {"<strong>Warning: </strong>Object 0x2100-0x00: Variable name 'a.b[2]' is already used by "
          "object 0x2000-0x02."},
         0,
         named(CANopen::VirtualObject, "a.b[2]")},
    };
}

} // namespace

QList<CheckCase> objectCases()
{
    return valueCases() + subZeroCases() + subIndexCases();
}
