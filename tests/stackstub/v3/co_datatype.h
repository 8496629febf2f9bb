#ifndef CO_DATATYPE_H
#define CO_DATATYPE_H 1

#include "../stackstub_types.h"

typedef enum { RET_OK = 0, RET_INVALID_PARAMETER = 1, RET_NOT_INITIALIZED = 2 } RET_T;

#define CO_DTYPE_BOOL (&stackstubDtype_BOOL)
#define CO_DTYPE_U8 (&stackstubDtype_U8)
#define CO_DTYPE_U16 (&stackstubDtype_U16)
#define CO_DTYPE_U24 (&stackstubDtype_U24)
#define CO_DTYPE_U32 (&stackstubDtype_U32)
#define CO_DTYPE_U40 (&stackstubDtype_U40)
#define CO_DTYPE_U48 (&stackstubDtype_U48)
#define CO_DTYPE_U56 (&stackstubDtype_U56)
#define CO_DTYPE_U64 (&stackstubDtype_U64)
#define CO_DTYPE_I8 (&stackstubDtype_I8)
#define CO_DTYPE_I16 (&stackstubDtype_I16)
#define CO_DTYPE_I24 (&stackstubDtype_I24)
#define CO_DTYPE_I32 (&stackstubDtype_I32)
#define CO_DTYPE_I40 (&stackstubDtype_I40)
#define CO_DTYPE_I48 (&stackstubDtype_I48)
#define CO_DTYPE_I56 (&stackstubDtype_I56)
#define CO_DTYPE_I64 (&stackstubDtype_I64)
#define CO_DTYPE_R32 (&stackstubDtype_R32)
#define CO_DTYPE_R64 (&stackstubDtype_R64)
#define CO_DTYPE_STRING_NULL (&stackstubDtype_STRING_NULL)
#define CO_DTYPE_UTF8_STRING (&stackstubDtype_UTF8_STRING)
#define CO_DTYPE_OCTET_STRING (&stackstubDtype_OCTET_STRING)
#define CO_DTYPE_UNICODE_STRING (&stackstubDtype_UNICODE_STRING)
#define CO_DTYPE_DOMAIN (&stackstubDtype_DOMAIN)
#define CO_DTYPE_UNKNOWN (&stackstubDtype_UNKNOWN)
/* Types of virtual objects carry the way to their value. */
#define CO_DTYPE_BOOL_PTR CO_DTYPE_BOOL
#define CO_DTYPE_U8_PTR CO_DTYPE_U8
#define CO_DTYPE_U16_PTR CO_DTYPE_U16
#define CO_DTYPE_U24_PTR CO_DTYPE_U24
#define CO_DTYPE_U32_PTR CO_DTYPE_U32
#define CO_DTYPE_U40_PTR CO_DTYPE_U40
#define CO_DTYPE_U48_PTR CO_DTYPE_U48
#define CO_DTYPE_U56_PTR CO_DTYPE_U56
#define CO_DTYPE_U64_PTR CO_DTYPE_U64
#define CO_DTYPE_I8_PTR CO_DTYPE_I8
#define CO_DTYPE_I16_PTR CO_DTYPE_I16
#define CO_DTYPE_I24_PTR CO_DTYPE_I24
#define CO_DTYPE_I32_PTR CO_DTYPE_I32
#define CO_DTYPE_I40_PTR CO_DTYPE_I40
#define CO_DTYPE_I48_PTR CO_DTYPE_I48
#define CO_DTYPE_I56_PTR CO_DTYPE_I56
#define CO_DTYPE_I64_PTR CO_DTYPE_I64
#define CO_DTYPE_R32_PTR CO_DTYPE_R32
#define CO_DTYPE_R64_PTR CO_DTYPE_R64
#define CO_DTYPE_STRING_NULL_PTR CO_DTYPE_STRING_NULL
#define CO_DTYPE_UTF8_STRING_PTR CO_DTYPE_UTF8_STRING
#define CO_DTYPE_OCTET_STRING_PTR CO_DTYPE_OCTET_STRING
#define CO_DTYPE_UNICODE_STRING_PTR CO_DTYPE_UNICODE_STRING
#define CO_DTYPE_DOMAIN_PTR CO_DTYPE_DOMAIN
#define CO_DTYPE_UNKNOWN_PTR CO_DTYPE_UNKNOWN

typedef struct
{
    UNSIGNED8 subIndex;
    const STACKSTUB_DTYPE_T *type;
#ifdef STACKSTUB_VIRTUAL
    UNSIGNED16 value; /* virtual objects have no address */
#else
    const void *value;
#endif
    UNSIGNED16 attributes;
    UNSIGNED16 defaultValue;
#ifdef CO_CONFIG_LIMIT_CHECK
    UNSIGNED16 lowLimit;
    UNSIGNED16 highLimit;
#endif
} CO_OBJECT_DESC_T;

#ifdef CO_MULTI_LINE_CNT
#define STACKSTUB_LINES CO_MULTI_LINE_CNT
#else
#define STACKSTUB_LINES 1u
#ifdef STACKSTUB_MULTI_LINE
#define CO_MULTI_LINE_CNT 1u
#endif
#endif
#define CO_LINE_ARRAY_DECL STACKSTUB_LINES
typedef UNSIGNED8 CO_LINE_TYPE;
#ifdef CO_CANFD_SUPPORTED
#define STACKSTUB_FD 1
#endif

#define MP_PROT_TYPE_CANOPEN 0x01u
#define MP_PROT_TYPE_J1939 0x02u
#define MP_PROT_TYPE_RAWCAN 0x04u
#define MP_PROT_TYPE_UDS 0x08u
#define MP_PROT_TYPE_UNKNOWN 0x80u

#define CO_COMMON_INIT_VAL_T STACKSTUB_COMMON_INIT_VAL_T
#define stackstubStackInit commonStackInit

#endif /* CO_DATATYPE_H */
