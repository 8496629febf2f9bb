#ifndef CO_EVENTS_H
#define CO_EVENTS_H 1

/* Types of the indication functions. What their parameters hold is of no concern to generated code.
 */

#ifndef CO_CONST
#define CO_CONST const
#endif

typedef struct CO_TIME_TAG CO_TIME_T;

typedef enum { CO_CAN_STATE_NONE = 0 } CO_CAN_STATE_T;
typedef enum { CO_CFG_TRANSFER_NONE = 0 } CO_CFG_TRANSFER_T;
typedef enum { CO_COMM_STATE_EVENT_NONE = 0 } CO_COMM_STATE_EVENT_T;
typedef enum { CO_ERRCTRL_NONE = 0 } CO_ERRCTRL_T;
typedef enum { CO_FLYMA_STATE_NONE = 0 } CO_FLYMA_STATE_T;
typedef enum { CO_LSS_MASTER_SERVICE_NONE = 0 } CO_LSS_MASTER_SERVICE_T;
typedef enum { CO_LSS_SERVICE_NONE = 0 } CO_LSS_SERVICE_T;
typedef enum { CO_MANAGER_EVENT_NONE = 0 } CO_MANAGER_EVENT_T;
typedef enum { CO_NMT_STATE_NONE = 0 } CO_NMT_STATE_T;

#ifdef STACKSTUB_MULTI_LINE
#define STACKSTUB_EVENT(...) (CO_LINE_TYPE, __VA_ARGS__)
#else
#define STACKSTUB_EVENT(...) (__VA_ARGS__)
#endif

typedef RET_T(*CO_EVENT_SDO_SERVER_T)
    STACKSTUB_EVENT(BOOL_T execute, UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex);
typedef RET_T(*CO_EVENT_SDO_SERVER_CHECK_WRITE_T)
    STACKSTUB_EVENT(BOOL_T execute, UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex,
                    const UNSIGNED8 *pData);
typedef void(*CO_EVENT_PDO_T) STACKSTUB_EVENT(UNSIGNED16 pdoNr);
typedef RET_T(*CO_EVENT_NMT_T) STACKSTUB_EVENT(BOOL_T execute, CO_NMT_STATE_T nmtState);
typedef void(*CO_EVENT_ERRCTRL_T)
    STACKSTUB_EVENT(UNSIGNED8 nodeId, CO_ERRCTRL_T errCtrlState, CO_NMT_STATE_T nmtState);
typedef void(*CO_EVENT_SYNC_T) STACKSTUB_EVENT(UNSIGNED8 syncCounter);
typedef void(*CO_EVENT_SYNC_FINISHED_T) STACKSTUB_EVENT(UNSIGNED8 syncCounter);
typedef void(*CO_EVENT_LED_T) STACKSTUB_EVENT(BOOL_T ledState);
typedef void(*CO_EVENT_CAN_STATE_T) STACKSTUB_EVENT(CO_CAN_STATE_T canState);
typedef void(*CO_EVENT_COMM_T) STACKSTUB_EVENT(CO_COMM_STATE_EVENT_T commEvent);
typedef void(*CO_EVENT_CFG_MANAGER_T)
    STACKSTUB_EVENT(CO_CFG_TRANSFER_T type, UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 sub,
                    UNSIGNED32 reason);
typedef void(*CO_EVENT_FLYMA_T)
    STACKSTUB_EVENT(CO_FLYMA_STATE_T state, UNSIGNED8 node, UNSIGNED8 priority);
typedef void(*CO_EVENT_SDO_CLIENT_READ_T)
    STACKSTUB_EVENT(UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 size,
                    UNSIGNED32 result);
typedef void(*CO_EVENT_SDO_CLIENT_WRITE_T)
    STACKSTUB_EVENT(UNSIGNED8 sdoNr, UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 result);
typedef void(*CO_EVENT_EMCY_T) STACKSTUB_EVENT(UNSIGNED16 errCode, UNSIGNED8 *addErrorCode);
typedef void(*CO_EVENT_EMCY_CONS_T)
    STACKSTUB_EVENT(UNSIGNED8 node, UNSIGNED16 errCode, UNSIGNED8 errorRegister,
                    UNSIGNED8 const *addErrorCode);
typedef void(*CO_EVENT_TIME_T) STACKSTUB_EVENT(CO_TIME_T *pTime);
typedef RET_T(*CO_EVENT_LSS_T) STACKSTUB_EVENT(CO_LSS_SERVICE_T service, UNSIGNED16 bitrate,
                                               UNSIGNED8 *pErrCode, UNSIGNED8 *pErrSpec);
typedef void(*CO_EVENT_LSS_MASTER_T)
    STACKSTUB_EVENT(CO_LSS_MASTER_SERVICE_T service, UNSIGNED16 errorCode, UNSIGNED8 errorSpec,
                    UNSIGNED32 *pIdentity);
typedef void(*CO_EVENT_MANAGER_BOOTUP_T) STACKSTUB_EVENT(UNSIGNED8 node, CO_MANAGER_EVENT_T event);
typedef void(*CO_EVENT_MPDO_T)
    STACKSTUB_EVENT(UNSIGNED16 pdoNr, UNSIGNED16 index, UNSIGNED8 subIndex);
typedef RET_T(*CO_EVENT_USDO_SERVER_T)
    STACKSTUB_EVENT(BOOL_T execute, UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex);
typedef void(*CO_EVENT_USDO_SERVER_FINISHED_T)
    STACKSTUB_EVENT(UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex);
typedef RET_T(*CO_EVENT_USDO_SERVER_CHECK_WRITE_T)
    STACKSTUB_EVENT(UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex,
                    CO_CONST UNSIGNED8 *pData);
typedef RET_T(*CO_EVENT_USDO_SERVER_DOMAIN_READ_T)
    STACKSTUB_EVENT(UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 domainBufSize,
                    UNSIGNED32 transferSize);
typedef RET_T(*CO_EVENT_USDO_SERVER_DOMAIN_WRITE_T)
    STACKSTUB_EVENT(UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 domainBufSize,
                    UNSIGNED32 transferSize);
typedef void(*CO_EVENT_USDO_CLIENT_READ_T)
    STACKSTUB_EVENT(UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex, RET_T result);
typedef void(*CO_EVENT_USDO_CLIENT_WRITE_T)
    STACKSTUB_EVENT(UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex, RET_T result);
typedef void(*CO_EVENT_USDO_CLIENT_DOMAIN_TRANSFER_T)
    STACKSTUB_EVENT(UNSIGNED8 nodeId, UNSIGNED16 index, UNSIGNED8 subIndex,
                    UNSIGNED32 domainBufSize, UNSIGNED32 transferSize);

#endif /* CO_EVENTS_H */
