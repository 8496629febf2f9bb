#include "checkcases.h"

#include <QCoreApplication>

namespace {

using Project = TestProject;

/// A project that an older tool has saved.
Change savedBy(const char *version, const char *edition, const char *udsServer = "0")
{
    return [=](Project &p) {
        p.misc("PreviousToolVersion", QLatin1String(version));
        p.general("udsserver_supported", udsServer);
        QCoreApplication::setApplicationName(QLatin1String(edition));
    };
}

Change udsRoles(const char *server, const char *client, int lines = 1)
{
    return [=](Project &p) {
        for (quint8 line = 1; line < lines; ++line)
            p.addLine(line, 1);
        settings({{"udsserver_supported", server}, {"udsclient_supported", client}})(p);
    };
}

Change staticIndication(const char *active, const char *first, const char *second)
{
    return settings({{"uds_static_indication", "1"},
                     {"uds_server_active", active},
                     {"uds_fct_dtc_info", first},
                     {"uds_fct_generic", second}});
}

Change twoLines(int secondType, const char *nmtMaster)
{
    return [=](Project &p) {
        p.addLine(1, secondType);
        p.general("nmtmaster", nmtMaster);
    };
}

} // namespace

QList<CheckCase> projectCases()
{
    return {
        {"UDS roles, one line", 1, "PRJ-UDS-ROLES; PRJ-UDS-ROLES", udsRoles("1", "1"),
         udsRoles("1", "0")},
        {"UDS roles, two lines", 1, "PRJ-UDS-ROLES; PRJ-UDS-ROLES", udsRoles("1", "1", 2),
         udsRoles("1,0", "1,0", 2)},
        {"UDS static, inactive", 0, "PRJ-UDS-STATIC-UNUSED", staticIndication("0", "f", "g"),
         staticIndication("0,1", "f", "g")},
        {"UDS static, no name", 0, "PRJ-UDS-STATIC-NO-NAME", staticIndication("1", "", " "),
         staticIndication("1", "", "g")},
        {"UDS static, name twice", 1, "PRJ-UDS-STATIC-DUPLICATE f%2",
         staticIndication("1", "f%2", "f%2"), staticIndication("1", "f", "F")},
        {"update from 3.7", 0, "PRJ-UPDATE-CO-37", savedBy("3.7.1", "CANopen Quillforge"),
         savedBy("3.9.0", "CANopen Quillforge", "1")},
        {"update from 3.8, several protocols, UDS", 0, "PRJ-UPDATE-MP-37; PRJ-UPDATE-UDS",
         savedBy("3.8", "CAN Quillforge", "1"), savedBy("4.2.0", "CAN Quillforge", "1")},
        {"update from 3.6", 0, "PRJ-UPDATE-CO-36", savedBy("3.6.9", "CANopen Quillforge"),
         savedBy("2.6", "CANopen Quillforge")},
        {"update from 3.6, several protocols", 0, "PRJ-UPDATE-MP-36",
         savedBy("3.0", "J1939 Quillforge"), savedBy("", "J1939 Quillforge", "1")},
        {"block size", 1, "PRJ-SDO-BLOCK-SIZE",
         settings({{"sdo_blocktransfer_block_size", "0x80"}}),
         settings({{"sdo_blocktransfer_block_size", "127"}})},
        {"timer interval", 1, "PRJ-TIMER-INTERVAL", settings({{"co_timer_interval", ""}}),
         settings({{"co_timer_interval", "1"}})},
        {"NMT master in multi-protocol", 1, "PRJ-NMT-MULTI-PROTOCOL", twoLines(4, "2"),
         twoLines(1, "2")},
        {"numeric, common", 2, "PRJ-NUMERIC PDO Event two; PRJ-NUMERIC PDO Event 0x",
         settings({{"event_pdo", "1, two,3,0x"}}), settings({{"event_pdo", "1, 0x2,,3"}})},
        {"numeric, signed", 1, "PRJ-NUMERIC Sleep Mode Waiting Time (ms) 0xFFFFFFFF",
         settings({{"sleep_wait_time", "0xFFFFFFFF"}}), settings({{"sleep_wait_time", "-1"}})},
        {"numeric, UDS", 1, "PRJ-NUMERIC Read Data by Periodic Identifier CAN-ID 7FF",
         settings({{"uds_rdbip_canid", "7FF"}}),
         settings({{"uds_rdbip_canid", "7FF"}, {"uds_bl_setting", "1"}})},
        {"line type", 0, "PRJ-LINE-TYPE 0", settings({{"line0type", "3"}}), settings({})},
        {"numeric, J1939", 1, "PRJ-NUMERIC Manufacturer Code none",
         [](Project &p) { p.database.setJ1939Setting("manufacturercode", "none"); },
         [](Project &p) { p.database.setJ1939Setting("manufacturercode", "99999"); }},
    };
}
