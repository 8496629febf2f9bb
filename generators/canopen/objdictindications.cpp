#include "generators/canopen/objdictindications.h"

#include "generators/base/indicationtable.h"

#include <array>

namespace {

/// Null where a generation of the stack has no such indication.
struct Pointer
{
    const char *key;
    const char *v3; ///< type and name
    const char *v4;
    bool isUsdo = false;
};

constexpr std::array<Pointer, 41> pointers = {{
    {"fct_sdo_server_read", "CO_EVENT_SDO_SERVER_T coEventSdoServerReadInd",
     "CO_EVENT_SDO_SERVER_FUNCTION_T coEventSdoServerReadInd"},
    {"fct_sdo_server_write", "CO_EVENT_SDO_SERVER_T coEventSdoServerWriteInd",
     "CO_EVENT_SDO_SERVER_FUNCTION_T coEventSdoServerWriteInd"},
    {"fct_sdo_server_check_write",
     "CO_EVENT_SDO_SERVER_CHECK_WRITE_T coEventSdoServerCheckWriteInd", nullptr},
    {"fct_ssdo_domain_write", nullptr,
     "CO_EVENT_SDO_SERVER_DOMAIN_WRITE_T coEventSdoServerDomainWriteInd"},
    {"fct_ssdo_domain_read", nullptr,
     "CO_EVENT_SDO_SERVER_DOMAIN_READ_T coEventSdoServerDomainReadInd"},
    {"fct_pdo", "CO_EVENT_PDO_T coEventPdoInd", "CO_EVENT_PDO_T coEventPdoInd"},
    {"fct_pdo_receive", "CO_EVENT_PDO_T coEventPdoRecInd", nullptr},
    {"fct_pdo_sync", "CO_EVENT_PDO_T coEventPdoSyncInd", nullptr},
    {"fct_pdo_update", nullptr, "CO_EVENT_PDO_UPDATE_T coEventPdoUpdateInd"},
    {"fct_nmt", "CO_EVENT_NMT_T coEventNmtInd", "CO_EVENT_NMT_T coEventNmtInd"},
    {"fct_errctrl", "CO_EVENT_ERRCTRL_T coEventErrCtrlInd", "CO_EVENT_ERRCTRL_T coEventErrCtrlInd"},
    {"fct_sync", "CO_EVENT_SYNC_T coEventSyncInd", "CO_EVENT_SYNC_T coEventSyncInd"},
    {"fct_sync_finished", "CO_EVENT_SYNC_FINISHED_T coEventSyncFinishedInd",
     "CO_EVENT_SYNC_FINISHED_T coEventSyncFinishedInd"},
    {"fct_led_green", "CO_EVENT_LED_T coEventLedGreenInd", "CO_EVENT_LED_T coEventLedGreenInd"},
    {"fct_led_red", "CO_EVENT_LED_T coEventLedRedInd", "CO_EVENT_LED_T coEventLedRedInd"},
    {"fct_can", "CO_EVENT_CAN_STATE_T coEventCanStateInd",
     "CORE_EVENT_CAN_STATE_T coreEventCanStateInd"},
    {"fct_cfgman", "CO_EVENT_CFG_MANAGER_T coEventCfgManInd",
     "CO_EVENT_CFG_MANAGER_T coEventCfgManInd"},
    {"fct_flyma", "CO_EVENT_FLYMA_T coEventFlymaInd", "CO_EVENT_FLYMA_T coEventFlymaInd"},
    {"fct_sdo_client_read", "CO_EVENT_SDO_CLIENT_READ_T coEventSdoClientReadInd",
     "CO_EVENT_SDO_CLIENT_READ_T coEventSdoClientReadInd"},
    {"fct_sdo_client_write", "CO_EVENT_SDO_CLIENT_WRITE_T coEventSdoClientWriteInd",
     "CO_EVENT_SDO_CLIENT_WRITE_T coEventSdoClientWriteInd"},
    {"fct_emcy", "CO_EVENT_EMCY_T coEventEmcyInd", "CO_EVENT_EMCY_T coEventEmcyInd"},
    {"fct_emcy_consumer", "CO_EVENT_EMCY_CONS_T coEventEmcyConsumerInd",
     "CO_EVENT_EMCY_CONSUMER_T coEventEmcyConsumerInd"},
    {"fct_time", "CO_EVENT_TIME_T coEventTimeInd", "CO_EVENT_TIME_T coEventTimeInd"},
    {"fct_store", "CO_EVENT_STORE_T coEventStoreLoadInd", "CO_EVENT_STORE_T coEventStoreLoadInd"},
    {"fct_store_clear", "CO_EVENT_STORE_T coEventStoreClearInd",
     "CO_EVENT_STORE_T coEventStoreClearInd"},
    {"fct_store_save", "CO_EVENT_STORE_T coEventStoreSaveInd",
     "CO_EVENT_STORE_T coEventStoreSaveInd"},
    {"fct_lss", "CO_EVENT_LSS_T coEventLssInd", "CO_EVENT_LSS_T coEventLssInd"},
    {"fct_lss_master", "CO_EVENT_LSS_MASTER_T coEventLssMasterInd",
     "CO_EVENT_LSS_MASTER_T coEventLssMasterInd"},
    {"fct_comm", "CO_EVENT_COMM_T coEventCommInd", "CORE_EVENT_COMM_T coreEventCommInd"},
    {"fct_manager", "CO_EVENT_MANAGER_BOOTUP_T coEventManagerInd",
     "CO_EVENT_MANAGER_BOOTUP_T coEventManagerInd"},
    {"fct_mpdo", "CO_EVENT_MPDO_T coEventMPdoInd", "CO_EVENT_MPDO_T coEventMPdoInd"},
    {"usdo_server_read_ind_function", "CO_EVENT_USDO_SERVER_T coEventUsdoServerReadInd",
     "CO_EVENT_USDO_SERVER_T coEventUsdoServerReadInd", true},
    {"usdo_server_write_ind_function", "CO_EVENT_USDO_SERVER_T coEventUsdoServerWriteInd",
     "CO_EVENT_USDO_SERVER_T coEventUsdoServerWriteInd", true},
    {"usdo_server_domain_read_ind_function",
     "CO_EVENT_USDO_SERVER_DOMAIN_READ_T coEventUsdoServerDomainReadInd",
     "CO_EVENT_USDO_SERVER_DOMAIN_READ_T coEventUsdoServerDomainReadInd", true},
    {"usdo_server_domain_write_ind_function",
     "CO_EVENT_USDO_SERVER_DOMAIN_WRITE_T coEventUsdoServerDomainWriteInd",
     "CO_EVENT_USDO_SERVER_DOMAIN_WRITE_T coEventUsdoServerDomainWriteInd", true},
    {"usdo_client_read_ind_function", "CO_EVENT_USDO_CLIENT_READ_T coEventUsdoClientReadInd",
     "CO_EVENT_USDO_CLIENT_T coEventUsdoClientReadInd", true},
    {"usdo_client_write_ind_function", "CO_EVENT_USDO_CLIENT_WRITE_T coEventUsdoClientWriteInd",
     "CO_EVENT_USDO_CLIENT_T coEventUsdoClientWriteInd", true},
    {"usdo_client_domain_read_ind_function",
     "CO_EVENT_USDO_CLIENT_DOMAIN_TRANSFER_T coEventUsdoClientDomainReadInd",
     "CO_EVENT_USDO_CLIENT_DOMAIN_TRANSFER_T coEventUsdoClientDomainReadInd", true},
    {"usdo_client_domain_write_ind_function",
     "CO_EVENT_USDO_CLIENT_DOMAIN_TRANSFER_T coEventUsdoClientDomainWriteInd",
     "CO_EVENT_USDO_CLIENT_DOMAIN_TRANSFER_T coEventUsdoClientDomainWriteInd", true},
    {"usdo_server_ind_check_write_function",
     "CO_EVENT_USDO_SERVER_CHECK_WRITE_T coEventUsdoServerCheckWriteInd", nullptr, true},
    {"usdo_server_read_finished_ind_function",
     "CO_EVENT_USDO_SERVER_FINISHED_T coEventUsdoServerReadFinishedInd", nullptr, true},
}};

} // namespace

QString ObjDictIndications::pointerDefinitions(ObjectDataBase &store, const StackDialect &dialect)
{
    const bool hasUsdo = IndicationTable::hasUsdoPointers(store);
    QString text;
    for (const Pointer &pointer : pointers) {
        const char *declarator = dialect.isV4 ? pointer.v4 : pointer.v3;
        if (!declarator || (pointer.isUsdo && !hasUsdo))
            continue;
        const QString function = IndicationTable::functionName(store, pointer.key);
        if (function.isEmpty())
            continue;
        text += QLatin1String(dialect.constant) + QLatin1Char(' ') + QLatin1String(declarator) +
                QLatin1String(" = ") + function + QLatin1String(";\n");
    }
    if (!text.isEmpty())
        text.prepend(QLatin1String("/* definition of static indication function pointers */\n"));
    return text;
}
