#include "checkcases.h"

namespace {

const QList<quint8> bothLines = {0, 1};

/// A second CANopen line; each setting is for the project.
Change secondLine(const QList<std::pair<const char *, const char *>> &pairs)
{
    return Change([](TestProject &p) { p.addLine(1, 1); }) + settings(pairs);
}

Change usdo(const char *enabled, const char *count)
{
    return Change(canFd) + settings({{"usdo_server_enabled", enabled}, {"usdo_server_cnt", count}});
}

Change usdoOnTwoLines(const char *count)
{
    return usdo("1", count) + secondLine({});
}

Change withSlaves(const char *count)
{
    return settings({{"max_slave_assignment", count}});
}

/// A fourth entry behind the two or one that the list has.
Change gapIn(quint16 index, const char *value)
{
    return entry(index, 4, value) + values({{index, 0, "4"}});
}

QList<CheckCase> settingCases()
{
    return {
        {"node-ID", 1, "CO-NODE-ID 0", settings({{"co_node_id", ""}, {"co_node_id_fct", ""}}),
         settings({{"co_node_id", ""}, {"co_node_id_fct", "readDipSwitch"}})},
        {"node-ID of the second line", 1, "CO-NODE-ID 1", secondLine({{"co_node_id", "5"}}),
         secondLine({{"co_node_id", "5,6"}}), bothLines},
        {"node-ID function", 2, "CO-NODE-ID-FCT-OPEN; CO-NODE-ID-FCT-CLOSE",
         settings({{"co_node_id_fct", "read()"}}), settings({{"co_node_id_fct", "read"}})},
        {"receive buffer", 1, "CO-BUFFER-RX", secondLine({{"receivebuffersize", "20"}}),
         secondLine({{"receivebuffersize", "20,10"}}), bothLines},
        {"transmit buffer", 1, "CO-BUFFER-TX", settings({{"transmitbuffersize", "0x20"}}),
         settings({{"transmitbuffersize", "032"}})},
        {"master or slave at run time", 1, "CO-ML-MASTER-SLAVE",
         secondLine({{"nmtmaster", "2"}, {"co_ml_ms", "1"}}),
         secondLine({{"nmtmaster", "2"}, {"co_ml_ms", "0,1"}}), bothLines},
        {"USDO connections", 1, "CO-USDO-SERVER-COUNT", usdo("1", "0"), usdo("0,1", "0")},
        {"USDO connections of the last item",
         1,
         "CO-USDO-SERVER-COUNT",
         usdoOnTwoLines("0"),
         usdoOnTwoLines("0,2"),
         {1}},
        {"one PDO indication", 1, "CO-PDO-INDICATION-PAIR",
         settings({{"fct_pdo", "sent"}, {"fct_pdo_receive", " "}}),
         settings({{"fct_pdo", "sent"}, {"use_core_headers", "V4"}})},
        {"EMCY routing", 1,
         "CO-EMCY-ROUTING", // once for both lines
         removed({0x1028}) + secondLine({{"emcy_routing", "1"}}),
         secondLine({{"emcy_routing", "2"}}) + removed({0x1028}), // line 1 still has it
         bothLines},
    };
}

QList<CheckCase> standardObjectCases()
{
    return {
        {"device type on CAN FD", 1, "CO-1000-ARRAY 1000", settings({{"canfd_supported", "1"}}),
         canFd},
        {"device type", 1, "CO-1000-VARIABLE 1000",
         Change(canFd) + settings({{"canfd_supported", "0"}}), canFd},
        {"no device type", 2, "CO-1000-VARIABLE 1000; CO-1000-MISSING 1000", removed({0x1000}),
         removed({0x1005})},
        {"no error register", 1, "CO-1001-MISSING 1001", removed({0x1001}),
         removed({0x1003, 0x1014})},
        {"no error control", 1, "CO-1017-MISSING 1017", removed({0x1017}),
         removed({0x1017}) + variable(0x100C, "0")},
        {"too many slaves", 1, "CO-1F81-COUNT", withSlaves(" 3 "), withSlaves("2")},
        {"list without entries", 1, "CO-LIST-EMPTY 1016", list(0x1016, {}), removed({0x1016})},
        {"gaps", 2, "CO-LIST-GAPS 1028; CO-LIST-GAPS 1f81",
         gapIn(0x1028, "0x86") + gapIn(0x1F81, "1"),
         entry(0x1F81, 3, "1") + values({{0x1F81, 0, "3"}})},
        {"SYNC producer", 1, "CO-1006-MISSING", values({{0x1005, 0, "0x40000080"}}),
         values({{0x1005, 0, "0x40000080"}}) + variable(0x1006, "1000")},
        {"store by the stack", 1, "CO-STORE-STACK 1010 1", values({{0x1010, 1, "2"}}),
         values({{0x1010, 1, "3"}}) + settings({{"1010autostore_by_application", "1"}})},
        {"restore by the application", 1, "CO-STORE-APPLICATION 1011 3",
         list(0x1011, {"1", "3", "0x4", "9"}) + settings({{"1010autostore_by_application", "1"}}),
         values({{0x1010, 1, ""}})},
        {"NMT inhibit time", 0, "CO-102A-MISSING 102a", settings({{"nmtmaster", "1"}}),
         settings({{"nmtmaster", "1"}}) + variable(0x102A, "0")},
        {"empty identity", 3, "CO-1018-VENDOR 1018; CO-1018-PRODUCT 1018; CO-1018-REVISION 1018",
         values({{0x1018, 1, ""}, {0x1018, 2, ""}, {0x1018, 3, ""}}), list(0x1018, {"0x1"})},
        {"no identity", 1, "CO-1018-VENDOR 1018", removed({0x1018}),
         list(0x1018, {"0x1", "0x2", "0x3"})},
        {"vendor-ID of the tool", 0, "CO-1018-VENDOR-TEST 1018", values({{0x1018, 1, "1957"}}),
         values({{0x1018, 1, "0x7A6"}})},
        {"constant serial number", 0, "CO-1018-SERIAL 1018",
         edited(0x1018, 4, Make::implementation(CANopen::ManagedConst)),
         edited(0x1018, 3, Make::implementation(CANopen::ManagedConst))},
        {"error field without EMCY", 1, "CO-1003-EMCY 1003", removed({0x1014}),
         removed({0x1014, 0x1003})},
        {"EMCY consumer 0", 3, "CO-1028-ZERO 1028 01; CO-1028-ZERO 1028 03; CO-1028-ZERO 1028 0a",
         list(0x1028, {"0", "0x81", "", "1", "1", "1", "1", "1", "1", "0x0"}),
         values({{0x1028, 1, "0x80000000"}})},
    };
}

} // namespace

QList<CheckCase> lineCases()
{
    return settingCases() + standardObjectCases();
}
