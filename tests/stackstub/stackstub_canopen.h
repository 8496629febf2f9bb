#ifndef STACKSTUB_CANOPEN_H
#define STACKSTUB_CANOPEN_H 1

/* The services, behind the names that a generation gives them. Compiled with STACKSTUB_MULTI_LINE
 * every function takes the line as its first argument. */

#ifdef STACKSTUB_MULTI_LINE
#define STACKSTUB_LINE UNSIGNED8 canLine
#define STACKSTUB_ARGS(...) UNSIGNED8 canLine, __VA_ARGS__
#else
#define STACKSTUB_LINE void
#define STACKSTUB_ARGS(...) __VA_ARGS__
#endif

typedef struct
{
    UNSIGNED8 version;
    UNSIGNED16 receiveBuffers[STACKSTUB_LINES];
    UNSIGNED16 transmitBuffers[STACKSTUB_LINES];
    UNSIGNED16 cobs[STACKSTUB_LINES];
#ifdef ISOTP_SUPPORTED
    UNSIGNED16 isoTpClients[STACKSTUB_LINES];
    UNSIGNED16 isoTpServers[STACKSTUB_LINES];
#endif
    UNSIGNED8 protocolType[STACKSTUB_LINES];
#ifdef STACKSTUB_FD
    BOOL_T fdMode[STACKSTUB_LINES];
#endif
} STACKSTUB_COMMON_INIT_VAL_T;

RET_T stackstubStackInit(const STACKSTUB_COMMON_INIT_VAL_T *pVars);

typedef UNSIGNED8 (*STACKSTUB_NODE_ID_FCT_T)(void);
typedef RET_T (*CO_EVENT_STORE_T)(STACKSTUB_ARGS(UNSIGNED8 subIndex));

typedef struct
{
    UNSIGNED8 master;
} CO_INIT_OPTION_T;

typedef struct
{
    UNSIGNED16 objects[STACKSTUB_LINES];
    UNSIGNED16 txPdos[STACKSTUB_LINES];
    UNSIGNED16 rxPdos[STACKSTUB_LINES];
#ifdef CO_SRDO_SUPPORTED
    UNSIGNED8 srdos[STACKSTUB_LINES];
#endif
    UNSIGNED8 sdoServers[STACKSTUB_LINES];
    UNSIGNED8 sdoClients[STACKSTUB_LINES];
#ifdef STACKSTUB_V4
#ifdef CO_USDO_SERVER_MAX_CONN_CNT
    UNSIGNED8 usdoServers[STACKSTUB_LINES];
#endif
#ifdef CO_USDO_CLIENT_MAX_CONN_CNT
    UNSIGNED8 usdoClients[STACKSTUB_LINES];
#endif
#endif
    UNSIGNED8 errorControls[STACKSTUB_LINES];
    UNSIGNED8 errorHistory[STACKSTUB_LINES];
    UNSIGNED8 actualErrorHistory[STACKSTUB_LINES];
    UNSIGNED8 emcyConsumers[STACKSTUB_LINES];
#ifdef CO_NETWORK_ROUTING_CNT
    UNSIGNED8 routing[STACKSTUB_LINES];
#endif
    UNSIGNED8 assignments[STACKSTUB_LINES];
    UNSIGNED8 guardings[STACKSTUB_LINES];
    UNSIGNED8 nodeIds[STACKSTUB_LINES];
    STACKSTUB_NODE_ID_FCT_T nodeIdFunctions[STACKSTUB_LINES];
#ifdef STACKSTUB_FD
    BOOL_T usdo[1];
#endif
} CO_SERVICE_INIT_VAL_T;

void coCanOpenStackVarInit(const CO_SERVICE_INIT_VAL_T *pVars);
void coOdInitOdPtr(STACKSTUB_ARGS(const CO_OD_ASSIGN_T *pAssign, UNSIGNED16 assignCount,
                                  const CO_OBJECT_DESC_T *pDescription, UNSIGNED16 descriptionCount,
                                  const void *pReserved, const CO_OD_DATA_VARIABLES_T *pVariables));
RET_T coLedInit(STACKSTUB_LINE);
RET_T coSdoServerInit(STACKSTUB_ARGS(UNSIGNED8 number));
RET_T coSdoClientInit(STACKSTUB_ARGS(UNSIGNED8 number));
RET_T coUsdoServerInit(STACKSTUB_LINE);
RET_T coUsdoClientInit(STACKSTUB_ARGS(UNSIGNED8 count));
RET_T coErrorCtrlInit(STACKSTUB_ARGS(UNSIGNED16 producerTime, UNSIGNED8 consumers));
RET_T coEmcyProducerInit(STACKSTUB_LINE);
RET_T coSyncInit(STACKSTUB_ARGS(UNSIGNED32 cobId, UNSIGNED32 period, UNSIGNED32 window));
RET_T coEmcyConsumerInit(STACKSTUB_ARGS(UNSIGNED8 count));
RET_T coTimeInit(STACKSTUB_ARGS(UNSIGNED32 cobId));
RET_T coSrdInit(STACKSTUB_LINE);
RET_T coGfcInit(STACKSTUB_ARGS(BOOL_T producer, BOOL_T consumer));
RET_T coSrdoInit(STACKSTUB_ARGS(UNSIGNED8 number));
RET_T isoTpInit(STACKSTUB_LINE);
RET_T coIdNegoInit(STACKSTUB_LINE);
RET_T coGuardingInit(STACKSTUB_LINE);
RET_T coEventRegister_LOAD_PARA(CO_EVENT_STORE_T pFunction);
RET_T coLssMasterInit(STACKSTUB_LINE);
RET_T coLssInit(STACKSTUB_LINE);
RET_T coNmtInit(STACKSTUB_ARGS(UNSIGNED8 master));
RET_T coPdoReceiveInit(STACKSTUB_ARGS(UNSIGNED16 number, UNSIGNED8 transmissionType,
                                      UNSIGNED16 inhibitTime, UNSIGNED16 eventTimer,
                                      const PDO_REC_MAP_TABLE_T *pTable));
RET_T coPdoTransmitInit(STACKSTUB_ARGS(UNSIGNED16 number, UNSIGNED8 transmissionType,
                                       UNSIGNED16 inhibitTime, UNSIGNED16 eventTimer,
                                       UNSIGNED8 syncStart, const PDO_TR_MAP_TABLE_T *pTable));
RET_T coPdoNetworkRouting(void);
UNSIGNED8 coNmtGetNodeId(STACKSTUB_LINE);
RET_T coOdGetDefaultVal_u32(STACKSTUB_ARGS(UNSIGNED16 index, UNSIGNED8 subIndex,
                                           UNSIGNED32 *pValue));
RET_T coOdSetCobid(STACKSTUB_ARGS(UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 cobId));

/* What the generated file gives to the application. */
#ifdef STACKSTUB_MULTI_LINE
#define STACKSTUB_OPTIONS , CO_INIT_OPTION_T *pCoOptions
#else
#define STACKSTUB_OPTIONS
#endif
#ifdef STACKSTUB_FD
RET_T coCanOpenStackInit(CO_EVENT_STORE_T pLoadFunction, BOOL_T *pModes STACKSTUB_OPTIONS);
#else
RET_T coCanOpenStackInit(CO_EVENT_STORE_T pLoadFunction STACKSTUB_OPTIONS);
#endif

#endif /* STACKSTUB_CANOPEN_H */
