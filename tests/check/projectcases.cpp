#include "checkcases.h"

#include <QCoreApplication>

namespace {

using Project = TestProject;

const QString rolesText =
    "<strong><font color='red'>Error: </font></strong>UDS server and UDS client together on one "
    "line is not possible.";
const QString blockText =
    "<strong><font color='red'>Error: </font></strong>CANopen SDO block size may not exceed 127.";
const QString numericText = "<strong>Error: </strong>\"%1\" has non-numeric value \"%2\".";
const QString hintText =
    "<strong>Hint: </strong>Add <font color='red'>%1</font> to your project or Makefile.";

/// A project that an older tool has saved.
Change savedBy(const char *version, const char *edition, const char *udsServer = "0")
{
    return [=](Project &p) {
        p.misc("PreviousToolVersion", QLatin1String(version));
        p.general("udsserver_supported", QLatin1String(udsServer));
        QCoreApplication::setApplicationName(QLatin1String(edition));
    };
}

Change setting(const char *key, const char *value)
{
    return [=](Project &p) { p.general(key, QLatin1String(value)); };
}

Change udsRoles(const char *server, const char *client, int lines = 1)
{
    return [=](Project &p) {
        for (quint8 line = 1; line < lines; ++line) {
            p.addLine(line, 1);
        }
        p.general("udsserver_supported", QLatin1String(server));
        p.general("udsclient_supported", QLatin1String(client));
    };
}

Change staticIndication(const char *active, const char *first, const char *second)
{
    return [=](Project &p) {
        p.general("uds_static_indication", QStringLiteral("1"));
        p.general("uds_server_active", QLatin1String(active));
        p.general("uds_fct_dtc_info", QLatin1String(first));
        p.general("uds_fct_generic", QLatin1String(second));
    };
}

Change twoLines(int secondType, const char *nmtMaster)
{
    return [=](Project &p) {
        p.addLine(1, secondType);
        p.general("nmtmaster", QLatin1String(nmtMaster));
    };
}

} // namespace

QList<CheckCase> projectCases()
{
    return {
        {"UDS roles, one line", udsRoles("1", "1"), {rolesText, rolesText}, 1, udsRoles("1", "0")},
        {"UDS roles, two lines",
         udsRoles("1", "1", 2),
         {rolesText, rolesText},
         1,
         udsRoles("1,0", "1,0", 2)},
        {"UDS static, inactive",
         staticIndication("0", "f", "g"),
         {"<strong>Warning: </strong>Static UDS indication is enabled, but neither the UDS server "
          "nor a UDS client is active. Disable it in UDS Settings -> Static Indication or activate "
          "UDS."},
         0,
         staticIndication("0,1", "f", "g")},
        {"UDS static, no name",
         staticIndication("1", "", " "),
         {"<strong>Warning: </strong>Static UDS indication is enabled but no service has a "
          "function name; no callback will be wired up."},
         0,
         staticIndication("1", "", "g")},
        {"UDS static, name twice",
         staticIndication("1", "f%2", "f%2"),
         {"<strong><font color='red'>Error: </font></strong>The function name 'f%2' is used for "
          "more than one UDS static indication service; each service needs its own callback "
          "(different signature)."},
         1,
         staticIndication("1", "f", "F")},
        {"update from 3.7",
         savedBy("3.7.1", "CANopen Quillforge"),
         {hintText.arg("co_memcpy.c")},
         0,
         savedBy("3.9.0", "CANopen Quillforge", "1")},
        {"update from 3.8, several protocols, UDS",
         savedBy("3.8", "CAN Quillforge", "1"),
         {hintText.arg("co_memcpy.c and co_mapping.c"), hintText.arg("uds_init.c")},
         0,
         savedBy("4.2.0", "CAN Quillforge", "1")},
        {"update from 3.6",
         savedBy("3.6.9", "CANopen Quillforge"),
         {hintText.arg("co_common.c and co_memcpy.c")},
         0,
         savedBy("2.6", "CANopen Quillforge")},
        {"update from 3.6, several protocols",
         savedBy("3.0", "J1939 Quillforge"),
         {hintText.arg("co_common.c, co_memcpy.c and co_mapping.c")},
         0,
         savedBy("", "J1939 Quillforge", "1")},
        {"block size",
         setting("sdo_blocktransfer_block_size", "0x80"),
         {blockText},
         1,
         setting("sdo_blocktransfer_block_size", "127")},
        {"timer interval",
         setting("co_timer_interval", ""),
         {"<strong><font color='red'>Error: </font></strong>Timer interval not set in Common "
          "Settings -> Hardware/Target."},
         1,
         setting("co_timer_interval", "1")},
        {"NMT master in multi-protocol",
         twoLines(4, "2"),
         {"<strong><font color='red'>Error: </font></strong>The CANopen setting 'NMT Master or "
          "Slave' is not supported in multi-protocol projects."},
         1,
         twoLines(1, "2")},
        {"numeric, common",
         setting("event_pdo", "1, two,3,0x"),
         {numericText.arg("PDO Event", "two"), numericText.arg("PDO Event", "0x")},
         2,
         setting("event_pdo", "1, 0x2,,3")},
        {"numeric, signed",
         setting("sleep_wait_time", "0xFFFFFFFF"),
         {numericText.arg("Sleep Mode Waiting Time (ms)", "0xFFFFFFFF")},
         1,
         setting("sleep_wait_time", "-1")},
        {"numeric, UDS",
         setting("uds_rdbip_canid", "7FF"),
         {numericText.arg("Read Data by Periodic Identifier CAN-ID", "7FF")},
         1,
         [](Project &p) {
             p.general("uds_rdbip_canid", "7FF");
             p.general("uds_bl_setting", "1");
         }},
        {"numeric, J1939",
         [](Project &p) { p.database.setJ1939Setting("manufacturercode", "none"); },
         {numericText.arg("Manufacturer Code", "none")},
         1,
         [](Project &p) { p.database.setJ1939Setting("manufacturercode", "99999"); }},
    };
}
