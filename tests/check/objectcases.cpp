#include "checkcases.h"

using namespace Qt::StringLiterals;

namespace {

using Project = TestProject;
using Sub = TestProject::Sub;

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
        sub.varname = u"text"_s;
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
        if (change)
            p.edit(0x2100, 0, change);
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
        p.pdo(0x1810, "$NODEID+0x80000190", {"0x20000108", "0x20000208", "0x20000108"}, access);
        p.value(0x1A10, 0, QLatin1String(count));
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
        {"unsigned", 2, "CO-VALUE 2100 10", tenth("1x"), tenth("300")},
        {"node-ID in lower case", 2, "CO-VALUE 2100 0", typed(CAN::UNSIGNED32, "$nodeid+0x100"),
         typed(CAN::UNSIGNED32, "$NODEID+0x100")},
        {"octal", 2, "CO-VALUE 2100 0", typed(CAN::UNSIGNED16, "08"), typed(CAN::UNSIGNED16, "07")},
        {"signed", 2, "CO-VALUE 2100 0", typed(CAN::INTEGER16, "0x80000000"),
         typed(CAN::INTEGER40, "0x80000000")},
        {"real", 2, "CO-VALUE 2100 0", typed(CAN::REAL32, "1,5"), typed(CAN::REAL32, "-1.5e3")},
        {"bits", 2, "CO-VALUE 2100 0", typed(CAN::BITS7, "x"), typed(CAN::BITS9, "x")},
        {"56 bits", 2, "CO-VALUE 2100 0", typed(CAN::UNSIGNED48, "x"), typed(CAN::UNSIGNED56, "x")},
    };
}

QList<CheckCase> subZeroCases()
{
    return {
        {"no subindices", 1, "CO-OBJ-EMPTY 2100",
         [](Project &p) { p.object(0x2100, CANopen::ARRAY); },
         [](Project &p) { p.object(0x2100, CANopen::VAR); }},
        {"highest subindex", 0, "CO-SUB0-VALUE 2100 00", record("2"), record("0x103")},
        {"error field is exempt", 1, "CO-OBJ-NAME 1003",
         [](Project &p) { p.setObjectName(0x1003, ""); },
         values({{0x1003, 0, "0"}}) + edited(0x1003, 0, withoutDefault)},
        {"static mapping", 0, "CO-SUB0-VALUE 1a10 00", mapping("const", "2"),
         mapping("const", "254")},
        {"default value flag", 1, "CO-SUB0-DEFAULT 2100 00", record("3", withoutDefault),
         mapping("rw", "2") + edited(0x1A10, 0, withoutDefault)},
        {"constant subindex 0", 0, "CO-SUB0-CONST 2100 00",
         record("3", Make::implementation(CANopen::Variable, "count")),
         record("3", Make::implementation(CANopen::VirtualObject))},
        {"constant subindex 0, not of a DOMAIN", 0, "CO-SUB0-VALUE 2100 00; CO-SUB0-CONST 2100 00",
         record("2", Make::implementation(CANopen::Variable, "text")),
         [](Project &p) {
             record("2", Make::implementation(CANopen::Variable, "text"))(p);
             p.setObjectType(0x2100, CANopen::DOMAIN_OBJECT);
         }},
        {"subindex 0 not in the EDS", 0, "CO-SUB0-EDS 2100 00", record("3", Make::inEds(0)),
         record("3", Make::inEds(2))},
    };
}

QList<CheckCase> subIndexCases()
{
    return {
        {"object name", 1, "CO-OBJ-NAME 2010", [](Project &p) { p.setObjectName(0x2010, ""); },
         [](Project &p) { p.edit(0x2010, 0, [](Sub &sub) { sub.name.clear(); }); }},
        {"variable with subindices", 1, "CO-OBJ-VARIABLE 2010",
         [](Project &p) { p.sub(0x2010, 1, "1"); },
         [](Project &p) {
             p.sub(0x2010, 1, "1");
             p.setObjectType(0x2010, CANopen::RECORD);
             p.value(0x2010, 0, "1");
         }},
        {"limit check off", 0, "CO-SUB-LIMIT-OFF 2010 00", settings({{"limit_check", "0"}}),
         settings({{"limit_check", "0"}}) +
             edited(0x2010, 0, [](Sub &sub) { sub.limitineds = false; })},
        {"name of an entry", 1, "CO-SUB-NAME 1f81 02",
         [](Project &p) { p.edit(0x1F81, 2, [](Sub &sub) { sub.name = ""; }); },
         [](Project &p) { p.edit(0x1017, 0, [](Sub &sub) { sub.name = ""; }); }},
        {"variable name", 1, "CO-SUB-VARIABLE 2100 00", named(CANopen::Variable, ""),
         named(CANopen::VirtualObject, "")},
        {"variable name with a blank", 1, "CO-SUB-VARIABLE-CHARS 2100 00",
         named(CANopen::Variable, "a b"), named(CANopen::Variable, "myData[3].value")},
        {"variable name with a line break", 1, "CO-SUB-VARIABLE-CHARS 2100 00",
         named(CANopen::Variable, "a\nb"), named(CANopen::ManagedVariable, "a\tb")},
        {"variable name with a semicolon", 1, "CO-SUB-VARIABLE-CHARS 2100 00",
         named(CANopen::Variable, "a;b"), named(CANopen::ManagedVariable, "a;b")},
        {"access type", 1, "CO-SUB-ACCESS 2100 00 RW", accessed("RW", 0), accessed("rwr", 0)},
        {"constant that is written", 1, "CO-SUB-CONST-WRITE 2100 00",
         accessed("rww", CANopen::ManagedConst), accessed("const", CANopen::ManagedConst)},
        {"octet string", 1, "CO-SUB-OCTET-STRING 2100 00", ofKind(CAN::OCTET_STRING, 0),
         ofKind(CAN::OCTET_STRING, CANopen::Variable)},
        {"visible string", 1, "CO-SUB-VISIBLE-STRING 2100 00", ofKind(CAN::VISIBLE_STRING, 0),
         ofKind(CAN::VISIBLE_STRING, CANopen::Variable)},
        {"UTF8 string", 1, "CO-SUB-UTF8-STRING 2100 00", ofKind(CAN::UTF8_STRING, 0),
         ofKind(CAN::UTF8_STRING, CANopen::Variable)},
        {"data type", 1, "CO-SUB-TYPE 2100 00", typed(0, "x"), typed(CAN::DOMAIN_TYPE, "")},
        {"default above the limit", 1, "CO-SUB-LIMITS 2100 00", limited("300", "0", "255"),
         limited("300", "0", "0x7FFFFF")},
        {"default below the limit", 1, "CO-SUB-LIMITS 2100 00",
         limited("-3", "-2", "2", CAN::INTEGER8), limited("$NODEID+1", "5", "4", CAN::UNSIGNED32)},
        {"limit that can't be read", 1, "CO-SUB-LIMITS 2100 00", limited("1", "0", "x"),
         limited("1", "5", "4", CAN::DOMAIN_TYPE)},
        {"variable used twice", 0, "CO-VARIABLE-TWICE 2100 00 a.b[2] 2000 02",
         named(CANopen::Variable, "a.b[2]"), named(CANopen::VirtualObject, "a.b[2]")},
    };
}

} // namespace

QList<CheckCase> objectCases()
{
    return valueCases() + subZeroCases() + subIndexCases();
}
