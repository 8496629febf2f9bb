/* A stack that does nothing but tell what it is given: each call and, at the end, each object of
 * the dictionary as the tables describe it. One line of text a fact. */

#include <stdio.h>

#include <gen_define.h>

#include <co_canopen.h>

#define STACKSTUB_DEFINE_DTYPE(name, size)                                                         \
    const STACKSTUB_DTYPE_T stackstubDtype_##name = {#name, size};
STACKSTUB_DTYPES(STACKSTUB_DEFINE_DTYPE)
#define STACKSTUB_DEFINE_DSPEC(name) const STACKSTUB_DSPEC_T stackstubDspec_##name = {#name};
STACKSTUB_DSPECS(STACKSTUB_DEFINE_DSPEC)
#define STACKSTUB_DEFINE_ODTYPE(name) const STACKSTUB_ODTYPE_T stackstubOdtype_##name = {#name};
STACKSTUB_ODTYPES(STACKSTUB_DEFINE_ODTYPE)

#ifdef STACKSTUB_MULTI_LINE
#define LINE canLine
#define LINE_ARG canLine,
#else
#define LINE 0u
#define LINE_ARG
#endif

enum { maximalLines = 32 };

typedef struct
{
    const CO_OD_ASSIGN_T *assign;
    unsigned assignCount;
    const CO_OBJECT_DESC_T *description;
    unsigned rowCount;
    const CO_OD_DATA_VARIABLES_T *tables;
} DICTIONARY_T;

static DICTIONARY_T dictionaries[maximalLines];

/* --- Values ---------------------------------------------------------------------------------- */

static int isType(const CO_OBJECT_DESC_T *row, const STACKSTUB_DTYPE_T *type)
{
    return row->type == type;
}

static void printBytes(const UNSIGNED8 *bytes, int size)
{
    int i;

    for (i = 0; i < size; i++) {
        printf("%02x", (unsigned)bytes[i]);
    }
}

/* Numbers in hexadecimal, most significant byte first. */
static void printNumber(const CO_OBJECT_DESC_T *row, const void *pValue)
{
    const UNSIGNED8 *bytes = (const UNSIGNED8 *)pValue;
    int size = row->type->size;
    int isWide = row->type->size == 3 || row->type->size > 4;
    int i;

    if (pValue == NULL) {
        printf("none");
        return;
    }
    /* Wide values are kept most significant byte first, all others as the machine does. */
    for (i = 0; i < size; i++) {
        UNSIGNED16 probe = 1u;
        int isLittle = *(UNSIGNED8 *)&probe == 1u;
        printf("%02x", (unsigned)bytes[(isWide || !isLittle) ? i : size - 1 - i]);
    }
}

#ifdef CO_EXTENDED_DATA_TYPES
#define WIDE(type, table)                                                                          \
    if (isType(row, &stackstubDtype_##type) && (t->table != NULL))                                 \
    return &t->table[position]
#else
#define WIDE(type, table) (void)0
#endif
#define NUMBER(type, table)                                                                        \
    if (isType(row, &stackstubDtype_##type) && (t->table != NULL))                                 \
    return &t->table[position]

static const void *constantAt(const CO_OD_DATA_VARIABLES_T *t, const CO_OBJECT_DESC_T *row,
                              unsigned position)
{
    NUMBER(BOOL, constU8);
    NUMBER(U8, constU8);
    NUMBER(U16, constU16);
    NUMBER(U32, constU32);
    NUMBER(I8, constI8);
    NUMBER(I16, constI16);
    NUMBER(I32, constI32);
    NUMBER(R32, constR32);
    WIDE(U24, constU24);
    WIDE(U40, constU40);
    WIDE(U48, constU48);
    WIDE(U64, constU64);
    WIDE(I40, constU40);
    WIDE(I48, constU48);
    WIDE(I56, constU64);
    WIDE(U56, constU64);
    WIDE(I64, constU64);
    WIDE(R64, constU64);
    return NULL;
}

#ifdef STACKSTUB_V4
static const void *variableAt(const CO_OD_DATA_VARIABLES_T *t, const CO_OBJECT_DESC_T *row,
                              unsigned position)
{
    NUMBER(BOOL, varU8);
    NUMBER(U8, varU8);
    NUMBER(U16, varU16);
    NUMBER(U32, varU32);
    NUMBER(I8, varI8);
    NUMBER(I16, varI16);
    NUMBER(I32, varI32);
    NUMBER(R32, varR32);
    WIDE(U24, varU24);
    WIDE(U40, varU40);
    WIDE(U48, varU48);
    WIDE(U64, varU64);
    WIDE(I40, varU40);
    WIDE(I48, varU48);
    WIDE(I56, varU64);
    WIDE(U56, varU64);
    WIDE(I64, varU64);
    WIDE(R64, varU64);
    return NULL;
}

#undef NUMBER
#undef WIDE
#define NUMBER(type, table)                                                                        \
    if (isType(row, &stackstubDtype_##type) && (t->table != NULL))                                 \
    return t->table[position]
#ifdef CO_EXTENDED_DATA_TYPES
#define WIDE(type, table) NUMBER(type, table)
#else
#define WIDE(type, table) (void)0
#endif

static const void *pointerAt(const CO_OD_DATA_VARIABLES_T *t, const CO_OBJECT_DESC_T *row,
                             unsigned position)
{
    NUMBER(BOOL, ptrU8);
    NUMBER(U8, ptrU8);
    NUMBER(U16, ptrU16);
    NUMBER(U32, ptrU32);
    NUMBER(I8, ptrI8);
    NUMBER(I16, ptrI16);
    NUMBER(I32, ptrI32);
    NUMBER(R32, ptrR32);
    WIDE(U24, ptrU24);
    WIDE(U40, ptrU40);
    WIDE(U48, ptrU48);
    WIDE(U64, ptrU64);
    WIDE(I40, ptrU40);
    WIDE(I48, ptrU48);
    WIDE(I56, ptrU64);
    WIDE(U56, ptrU64);
    WIDE(I64, ptrU64);
    WIDE(R64, ptrU64);
    return NULL;
}

static int isNumberSpecifier(const CO_OBJECT_DESC_T *row)
{
    return (row->specifier == &stackstubDspec_CONST) || (row->specifier == &stackstubDspec_VAR) ||
           (row->specifier == &stackstubDspec_PTR);
}

/* A compact row stands for higher subindices: variables follow it, a constant serves all. */
static const void *numberOf(const DICTIONARY_T *d, const CO_OBJECT_DESC_T *row, unsigned subIndex)
{
    unsigned offset = subIndex - row->subIndex;

    if (row->value == 0xFFFFu) {
        return NULL;
    }
    if (row->specifier == &stackstubDspec_CONST) {
        return constantAt(d->tables, row, row->value);
    }
    if (row->specifier == &stackstubDspec_VAR) {
        return variableAt(d->tables, row, row->value + offset);
    }
    if (row->specifier == &stackstubDspec_PTR) {
        return pointerAt(d->tables, row, row->value + offset);
    }
    return NULL;
}
#else
static const void *numberOf(const DICTIONARY_T *d, const CO_OBJECT_DESC_T *row, unsigned subIndex)
{
    const UNSIGNED8 *first = (const UNSIGNED8 *)row->value;
    const UNSIGNED8 *constants = (const UNSIGNED8 *)constantAt(d->tables, row, 0);

    if (first == NULL) {
        return NULL;
    }
    /* Constants of a compact row are one; the default value has the same place. */
    if ((constants != NULL) && ((row->attributes & CO_ATTR_COMPACT) != 0u) &&
        (first == constantAt(d->tables, row, row->defaultValue))) {
        return first;
    }
    return first + (size_t)row->type->size * (subIndex - row->subIndex);
}
#endif

static void printText(const char *text, unsigned length)
{
    printf("\"");
    printBytes((const UNSIGNED8 *)text, (int)length);
    printf("\"");
}

static void printString(const DICTIONARY_T *d, const CO_OBJECT_DESC_T *row, unsigned subIndex)
{
    const CO_OD_DATA_VARIABLES_T *t = d->tables;
#ifdef STACKSTUB_V4
    unsigned position = row->value;
    int isConstant = row->specifier == &stackstubDspec_CONST;

    if (!isConstant) {
        position += subIndex - row->subIndex;
    }
#else
    unsigned position = 0;
    int isConstant = 0;

    (void)subIndex;
    if (isType(row, &stackstubDtype_STRING_NULL)) {
        isConstant = (row->attributes & CO_ATTR_WRITE) == 0u && row->value != NULL &&
                     (t->constVisString != NULL) &&
                     ((const VIS_STRING *)row->value == &t->constVisString[row->defaultValue]);
        position = isConstant ? (unsigned)((const VIS_STRING *)row->value - t->constVisString)
                              : (unsigned)((const VIS_STRING *)row->value - t->visString);
    } else if (isType(row, &stackstubDtype_OCTET_STRING)) {
        position = (unsigned)((OCTET_STRING *const *)row->value - t->octetString);
    } else if (isType(row, &stackstubDtype_DOMAIN)) {
        position = (unsigned)((const CO_DOMAIN_PTR *)row->value - t->domain);
    }
#ifdef CO_UTF8_DATA_TYPE
    if (isType(row, &stackstubDtype_UTF8_STRING)) {
        isConstant = (row->attributes & CO_ATTR_WRITE) == 0u && (t->constUtf8String != NULL) &&
                     ((const UTF8_STRING *)row->value == &t->constUtf8String[row->defaultValue]);
        position = isConstant ? (unsigned)((const UTF8_STRING *)row->value - t->constUtf8String)
                              : (unsigned)((const UTF8_STRING *)row->value - t->utf8String);
    }
#endif
#endif
    if (isType(row, &stackstubDtype_STRING_NULL)) {
        if (isConstant) {
            printText(t->constVisString[position], t->constVisStringLen[position]);
        } else {
            printf("size %u of %u", t->visStringActLen[position], t->visStringLen[position]);
        }
#ifdef CO_UTF8_DATA_TYPE
    } else if (isType(row, &stackstubDtype_UTF8_STRING)) {
        if (isConstant) {
            printText(t->constUtf8String[position], t->constUtf8StringLen[position]);
        } else {
            printf("size %u of %u", t->utf8StringActLen[position], t->utf8StringLen[position]);
        }
#endif
    } else if (isType(row, &stackstubDtype_OCTET_STRING)) {
        printf("size %u of %u", t->octetStringActLen[position], t->octetStringLen[position]);
    } else if (isType(row, &stackstubDtype_DOMAIN)) {
        printf("size %u of %u", t->domainActLen[position], t->domainLen[position]);
    } else {
        printf("none");
    }
}

static void printDefault(const DICTIONARY_T *d, const CO_OBJECT_DESC_T *row)
{
    if (isType(row, &stackstubDtype_STRING_NULL)) {
        printText(d->tables->constVisString[row->defaultValue],
                  d->tables->constVisStringLen[row->defaultValue]);
#ifdef CO_UTF8_DATA_TYPE
    } else if (isType(row, &stackstubDtype_UTF8_STRING)) {
        printText(d->tables->constUtf8String[row->defaultValue],
                  d->tables->constUtf8StringLen[row->defaultValue]);
#endif
    } else {
        printNumber(row, constantAt(d->tables, row, row->defaultValue));
    }
}

/* --- Objects --------------------------------------------------------------------------------- */

static const CO_OBJECT_DESC_T *rowOf(const DICTIONARY_T *d, const CO_OD_ASSIGN_T *object,
                                     unsigned subIndex)
{
    unsigned i;

    for (i = object->firstRow; (i < (unsigned)object->firstRow + object->rows) && (i < d->rowCount);
         i++) {
        const CO_OBJECT_DESC_T *row = &d->description[i];
        if ((row->subIndex == subIndex) ||
            ((row->subIndex < subIndex) && ((row->attributes & CO_ATTR_COMPACT) != 0u))) {
            return row;
        }
    }
    return NULL;
}

static const void *addressOf(const DICTIONARY_T *d, UNSIGNED32 mapping,
                             const CO_OBJECT_DESC_T **ppRow)
{
    unsigned i;

    for (i = 0; i < d->assignCount; i++) {
        if (d->assign[i].index == (mapping >> 16)) {
            *ppRow = rowOf(d, &d->assign[i], (mapping >> 8) & 0xFFu);
            return (*ppRow == NULL) ? NULL : numberOf(d, *ppRow, (mapping >> 8) & 0xFFu);
        }
    }
    *ppRow = NULL;
    return NULL;
}

static void printSub(const DICTIONARY_T *d, unsigned line, unsigned index, unsigned subIndex,
                     const CO_OBJECT_DESC_T *row)
{
    static const char *const names[] = {"NUM",    "READ",  "WRITE", "MAP_TR",  "MAP_REC",
                                        "DEFVAL", "LIMIT", "STORE", "COMPACT", "DYNOD"};
    unsigned i;

    printf("sub %u %04x:%02x type=%s", line, index, subIndex, row->type->name);
#ifdef STACKSTUB_V4
    printf(" spec=%s", row->specifier->name);
    if (!isNumberSpecifier(row)) {
        printf(":%u", row->value);
    }
#endif
    printf(" attr=");
    for (i = 0; i < sizeof(names) / sizeof(names[0]); i++) {
        if ((row->attributes & (1u << i)) != 0u) {
            printf("%s|", names[i]);
        }
    }
    printf(" value=");
    if (row->type->size == 0) {
        printString(d, row, subIndex);
    } else {
        printNumber(row, numberOf(d, row, subIndex));
    }
    if ((row->attributes & CO_ATTR_DEFVAL) != 0u) {
        printf(" default=");
        printDefault(d, row);
    }
#ifdef CO_CONFIG_LIMIT_CHECK
    if ((row->attributes & CO_ATTR_LIMIT) != 0u) {
        printf(" low=");
        printNumber(row, constantAt(d->tables, row, row->lowLimit));
        printf(" high=");
        printNumber(row, constantAt(d->tables, row, row->highLimit));
    }
#endif
    printf("\n");
}

void stackstubPrintDictionary(void)
{
    unsigned line;
    unsigned i;
    unsigned subIndex;

    for (line = 0; line < maximalLines; line++) {
        const DICTIONARY_T *d = &dictionaries[line];
        for (i = 0; i < d->assignCount; i++) {
            const CO_OD_ASSIGN_T *object = &d->assign[i];
            printf("object %u %04x %s rows=%u highest=%u\n", line, object->index,
                   object->kind->name, object->rows, object->highestSub);
            if (((unsigned)object->firstRow + object->rows) > d->rowCount) {
                printf("BAD rows\n");
            }
            for (subIndex = 0; subIndex <= object->highestSub; subIndex++) {
                const CO_OBJECT_DESC_T *row = rowOf(d, object, subIndex);
                if (row != NULL) {
                    printSub(d, line, object->index, subIndex, row);
                }
            }
        }
        for (i = 0; i < d->rowCount; i++) {
            if (d->description[i].type == NULL) {
                printf("BAD description row %u\n", i);
            }
        }
    }
}

/* --- Calls ----------------------------------------------------------------------------------- */

RET_T stackstubStackInit(const STACKSTUB_COMMON_INIT_VAL_T *pVars)
{
    printf("call stack init version=%u\n", (pVars == NULL) ? 0u : pVars->version);
    return RET_OK;
}

void coCanOpenStackVarInit(const CO_SERVICE_INIT_VAL_T *pVars)
{
    unsigned line;

    for (line = 0; (pVars != NULL) && (line < STACKSTUB_LINES); line++) {
        printf("call var init objects=%u tpdos=%u rpdos=%u servers=%u clients=%u\n",
               pVars->objects[line], pVars->txPdos[line], pVars->rxPdos[line],
               pVars->sdoServers[line], pVars->sdoClients[line]);
    }
}

void coOdInitOdPtr(STACKSTUB_ARGS(const CO_OD_ASSIGN_T *pAssign, UNSIGNED16 assignCount,
                                  const CO_OBJECT_DESC_T *pDescription, UNSIGNED16 descriptionCount,
                                  const void *pReserved, const CO_OD_DATA_VARIABLES_T *pVariables))
{
    DICTIONARY_T *d = &dictionaries[LINE];

    (void)pReserved;
    d->assign = pAssign;
    d->assignCount = assignCount;
    d->description = pDescription;
    d->rowCount = descriptionCount;
    d->tables = pVariables;
}

#define TELL(...)                                                                                  \
    printf("call %u ", (unsigned)(LINE));                                                          \
    printf(__VA_ARGS__);                                                                           \
    printf("\n");                                                                                  \
    return RET_OK

RET_T coLedInit(STACKSTUB_LINE)
{
    TELL("led");
}
RET_T coSdoServerInit(STACKSTUB_ARGS(UNSIGNED8 number))
{
    TELL("sdo server %u", number);
}
RET_T coSdoClientInit(STACKSTUB_ARGS(UNSIGNED8 number))
{
    TELL("sdo client %u", number);
}
RET_T coUsdoServerInit(STACKSTUB_LINE)
{
    TELL("usdo server");
}
RET_T coUsdoClientInit(STACKSTUB_ARGS(UNSIGNED8 count))
{
    TELL("usdo client %u", count);
}
RET_T coErrorCtrlInit(STACKSTUB_ARGS(UNSIGNED16 producerTime, UNSIGNED8 consumers))
{
    TELL("error control %u %u", producerTime, consumers);
}
RET_T coEmcyProducerInit(STACKSTUB_LINE)
{
    TELL("emcy producer");
}
RET_T coSyncInit(STACKSTUB_ARGS(UNSIGNED32 cobId, UNSIGNED32 period, UNSIGNED32 window))
{
    TELL("sync %x %u %u", cobId, period, window);
}
RET_T coEmcyConsumerInit(STACKSTUB_ARGS(UNSIGNED8 count))
{
    TELL("emcy consumer %u", count);
}
RET_T coTimeInit(STACKSTUB_ARGS(UNSIGNED32 cobId))
{
    TELL("time %x", cobId);
}
RET_T coSrdInit(STACKSTUB_LINE)
{
    TELL("srd");
}
RET_T coGfcInit(STACKSTUB_ARGS(BOOL_T producer, BOOL_T consumer))
{
    TELL("gfc %d %d", (int)producer, (int)consumer);
}
RET_T coSrdoInit(STACKSTUB_ARGS(UNSIGNED8 number))
{
    TELL("srdo %u", number);
}
RET_T isoTpInit(STACKSTUB_LINE)
{
    TELL("isotp");
}
RET_T coIdNegoInit(STACKSTUB_LINE)
{
    TELL("idnego");
}
RET_T coGuardingInit(STACKSTUB_LINE)
{
    TELL("guarding");
}
RET_T coEventRegister_LOAD_PARA(CO_EVENT_STORE_T pFunction)
{
    printf("call load function %s\n", (pFunction == NULL) ? "none" : "set");
    return RET_OK;
}
RET_T coLssMasterInit(STACKSTUB_LINE)
{
    TELL("lss master");
}
RET_T coLssInit(STACKSTUB_LINE)
{
    TELL("lss slave");
}
RET_T coNmtInit(STACKSTUB_ARGS(UNSIGNED8 master))
{
    TELL("nmt %u", master);
}

/* An entry's pointer has to be the place of the object that its mapping names. */
static const char *judge(const void *pEntry, const void *pObject)
{
    if (pEntry == NULL) {
        return "null";
    }
    return ((pObject == NULL) || (pEntry == pObject)) ? "ok" : "BAD";
}

RET_T coPdoReceiveInit(STACKSTUB_ARGS(UNSIGNED16 number, UNSIGNED8 transmissionType,
                                      UNSIGNED16 inhibitTime, UNSIGNED16 eventTimer,
                                      const PDO_REC_MAP_TABLE_T *pTable))
{
    const DICTIONARY_T *d = &dictionaries[LINE];
    unsigned i;

    for (i = 0; (pTable != NULL) && (i < pTable->count); i++) {
        const PDO_REC_MAP_ENTRY_T *entry = &pTable->entries[i];
        const CO_OBJECT_DESC_T *row;
        const void *place = addressOf(d, entry->mapping, &row);
        printf("map %u RPDO%u %u %08x length=%u numeric=%u %s row=%s\n", (unsigned)LINE, number,
               i + 1u, entry->mapping, entry->length, entry->numeric, judge(entry->pVar, place),
               (row == NULL) ? "none"
                             : (((entry->row < d->rowCount) && (&d->description[entry->row] == row))
                                    ? "ok"
                                    : "BAD"));
    }
    TELL("rpdo %u type=%u inhibit=%u event=%u table=%d", number, transmissionType, inhibitTime,
         eventTimer, pTable != NULL);
}

RET_T coPdoTransmitInit(STACKSTUB_ARGS(UNSIGNED16 number, UNSIGNED8 transmissionType,
                                       UNSIGNED16 inhibitTime, UNSIGNED16 eventTimer,
                                       UNSIGNED8 syncStart, const PDO_TR_MAP_TABLE_T *pTable))
{
    const DICTIONARY_T *d = &dictionaries[LINE];
    unsigned i;

    for (i = 0; (pTable != NULL) && (i < pTable->count); i++) {
        const PDO_TR_MAP_ENTRY_T *entry = &pTable->entries[i];
        const CO_OBJECT_DESC_T *row;
        const void *place = addressOf(d, entry->mapping, &row);
        printf("map %u TPDO%u %u %08x length=%u numeric=%u %s\n", (unsigned)LINE, number, i + 1u,
               entry->mapping, entry->length, entry->numeric, judge(entry->pVar, place));
    }
    TELL("tpdo %u type=%u inhibit=%u event=%u start=%u table=%d", number, transmissionType,
         inhibitTime, eventTimer, syncStart, pTable != NULL);
}

RET_T coPdoNetworkRouting(void)
{
    printf("call routing\n");
    return RET_OK;
}

UNSIGNED8 coNmtGetNodeId(STACKSTUB_LINE)
{
#ifdef STACKSTUB_MULTI_LINE
    (void)canLine;
#endif
    return 5u;
}

RET_T coOdGetDefaultVal_u32(STACKSTUB_ARGS(UNSIGNED16 index, UNSIGNED8 subIndex,
                                           UNSIGNED32 *pValue))
{
    const CO_OBJECT_DESC_T *row;

    (void)addressOf(&dictionaries[LINE], ((UNSIGNED32)index << 16) | ((UNSIGNED32)subIndex << 8),
                    &row);
    *pValue = (row == NULL) ? 0u
                            : *(const UNSIGNED32 *)constantAt(dictionaries[LINE].tables, row,
                                                              row->defaultValue);
    return RET_OK;
}

RET_T coOdSetCobid(STACKSTUB_ARGS(UNSIGNED16 index, UNSIGNED8 subIndex, UNSIGNED32 cobId))
{
    TELL("cobid %04x:%02x %x", index, subIndex, cobId);
}
