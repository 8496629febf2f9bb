#include "checkcases.h"

namespace {

using Project = TestProject;

const QString error = "<strong>Error: </strong>";
const QString emcyText = error + "Both EMCY producer objects and EMCY consumer objects must be "
                                 "present to use EMCY routing.";
const QString consumerText =
    error + "Object 0x1028-%1: The value of this sub index may not be 0x00000000.";

Change settings(const QList<std::pair<const char *, const char *>> &pairs)
{
    return [=](Project &p) {
        for (const auto &[key, value] : pairs) {
            p.general(key, QLatin1String(value));
        }
    };
}

/// A second CANopen line; each setting is for the project.
Change secondLine(const QList<std::pair<const char *, const char *>> &pairs)
{
    return [=](Project &p) {
        p.addLine(1, 1);
        settings(pairs)(p);
    };
}

Change values(const QList<std::tuple<quint16, quint8, const char *>> &list)
{
    return [=](Project &p) {
        for (const auto &[index, subindex, value] : list) {
            p.value(index, subindex, QLatin1String(value));
        }
    };
}

Change removed(const QList<quint16> &indices)
{
    return [=](Project &p) {
        for (const quint16 index : indices) {
            p.remove(index);
        }
    };
}

void canFd(Project &p)
{
    p.general("canfd_supported", "1");
    p.remove(0x1000);
    p.array(0x1000, {"0x191"}, Make::type(CAN::UNSIGNED32));
}

Change usdo(const char *enabled, const char *count)
{
    return [=](Project &p) {
        canFd(p);
        settings({{"usdo_server_enabled", enabled}, {"usdo_server_cnt", count}})(p);
    };
}

Change usdoOnTwoLines(const char *count)
{
    return [=](Project &p) {
        usdo("1", count)(p);
        p.addLine(1, 1);
    };
}

Change withSlaves(const char *count)
{
    return settings({{"max_slave_assignment", count}});
}

void gapIn(Project &p, quint16 index, const QString &value)
{
    p.sub(index, 4, value, Make::type(CAN::UNSIGNED32));
    p.value(index, 0, "4");
}

QList<CheckCase> settingCases()
{
    return {
        {"node-ID",
         settings({{"co_node_id", ""}, {"co_node_id_fct", ""}}),
         {error + "CANopen basic Stack Settings: No Node-Id specified for line 0: Specify a number "
                  "between 1 and 127, or 255 for LSS or a function name like e.g. readDipSwitch "
                  "in the line below."},
         1,
         settings({{"co_node_id", ""}, {"co_node_id_fct", "readDipSwitch"}})},
        {"node-ID of the second line",
         secondLine({{"co_node_id", "5"}}),
         {error + "CANopen basic Stack Settings: No Node-Id specified for line 1: Specify a number "
                  "between 1 and 127, or 255 for LSS or a function name like e.g. readDipSwitch "
                  "in the line below."},
         1,
         secondLine({{"co_node_id", "5,6"}}),
         {0, 1}},
        {"node-ID function",
         settings({{"co_node_id_fct", "read()"}}),
         {error + "CANopen basic Stack Settings: The name of the NodeId function may not include "
                  "a (.",
          error + "CANopen basic Stack Settings: The name of the NodeId function may not include "
                  "a )."},
         2,
         settings({{"co_node_id_fct", "read"}})},
        {"receive buffer",
         secondLine({{"receivebuffersize", "20"}}),
         {error + "Common Settings: CAN receive buffer size must be specified individually for "
                  "each line."},
         1,
         secondLine({{"receivebuffersize", "20,10"}}),
         {0, 1}},
        {"transmit buffer",
         settings({{"transmitbuffersize", "0x20"}}),
         {error + "Common Settings: CAN transmit buffer size must be specified individually for "
                  "each line."},
         1,
         settings({{"transmitbuffersize", "032"}})},
        {"master or slave at run time",
         secondLine({{"nmtmaster", "2"}, {"co_ml_ms", "1"}}),
         {error + "General Settings: The ML master/slave settings size must be specified "
                  "individually for each line. (e.g 0,1)"},
         1,
         secondLine({{"nmtmaster", "2"}, {"co_ml_ms", "0,1"}}),
         {0, 1}},
        {"USDO connections",
         usdo("1", "0"),
         {error + "Number of USDO server connections must be at least 1."},
         1,
         usdo("0,1", "0")},
        {"USDO connections of the last item",
         usdoOnTwoLines("0"),
         {error + "Number of USDO server connections must be at least 1."},
         1,
         usdoOnTwoLines("0,2"),
         {1}},
        {"one PDO indication",
         settings({{"fct_pdo", "sent"}, {"fct_pdo_receive", " "}}),
         {error + "Both static RPDO and TPDO event indication functions have to be defined."},
         1,
         settings({{"fct_pdo", "sent"}, {"use_core_headers", "V4"}})},
        {"EMCY routing", // once for both lines
         [](Project &p) {
             p.remove(0x1028);
             secondLine({{"emcy_routing", "1"}})(p);
         },
         {emcyText},
         1,
         [](Project &p) {
             secondLine({{"emcy_routing", "2"}})(p);
             p.remove(0x1028); // line 1 still has it
         },
         {0, 1}},
    };
}

QList<CheckCase> standardObjectCases()
{
    return {
        {"device type on CAN FD",
         settings({{"canfd_supported", "1"}}),
         {error + "Object 0x1000 (Device Type) must be an ARRAY according to the CANopen FD "
                  "specification."},
         1,
         canFd},
        {"device type",
         [](Project &p) {
             canFd(p);
             p.general("canfd_supported", "0");
         },
         {error + "Object 0x1000 (Device Type) must be a VARIABLE according to the CANopen "
                  "specification."},
         1,
         canFd},
        {"no device type",
         removed({0x1000}),
         {error + "Object 0x1000 (Device Type) must be a VARIABLE according to the CANopen "
                  "specification.",
          error + "Object 0x1000 (Device Type) does not exist, but it is mandatory according to "
                  "CANopen specification."},
         2,
         removed({0x1005})},
        {"no error register",
         removed({0x1001}),
         {error + "Object 0x1001 (Error Register) does not exist, but it is mandatory according "
                  "to CANopen specification."},
         1,
         removed({0x1003, 0x1014})},
        {"no error control",
         removed({0x1017}),
         {error + "Object 0x1017 (Producer Heartbeat) and 0x100C (Guard Time) do not exist, but "
                  "one of them is mandatory."},
         1,
         [](Project &p) {
             p.remove(0x1017);
             p.variable(0x100C, "0");
         }},
        {"too many slaves",
         withSlaves(" 3 "),
         {error + "Object 0x1f81: Value of 'max slave Assigment count' may not exceed number of "
                  "subindices of object 0x1f81."},
         1,
         withSlaves("2")},
        {"list without entries",
         [](Project &p) {
             p.remove(0x1016);
             p.array(0x1016, {});
         },
         {error + "Object 0x1016 does not contain any sub-indices."},
         1,
         removed({0x1016})},
        {"gaps",
         [](Project &p) {
             gapIn(p, 0x1028, "0x86");
             gapIn(p, 0x1F81, "1");
         },
         {error + "Object 0x1028 may not have gaps.", error + "Object 0x1f81 may not have gaps."},
         2,
         [](Project &p) {
             p.sub(0x1F81, 3, "1", Make::type(CAN::UNSIGNED32));
             p.value(0x1F81, 0, "3");
         }},
        {"SYNC producer",
         values({{0x1005, 0, "0x40000080"}}),
         {error + "Object 0x1006 must be present, if SYNC producer bit is set in object 0x1005."},
         1,
         [](Project &p) {
             p.value(0x1005, 0, "0x40000080");
             p.variable(0x1006, "1000", Make::type(CAN::UNSIGNED32));
         }},
        {"store by the stack",
         values({{0x1010, 1, "2"}}),
         {error + "Object 0x1010:1 only default values between 0 and 1 are supported. Enable "
                  "CO_AUTO_STORE_HANDLED_BY_APPLICATION to support other values"},
         1,
         [](Project &p) {
             p.value(0x1010, 1, "3");
             p.general("1010autostore_by_application", "1");
         }},
        {"restore by the application",
         [](Project &p) {
             p.array(0x1011, {"1", "3", "0x4", "9"}, Make::type(CAN::UNSIGNED32));
             p.general("1010autostore_by_application", "1");
         },
         {error + "Object 0x1011:3 only default values between 0 and 3 are supported."},
         1,
         values({{0x1010, 1, ""}})},
        {"NMT inhibit time",
         settings({{"nmtmaster", "1"}}),
         {"Warning: Object 0x102a: The object 0x102A (NMT inhibit time) is highly recommended for "
          "masters. It may be added via 'Add Communication Service'."},
         0,
         [](Project &p) {
             p.general("nmtmaster", "1");
             p.variable(0x102A, "0");
         }},
        {"empty identity",
         values({{0x1018, 1, ""}, {0x1018, 2, ""}, {0x1018, 3, ""}}),
         {error + "Object 0x1018-0x01: The value of subindex 1 (vendor-ID) is empty.",
          error + "Object 0x1018-0x02: The value of subindex 2 (product code) is empty.",
          error + "Object 0x1018-0x03: The value of subindex 3 (revision number) is empty."},
         3,
         [](Project &p) {
             p.remove(0x1018);
             p.array(0x1018, {"0x1"}, Make::type(CAN::UNSIGNED32));
         }},
        {"no identity",
         removed({0x1018}),
         {error + "Object 0x1018-0x01: The value of subindex 1 (vendor-ID) is empty."},
         1,
         [](Project &p) {
             p.remove(0x1018, 4);
             p.value(0x1018, 0, "3");
         }},
        {"vendor-ID of the tool",
         values({{0x1018, 1, "1957"}}),
         {"<strong>Warning: Object 0x1018-0x01: The vendor-ID 0x7A5 (tolvex device systems GmbH) "
          "may not be used for production. </strong>"},
         0,
         values({{0x1018, 1, "0x7A6"}})},
        {"constant serial number",
         [](Project &p) { p.edit(0x1018, 4, Make::implementation(CANopen::ManagedConst)); },
         {"<strong>Warning</strong>: Object 0x1018: The implementation type of subindex 4 (serial "
          "number) is 'Managed Const'. This is not useful in most cases."},
         0,
         [](Project &p) { p.edit(0x1018, 3, Make::implementation(CANopen::ManagedConst)); }},
        {"error field without EMCY",
         removed({0x1014}),
         {error + "Object 0x1003: This object can only be used, if object 0x1014 exists as well."},
         1,
         removed({0x1014, 0x1003})},
        {"EMCY consumer 0",
         [](Project &p) {
             p.remove(0x1028);
             p.array(0x1028, {"0", "0x81", "", "1", "1", "1", "1", "1", "1", "0x0"},
                     Make::type(CAN::UNSIGNED32));
         },
         {consumerText.arg("01"), consumerText.arg("03"), consumerText.arg("0a")},
         3,
         values({{0x1028, 1, "0x80000000"}})},
    };
}

} // namespace

QList<CheckCase> lineCases()
{
    return settingCases() + standardObjectCases();
}
