#include "tests/generatedc/generatedproject.h"

#include <QFile>
#include <QTest>

/// The fixed words of the generated dictionary, to the last blank: other tools and people read
/// and compare these files.
class TestObjDictText : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("SOURCE_DATE_EPOCH", "0"); }
    void fragments_data();
    void fragments();
    void twiceTheSame();
    void withoutStdlib();
};

namespace {

const ProjectCase &caseNamed(const QString &name)
{
    const auto &cases = projectCases();
    return *std::find_if(cases.begin(), cases.end(),
                         [&](const ProjectCase &entry) { return entry.name == name; });
}

} // namespace

void TestObjDictText::fragments_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isV4");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QStringList>("present");
    QTest::addColumn<QStringList>("absent");

    QTest::newRow("device, V4")
        << "device" << true << "gen_objdict.c"
        << QStringList{"#include <stdlib.h>\n\n#include <gen_define.h>\n#include <co_canopen.h>\n"
                       "#include <gen_indication.h>\n/* application header file(s) */\n"
                       "#include \"app.h\"\n",
                       "/* CANopen service initialization variables */\n"
                       "CO_SERVICE_INIT_VAL_T\tserviceInitVars = {\n   { CO_OBJECT_COUNTS },\n",
                       "\n/* definition of managed variables */\n"
                       "static UNSIGNED8 CORE_STORAGE_CLASS\tod_u8[2];\n",
                       "static CORE_CONST UNSIGNED8 CORE_CONST_STORAGE_CLASS\tod_const_u8[",
                       "CORE_CONST CO_OBJECT_DESC_T CORE_CONST_STORAGE_CLASS "
                       "od_description[CO_OBJ_DESC_CNT] = {\n",
                       "\t{ (UNSIGNED8)0u, CORE_DTYPE_U16, CO_DSPEC_VAR, (UNSIGNED16)1u, "
                       "CO_ATTR_NUM | CO_ATTR_READ | CO_ATTR_WRITE | CO_ATTR_MAP_TR | "
                       "CO_ATTR_MAP_REC | CO_ATTR_DEFVAL, (UNSIGNED16)1u},/* 0x2000:0*/ \n",
                       "\t{ (UNSIGNED8)1u, CORE_DTYPE_U32, CO_DSPEC_CONST, (UNSIGNED16)1u, "
                       "CO_ATTR_NUM | CO_ATTR_READ, (UNSIGNED16)1u},/* 0x1018:1*/ \n",
                       "CORE_CONST CO_OD_ASSIGN_T CORE_CONST_STORAGE_CLASS "
                       "od_assign[CO_OD_ASSIGN_CNT] = {\n\t{ 0x1000u, 1u, 0u, CO_ODTYPE_VAR, 0u "
                       "},\n",
                       "\t{ 0x1018u, 5u, 4u, CO_ODTYPE_STRUCT, 3u },\n",
                       "/* Structure for all OD variables */\nCORE_CONST CO_OD_DATA_VARIABLES_T "
                       "od_data_variables = {\n   od_const_u8\n    , od_const_u16\n    , "
                       "od_const_u32\n    , NULL\n#ifdef CO_EXTENDED_DATA_TYPES\n    , NULL\n",
                       "retVal = coreStackInit(&commonInitVars);\n",
                       "coOdInitOdPtr(&od_assign[0], CO_OD_ASSIGN_CNT, &od_description[0], "
                       "CO_OBJ_DESC_CNT, NULL, &od_data_variables)",
                       "    if (pCoOptions->master == 1) {\n"}
        << QStringList{"gen_user.h", "CO_DTYPE_", "uds_uds.h"};
    QTest::newRow("device, V3")
        << "device" << false << "gen_objdict.c"
        << QStringList{"CO_SERVICE_INIT_VAL_T\tserviceInitVars = {\n       { CO_OBJECT_COUNTS },\n",
                       "CO_CONST CO_OBJECT_DESC_T CO_CONST_STORAGE_CLASS "
                       "od_description[CO_OBJ_DESC_CNT] = {\n",
                       "\t{ (UNSIGNED8)0u, CO_DTYPE_U16, &od_u16[1], CO_ATTR_NUM | CO_ATTR_READ",
                       "\t{ (UNSIGNED8)1u, CO_DTYPE_U32, &od_const_u32[1], CO_ATTR_NUM",
                       "retVal = commonStackInit(&commonInitVars);\n"}
        << QStringList{"CORE_", "CO_DSPEC", "USDO",
                       "/* CANopen service initialization variables */"};
    QTest::newRow("initialised")
        << "every class, initialised" << true << "gen_objdict.c"
        << QStringList{"static UNSIGNED16 CORE_STORAGE_CLASS\tod_u16[3] "
                       "__attribute__((aligned(8)))= {\n\t(UNSIGNED16)1000u, /* "
                       "0x1017:0 */\n\t(UNSIGNED16)3u, /* 0x200f:0 */\n",
                       "static UNSIGNED32 CORE_CONST_STORAGE_CLASS * CORE_CONST "
                       "\tod_ptr_u32[1] = {\n\t&(appTable[1][2])\n};\n",
                       "\t(INTEGER32 *)(&appI32)\n",
                       "\t&(appList[12])\n",
                       "static CO_DOMAIN_PTR\tod_domain[2] = {\n",
                       "static OCTET_STRING\t*od_octet_string[3] = {\n",
                       "\tU24_SET(0x00,0x00,0x03)",
                       "static CORE_CONST char stringDefaultValues[] = {\n/* "
                       "appText */ \n0x68, 0x65, 0x6c, 0x6c, 0x6f, 0x00, \n",
                       "0x00}; \n\n",
                       "    /* appText: 0 - 6 */\n    memcpy(appText, "
                       "&stringDefaultValues[0], 6);\n",
                       "#include <gen_user.h>\n"}
        << QStringList{};
    QTest::newRow("limits") << "limits" << true << "gen_objdict.c"
                            << QStringList{"CO_ATTR_LIMIT, (UNSIGNED16)3u, (UNSIGNED16)4u, "
                                           "(UNSIGNED16)5u},/* 0x2100:0*/ \n"}
                            << QStringList{};
    QTest::newRow("compact") << "compact" << true << "gen_objdict.c"
                             << QStringList{" | CO_ATTR_COMPACT, (UNSIGNED16)",
                                            "\t{ 0x2100u, 2u, 10u, CO_ODTYPE_ARRAY, "}
                             << QStringList{"/* 0x2100:2*/"};
    QTest::newRow("PDOs, V4")
        << "PDOs" << true << "gen_objdict.c"
        << QStringList{"static CORE_CONST PDO_TR_MAP_TABLE_T "
                       "CORE_CONST_STORAGE_CLASS\tmapTableTPDO1 = {\n\t(UNSIGNED8)3u,\n\t{\n"
                       "\t\t{&od_u16[",
                       ", 2u, CO_TRUE, 0x20000010UL },\n\t\t{&(appU32), 4u, CO_TRUE, "
                       "0x21000020UL },\n",
                       "\t\t{NULL, (UNSIGNED8)0u, CORE_DTYPE_NON_NUMERIC, 0ul}",
                       "/* unique rpdo defintion */\nstatic CORE_CONST PDO_REC_MAP_TABLE_T "
                       "CORE_CONST_STORAGE_CLASS\tmapTableRPDO1 = {\n",
                       "    /* initialize RPDO 2 */\n    retVal = coPdoReceiveInit(2u, "
                       "od_const_u8[4], od_const_u16["}
        << QStringList{"mapTableRPDO2", "mapTableTPDO6"};
    QTest::newRow("PDOs, V3") << "PDOs" << false << "gen_objdict.c"
                              << QStringList{"\t\t{NULL, (UNSIGNED8)0u, CO_FALSE, 0ul}"}
                              << QStringList{"NON_NUMERIC"};
    QTest::newRow("overwrite, V4")
        << "overwritten connection set" << true << "gen_objdict.c"
        << QStringList{"#ifdef GEN_OVERWRITE_PREDEF_CONN_SET\n/* Please be careful - this function "
                       "overwrite the COB-Ids of the\n* predefined connection set",
                       "genLoadIndication(UNSIGNED8 subIndex)",
                       "coOdGetDefaultVal_u32(0x1201, 1, &cobId)", "coOdSetCobid(0x1201, 1, cobId)",
                       "cobId = nodeId + 0x180ul;\n"}
        << QStringList{};
    QTest::newRow("overwrite, lines, V3")
        << "two lines" << false << "gen_objdict.c"
        << QStringList{"userOverwriteCobIdSettingsLine(UNSIGNED8 canLine)",
                       "coOdGetDefaultVal_u32(canLine, 0x1200, 1, &cobId)", "RET_INVALID_PARAMETER"}
        << QStringList{"genLoadIndication", "GEN_OVERWRITE_PREDEF_CONN_SET"};
    QTest::newRow("lines, V4")
        << "CAN FD, two lines" << true << "gen_objdict.c"
        << QStringList{"\nUNSIGNED8 canLineTable[CAN_LINE_ARRAY_DECL] = { 0u, 1u };",
                       "    for (CAN_LINE = 0; CAN_LINE < CAN_MULTI_LINE_CNT; CAN_LINE ++)\n",
                       "/* Initialize line << 1 */\n",
                       "pCoInitOpt = &pCoOptions[1];",
                       "    coOdInitOdPtr(canLine, &od_assign[14], 14u, od_description, 73u, NULL, "
                       "&od_data_variables);\n",
                       "retVal = RET_PARAMETER_INVALID;",
                       "/* 1-0x2002:0*/ \n",
                       "   { CO_NODE_ID_FUNCTIONS },\n   { CO_TRUE }\n"}
        << QStringList{"/* 1-0x2000:0*/"};
    QTest::newRow("user header")
        << "CAN FD, two lines" << true << "gen_user.h"
        << QStringList{" * gen_user.h for ",
                       "#ifndef GEN_USER_H\n",
                       "RET_T userOverwriteCobIdSettingsLine(UNSIGNED8 canLine);\n",
                       "RET_T userOverwriteStringDefaultvalues(void);\n",
                       "/* these functions may be used by the application to initialize only a "
                       "sub set of all lines.*/\n",
                       "RET_T coCanOpenStackInit_common(CO_EVENT_STORE_T pLoadFunction, BOOL_T "
                       "*pModes);\n",
                       "RET_T coCanOpenStackInit_line1(UNSIGNED8 canLine, CO_INIT_OPTION_T "
                       "*pCoOptions);\nRET_T coCanOpenStackInit_finish(void);\n",
                       "\n#endif /* GEN_USER */\n"}
        << QStringList{};
    QTest::newRow("indications")
        << "static indications" << true << "gen_objdict.c"
        << QStringList{"/* definition of static indication function pointers "
                       "*/\nCORE_CONST CO_EVENT_SYNC_T coEventSyncInd = "
                       "appSync;\nCORE_CONST CO_EVENT_LED_T coEventLedRedInd"}
        << QStringList{"coEventUsdoClientReadInd", "isoTpInit"};
    QTest::newRow("virtual, V4")
        << "every class" << true << "gen_vobjdict.c"
        << QStringList{" * virtual object dictionary for ", " (V4)\n * ",
                       "CORE_CONST CO_OBJECT_DESC_T CORE_CONST_STORAGE_CLASS "
                       "vod_description[CO_VOBJ_DESC_CNT] = {\n\t{ (UNSIGNED8)0u, "
                       "CORE_DTYPE_BOOL, CO_DSPEC_PTR, (UNSIGNED16)0u, ",
                       " | CO_ATTR_DYNOD, ",
                       "CORE_CONST CO_OD_ASSIGN_T CORE_CONST_STORAGE_CLASS "
                       "vod_assign[CO_VOD_ASSIGN_CNT] = {\n\t{ 0x2002u, 1u, 0u, CO_ODTYPE_VAR, 0u "
                       "},\n"}
        << QStringList{"CO_ATTR_DEFVAL"};
    QTest::newRow("virtual, V3") << "every class" << false << "gen_vobjdict.c"
                                 << QStringList{" for external non-addressable memory - generated",
                                                "CO_DTYPE_BOOL_PTR, (UNSIGNED16)0u, "}
                                 << QStringList{"CORE_"};
}

void TestObjDictText::fragments()
{
    QFETCH(QString, name);
    QFETCH(bool, isV4);
    QFETCH(QString, file);
    QFETCH(QStringList, present);
    QFETCH(QStringList, absent);
    GeneratedProject generated(caseNamed(name), isV4);
    generated.generate();
    const QString text = generated.text(file);
    for (const QString &fragment : std::as_const(present))
        QVERIFY2(text.contains(fragment), qPrintable("missing: " + fragment + "\nin\n" + text));
    for (const QString &fragment : std::as_const(absent))
        QVERIFY2(!text.contains(fragment), qPrintable("too much: " + fragment));
}

void TestObjDictText::twiceTheSame()
{
    for (const bool isV4 : {false, true}) {
        GeneratedProject first(caseNamed("two lines"), isV4);
        GeneratedProject second(caseNamed("two lines"), isV4);
        first.generate();
        second.generate();
        QVERIFY(!first.text("gen_objdict.c").isEmpty());
        QCOMPARE(first.text("gen_objdict.c"), second.text("gen_objdict.c"));
    }
}

void TestObjDictText::withoutStdlib()
{
    GeneratedProject generated(caseNamed("device"), true);
    generated.addFile("no_stdlib_include.txt");
    generated.generate();
    QVERIFY(!generated.text("gen_objdict.c").contains("stdlib.h"));
}

QTEST_GUILESS_MAIN(TestObjDictText)
#include "tst_objdicttext.moc"
