#ifndef STACKSTUB_TYPES_H
#define STACKSTUB_TYPES_H 1

/* Types that both generations of the stack know. Numbers wider than a C literal and the words of
 * table columns are types of their own, so that a value in the wrong column does not compile. */

#include <stddef.h>
#include <stdint.h>
#include <string.h>

typedef uint8_t UNSIGNED8;
typedef uint16_t UNSIGNED16;
typedef uint32_t UNSIGNED32;
typedef int8_t INTEGER8;
typedef int16_t INTEGER16;
typedef int32_t INTEGER32;
typedef float REAL32;
/* clang-format off */
typedef struct { UNSIGNED8 bytes[3]; } UNSIGNED24;
typedef struct { UNSIGNED8 bytes[3]; } INTEGER24;
typedef struct { UNSIGNED8 bytes[5]; } UNSIGNED40;
typedef struct { UNSIGNED8 bytes[6]; } UNSIGNED48;
typedef struct { UNSIGNED8 bytes[8]; } UNSIGNED64;
#define U24_SET(a, b, c) {{(a), (b), (c)}}
#define I24_SET(a, b, c) {{(a), (b), (c)}}
#define U40_SET(a, b, c, d, e) {{(a), (b), (c), (d), (e)}}
#define U48_SET(a, b, c, d, e, f) {{(a), (b), (c), (d), (e), (f)}}
#define U64_SET(a, b, c, d, e, f, g, h) {{(a), (b), (c), (d), (e), (f), (g), (h)}}
/* clang-format on */
typedef char *VIS_STRING;
typedef char *UTF8_STRING;
typedef UNSIGNED8 OCTET_STRING;
typedef UNSIGNED8 *CO_DOMAIN_PTR;

typedef enum { CO_FALSE = 0, CO_TRUE = 1 } BOOL_T;

/* Words of table columns, by name, so that a program can print them. */
typedef struct
{
    const char *name;
    int size;
} STACKSTUB_DTYPE_T;
typedef struct
{
    const char *name;
} STACKSTUB_DSPEC_T;
typedef struct
{
    const char *name;
} STACKSTUB_ODTYPE_T;

/* clang-format off */
#define STACKSTUB_DTYPES(X) \
    X(BOOL, 1) X(U8, 1) X(U16, 2) X(U24, 3) X(U32, 4) X(U40, 5) \
    X(U48, 6) X(U64, 8) X(I8, 1) X(I16, 2) X(I24, 3) X(I32, 4) \
    X(R32, 4) X(STRING_NULL, 0) X(UTF8_STRING, 0) X(OCTET_STRING, 0) X(DOMAIN, 0) X(UNICODE_STRING, 0) \
    X(R64, 8) X(I40, 5) X(I48, 6) X(I56, 8) X(I64, 8) X(U56, 8) \
    X(UNKNOWN, 0)
/* clang-format on */
#define STACKSTUB_DECLARE_DTYPE(name, size) extern const STACKSTUB_DTYPE_T stackstubDtype_##name;
STACKSTUB_DTYPES(STACKSTUB_DECLARE_DTYPE)

/* clang-format off */
#define STACKSTUB_DSPECS(X) \
    X(CONST) X(VAR) X(PTR) X(SYNC) X(EMCY) X(ERRCTRL) X(STORE) \
    X(TIME) X(NMT) X(SDO_SERVER) X(SDO_CLIENT) X(GFC) X(SRDO) X(RPDO) \
    X(RMAP) X(TPDO) X(TMAP) X(SRD) X(NETWORK) X(FLYMA)
/* clang-format on */
#define STACKSTUB_DECLARE_DSPEC(name) extern const STACKSTUB_DSPEC_T stackstubDspec_##name;
STACKSTUB_DSPECS(STACKSTUB_DECLARE_DSPEC)

#define STACKSTUB_ODTYPES(X) X(DOM) X(VAR) X(ARRAY) X(STRUCT)
#define STACKSTUB_DECLARE_ODTYPE(name) extern const STACKSTUB_ODTYPE_T stackstubOdtype_##name;
STACKSTUB_ODTYPES(STACKSTUB_DECLARE_ODTYPE)

#define CO_ODTYPE_DOM (&stackstubOdtype_DOM)
#define CO_ODTYPE_VAR (&stackstubOdtype_VAR)
#define CO_ODTYPE_ARRAY (&stackstubOdtype_ARRAY)
#define CO_ODTYPE_STRUCT (&stackstubOdtype_STRUCT)

#define CO_ATTR_NUM 0x0001u
#define CO_ATTR_READ 0x0002u
#define CO_ATTR_WRITE 0x0004u
#define CO_ATTR_MAP_TR 0x0008u
#define CO_ATTR_MAP_REC 0x0010u
#define CO_ATTR_DEFVAL 0x0020u
#define CO_ATTR_LIMIT 0x0040u
#define CO_ATTR_STORE 0x0080u
#define CO_ATTR_COMPACT 0x0100u
#define CO_ATTR_DYNOD 0x0200u

typedef struct
{
    UNSIGNED16 index;
    UNSIGNED16 rows;
    UNSIGNED8 highestSub;
    const STACKSTUB_ODTYPE_T *kind;
    UNSIGNED16 firstRow;
} CO_OD_ASSIGN_T;

typedef struct
{
    const UNSIGNED8 *constU8;
    const UNSIGNED16 *constU16;
    const UNSIGNED32 *constU32;
    const REAL32 *constR32;
#ifdef CO_EXTENDED_DATA_TYPES
    const UNSIGNED24 *constU24;
    const UNSIGNED40 *constU40;
    const UNSIGNED48 *constU48;
    const UNSIGNED64 *constU64;
#endif
    UNSIGNED8 *varU8;
    UNSIGNED16 *varU16;
    UNSIGNED32 *varU32;
    REAL32 *varR32;
#ifdef CO_EXTENDED_DATA_TYPES
    UNSIGNED24 *varU24;
    UNSIGNED40 *varU40;
    UNSIGNED48 *varU48;
    UNSIGNED64 *varU64;
#endif
    const INTEGER8 *constI8;
    const INTEGER16 *constI16;
    const INTEGER32 *constI32;
    INTEGER8 *varI8;
    INTEGER16 *varI16;
    INTEGER32 *varI32;
    UNSIGNED8 *const *ptrU8;
    UNSIGNED16 *const *ptrU16;
    UNSIGNED32 *const *ptrU32;
#ifdef CO_EXTENDED_DATA_TYPES
    UNSIGNED24 *const *ptrU24;
    UNSIGNED40 *const *ptrU40;
    UNSIGNED48 *const *ptrU48;
    UNSIGNED64 *const *ptrU64;
#endif
    INTEGER8 *const *ptrI8;
    INTEGER16 *const *ptrI16;
    INTEGER32 *const *ptrI32;
    REAL32 *const *ptrR32;
    const VIS_STRING *constVisString;
    const UNSIGNED32 *constVisStringLen;
    VIS_STRING *visString;
    UNSIGNED32 *visStringLen;
    UNSIGNED32 *visStringActLen;
#ifdef CO_UTF8_DATA_TYPE
    const UTF8_STRING *constUtf8String;
    const UNSIGNED32 *constUtf8StringLen;
    UTF8_STRING *utf8String;
    UNSIGNED32 *utf8StringLen;
    UNSIGNED32 *utf8StringActLen;
#endif
    OCTET_STRING **octetString;
    UNSIGNED32 *octetStringLen;
    UNSIGNED32 *octetStringActLen;
    CO_DOMAIN_PTR *domain;
    UNSIGNED32 *domainLen;
    UNSIGNED32 *domainActLen;
} CO_OD_DATA_VARIABLES_T;

#ifndef CO_MAX_MAP_ENTRIES
#define CO_MAX_MAP_ENTRIES 1u
#endif

typedef struct
{
    const void *pVar;
    UNSIGNED8 length;
    UNSIGNED8 numeric;
    UNSIGNED32 mapping;
} PDO_TR_MAP_ENTRY_T;

typedef struct
{
    UNSIGNED8 count;
    PDO_TR_MAP_ENTRY_T entries[CO_MAX_MAP_ENTRIES];
} PDO_TR_MAP_TABLE_T;

typedef struct
{
    void *pVar;
    UNSIGNED8 length;
    UNSIGNED8 numeric;
    UNSIGNED32 mapping;
    UNSIGNED16 row;
} PDO_REC_MAP_ENTRY_T;

typedef struct
{
    UNSIGNED8 count;
    PDO_REC_MAP_ENTRY_T entries[CO_MAX_MAP_ENTRIES];
} PDO_REC_MAP_TABLE_T;

#endif /* STACKSTUB_TYPES_H */
