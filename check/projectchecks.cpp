#include "check/projectchecks.h"

#include "canopen/canopentypes.h"
#include "check/modelchecker.h"
#include "check/valuetext.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>

#include <algorithm>
#include <span>

namespace {

/// Lines above are never generated.
constexpr int generatedLines = 32;

/// What the lines of the project speak, by the setting `line%1type`.
struct LineCounts
{
    int all = 0;
    int canopen = 0;
    int j1939 = 0;
    int raw = 0;
    int mixed = 0;
};

QList<quint8> projectLines(ObjectDataBase &database)
{
    QList<quint8> lines = database.getLines();
    lines.removeIf([](quint8 line) { return line >= generatedLines; });
    return lines;
}

LineCounts countLines(ObjectDataBase &database)
{
    LineCounts counts;
    for (const quint8 line : projectLines(database)) {
        const int type =
            toDecimal(database.getGeneralSetting(QStringLiteral("line%1type").arg(line)));
        ++counts.all;
        counts.canopen += type == 1 || type == 6;
        counts.j1939 += type == 2 || type == 7;
        counts.raw += type == 4 || type == 6 || type == 7;
        counts.mixed += type == 5;
    }
    return counts;
}

/// Both roles of UDS as whole settings and as those of a line.
struct UdsRoles
{
    QString server;
    QString client;

    explicit UdsRoles(ObjectDataBase &database)
        : server(database.getGeneralSetting(QStringLiteral("udsserver_supported"))),
          client(database.getGeneralSetting(QStringLiteral("udsclient_supported")))
    {
    }
    [[nodiscard]] bool any() const { return toDecimal(server) != 0 || toDecimal(client) != 0; }
    [[nodiscard]] bool both() const { return toDecimal(server) != 0 && toDecimal(client) != 0; }
    [[nodiscard]] bool bothOnLine(quint8 line) const
    {
        return toDecimal(itemOrLast(server, line)) != 0 && toDecimal(itemOrLast(client, line)) != 0;
    }
};

/// One error however often it is told: for the line that is at fault and for the project.
int checkUdsRoles(ModelChecker &checker, ObjectDataBase &database, int lineCount)
{
    const UdsRoles roles(database);
    if (!roles.both()) {
        return 0;
    }
    const QList<quint8> lines = projectLines(database);
    const auto line = std::find_if(lines.begin(), lines.end(), [&](quint8 number) {
        return lineCount == 1 || roles.bothOnLine(number);
    });
    if (line != lines.end()) {
        checker.report(CheckId::ProjectUdsRoles, {}, {.line = *line});
    }
    return checker.report(CheckId::ProjectUdsRoles);
}

bool anyItemSet(ObjectDataBase &database, const char *key)
{
    const QStringList items = database.getGeneralSetting(QLatin1String(key)).split(u',');
    return std::any_of(items.begin(), items.end(),
                       [](const QString &item) { return toDecimal(item) != 0; });
}

/// The callbacks that static indication binds, one a group of UDS services.
constexpr const char *udsFunctionKeys[] = {
    "uds_fct_clear_dtc_info",
    "uds_fct_dtc_info",
    "uds_fct_id_data_transmit",
    "uds_fct_mem_data_transmit",
    "uds_fct_sec_access_req_key",
    "uds_fct_authent_req",
    "uds_fct_ioctrl",
    "uds_fct_routine_ctrl",
    "uds_fct_data_transfer",
    "uds_fct_req_commgt",
    "uds_fct_check_req_session",
    "uds_fct_generic",
};

int checkUdsStaticIndication(ModelChecker &checker, ObjectDataBase &database)
{
    if (toDecimal(database.getGeneralSetting(QStringLiteral("uds_static_indication"))) != 1) {
        return 0;
    }
    int errors = 0;
    if (!anyItemSet(database, "uds_server_active") && !anyItemSet(database, "uds_client_cnt")) {
        errors += checker.report(CheckId::ProjectUdsStaticUnused);
    }
    QStringList names;
    for (const char *key : udsFunctionKeys) {
        const QString name = database.getGeneralSetting(QLatin1String(key)).trimmed();
        if (!name.isEmpty()) {
            names.append(name);
        }
    }
    if (names.isEmpty()) {
        errors += checker.report(CheckId::ProjectUdsStaticNoName);
    }
    QStringList distinct = names;
    distinct.removeDuplicates();
    for (const QString &name : std::as_const(distinct)) {
        if (names.count(name) > 1) {
            errors += checker.report(CheckId::ProjectUdsStaticDuplicate, {name});
        }
    }
    return errors;
}

/// Source files that came to the stack since the tool that saved the project last.
void hintToolUpdate(ModelChecker &checker, ObjectDataBase &database)
{
    const QString key = QStringLiteral("PreviousToolVersion");
    const QStringList numbers = database.getMiscSetting(key).split(u'.');
    bool hasMajor = false;
    bool hasMinor = false;
    const int major = numbers.value(0).toInt(&hasMajor);
    const int minor = numbers.value(1).toInt(&hasMinor);
    if (!hasMajor || !hasMinor || major != 3 || minor >= 9) {
        return;
    }
    const bool canopenOnly =
        QCoreApplication::applicationName() == QLatin1String("CANopen Quillforge");
    if (minor >= 7) {
        checker.report(canopenOnly ? CheckId::ProjectUpdateCanopen37
                                   : CheckId::ProjectUpdateMulti37);
        if (UdsRoles(database).any()) {
            checker.report(CheckId::ProjectUpdateUds);
        }
    } else {
        checker.report(canopenOnly ? CheckId::ProjectUpdateCanopen36
                                   : CheckId::ProjectUpdateMulti36);
    }
    database.setMiscSetting(key, QString());
}

int checkCommonSettings(ModelChecker &checker, ObjectDataBase &database, const LineCounts &lines)
{
    constexpr quint64 longestBlock = 127;
    const auto setting = [&](const char *key) {
        return database.getGeneralSetting(QLatin1String(key));
    };
    int errors = 0;
    if (toNumber(setting("sdo_blocktransfer_block_size")) > longestBlock) {
        errors += checker.report(CheckId::ProjectSdoBlockSize);
    }
    if (setting("co_timer_interval").isEmpty()) {
        errors += checker.report(CheckId::ProjectTimerInterval);
    }
    const bool otherProtocols = lines.mixed > 0 || lines.j1939 > 0 || lines.raw > 0;
    if (lines.all >= 2 && lines.canopen > 0 && otherProtocols &&
        setting("nmtmaster").contains(u'2')) {
        errors += checker.report(CheckId::ProjectNmtMasterMultiProtocol);
    }
    return errors;
}

/// A setting that must hold numbers of a CANopen data type.
struct NumericSetting
{
    const char *key;
    quint16 datatype;
    const char *label;
};

constexpr quint16 i32 = CAN::INTEGER32;
constexpr quint16 u8 = CAN::UNSIGNED8;
constexpr quint16 u16 = CAN::UNSIGNED16;
constexpr quint16 u32 = CAN::UNSIGNED32;

constexpr NumericSetting commonSettings[] = {
    {"additional_cob_count", u16, "Additional COB objects"},
    {"user_tx_cob", u16, "Additional user transmit messages"},
    {"user_rx_cob", u16, "Additional user receive messages"},
    {"sdo_blocktransfer_block_size", u8, "SDO Block Transfer Block Size"},
    {"sdo_blocktransfer_min_data", u16, "SDO Block Transfer use for data of [n] bytes or larger"},
    {"sdo_client_queue_size", u16, "SDO Client Queue Length"},
    {"sleep_wait_time", i32, "Sleep Mode Waiting Time (ms)"},
    {"usdo_server_cnt", u16, "USDO Server Connection count"},
    {"usdo_client_cnt", u16, "USDO Client Connection Count"},
    {"usdo_server_domain_write_ind_size", u16,
     "USDO Domain Indication size in multiple of 60 bytes"},
    {"usdo_server_ind_read_cnt", u16, "USDO Server Read"},
    {"usdo_server_ind_read_finished_cnt", u16, "USDO Server Read Finished"},
    {"usdo_server_ind_write_cnt", u16, "USDO Server Write"},
    {"usdo_server_ind_check_write_cnt", u16, "USDO Server Check Write"},
    {"usdo_server_ind_domain_write_cnt", u16, "USDO Server Domain Write"},
    {"event_ssdo_domain_counter", u16, "SDO Domain Indication Size"},
    {"event_can", u16, "CAN Event"},
    {"event_sdo_server_read", u16, "SDO Server Read"},
    {"event_sdo_server_write", u16, "SDO Server Write"},
    {"event_sdo_server_check_write", u16, "SDO Server Check Write"},
    {"event_ssdo_domain_write", u16, "SDO Server Domain Write"},
    {"event_ssdo_domain_read", u16, "SDO Server Domain Read"},
    {"event_sdo_client_read", u16, "SDO Client Read"},
    {"event_sdo_client_write", u16, "SDO Client Write"},
    {"event_sdorouter", u16, "SDO Network Client Event"},
    {"event_srd", u16, "SDO Requesting Device (SRD) event"},
    {"event_pdo", u16, "PDO Event"},
    {"event_pdo_update", u16, "PDO Update Event"},
    {"event_mpdo", u16, "MPDO Event"},
    {"event_nmt", u16, "NMT Event"},
    {"event_errctrl", u16, "NMT Error Control Event"},
    {"event_store", u16, "Store/Restore/LOAD Event"},
    {"event_gfc", u16, "GFC Event"},
    {"event_sync", u16, "SYNC Event"},
    {"event_sync_finished", u16, "SYNC Event finished"},
    {"event_finished", u16, "SDO Finished Event"},
    {"event_led", u16, "LED Event"},
    {"event_cfg", u16, "Configuration Manager Event"},
    {"event_flyma", u16, "Flying Master Event"},
};

constexpr NumericSetting udsSettings[] = {
    {"uds_seedkey_length", u8, "Security Seed/Key Length"},
    {"uds_session_timeout", u32, "Session Timeout (ms)"},
    {"uds_physical_request_id", u32, "Physical address request CAN-ID"},
    {"uds_physical_response_id", u32, "Physical address response CAN-ID"},
    {"uds_functional_request_id", u32, "Functional address request CAN-ID"},
    {"uds_physical_request_ext_addr", u8, "Physical address request: device address"},
    {"uds_physical_response_ext_addr", u8, "Physical address response: tool address"},
    {"uds_functional_request_ext_addr", u8, "Functional address request: device address"},
    {"uds_rdbip_canid", u32, "Read Data by Periodic Identifier CAN-ID"},
};

constexpr NumericSetting j1939Settings[] = {
    {"startaddress", u8, "Address (start address)"}, {"identitynumber", u32, "Identity Number"},
    {"manufacturercode", u16, "Manufacturer Code"},  {"ecuinstance", u8, "ECU Instance"},
    {"functioninstance", u8, "Function Instance"},   {"function", u8, "Function"},
    {"vehiclesystem", u8, "Vehicle System"},         {"vehicleinstance", u8, "Vehicle Instance"},
    {"industrygroup", u8, "Industry Group"},
};

template <typename Reader>
int checkNumbers(ModelChecker &checker, std::span<const NumericSetting> settings, Reader read)
{
    int errors = 0;
    for (const NumericSetting &setting : settings) {
        const QStringList pieces = read(QLatin1String(setting.key)).split(u',');
        for (const QString &piece : pieces) {
            const QString text = piece.trimmed();
            if (!text.isEmpty() && !isValueConvertible(setting.datatype, text)) {
                errors += checker.report(CheckId::ProjectNumericSetting,
                                         {QLatin1String(setting.label), text});
            }
        }
    }
    return errors;
}

} // namespace

int ProjectChecks::checkProject(ModelChecker &checker, ObjectDataBase &database)
{
    const LineCounts lines = countLines(database);
    int errors = checkUdsRoles(checker, database, lines.all);
    errors += checkUdsStaticIndication(checker, database);
    hintToolUpdate(checker, database);
    errors += checkCommonSettings(checker, database, lines);
    return errors + checkNumericSettings(checker, database);
}

int ProjectChecks::checkNumericSettings(ModelChecker &checker, ObjectDataBase &database)
{
    const auto general = [&](const QString &key) { return database.getGeneralSetting(key); };
    const auto j1939 = [&](const QString &key) { return database.getJ1939Setting(key); };
    int errors = checkNumbers(checker, commonSettings, general);
    if (database.getGeneralSetting(QStringLiteral("uds_bl_setting")) != QLatin1String("1")) {
        errors += checkNumbers(checker, udsSettings, general);
    }
    return errors + checkNumbers(checker, j1939Settings, j1939);
}
