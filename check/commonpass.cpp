#include "canopen/canopentypes.h"
#include "canopen/linetype.h"
#include "canopen/valuetext.h"
#include "check/checkpass.h"
#include "check/commonmessages.h"
#include "store/edition.h"
#include "store/objectdatabase.h"

#include <algorithm>
#include <span>

namespace {

/// Source files that came to the stack since the tool that saved the project last. Told once.
void hintToolUpdate(const CheckContext &context)
{
    const SettingKey key = SettingKey::misc(QStringLiteral("PreviousToolVersion"));
    const QStringList numbers = context.settings.text(key).split(u'.');
    bool hasMajor = false;
    bool hasMinor = false;
    const int major = numbers.value(0).toInt(&hasMajor);
    const int minor = numbers.value(1).toInt(&hasMinor);
    if (!hasMajor || !hasMinor || major != 3 || minor >= 9)
        return;
    using enum CommonMessage;
    const bool canopenOnly = Edition::isCANopen();
    if (minor >= 7) {
        context.sink.report(canopenOnly ? UpdateCanopen37 : UpdateMulti37);
        if (context.settings.decimal("udsserver_supported") != 0 ||
            context.settings.decimal("udsclient_supported") != 0)
            context.sink.report(UpdateUds);
    } else {
        context.sink.report(canopenOnly ? UpdateCanopen36 : UpdateMulti36);
    }
    context.database.setMiscSetting(key.name, QString());
}

/// Whether CANopen shares the project with another protocol. Lines of CANopen with J1939 count as
/// those of the other protocol.
bool isMultiProtocol(const CheckContext &context)
{
    bool hasCANopen = false;
    bool hasOther = false;
    const QList<quint8> lines = context.lines();
    for (const quint8 line : lines) {
        const LineType &type = context.database.lineType(line);
        hasCANopen |= type.hasCANopen && !type.hasJ1939;
        hasOther |= type.hasJ1939 || type.hasRawCan;
    }
    return lines.size() >= 2 && hasCANopen && hasOther;
}

void checkSettings(const CheckContext &context)
{
    constexpr quint64 longestBlock = 127;
    if (context.settings.number("sdo_blocktransfer_block_size") > longestBlock)
        context.sink.report(CommonMessage::SdoBlockSize);
    if (context.settings.text("co_timer_interval").isEmpty())
        context.sink.report(CommonMessage::TimerInterval);
    if (isMultiProtocol(context) && context.settings.text("nmtmaster").contains(u'2'))
        context.sink.report(CommonMessage::NmtMasterMultiProtocol);
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

void checkNumbers(const CheckContext &context, std::span<const NumericSetting> settings,
                  SettingTable table)
{
    for (const NumericSetting &setting : settings) {
        const QString key = QLatin1String(setting.key);
        const QStringList items = context.settings.items({key, table});
        for (const QString &item : items) {
            const QString text = item.trimmed();
            if (!text.isEmpty() && !isValueConvertible(setting.datatype, text))
                context.sink.report(CommonMessage::NumericSetting,
                                    {QLatin1String(setting.label), text}, {.field = key});
        }
    }
}

/// Settings that the generated code needs as numbers.
void checkNumericSettings(const CheckContext &context)
{
    checkNumbers(context, commonSettings, SettingTable::General);
    if (context.settings.text("uds_bl_setting") != QLatin1String("1"))
        checkNumbers(context, udsSettings, SettingTable::General);
    checkNumbers(context, j1939Settings, SettingTable::J1939);
}

/// The settings that all protocols share.
class CommonPass : public CheckPass
{
public:
    void checkProject(const CheckContext &context) override
    {
        hintToolUpdate(context);
        checkSettings(context);
        checkNumericSettings(context);
    }
};

} // namespace

std::unique_ptr<CheckPass> makeCommonPass()
{
    return std::make_unique<CommonPass>();
}
