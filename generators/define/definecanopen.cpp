#include "generators/define/definesections.h"

#include "store/objectdatabase.h"

#include <array>

namespace {

using Facts = DictionaryFacts;

/// A switch that one object of the dictionary turns on.
struct ObjectSwitch
{
    quint16 index;
    const char *define;
};

constexpr std::array<ObjectSwitch, 7> objectSwitches = {{{0x1005, "CO_SYNC_SUPPORTED"},
                                                         {0x1012, "CO_TIME_SUPPORTED"},
                                                         {0x1014, "CO_EMCY_PRODUCER"},
                                                         {0x1010, "CO_STORE_SUPPORTED"},
                                                         {0x1011, "CO_STORE_SUPPORTED"},
                                                         {0x1300, "CO_GFC_SUPPORTED"},
                                                         {0x1F10, "CO_SRD_SUPPORTED"}}};

/// A switch or a number that stands in one setting. A row with a parent is written only behind
/// the parent's.
struct SettingRow
{
    const char *key;
    const char *define;
    bool isNumber = false;
    const char *parent = nullptr; ///< key
};

constexpr std::array<SettingRow, 19> settingRows = {
    {{"lss_inquiry_supported", "CO_LSS_INQUIRY_SERVICES"},
     {"idnego_supported", "CO_IDNEGO_SUPPORTED"},
     {"dynod", "CO_DYNAMIC_OBJDIC"},
     {"csdo_write_special", "CO_EVENT_CSDO_DOMAIN_WRITE"},
     {"emcy_routing", "CO_EMCY_NETWORKING"},
     {"sdo_routing", "CO_SDO_NETWORKING"},
     {"ignore_srdo_data_validation", "CO_SRDO_IGNORE_DATA_STATE"},
     {"bootup_manager", "CO_BOOTUP_MANAGER"},
     {"1010autostore_by_application", "CO_AUTO_STORE_HANDLED_BY_APPLICATION"},
     {"sdo_blocktransfer_supported", "CO_SDO_BLOCK"},
     {"sdo_blocktransfer_block_size", "CO_SDO_BLOCK_SIZE", true, "sdo_blocktransfer_supported"},
     {"sdo_blocktransfer_min_data", "CO_SDO_BLOCK_MIN_SIZE", true, "sdo_blocktransfer_supported"},
     {"sdo_blocktransfer_crc_supported", "CO_SDO_BLOCK_CRC", false, "sdo_blocktransfer_supported"},
     {"sdo_client_queue_supported", "CO_SDO_QUEUE"},
     {"sdo_client_queue_size", "CO_SDO_QUEUE_LEN", true, "sdo_client_queue_supported"},
     {"sdo_client_queue_internal_access_supported", "CO_SDOQUEUE_INTERNAL_ACCESS", false,
      "sdo_client_queue_supported"},
     {"limit_check", "CO_CONFIG_LIMIT_CHECK"},
     {"event_ssdo_domain_counter", "CO_SSDO_DOMAIN_CNT", true},
     {"sdo_split", "CO_SDO_SPLIT_INDICATION"}}};

struct GroupCount
{
    TableGroup group;
    const char *define;
};

constexpr std::array<GroupCount, 8> srdoCounts = {{{TableGroup::U8, "SRDO_OD_ENTRY_U8_CNT"},
                                                   {TableGroup::U16, "SRDO_OD_ENTRY_U16_CNT"},
                                                   {TableGroup::U24, "SRDO_OD_ENTRY_U24_CNT"},
                                                   {TableGroup::U32, "SRDO_OD_ENTRY_U32_CNT"},
                                                   {TableGroup::I8, "SRDO_OD_ENTRY_I8_CNT"},
                                                   {TableGroup::I16, "SRDO_OD_ENTRY_I16_CNT"},
                                                   {TableGroup::I32, "SRDO_OD_ENTRY_I32_CNT"},
                                                   {TableGroup::R32, "SRDO_OD_ENTRY_R32_CNT"}}};

} // namespace

void DefineSections::writeCANopen()
{
    m_out.out() << "/* CANopen Defines */\n";
    writePdos();
    writeSrdos();
    writeErrorControl();
    for (const ObjectSwitch &row : objectSwitches)
        m_out.flagIf(m_facts.hasObject(row.index), QLatin1String(row.define));
    writeNmt();
    writeSdos();
    for (const SettingRow &row : settingRows) {
        if (row.parent && !isOn(row.parent))
            continue;
        if (row.isNumber)
            m_out.count(QLatin1String(row.define), number(row.key));
        else
            m_out.flagIf(isOn(row.key), QLatin1String(row.define));
    }
    writeUsdos();
    writeDevice();
    writeProfiles();
    m_out.out() << '\n';
}

void DefineSections::writePdos()
{
    m_out.count(QStringLiteral("CO_PDO_TRANSMIT_CNT"), m_facts.sum(&Counts::transmitMappings));
    m_out.count(QStringLiteral("CO_PDO_RECEIVE_CNT"), m_facts.sum(&Counts::receiveMappings));
    m_out.flagIf(m_facts.sum(&Counts::transmitMpdos) > 0, QStringLiteral("CO_MPDO_PRODUCER"));
    m_out.flagIf(m_facts.sum(&Counts::receiveMpdos) > 0, QStringLiteral("CO_MPDO_CONSUMER"));
    m_out.flagIf(m_facts.sum(&Counts::samReceiveMpdos) > 0, QStringLiteral("CO_MPDO_SAM"));
    m_out.flagIf(m_facts.sum(&Counts::damReceiveMpdos) > 0, QStringLiteral("CO_MPDO_DAM"));
    m_out.count(QStringLiteral("CO_MAX_MAP_ENTRIES"),
                quint64(std::max(m_facts.dictionary.maxMapEntries, 0)));
    m_out.count(QStringLiteral("CO_TR_PDO_DYN_MAP_ENTRIES"),
                m_facts.sum(&Counts::dynamicTransmitMappings));
    m_out.count(QStringLiteral("CO_REC_PDO_DYN_MAP_ENTRIES"),
                m_facts.sum(&Counts::dynamicReceiveMappings));
    m_out.flagIf(isOn("bitwise_mapping"), QStringLiteral("CO_PDO_BIT_MAPPING"));
    m_out.flagIf(m_facts.sum(&Counts::receivePdoTimers) > 0,
                 QStringLiteral("CO_PDO_REC_TIMER_SUPPORTED"));
    constexpr quint16 emcyInhibitTime = 0x1015;
    constexpr quint16 nmtInhibitTime = 0x102A;
    m_out.flagIf(m_facts.hasObject(emcyInhibitTime) || m_facts.hasObject(nmtInhibitTime) ||
                     m_facts.sum(&Counts::transmitPdoInhibits) > 0,
                 QStringLiteral("CORE_INHIBIT_SUPPORTED"));
}

void DefineSections::writeSrdos()
{
    const quint64 srdos = m_facts.sum(&Counts::srdos);
    m_out.flagIf(srdos > 0, QStringLiteral("CO_SRDO_SUPPORTED"));
    m_out.count(QStringLiteral("CO_SRDO_CNT"), srdos);
    if (number("static_srdo_data") != 1)
        return;
    // All of them: they are the sizes of the tables of SRDO variables.
    for (const GroupCount &row : srdoCounts)
        m_out.number(QLatin1String(row.define),
                     quint64(m_facts.dictionary.srdoEntries[std::size_t(row.group)]));
}

void DefineSections::writeErrorControl()
{
    constexpr quint16 guardTime = 0x100C;
    m_out.count(QStringLiteral("CO_HB_CONSUMER_CNT"), m_facts.sum(&Counts::heartbeatConsumers),
                ' ');
    m_out.flagIf(m_facts.hasObject(guardTime), QStringLiteral("CO_GUARDING_SLAVE"));
    m_out.count(QStringLiteral("CO_EMCY_CONSUMER_CNT"), m_facts.sum(&Counts::emcyConsumers), ' ');
    m_out.count(QStringLiteral("CO_EMCY_ERROR_HISTORY"), m_facts.sum(&Counts::errorHistory), ' ');
}

void DefineSections::writeNmt()
{
    m_out.flagIf(m_facts.isMaster, QStringLiteral("CO_NMT_MASTER"));
    m_out.flagIf(m_facts.hasFlyingMaster, QStringLiteral("CO_FLYING_MASTER_SUPPORTED"));
    const bool hasLss = isOnAnyLine("lss_supported");
    m_out.flagIf(hasLss, QStringLiteral("CO_LSS_SUPPORTED"));
    m_out.flagIf(hasLss && m_facts.isMaster, QStringLiteral("CO_LSS_MASTER_SUPPORTED"));
    m_out.count(QStringLiteral("CO_SLAVE_ASSIGNMENT_CNT"), m_facts.sum(&Counts::slaveAssignments));
    m_out.count(QStringLiteral("CO_MAX_SLAVE_ASSIGNMENT_CNT"),
                m_facts.sum(&Line::maximumAssignments));
    constexpr quint16 storedDcf = 0x1F20;
    constexpr quint16 conciseDcf = 0x1F22;
    m_out.flagIf(isOn("config_manager") || m_facts.hasObject(storedDcf) ||
                     m_facts.hasObject(conciseDcf),
                 QStringLiteral("CO_CFG_MANAGER"));
}

void DefineSections::writeSdos()
{
    m_out.count(QStringLiteral("CO_SDO_SERVER_CNT"), m_facts.sum(&Counts::sdoServers));
    m_out.count(QStringLiteral("CO_SDO_CLIENT_CNT"), m_facts.sum(&Counts::sdoClients));
    m_out.count(QStringLiteral("CO_NETWORK_ROUTING_CNT"), m_facts.sum(&Line::routings));
}

void DefineSections::writeUsdos()
{
    if (!isOnAnyLine("usdo_server_enabled") && !isOnAnyLine("usdo_client_enabled"))
        return;
    m_out.flag(QStringLiteral("CO_USDO_SUPPORTED"));
    m_out.count(isV4() ? QStringLiteral("CO_USDO_SERVER_MAX_CONN_CNT")
                       : QStringLiteral("CO_USDO_SERVER_MAX_CON"),
                m_facts.sum(&Line::usdoServers));
    m_out.flagIf(isOnAnyLine("usdo_client_enabled"), QStringLiteral("CO_USDO_CLIENT_SUPPORTED"));
    m_out.count(isV4() ? QStringLiteral("CO_USDO_CLIENT_MAX_CONN_CNT")
                       : QStringLiteral("CO_USDO_CLIENT_MAX_CON"),
                m_facts.sum(&Line::usdoClients));
    m_out.count(QStringLiteral("CO_SUSDO_DOMAIN_CNT"), number("usdo_server_domain_write_ind_size"));
    m_out.flagIf(isV4() && isOn("usdo_split_indication_supported"),
                 QStringLiteral("CO_USDO_SPLIT_INDICATION"));
}

void DefineSections::writeDevice()
{
    ObjectDataBase &store = m_settings.store();
    m_out.flagIf(m_facts.dictionary.hasExtendedTypes, QStringLiteral("CO_EXTENDED_DATA_TYPES"));
    m_out.flagIf(m_facts.dictionary.hasUtf8Strings, QStringLiteral("CO_UTF8_DATA_TYPE"));
    m_out.flagIf(store.getDescriptionSetting(QStringLiteral("SelfStarting")) == QLatin1String("1"),
                 QStringLiteral("CO_SELF_STARTING_DEVICE"));
    m_out.count(QStringLiteral("CO_NETWORK_ID"), number("co_network_id"));
    m_out.flagIf(isV4() && number("object_changed_event") > 0, QStringLiteral("CO_OBJECT_CHANGED"));
}

void DefineSections::writeProfiles()
{
    constexpr quint32 energyProfile = 454;
    for (const quint32 profile : m_facts.profiles) {
        m_out.flag(QStringLiteral("CO_PROFILE_%1").arg(profile));
        m_out.flagIf(profile == energyProfile, QStringLiteral("CO_EVENT_PROFILE_STORE"));
    }
    constexpr int functionBits = 64;
    for (int bit = 0; bit < functionBits; ++bit)
        m_out.flagIf(m_facts.virtualFunctions >> bit & 1,
                     QStringLiteral("CO_P447_VDFG_%1").arg(bit + 1));
}
