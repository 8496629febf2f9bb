#include "tests/gendefine/generatedheaders.h"

#include "generators/canopen/propswriter.h"
#include "generators/headers/indicationgenerator.h"
#include "generators/headers/indicationgeneratorv4.h"
#include "generators/headers/indicesgenerator.h"
#include "tests/support/rows.h"

#include <QRegularExpression>
#include <QTest>

using Build = std::function<void(TestProject &)>;
Q_DECLARE_METATYPE(Build)

namespace {

using Sub = TestProject::Sub;

void named(TestProject &project, quint16 index, const QString &name,
           const ObjectDataBase::MetaData &metaData = {}, quint8 line = 0)
{
    ObjectDataBase::INDEX_DATA_T data;
    data.name = name;
    data.objecttype = CANopen::VAR;
    data.metadata = metaData;
    project.store().addIndex(line, index, data);
    project.store().addSubIndex(line, index, 0, managed(CAN::UNSIGNED8, "1"));
}

Sub entry(const QString &name, const QString &define = QString())
{
    Sub sub = managed(CAN::UNSIGNED8, "1");
    sub.name = name;
    if (!define.isEmpty())
        sub.metadata = {{"subdefine", define}};
    return sub;
}

} // namespace

/// gen_indices.h, gen_indication.h and the props files: which lines they hold.
class TestNamesAndIndications : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("SOURCE_DATE_EPOCH", "0"); }

    void indices_data()
    {
        testRows<Build, QStringList>(
            {"build", "lines"},
            {{"names",
              Build([](TestProject &project) {
                  named(project, 0x1008, "Manufacturer device name");
                  named(project, 0x2000, "my value", {{"objectdefine", "SPEED"}});
                  named(project, 0x2001, "a - 50% -- b");
                  named(project, 0x2002, "Object $I");
                  named(project, 0x2003, "x", {{"objectdefine", "2nd speed"}});
              }),
              {"#define I_MANUFACTURER_DEVICE_NAME\t0x1008u", "#define SPEED\t0x2000u",
               "#define I_A_50_B\t0x2001u", "#define I_OBJECT_2002\t0x2002u",
               "#define _2ND_SPEED\t0x2003u"}},
             {"same names",
              Build([](TestProject &project) {
                  named(project, 0x2000, "Value");
                  named(project, 0x2001, "Value");
                  named(project, 0x2002, "Value 1");
                  named(project, 0x2003, "VALUE");
                  named(project, 0x2004, "guard", {{"objectdefine", "gen_indices_h"}});
              }),
              {"#define I_VALUE\t0x2000u", "#define I_VALUE_1\t0x2001u",
               "#define I_VALUE_1_1\t0x2002u", "#define I_VALUE_2\t0x2003u",
               "#define GEN_INDICES_H_1\t0x2004u"}},
             {"subindices",
              Build([](TestProject &project) {
                  project.object(0, 0x1018, CANopen::RECORD, "Identity Object",
                                 {entry("Vendor ID"), entry("Product code", "my product")});
                  project.object(0, 0x2000, CANopen::ARRAY, "List", {entry("Vendor ID")});
              }),
              {"#define I_IDENTITY_OBJECT\t0x1018u", "#define  S_NUMBER_OF_ENTRIES\t0x0u",
               "#define S_VENDOR_ID\t1u", "#define MY_PRODUCT\t2u", "#define I_LIST\t0x2000u",
               "#define S_VENDOR_ID_1\t1u"}},
             {"PDOs of nodes",
              Build([](TestProject &project) {
                  named(project, 0x1402, "RPDO comm par 3 for node 7 Pump");
                  named(project, 0x1800, "TPDO comm par 1 for node 7 Pump");
                  named(project, 0x2000, "RPDO comm par 9 for node 7 Pump");
                  named(project, 0x1403, "TPDO comm par 4 for node 7 Pump"); // not in its range
              }),
              {"#define I_RPDO_COMM_PAR_3_FOR_NODE_7_PUMP\t0x1402u", "#define RPDO_7_PUMP_3\t3u",
               "#define I_TPDO_COMM_PAR_4_FOR_NODE_7_PUMP\t0x1403u",
               "#define I_TPDO_COMM_PAR_1_FOR_NODE_7_PUMP\t0x1800u", "#define TPDO_7_PUMP_1\t1u",
               "#define I_RPDO_COMM_PAR_9_FOR_NODE_7_PUMP\t0x2000u"}},
             {"lines",
              Build([](TestProject &project) {
                  project.addLine(1);
                  named(project, 0x1400, "RPDO comm par 1 for node 2 x");
                  named(project, 0x1400, "RPDO comm par 1 for node 2 x", {}, 1);
              }),
              {"#define L0_I_RPDO_COMM_PAR_1_FOR_NODE_2_X\t0x1400u", "#define L0_RPDO_2_X_1\t1u",
               "#define L1_I_RPDO_COMM_PAR_1_FOR_NODE_2_X\t0x1400u", "#define L1_RPDO_2_X_1\t1u"}},
             {"J1939",
              Build([](TestProject &project) {
                  project.setting("line0type", "2");
                  ObjectDataBase &store = project.store();
                  constexpr quint8 receive = ObjectDataBase::receive;
                  for (const quint8 direction : {receive, ObjectDataBase::transmit}) {
                      store.addPGN(
                          0, 0xFECA,
                          {.name = "Active DTCs", .number = 0xFECA, .direction = direction});
                      store.addSPN(
                          0, 0xFECA, direction, 84,
                          {.name = "Speed", .pgn = 0xFECA, .direction = direction, .spn = 84});
                  }
              }),
              {"#define PGN_ACTIVE_DTCS\t65226u /* 0xfeca */", "#define SPN_SPEED\t84u",
               "#define PGN_ACTIVE_DTCS_1\t65226u /* 0xfeca */", "#define SPN_SPEED_65226_84\t84u",
               "#define PGN_ADDRESS_CLAIM\t60928u /* 0xee00 */",
               "#define SPN_NAME_OF_CONTROLLER_APPLICATION\t2848u"}},
             {"raw CAN",
              Build([](TestProject &project) {
                  project.setting("line0type", "4");
                  for (const quint32 id : {0x123u, 0x20000456u, 0x124u})
                      project.store().addCANID(0, id,
                                               {.id = id,
                                                .name = id == 0x124 ? "" : "Ping",
                                                .direction = ObjectDataBase::transmit});
              }),
              {"#define ID_PING\t0x123u", "#define ID_292\t0x124u",
               "#define ID_PING_1\t0x20000456u"}}});
    }

    void indices()
    {
        QFETCH(Build, build);
        QFETCH(QStringList, lines);
        TestProject project(true);
        build(project);
        QCOMPARE(indexLines(project, project.store().getLines()), lines);
    }

    /// Whatever a user types, each line is one definition of a macro of its own.
    void hostileNames()
    {
        TestProject project(true);
        const char *names[] = {"",      "*/",          "\\",     "line\nfeed", "ümläut ß", "\?\?/",
                               "\"q\"", "中文",        "1st",    "int",        "😀",        "a\tb",
                               "%1 %2", "$I $z {$i*}", "{$i/0}", "_",          "__"};
        quint16 index = 0x2000;
        for (const char *name : names) {
            named(project, index++, QString::fromUtf8(name));
            named(project, index++, "x", {{"objectdefine", QString::fromUtf8(name)}});
            project.object(0, index++, CANopen::RECORD, QString::fromUtf8(name),
                           {entry(QString::fromUtf8(name)), entry("y", QString::fromUtf8(name))});
        }
        static const QRegularExpression form("^#define  ?([A-Za-z_][A-Za-z0-9_]*)\t[0-9a-fx]+u$");
        QSet<QString> seen;
        const QStringList lines = indexLines(project);
        for (const QString &line : lines) {
            const QRegularExpressionMatch match = form.match(line);
            QVERIFY2(match.hasMatch(), qPrintable(line));
            QVERIFY2(!seen.contains(match.captured(1)), qPrintable(line));
            seen.insert(match.captured(1));
        }
        QCOMPARE(lines.size(), qsizetype(std::size(names)) * 5 + 1);
    }

    void manyLikeNames()
    {
        TestProject project(true);
        constexpr int objects = 3000;
        for (int i = 0; i < objects; ++i)
            named(project, quint16(0x2000 + i), "Value");
        const QStringList lines = indexLines(project);
        QCOMPARE(lines.size(), objects);
        QCOMPARE(lines.back(), QString("#define I_VALUE_2999\t0x2bb7u"));
    }

    void indications_data()
    {

        const QString none = "/* \n   There are not any static indication functions defined.\n"
                             "   If there were some, they would be declared here. \n */\n";

        const Build two = [](TestProject &project) {
            project.settings(
                "fct_sdo_server_read=onRead; usdo_server_read_ind_function=ignoredWithoutUsdo");
            project.setting("fct_sync", " onSync ");
            project.setting("note_fct_sync", "every SYNC\nends */ here");
        };
        const Build lines = [](TestProject &project) {
            project.addLine(1);
            project.addDevice(0);
            project.addDevice(1);
            project.settings("fct_led_red=led; fct_led_green=led");
        };
        const Build uds = [](TestProject &project) {
            project.settings(
                "uds_static_indication=1; uds_fct_dtc_info=dtc; uds_fct_generic=other");
        };
        testRows<bool, Build, QString>(
            {"isV4", "build", "body"},
            {{"none", true, Build([](TestProject &) {}), none},
             {"blanks bind nothing", false,
              Build([](TestProject &project) { project.setting("fct_nmt", "  "); }), none},
             {"a key of the other generation only", true,
              Build([](TestProject &project) { project.setting("fct_pdo_receive", "f"); }), none},
             {"two, V3", false, two,
              "RET_T onRead(BOOL_T execute, UNSIGNED8 sdoNr, UNSIGNED16 index, "
              "UNSIGNED8 subIndex);\n"
              "/* every SYNC\n   ends * / here */\n"
              "void onSync(UNSIGNED8 syncCounter);\n"},
             {"two, V4", true, two,
              "RET_T onRead(CORE_CONST CO_EVENT_SDO_SERVER_SERVICE_T service, CORE_CONST "
              "CO_EVENT_SDO_SERVER_PARA_T *pPara);\n"
              "/* every SYNC\n   ends * / here */\n"
              "void onSync(UNSIGNED8 syncCounter);\n"},
             {"lines, V3", false, lines,
              "void led(UNSIGNED8 CO_LINE, BOOL_T ledState);\n"
              "void led(UNSIGNED8 CO_LINE, BOOL_T ledState);\n"},
             {"lines, V4", true, lines,
              "void led(CAN_LINE_TYPE CAN_LINE, BOOL_T ledState);\n"
              "void led(CAN_LINE_TYPE CAN_LINE, BOOL_T ledState);\n"},
             {"UDS, V4", true, uds,
              "#if UDS_EVENT_STATIC_DTC_INFO\n"
              "RET_T dtc(UDS_DTC_INFO_PARA_T *pPara);\n#endif\n"
              "#if UDS_EVENT_STATIC_GENERIC_FCT\n"
              "UNSIGNED8 other(UDS_GENERIC_PARA_T *pPara);\n#endif\n"},
             {"UDS, V3", false, uds, none}});
    }

    void indications()
    {
        QFETCH(bool, isV4);
        QFETCH(Build, build);
        QFETCH(QString, body);
        TestProject project(isV4);
        build(project);
        GeneratedHeaders files(project);
        const auto generator = isV4 ? std::make_unique<indicationgeneratorv4>()
                                    : std::make_unique<indicationgenerator>();
        const QString text = files.run(*generator);
        const QString start = "#ifndef GEN_INDICATION\n#define GEN_INDICATION 1\n\n";
        const QString end = "#endif /* GEN_INDICATION*/\n";
        QVERIFY(text.contains(start));
        QVERIFY(text.endsWith(end));
        const qsizetype from = text.indexOf(start) + start.size();
        QCOMPARE(text.mid(from, text.size() - end.size() - from), body);
        QVERIFY(text.contains(isV4 ? "static indication definitions for pump (V4) - generated by"
                                   : "static indication definitions for pump - generated by"));
    }

    void props()
    {
        QCOMPARE(PropsWriter::definedSymbols("#define A 1u\r\n# define\tB_2(x) x\r\n#define _C\r\n"
                                             "  #define A 2\n/* define D */\n#defined E\ndefine F\n"
                                             "#undef G\n"),
                 QStringList({"A", "B_2", "F"}));

        QTemporaryDir folder;
        const QString header = folder.filePath("gen_define.h");
        const auto read = [&](const char *name) {
            QFile file(folder.filePath(name));
            return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
        };
        QVERIFY(PropsWriter::write(header, folder.path()));
        QVERIFY(read("Directory.Build.props")
                    .contains("<Import Project=\"$(MSBuildThisFileDirectory)gen_define.props\"\n"));
        QVERIFY(!QFile::exists(folder.filePath("gen_define.props")));

        QFile file(header);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("#ifndef X\n#define X 1\n#define Y\t2u\n");
        file.close();
        QVERIFY(PropsWriter::write(header, folder.path()));
        QVERIFY(read("gen_define.props")
                    .contains("    <DefineConstants>$(DefineConstants);X;Y</DefineConstants>\n"));
        QVERIFY(!PropsWriter::write(header, folder.filePath("missing")));
    }

private:
    QStringList indexLines(TestProject &project, const QList<quint8> &lines = {0})
    {
        GeneratedHeaders files(project);
        IndicesGenerator generator;
        generator.setLines(lines);
        const QString text = files.run(generator);
        QStringList result = text.split('\n');
        result.removeIf([](const QString &line) { return !line.startsWith("#define "); });
        result.removeFirst(); // the guard
        return result;
    }
};

QTEST_GUILESS_MAIN(TestNamesAndIndications)
#include "tst_namesandindications.moc"
