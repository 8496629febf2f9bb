#include "tests/generatedc/testproject.h"

#include "canopen/canopentypes.h"

using namespace CAN;

namespace {

using Sub = TestProject::Sub;

constexpr quint16 numericTypes[] = {
    BOOLEAN,         INTEGER8,  INTEGER16,  INTEGER32,  UNSIGNED8,  UNSIGNED16, UNSIGNED32,
    REAL32,          INTEGER24, UNSIGNED24, UNSIGNED40, UNSIGNED48, UNSIGNED64, TIME_OF_DAY,
    TIME_DIFFERENCE, BITS2,     BITS7,      INTEGER40,  INTEGER48,  INTEGER56,  INTEGER64,
    UNSIGNED56,      REAL64,    BITS9,      BITS29};

void device(TestProject &project)
{
    project.addDevice(0);
    Sub mappable = managed(UNSIGNED16, "0x1234");
    project.variable(0, 0x2000, "my value", mappable);
    project.variable(0, 0x2001, "signed", managed(INTEGER16, "-5"));
    project.variable(0, 0x2002, "as the constant", managed(UNSIGNED8, "4"));
    project.variable(0, 0x2003, "stored", [] {
        Sub sub = managed(UNSIGNED32, "4294967295");
        sub.nvstorage = true;
        return sub;
    }());
}

void everyClass(TestProject &project)
{
    project.addDevice(0);
    quint16 index = 0x2000;
    for (const quint16 type : numericTypes) {
        const QString value = type == BOOLEAN                    ? "1"
                              : type == REAL32 || type == REAL64 ? "-1.5"
                                                                 : "3";
        project.variable(0, index++, "managed", managed(type, value));
        project.variable(0, index++, "constant", constant(type, value));
        Sub virtualSub = managed(type, value);
        virtualSub.implementation = CANopen::VirtualObject;
        project.variable(0, index++, "virtual", virtualSub);
    }
    project.variable(0, 0x2100, "u8", application(UNSIGNED8, "1", "appU8"));
    project.variable(0, 0x2101, "u16", application(UNSIGNED16, "1", "appU16"));
    project.variable(0, 0x2102, "u24", application(UNSIGNED24, "1", "appU24"));
    project.variable(0, 0x2103, "u32", application(UNSIGNED32, "1", "appTable[1][2]"));
    project.variable(0, 0x2104, "u40", application(UNSIGNED40, "1", "appU40"));
    project.variable(0, 0x2105, "u48", application(TIME_OF_DAY, "1", "appU48"));
    project.variable(0, 0x2106, "u64", application(UNSIGNED64, "1", "appU64"));
    project.variable(0, 0x2107, "i8", application(INTEGER8, "-1", "appI8"));
    project.variable(0, 0x2108, "i16", application(INTEGER16, "-1", "appI16"));
    project.variable(0, 0x2109, "i24", application(INTEGER24, "-1", "appI24"));
    project.variable(0, 0x210A, "i32", application(INTEGER32, "-1", "(INTEGER32 *)(&appI32)"));
    project.variable(0, 0x210B, "r32", application(REAL32, "0.1", "appR32"));
    project.variable(0, 0x210C, "by index", application(UNSIGNED16, "1", "appList[{$i-0x2100}]"));
    project.variable(0, 0x2110, "text", application(VISIBLE_STRING, "hello", "appText", 20));
    project.variable(0, 0x2111, "utf8", application(UTF8_STRING, "hällo", "appUtf8", 20));
    project.variable(0, 0x2112, "octets", application(OCTET_STRING, "01 02 ff", "appOctets", 8));
    project.variable(0, 0x2113, "domain", application(DOMAIN_TYPE, "", "appDomain", 100));
    project.variable(0, 0x2114, "const text", constant(VISIBLE_STRING, "fixed"));
    project.variable(0, 0x2115, "const utf8", constant(UTF8_STRING, "€"));
    project.variable(0, 0x2116, "const octets", constant(OCTET_STRING, "dead beef"));
    project.variable(0, 0x2119, "const unicode", constant(UNICODE_STRING, "ab"));
    project.variable(0, 0x211A, "r64", application(REAL64, "1", "appU64"));
    project.variable(0, 0x2117, "unnamed domain", managed(DOMAIN_TYPE, ""));
    project.variable(0, 0x2118, "managed text", managed(VISIBLE_STRING, "refused"));
}

constexpr const char *everyClassVariables =
    "UNSIGNED8 appU8;\nUNSIGNED16 appU16;\nUNSIGNED24 appU24;\nUNSIGNED32 appTable[2][3];\n"
    "UNSIGNED40 appU40;\nUNSIGNED48 appU48;\nUNSIGNED64 appU64;\nINTEGER8 appI8;\n"
    "INTEGER16 appI16;\nINTEGER24 appI24;\nINTEGER32 appI32;\nREAL32 appR32;\n"
    "UNSIGNED16 appList[300];\nchar appText[20];\nchar appUtf8[20];\nUNSIGNED8 appOctets[8];\n"
    "UNSIGNED8 appDomain[100];\n";

/// Numbers that are no data type.
void unknownTypes(TestProject &project)
{
    project.addDevice(0);
    quint16 index = 0x2000;
    for (const quint16 type : {0, 14, 30, 125, 200, 65535}) {
        project.variable(0, index++, "managed", managed(type, "1"));
        project.variable(0, index++, "constant", constant(type, "1"));
        project.variable(0, index++, "variable", application(type, "1", "appU8"));
    }
    // Defaults that are no numbers.
    for (const char *value :
         {"abc", "'", "\"", "*/", "1;", "0x", "0b11", "$NODEID+0x10+1", "1.5", "١"})
        project.variable(0, index++, "odd", managed(UNSIGNED16, QString::fromUtf8(value)));
}

void limits(TestProject &project)
{
    device(project);
    project.setting("limit_check", "1");
    const auto limited = [&](quint16 index, quint16 type, const char *value, const char *low,
                             const char *high) {
        Sub sub = managed(type, value);
        sub.limitineds = true;
        sub.lowlimit = low;
        sub.uplimit = high;
        project.variable(0, index, "limited", sub);
    };
    limited(0x2100, UNSIGNED8, "10", "1", "200");
    limited(0x2101, UNSIGNED16, "0x10", "010", "0xFFF0"); // decimal unless marked
    limited(0x2102, INTEGER32, "-7", "-2147483648", "2147483647");
    limited(0x2103, REAL32, "0", "-1e38", "3.402823466e38");
    limited(0x2104, UNSIGNED8, "300", "-1", "0x7FFFFF"); // beyond the type
    limited(0x2105, UNSIGNED64, "1", "0", "18446744073709551615");
    limited(0x2106, INTEGER8, "0", "", ""); // natural limits
    limited(0x2107, UNSIGNED32, "99999999999999999999999", "0", "99999999999999999999999");
    limited(0x2108, INTEGER16, "-9223372036854775808", "-99999999999999999999999", "0");
    limited(0x2109, REAL32, "nan", "-inf", "1e400");
    Sub locked = managed(UNSIGNED8, "1", "ro");
    locked.limitineds = true;
    locked.lowlimit = "77";
    project.variable(0, 0x2110, "no limit without write access", locked);
}

void compact(TestProject &project)
{
    device(project);
    project.setting("compact_array_description", "1");
    project.object(0, 0x2100, CANopen::ARRAY, "alike",
                   std::vector<Sub>(10, managed(UNSIGNED16, "7")));
    std::vector<Sub> tail(6, managed(UNSIGNED32, "9"));
    tail[1].defaultvalue = "8";
    project.object(0, 0x2101, CANopen::ARRAY, "alike from the third", tail);
    project.object(0, 0x2102, CANopen::ARRAY, "alike constants",
                   std::vector<Sub>(5, constant(UNSIGNED8, "3")));
    std::vector<Sub> mixed(4, managed(UNSIGNED8, "1"));
    mixed[3].implementation = CANopen::Variable;
    mixed[3].varname = "appU8";
    mixed[2] = mixed[3];
    project.object(0, 0x2103, CANopen::ARRAY, "two implementations", mixed);
    project.object(0, 0x1F82, CANopen::ARRAY, "service",
                   std::vector<Sub>(127, managed(UNSIGNED8, "0")));
}

void pdos(TestProject &project)
{
    device(project);
    project.variable(0, 0x2100, "application", application(UNSIGNED32, "1", "appU32"));
    project.variable(0, 0x2101, "constant", constant(UNSIGNED8, "1"));
    Sub virtualSub = managed(UNSIGNED8, "1");
    virtualSub.implementation = CANopen::VirtualObject;
    project.variable(0, 0x2102, "virtual", virtualSub);
    project.pdo(0, 0x1400, {0x20000010, 0x20010010});
    project.pdo(0, 0x1401, {0x20000010, 0x20010010}); // same contents: one table
    project.pdo(0, 0x1402, {0x00050008, 0x21000020, 0x00000000});
    project.pdo(0, 0x1403, {0x20000010}, true);
    project.pdo(0, 0x1800, {0x20000010, 0x21000020, 0x21010008});
    project.pdo(0, 0x1801, {0x21020008, 0x7FFF0008}); // virtual and missing
    project.pdo(0, 0x1802, {0x20020008}, true);
    project.pdo(0, 0x1803, {});
    project.object(0, 0x1A05, CANopen::RECORD, "mapping without communication",
                   {constant(UNSIGNED32, "0x20000010")});
    // A destination address mode PDO maps nothing by itself.
    project.object(0, 0x1804, CANopen::RECORD, "MPDO", {managed(UNSIGNED32, "0x300")});
    project.object(0, 0x1A04, CANopen::RECORD, "MPDO mapping", {});
    project.store().addSubIndex(0, 0x1A04, 0, constant(UNSIGNED8, "0xFF"));
}

constexpr const char *pdoVariables = "UNSIGNED32 appU32;\n";

void bitwisePdos(TestProject &project)
{
    pdos(project);
    project.setting("bitwise_mapping", "1");
    project.variable(0, 0x2200, "bit", managed(BOOLEAN, "1"));
    project.pdo(0, 0x1805, {0x22000001, 0x20020008});
}

void services(TestProject &project)
{
    device(project);
    project.settings("lss_supported=1; nmtmaster=1; idnego_supported=1; bootup_manager=1; "
                     "isotp_supported=1; isotp_connection_cnt=2; event_led=1");
    project.variable(0, 0x1005, "SYNC", managed(UNSIGNED32, "0x80"));
    project.variable(0, 0x1006, "period", managed(UNSIGNED32, "10000"));
    project.variable(0, 0x1007, "window", managed(UNSIGNED32, "500"));
    project.variable(0, 0x100C, "guard time", managed(UNSIGNED16, "0"));
    project.variable(0, 0x100D, "life time", managed(UNSIGNED8, "0"));
    project.variable(0, 0x1012, "TIME", managed(UNSIGNED32, "0x100"));
    project.variable(0, 0x1014, "EMCY", managed(UNSIGNED32, "$NODEID+0x80"));
    project.variable(0, 0x1015, "EMCY inhibit", managed(UNSIGNED16, "0"));
    project.object(0, 0x1003, CANopen::ARRAY, "errors",
                   std::vector<Sub>(4, managed(UNSIGNED32, "0", "ro")));
    project.object(0, 0x1010, CANopen::ARRAY, "store", {managed(UNSIGNED32, "1")});
    project.object(0, 0x1016, CANopen::ARRAY, "consumer heartbeat",
                   std::vector<Sub>(3, managed(UNSIGNED32, "0")));
    project.object(0, 0x1028, CANopen::ARRAY, "EMCY consumer",
                   std::vector<Sub>(5, managed(UNSIGNED32, "0x81")));
    project.object(0, 0x1029, CANopen::ARRAY, "error behaviour",
                   std::vector<Sub>(2, managed(UNSIGNED8, "0")));
    project.object(0, 0x1280, CANopen::RECORD, "SDO client",
                   std::vector<Sub>(3, managed(UNSIGNED32, "0x80000000")));
    project.variable(0, 0x1300, "GFC", managed(UNSIGNED8, "1"));
    project.object(0, 0x1301, CANopen::RECORD, "SRDO",
                   std::vector<Sub>(6, managed(UNSIGNED32, "0")));
    project.object(0, 0x1381, CANopen::RECORD, "SRDO mapping",
                   {constant(UNSIGNED32, "0x20000010"), constant(UNSIGNED32, "0x20010010")});
    project.variable(0, 0x13FE, "signature", managed(UNSIGNED8, "0"));
    project.object(0, 0x1F10, CANopen::RECORD, "SRD", {managed(UNSIGNED32, "0")});
    project.variable(0, 0x1F80, "NMT startup", managed(UNSIGNED32, "0x21"));
    project.object(0, 0x1F81, CANopen::ARRAY, "slaves",
                   std::vector<Sub>(10, managed(UNSIGNED32, "0")));
    project.object(0, 0x1F90, CANopen::ARRAY, "flying master",
                   std::vector<Sub>(6, managed(UNSIGNED16, "1")));
    project.object(0, 0x1F2C, CANopen::ARRAY, "routing", {managed(UNSIGNED32, "0")});
}

void staticRoles(TestProject &project)
{
    services(project);
    project.settings("enable_dynamic=0; static_srdo_data=1");
}

void overwrite(TestProject &project)
{
    pdos(project);
    project.setting("overwrite_predef", "1");
    project.object(0, 0x1201, CANopen::RECORD, "second server",
                   {managed(UNSIGNED32, "0x701"), managed(UNSIGNED32, "0x702")});
}

/// What a user can type where the generated C shows it.
void hostileTexts(TestProject &project)
{
    project.addDevice(0);
    project.settings("generate_string_defaults=1; init_static_variables=1");
    const char *names[] = {"with blanks", "ümläut",           "quote\"d",  "end */ comment",
                           "back\\slash", "splice\\",         "what\?\?/", "two\nlines",
                           "/* open",     "%1 %2 %n",         "",          "same",
                           "same",        "*/\n#error broken"};
    quint16 index = 0x2000;
    for (const char *name : names) {
        project.variable(0, index, QString::fromUtf8(name),
                         managed(UNSIGNED8, QString::number(index % 100)));
        ++index;
    }
    const QString texts[] = {"say \"hi\"",
                             "back\\slash\\",
                             "tab\tline\nend\r",
                             "trigraph \?\?/ \?\?=",
                             "üß",
                             "€😀",
                             QString(QChar(7)) + "1f",
                             "*/ /*",
                             "%s%n",
                             QString()};
    index = 0x2100;
    int number = 0;
    for (const QString &text : texts) {
        project.variable(0, index++, "const", constant(VISIBLE_STRING, text));
        project.variable(0, index++, "utf8", constant(UTF8_STRING, text));
        project.variable(0, index++, "octets", constant(OCTET_STRING, text));
        project.variable(
            0, index++, "variable",
            application(VISIBLE_STRING, text, QStringLiteral("texts[%1]").arg(number++), 20));
    }
    project.variable(0, 0x2200, "too long",
                     application(VISIBLE_STRING, "123456789", "shortText", 4));
    project.variable(0, 0x2201, "exact", application(VISIBLE_STRING, "1234", "exactText", 4));
    project.variable(0, index++, "node-id", managed(UNSIGNED16, "$NODEID"));
}

constexpr const char *hostileVariables =
    "char texts[10][20];\nchar shortText[4];\nchar exactText[4];\n";

/// Two lines: an object that both share, one that both have, and PDOs of the same number.
void twoLines(TestProject &project)
{
    project.addLine(1);
    for (const quint8 line : {0, 1}) {
        project.addDevice(line);
        Sub shared = managed(UNSIGNED16, "500");
        shared.sharedlines = true;
        project.variable(line, 0x2000, "shared", shared);
        project.object(line, 0x2001, CANopen::ARRAY, "shared array", {shared, shared, shared});
        project.variable(line, 0x2002, "own", managed(UNSIGNED16, line ? "11" : "10"));
        project.pdo(line, 0x1400, {0x20000010});
        project.pdo(line, 0x1401, {0x20020010});
        project.pdo(line, 0x1800, {0x20000010, 0x20020010});
    }
    project.settings(
        "nmtmaster=2; co_ml_ms=0,1; co_node_id=5,6; overwrite_predef=1,0; receivebuffersize=10,20");
}

void forcedLineForm(TestProject &project)
{
    overwrite(project);
    project.store().setMiscSetting("generateML", "true");
    project.setting("init_static_variables", "1");
}

void fd(TestProject &project)
{
    pdos(project);
    project.settings("canfd_supported=1; usdo_server_enabled=1; usdo_server_cnt=2; "
                     "usdo_client_enabled=1; usdo_client_cnt=3");
}

void fdLines(TestProject &project)
{
    twoLines(project);
    project.settings("canfd_supported=1; usdo_server_enabled=1; usdo_server_cnt=2,1");
}

void uds(TestProject &project)
{
    device(project);
    project.settings("isotp_supported=1; isotp_connection_cnt=1; udsserver_supported=1; "
                     "uds_client_cnt=1; uds_static_indication=1");
}

void staticIndications(TestProject &project)
{
    device(project);
    project.settings(
        "enable_dynamic=0; fct_store_save=appStore; fct_led_red=appLed; fct_time=appTime");
    project.setting("fct_sync", " appSync ");
    project.setting("isotp_connection_cnt", "2"); // of no use without ISO-TP
    project.setting("special_virtual_objects", "1");
    // The functions of a client alone have no pointers.
    project.settings("usdo_client_enabled=1; usdo_client_read_ind_function=appRead");
}

constexpr const char *indicationFunctions =
    "void appSync(UNSIGNED8 syncCounter) { (void)syncCounter; }\n"
    "RET_T appStore(UNSIGNED8 subIndex) { (void)subIndex; return RET_OK; }\n"
    "void appLed(BOOL_T ledState) { (void)ledState; }\n"
    "void appTime(CO_TIME_T *pTime) { (void)pTime; }\n";

} // namespace

const std::vector<ProjectCase> &projectCases()
{
    static const std::vector<ProjectCase> cases = {
        {"device", device},
        {"empty", [](TestProject &) {}},
        {"every class", everyClass, everyClassVariables},
        {"every class, initialised",
         [](TestProject &project) {
             everyClass(project);
             project.settings("init_static_variables=1; generate_string_defaults=1; "
                              "static_memory_specifier=__attribute__((aligned(8)))");
         },
         everyClassVariables},
        {"unknown types", unknownTypes, "UNSIGNED8 appU8;\n", "", true},
        {"limits", limits},
        {"compact", compact, "UNSIGNED8 appU8;\n"},
        {"PDOs", pdos, pdoVariables},
        {"PDOs, bitwise", bitwisePdos, pdoVariables},
        {"services", services},
        {"services, roles and safety data static", staticRoles},
        {"overwritten connection set", overwrite, pdoVariables},
        {"hostile texts", hostileTexts, hostileVariables},
        {"two lines", twoLines},
        {"two lines, compact with limits",
         [](TestProject &project) {
             twoLines(project);
             project.settings("compact_array_description=1; limit_check=1");
         }},
        {"line form for one line", forcedLineForm, pdoVariables},
        {"CAN FD", fd, pdoVariables},
        {"CAN FD, two lines", fdLines},
        {"UDS", uds},
        {"old init form",
         [](TestProject &project) {
             device(project);
             project.setting("new_init_structure", "0");
         }},
        {"static indications", staticIndications, "", indicationFunctions},
    };
    return cases;
}
