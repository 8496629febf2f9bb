#include "generators/base/indicationtable.h"

#include "canopen/linetype.h"
#include "generators/base/codewriter.h"
#include "store/objectdatabase.h"
#include "store/projectsettings.h"

#include <algorithm>
#include <array>

namespace IndicationTable {

namespace {

constexpr std::array<StaticSwitch, 42> switchRows = {{
    {"fct_sdo_server_read", "CO_EVENT_STATIC_SDO_SERVER_READ"},
    {"fct_sdo_server_write", "CO_EVENT_STATIC_SDO_SERVER_WRITE"},
    {"fct_sdo_server_check_write", "CO_EVENT_STATIC_SDO_SERVER_CHECK_WRITE", Stack::OnlyV3},
    {"fct_ssdo_domain_write", "CO_EVENT_STATIC_SSDO_DOMAIN_WRITE", Stack::OnlyV4},
    {"fct_ssdo_domain_read", "CO_EVENT_STATIC_SSDO_DOMAIN_READ", Stack::OnlyV4},
    {"fct_pdo", "CO_EVENT_STATIC_PDO"},
    {"fct_pdo_received", "CO_EVENT_STATIC_PDO"},
    {"fct_pdo_sync", "CO_EVENT_STATIC_PDO"},
    {"fct_pdo_update", "CO_EVENT_STATIC_PDO_UPDATE", Stack::OnlyV4},
    {"fct_nmt", "CO_EVENT_STATIC_NMT"},
    {"fct_errctrl", "CO_EVENT_STATIC_ERRCTRL"},
    {"fct_sync", "CO_EVENT_STATIC_SYNC"},
    {"fct_finished", "CO_EVENT_STATIC_FINISHED"},
    {"fct_led_green", "CO_EVENT_STATIC_LED"},
    {"fct_led_red", "CO_EVENT_STATIC_LED"},
    {"fct_can", "CORE_EVENT_STATIC_CAN"},
    {"fct_cfgman", "CO_EVENT_STATIC_CFG_MAN"},
    {"fct_sdo_client_read", "CO_EVENT_STATIC_SDO_CLIENT_READ"},
    {"fct_sdo_client_write", "CO_EVENT_STATIC_SDO_CLIENT_WRITE"},
    {"fct_emcy", "CO_EVENT_STATIC_EMCY"},
    {"fct_emcy_consumer", "CO_EVENT_STATIC_EMCY_CONSUMER"},
    {"fct_time", "CO_EVENT_STATIC_TIME"},
    {"fct_store", "CO_EVENT_STATIC_STORE_LOAD"},
    {"fct_store_clear", "CO_EVENT_STATIC_STORE_CLEAR"},
    {"fct_store_save", "CO_EVENT_STATIC_STORE_SAVE"},
    {"fct_srd", "CO_EVENT_STATIC_SRD"},
    {"fct_sync_finished", "CO_EVENT_STATIC_SYNC_FINISHED"},
    {"fct_lss", "CO_EVENT_STATIC_LSS"},
    {"fct_lss_master", "CO_EVENT_STATIC_LSS"},
    {"fct_flyma", "CO_EVENT_STATIC_FLYMA"},
    {"fct_manager", "CO_EVENT_STATIC_MANAGER"},
    {"fct_mpdo", "CO_EVENT_STATIC_MPDO"},
    {"usdo_server_read_ind_function", "CO_EVENT_STATIC_USDO_SERVER_READ", Stack::Both, Needs::Usdo},
    {"usdo_server_read_finished_ind_function", "CO_EVENT_STATIC_SUSDO_READ_FINISHED", Stack::Both,
     Needs::Usdo},
    {"usdo_server_write_ind_function", "CO_EVENT_STATIC_USDO_SERVER_WRITE", Stack::Both,
     Needs::Usdo},
    {"usdo_server_ind_check_write_function", "CO_EVENT_STATIC_USDO_CHECK_WRITE", Stack::Both,
     Needs::Usdo},
    {"usdo_server_domain_write_ind_function", "CO_EVENT_STATIC_SUSDO_DOMAIN_WRITE", Stack::Both,
     Needs::Usdo},
    {"usdo_server_domain_read_ind_function", "CO_EVENT_STATIC_SUSDO_DOMAIN_READ", Stack::Both,
     Needs::Usdo},
    {"usdo_client_read_ind_function", "CO_EVENT_STATIC_CUSDO_CLIENT_READ", Stack::Both,
     Needs::Usdo},
    {"usdo_client_write_ind_function", "CO_EVENT_STATIC_CUSDO_CLIENT_WRITE", Stack::Both,
     Needs::Usdo},
    {"usdo_client_domain_write_ind_function", "CO_EVENT_STATIC_CUSDO_DOMAIN_WRITE", Stack::Both,
     Needs::Usdo},
    {"usdo_client_domain_read_ind_function", "CO_EVENT_STATIC_CUSDO_DOMAIN_READ", Stack::Both,
     Needs::Usdo},
}};

constexpr std::array<DynamicCount, 41> countRows = {{
    {"usdo_server_ind_read_cnt", "CO_EVENT_DYNAMIC_USDO_SERVER_READ"},
    {"usdo_server_ind_read_finished_cnt", "CO_EVENT_DYNAMIC_SUSDO_READ_FINISHED"},
    {"usdo_server_ind_write_cnt", "CO_EVENT_DYNAMIC_USDO_SERVER_WRITE"},
    {"usdo_server_ind_check_write_cnt", "CO_EVENT_DYNAMIC_USDO_SERVER_CHECK_WRITE", Stack::OnlyV3},
    {"usdo_server_ind_domain_write_cnt", "CO_EVENT_DYNAMIC_SUSDO_DOMAIN_WRITE"},
    {"usdo_server_ind_domain_read_cnt", "CO_EVENT_DYNAMIC_SUSDO_DOMAIN_READ"},
    {"usdo_client_ind_read_cnt", "CO_EVENT_DYNAMIC_USDO_CLIENT_READ"},
    {"usdo_client_ind_write_cnt", "CO_EVENT_DYNAMIC_USDO_CLIENT_WRITE"},
    {"usdo_client_ind_domain_read_cnt", "CO_EVENT_DYNAMIC_CUSDO_DOMAIN_READ"},
    {"usdo_client_ind_domain_write_cnt", "CO_EVENT_DYNAMIC_CUSDO_DOMAIN_WRITE"},
    {"event_sdo_server_read", "CO_EVENT_DYNAMIC_SDO_SERVER_READ"},
    {"event_sdo_server_write", "CO_EVENT_DYNAMIC_SDO_SERVER_WRITE"},
    {"event_sdo_server_check_write", "CO_EVENT_DYNAMIC_SDO_SERVER_CHECK_WRITE", Stack::OnlyV3},
    {"event_pdo", "CO_EVENT_DYNAMIC_PDO"},
    {"event_pdo_update", "CO_EVENT_DYNAMIC_PDO_UPDATE"},
    {"event_nmt", "CO_EVENT_DYNAMIC_NMT"},
    {"event_errctrl", "CO_EVENT_DYNAMIC_ERRCTRL"},
    {"event_sync", "CO_EVENT_DYNAMIC_SYNC"},
    {"event_sync_finished", "CO_EVENT_DYNAMIC_SYNC_FINISHED"},
    {"event_finished", "CO_EVENT_DYNAMIC_FINISHED"},
    {"event_led", "CO_EVENT_DYNAMIC_LED"},
    {"event_cfg", "CO_EVENT_DYNAMIC_CFG_MAN"},
    {"event_flyma", "CO_EVENT_DYNAMIC_FLYMA"},
    {"event_sdorouter", "CO_EVENT_DYNAMIC_NETWORK_SDOCLIENT_USER"},
    {"event_sdo_client_read", "CO_EVENT_DYNAMIC_SDO_CLIENT_READ"},
    {"event_sdo_client_write", "CO_EVENT_DYNAMIC_SDO_CLIENT_WRITE"},
    {"event_emcy", "CO_EVENT_DYNAMIC_EMCY"},
    {"event_emcy_consumer", "CO_EVENT_DYNAMIC_EMCY_CONSUMER"},
    {"event_time", "CO_EVENT_DYNAMIC_TIME"},
    {"event_store", "CO_EVENT_DYNAMIC_STORE"},
    {"event_srd", "CO_EVENT_DYNAMIC_SRD"},
    {"event_lss", "CO_EVENT_DYNAMIC_LSS"},
    {"event_idnego", "CO_EVENT_DYNAMIC_IDNEGO"},
    {"event_manager", "CO_EVENT_DYNAMIC_MANAGER"},
    {"event_mpdo", "CO_EVENT_DYNAMIC_MPDO"},
    {"event_gfc", "CO_EVENT_DYNAMIC_GFC"},
    {"object_changed_event", "CO_EVENT_DYNAMIC_OBJECT_CHANGED"},
    {"event_ssdo_domain_write", "CO_EVENT_DYNAMIC_SSDO_DOMAIN_WRITE"},
    {"event_ssdo_domain_read", "CO_EVENT_DYNAMIC_SSDO_DOMAIN_READ"},
    {"isotp_server_event", "ISOTP_EVENT_DYNAMIC_SERVER"},
    {"isotp_client_event", "ISOTP_EVENT_DYNAMIC_CLIENT"},
}};

constexpr std::array<Prototype, 41> prototypeRows = {{
    {"fct_sdo_server_read", "RET_T ",
     "BOOL_T execute, UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex",
     "CORE_CONST CO_EVENT_SDO_SERVER_SERVICE_T service, CORE_CONST CO_EVENT_SDO_SERVER_PARA_T "
     "*pPara"},
    {"fct_sdo_server_write", "RET_T ",
     "BOOL_T execute, UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex",
     "CORE_CONST CO_EVENT_SDO_SERVER_SERVICE_T service, CORE_CONST CO_EVENT_SDO_SERVER_PARA_T "
     "*pPara"},
    {"fct_sdo_server_check_write", "RET_T ",
     "BOOL_T execute, UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex, const UNSIGNED8 "
     "*pData",
     nullptr},
    {"fct_ssdo_domain_write", "RET_T ", nullptr,
     "CORE_CONST CO_EVENT_SDO_SERVER_DOMAIN_PARA_T *pPara"},
    {"fct_ssdo_domain_read", "RET_T ", nullptr,
     "CORE_CONST CO_EVENT_SDO_SERVER_DOMAIN_PARA_T *pPara"},
    {"fct_pdo", "void ", "UNSIGNED16 pdoNr",
     "CO_EVENT_PDO_SERVICE_T service, CORE_CONST CO_EVENT_PDO_PARA_T *pData"},
    {"fct_pdo_receive", "void ", "UNSIGNED16 pdoNr", nullptr},
    {"fct_pdo_sync", "void ", "UNSIGNED16 pdoNr", nullptr},
    {"fct_pdo_update", "void ", nullptr, "UNSIGNED16 index, UNSIGNED8 subIndex"},
    {"fct_nmt", "RET_T ", "BOOL_T execute, CO_NMT_STATE_T nmtState",
     "CO_EVENT_NMT_SERVICE_T service, CO_NMT_STATE_T newState"},
    {"fct_errctrl", "void ", "UNSIGNED8 nodeId, CO_ERRCTRL_T errCtrlState, CO_NMT_STATE_T nmtState",
     "CORE_CONST CO_EVENT_ERRCTRL_PARA_T *pPara"},
    {"fct_sync", "void ", "UNSIGNED8 syncCounter", "UNSIGNED8 syncCounter"},
    {"fct_sync_finished", "void ", "UNSIGNED8 syncCounter", "UNSIGNED8 syncCounter"},
    {"fct_led_green", "void ", "BOOL_T ledState", "BOOL_T ledState"},
    {"fct_led_red", "void ", "BOOL_T ledState", "BOOL_T ledState"},
    {"fct_can", "void ", "CO_CAN_STATE_T canState", "CORE_CAN_STATE_T canState"},
    {"fct_comm", "void ", "CO_COMM_STATE_EVENT_T commEvent", "CORE_COMM_STATE_EVENT_T commEvent"},
    {"fct_cfgman", "void ",
     "CO_CFG_TRANSFER_T type, UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 sub, UNSIGNED32 reason",
     "CO_CFG_TRANSFER_T type, CO_EVENT_CFG_PARA_T* pPara"},
    {"fct_flyma", "void ", "CO_FLYMA_STATE_T state, UNSIGNED8 node, UNSIGNED8 priority",
     "CORE_CONST CO_EVENT_FLYING_MASTER_PARA_T *pPara"},
    {"fct_sdo_client_read", "void ",
     "UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 size, UNSIGNED32 result",
     "CORE_CONST CO_EVENT_SDO_CLIENT_PARA_T *pPara"},
    {"fct_sdo_client_write", "void ",
     "UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 result",
     "CORE_CONST CO_EVENT_SDO_CLIENT_PARA_T *pPara"},
    {"fct_emcy", "void ", "UNSIGNED16 errCode, UNSIGNED8 *addErrorCode",
     "CO_EVENT_EMCY_PRODUCER_PARA_T *pPara"},
    {"fct_emcy_consumer", "void ",
     "UNSIGNED8 node, UNSIGNED16 errCode, UNSIGNED8 errorRegister, UNSIGNED8 const *addErrorCode",
     "CORE_CONST CO_EVENT_EMCY_CONSUMER_PARA_T *pPara"},
    {"fct_time", "void ", "CO_TIME_T *pTime", "CO_TIME_T *pTime"},
    {"fct_store", "RET_T ", "UNSIGNED8 subIndex", "UNSIGNED8 subIndex"},
    {"fct_store_clear", "RET_T ", "UNSIGNED8 subIndex", "UNSIGNED8 subIndex"},
    {"fct_store_save", "RET_T ", "UNSIGNED8 subIndex", "UNSIGNED8 subIndex"},
    {"fct_lss", "RET_T ",
     "CO_LSS_SERVICE_T service, UNSIGNED16 bitrate, UNSIGNED8 *pErrCode, UNSIGNED8 *pErrSpec",
     "CO_LSS_SERVICE_T service, CORE_CONST CO_EVENT_LSS_SLAVE_PARA_T * pPara,  "
     "CO_EVENT_LSS_SLAVE_RET_PARA_T * pRetPara"},
    {"fct_lss_master", "void ",
     "CO_LSS_MASTER_SERVICE_T, UNSIGNED16 errorCode, UNSIGNED8 errorSpec, UNSIGNED32 *pIdentity",
     "CO_EVENT_LSS_MASTER_PARA_T *pPara"},
    {"fct_manager", "void ", "UNSIGNED8 node, CO_MANAGER_EVENT_T event",
     "UNSIGNED8 node, CO_MANAGER_EVENT_T event"},
    {"fct_mpdo", "void ", "UNSIGNED16 pdoNr, UNSIGNED16 index, UNSIGNED8 subIndex",
     "CORE_CONST CO_EVENT_MPDO_PARA_T *pPara"},
    {"usdo_server_read_ind_function", "RET_T ",
     "BOOL_T execute, UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex",
     "CORE_CONST CO_EVENT_USDO_SERVER_SERVICE_T service, CORE_CONST CO_EVENT_USDO_SERVER_PARA_T "
     "*pPara",
     Needs::Usdo},
    {"usdo_server_write_ind_function", "RET_T ",
     "BOOL_T execute, UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex",
     "CORE_CONST CO_EVENT_USDO_SERVER_SERVICE_T service, CORE_CONST CO_EVENT_USDO_SERVER_PARA_T "
     "*pPara",
     Needs::Usdo},
    {"usdo_server_read_finished_ind_function", "void ",
     "UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex", nullptr, Needs::Usdo},
    {"usdo_server_ind_check_write_function", "RET_T ",
     "UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex, CO_CONST UNSIGNED8* pData", nullptr,
     Needs::Usdo},
    {"usdo_server_domain_write_ind_function", "RET_T ",
     "UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 domainBufSize, UNSIGNED32 transferSize",
     "CORE_CONST CO_EVENT_USDO_SERVER_DOMAIN_PARA_T *pPara", Needs::Usdo},
    {"usdo_server_domain_read_ind_function", "RET_T ",
     "UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 domainBufSize, UNSIGNED32 transferSize",
     "CORE_CONST CO_EVENT_USDO_SERVER_DOMAIN_PARA_T *pPara", Needs::Usdo},
    {"usdo_client_read_ind_function", "void ",
     "UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex, RET_T result",
     "CO_EVENT_USDO_CLIENT_PARA_T *pPara", Needs::Usdo},
    {"usdo_client_write_ind_function", "void ",
     "UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex, RET_T result",
     "CO_EVENT_USDO_CLIENT_PARA_T *pPara", Needs::Usdo},
    {"usdo_client_domain_write_ind_function", "void ",
     "UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 domainBufSize, UNSIGNED32 "
     "transferSize",
     "CORE_CONST CO_EVENT_USDO_CLIENT_DOMAIN_PARA_T *pPara", Needs::Usdo},
    {"usdo_client_domain_read_ind_function", "void ",
     "UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 domainBufSize, UNSIGNED32 "
     "transferSize",
     "CORE_CONST CO_EVENT_USDO_CLIENT_DOMAIN_PARA_T *pPara", Needs::Usdo},
}};

constexpr std::array<UdsBinding, 12> udsRows = {{
    {"uds_fct_check_req_session", "UDS_EVENT_STATIC_CHECK_REQ_SESSION", "RET_T ",
     "UDS_CHECK_REQUIRED_SESSION_PARA_T *pPara"},
    {"uds_fct_clear_dtc_info", "UDS_EVENT_STATIC_CLEAR_DTC_INFO", "RET_T ",
     "UDS_CLEAR_DTC_INFO_PARA_T *pPara"},
    {"uds_fct_dtc_info", "UDS_EVENT_STATIC_DTC_INFO", "RET_T ", "UDS_DTC_INFO_PARA_T *pPara"},
    {"uds_fct_id_data_transmit", "UDS_EVENT_STATIC_ID_DATA_TRANSMIT", "RET_T ",
     "UDS_DATA_TRANSMIT_PARA_T *pPara"},
    {"uds_fct_mem_data_transmit", "UDS_EVENT_STATIC_MEM_DATA_TRANSMIT", "RET_T ",
     "UDS_MEM_DATA_TRANSMIT_PARA_T *pPara"},
    {"uds_fct_sec_access_req_key", "UDS_EVENT_STATIC_SEC_ACCESS_REQ_KEY", "RET_T ",
     "UDS_SECURITY_ACCESS_REQ_KEY_PARA_T *pPara"},
    {"uds_fct_req_commgt", "UDS_EVENT_STATIC_REQ_COMMGT", "RET_T ",
     "UDS_REQ_COMMGT_STATE_T state, UDS_REQ_COMMGT_PARA_T *pPara"},
    {"uds_fct_authent_req", "UDS_EVENT_STATIC_AUTHENT_REQ", "RET_T ",
     "UDS_REQ_AUTHENT_CMD_T cmd, UDS_REQ_AUTHENT_PARA_T *pPara"},
    {"uds_fct_ioctrl", "UDS_EVENT_STATIC_IOCTRL", "RET_T ", "UDS_ROUTINE_IOCTRL_PARA_T *pPara"},
    {"uds_fct_routine_ctrl", "UDS_EVENT_STATIC_ROUTINE_CTRL", "RET_T ",
     "UDS_EVENT_ROUTINE_CTRL_PARA_T *pPara"},
    {"uds_fct_data_transfer", "UDS_EVENT_STATIC_DATA_TRANSFER", "RET_T ",
     "UDS_DATA_TRANSFER_PARA_T *pPara"},
    {"uds_fct_generic", "UDS_EVENT_STATIC_GENERIC_FCT", "UNSIGNED8 ", "UDS_GENERIC_PARA_T *pPara"},
}};

constexpr const char *usdoServer = "usdo_server_enabled";
constexpr const char *usdoClient = "usdo_client_enabled";

bool isOnAnyLine(ObjectDataBase &store, const char *key)
{
    const QList<quint8> lines = store.getLines();
    return std::any_of(lines.begin(), lines.end(), [&](quint8 line) {
        return ProjectSettings(store).lineDecimal(key, line) > 0;
    });
}

} // namespace

std::span<const StaticSwitch> staticSwitches()
{
    return switchRows;
}

std::span<const DynamicCount> dynamicCounts()
{
    return countRows;
}

std::span<const Prototype> prototypes()
{
    return prototypeRows;
}

std::span<const UdsBinding> udsBindings()
{
    return udsRows;
}

QString functionName(ObjectDataBase &store, const char *key)
{
    const QString text = ProjectSettings(store).text(key).trimmed();
    return text.isEmpty() ? QString() : CodeWriter::identifier(text);
}

bool hasUsdo(ObjectDataBase &store)
{
    return isOnAnyLine(store, usdoServer) || isOnAnyLine(store, usdoClient);
}

bool hasUsdoPointers(ObjectDataBase &store)
{
    return LineType::of(store.getLineType(0)).hasCANopen && isOnAnyLine(store, usdoServer);
}

} // namespace IndicationTable
