#ifndef CORE_DATATYPE_H
#define CORE_DATATYPE_H 1

#include "../stackstub_types.h"

#define STACKSTUB_V4 1

typedef enum { RET_OK = 0, RET_PARAMETER_INVALID = 1, RET_NOT_INITIALIZED = 2 } RET_T;

#define CORE_DTYPE_BOOL (&stackstubDtype_BOOL)
#define CORE_DTYPE_U8 (&stackstubDtype_U8)
#define CORE_DTYPE_U16 (&stackstubDtype_U16)
#define CORE_DTYPE_U24 (&stackstubDtype_U24)
#define CORE_DTYPE_U32 (&stackstubDtype_U32)
#define CORE_DTYPE_U40 (&stackstubDtype_U40)
#define CORE_DTYPE_U48 (&stackstubDtype_U48)
#define CORE_DTYPE_U56 (&stackstubDtype_U56)
#define CORE_DTYPE_U64 (&stackstubDtype_U64)
#define CORE_DTYPE_I8 (&stackstubDtype_I8)
#define CORE_DTYPE_I16 (&stackstubDtype_I16)
#define CORE_DTYPE_I24 (&stackstubDtype_I24)
#define CORE_DTYPE_I32 (&stackstubDtype_I32)
#define CORE_DTYPE_I40 (&stackstubDtype_I40)
#define CORE_DTYPE_I48 (&stackstubDtype_I48)
#define CORE_DTYPE_I56 (&stackstubDtype_I56)
#define CORE_DTYPE_I64 (&stackstubDtype_I64)
#define CORE_DTYPE_R32 (&stackstubDtype_R32)
#define CORE_DTYPE_R64 (&stackstubDtype_R64)
#define CORE_DTYPE_STRING_NULL (&stackstubDtype_STRING_NULL)
#define CORE_DTYPE_UTF8_STRING (&stackstubDtype_UTF8_STRING)
#define CORE_DTYPE_OCTET_STRING (&stackstubDtype_OCTET_STRING)
#define CORE_DTYPE_UNICODE_STRING (&stackstubDtype_UNICODE_STRING)
#define CORE_DTYPE_DOMAIN (&stackstubDtype_DOMAIN)
#define CORE_DTYPE_UNKNOWN (&stackstubDtype_UNKNOWN)
/* Stands in the flag column of unused mapping entries, where a type has no place. */
#define CORE_DTYPE_NON_NUMERIC ((UNSIGNED8)0u)

#define CO_DSPEC_CONST (&stackstubDspec_CONST)
#define CO_DSPEC_VAR (&stackstubDspec_VAR)
#define CO_DSPEC_PTR (&stackstubDspec_PTR)
#define CO_DSPEC_SYNC (&stackstubDspec_SYNC)
#define CO_DSPEC_EMCY (&stackstubDspec_EMCY)
#define CO_DSPEC_ERRCTRL (&stackstubDspec_ERRCTRL)
#define CO_DSPEC_STORE (&stackstubDspec_STORE)
#define CO_DSPEC_TIME (&stackstubDspec_TIME)
#define CO_DSPEC_NMT (&stackstubDspec_NMT)
#define CO_DSPEC_SDO_SERVER (&stackstubDspec_SDO_SERVER)
#define CO_DSPEC_SDO_CLIENT (&stackstubDspec_SDO_CLIENT)
#define CO_DSPEC_GFC (&stackstubDspec_GFC)
#define CO_DSPEC_SRDO (&stackstubDspec_SRDO)
#define CO_DSPEC_RPDO (&stackstubDspec_RPDO)
#define CO_DSPEC_RMAP (&stackstubDspec_RMAP)
#define CO_DSPEC_TPDO (&stackstubDspec_TPDO)
#define CO_DSPEC_TMAP (&stackstubDspec_TMAP)
#define CO_DSPEC_SRD (&stackstubDspec_SRD)
#define CO_DSPEC_NETWORK (&stackstubDspec_NETWORK)
#define CO_DSPEC_FLYMA (&stackstubDspec_FLYMA)

typedef struct
{
    UNSIGNED8 subIndex;
    const STACKSTUB_DTYPE_T *type;
    const STACKSTUB_DSPEC_T *specifier;
    UNSIGNED16 value;
    UNSIGNED16 attributes;
    UNSIGNED16 defaultValue;
#ifdef CO_CONFIG_LIMIT_CHECK
    UNSIGNED16 lowLimit;
    UNSIGNED16 highLimit;
#endif
} CO_OBJECT_DESC_T;

#ifdef CAN_MULTI_LINE_CNT
#define STACKSTUB_LINES CAN_MULTI_LINE_CNT
#else
#define STACKSTUB_LINES 1u
#ifdef STACKSTUB_MULTI_LINE
#define CAN_MULTI_LINE_CNT 1u
#endif
#endif
#define CAN_LINE_ARRAY_DECL STACKSTUB_LINES
typedef UNSIGNED8 CAN_LINE_TYPE;
#ifdef CORE_CANFD_SUPPORTED
#define STACKSTUB_FD 1
#endif

#define CORE_PROT_TYPE_CANOPEN 0x01u
#define CORE_PROT_TYPE_J1939 0x02u
#define CORE_PROT_TYPE_RAWCAN 0x04u
#define CORE_PROT_TYPE_UDS 0x08u
#define CORE_PROT_TYPE_UNKNOWN 0x80u

#define CORE_COMMON_INIT_VAL_T STACKSTUB_COMMON_INIT_VAL_T
#define stackstubStackInit coreStackInit

#endif /* CORE_DATATYPE_H */
