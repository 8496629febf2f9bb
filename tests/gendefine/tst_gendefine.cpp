#include "tests/gendefine/generatedheaders.h"

#include "generators/define/definefacts.h"
#include "generators/define/gendefinegenerator.h"
#include "tests/golden/foldercompare.h"
#include "tests/support/rows.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using Build = std::function<void(TestProject &)>;
using Defines = QMap<QString, QString>;
Q_DECLARE_METATYPE(Build)

namespace {

using Sub = TestProject::Sub;

std::unique_ptr<CoDefineGenerator> makeGenerator(bool isV4)
{
    if (isV4)
        return std::make_unique<GenDefineGenerator>();
    return std::make_unique<CoDefineGenerator>();
}

/// One object of `entries` subindices and subindex 0.
void array(TestProject &project, quint16 index, std::size_t entries, quint8 line = 0)
{
    project.object(line, index, CANopen::ARRAY, "array",
                   std::vector<Sub>(entries, managed(CAN::UNSIGNED32, "0")));
}

void value(TestProject &project, quint16 index, const QString &number, quint8 line = 0)
{
    project.variable(line, index, "variable", managed(CAN::UNSIGNED32, number));
}

Build setting(const char *key, const char *text)
{
    return [=](TestProject &project) { project.setting(key, text); };
}

/// Compares with the header that golden/ keeps for the running row; no macro is defined twice.
void compareWithGolden(const QString &header)
{
    const QByteArray tag = QTest::currentDataTag() ? QTest::currentDataTag() : "whole file";
    const QString path = QLatin1String(QUILLFORGE_SOURCE_DIR "/tests/gendefine/golden/") +
                         QString(tag).replace(QRegularExpression("[ ,]+"), "-") + ".h";
    if (FolderCompare::isUpdateWanted()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(header.toUtf8()) > 0);
        return;
    }
    const QString expected = QString::fromUtf8(FolderCompare::contentOf(path));
    QCOMPARE(header.split('\n'), expected.split('\n'));
    const Defines defines = GeneratedHeaders::defines(header);
    QVERIFY2(!defines.values().contains("twice"), qPrintable(defines.key("twice")));
}

} // namespace

/// What gen_define.h says of a project.
class TestGenDefine : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("SOURCE_DATE_EPOCH", "0");
        QCoreApplication::setApplicationName("CAN Quillforge");
        QCoreApplication::setApplicationVersion("4.3.13");
    }

    void wholeFile()
    {
        TestProject project(true);
        project.addDevice(0);
        value(project, 0x1005, "0x80");
        array(project, 0x1016, 2);
        project.pdo(0, 0x1800, {0x20000020});
        value(project, 0x2000, "5");
        project.settings("co_timer_interval=10000; event_nmt=3; fct_sync=onSync; "
                         "user_defines=#define MINE 1; generate_generation_counter=1");
        GeneratedHeaders files(project);
        GenDefineGenerator generator;
        compareWithGolden(files.run(generator));
    }

    void defines_data()
    {
        QTest::addColumn<bool>("isV4");
        QTest::addColumn<Build>("build");
        const auto row = [](const char *name, bool isV4, const Build &build) {
            QTest::addRow("%s, %s", name, isV4 ? "V4" : "V3") << isV4 << build;
        };

        const Build services = [](TestProject &project) {
            for (const quint16 index : {0x1012, 0x1014, 0x100C, 0x1015, 0x1300})
                value(project, index, "0x100");
            array(project, 0x1003, 8);
            array(project, 0x1010, 4);
            array(project, 0x1011, 1);
            array(project, 0x1028, 3);
            array(project, 0x1280, 3);
            array(project, 0x1301, 6);
            array(project, 0x1302, 6);
            value(project, 0x1F80, "0x21");
            array(project, 0x1F81, 10);
            array(project, 0x1F20, 10);
            array(project, 0x1F2C, 4);
            array(project, 0x1F10, 2);
            project.settings("nmtmaster=2; lss_supported=1; max_slave_assignment=4");
        };
        row("services", true, services);
        row("services", false, services);
        row("flying master and routing", false,
            [](TestProject &project) { project.settings("flyma_supported=1; routing_counts=3"); });
        row("no master without the bit", true, [](TestProject &project) {
            value(project, 0x1F80, "0x01");
            project.setting("nmtmaster", "1");
        });
        row("PDOs", true, [](TestProject &project) {
            project.pdo(0, 0x1400, {0x20000020}, true);
            array(project, 0x1401, 5);
            project.variable(0, 0x1601, "SAM", constant(CAN::UNSIGNED8, "254"));
            project.pdo(0, 0x1800, {0x20000020, 0x20000020, 0x20000020}, true);
            project.variable(0, 0x1A05, "DAM", constant(CAN::UNSIGNED8, "0xFF"));
            project.setting("bitwise_mapping", "1");
        });
        row("types and SRDO data", true, [](TestProject &project) {
            project.setting("static_srdo_data", "1");
            project.variable(0, 0x2000, "a", managed(CAN::UNSIGNED24, "1"));
            project.variable(0, 0x2001, "b", constant(CAN::UTF8_STRING, "x"));
            project.variable(0, 0x2002, "c", managed(CAN::INTEGER16, "1"));
            project.object(
                0, 0x1381, CANopen::RECORD, "mapping",
                {constant(CAN::UNSIGNED32, "0x20000018"), constant(CAN::UNSIGNED32, "0x20020010")});
        });
        row("profiles", true, [](TestProject &project) {
            value(project, 0x1000, "0x000301BF");
            array(project, 0x6000, 2);
            project.store().setSubIndexDefaultValue(0, 0x6000, 1, "0x80000001");
            project.store().setSubIndexDefaultValue(0, 0x6000, 2, "2");
            project.addLine(1);
            project.addDevice(1);
            value(project, 0x1000, "0x1C6", 1);
        });
        row("profile of an FD device", true, [](TestProject &project) {
            array(project, 0x1000, 1);
            project.store().setSubIndexDefaultValue(0, 0x1000, 1, "0x192");
            project.setting("canfd_supported", "1");
        });

        const Build lines = [](TestProject &project) {
            project.addLine(1);
            project.addDevice(1);
            project.pdo(1, 0x1800, {0x20000020});
            project.settings("receivebuffersize=20,0x10; co_node_id=0x20,; co_node_id_fct=getId,; "
                             "overwrite_predef=0,1");
        };
        row("lines", true, lines);
        row("lines", false, lines);
        row("per line form of one line", true,
            [](TestProject &project) { project.store().setMiscSetting("generateML", "true"); });

        const Build usdo = [](TestProject &project) {
            project.settings("usdo_server_enabled=1; usdo_server_cnt=2; usdo_client_enabled=1; "
                             "usdo_client_cnt=3; usdo_split_indication_supported=1; "
                             "usdo_client_read_ind_function=read");
        };
        row("USDO", true, usdo);
        row("USDO", false, usdo);
        row("USDO off", true, setting("usdo_client_read_ind_function", "read"));

        const Build events = [](TestProject &project) {
            project.settings("fct_pdo_sync=f; fct_sdo_server_check_write=f; fct_pdo_update=f; "
                             "fct_can=f; event_pdo=2; event_sdo_server_check_write=2; "
                             "isotp_server_event=1; isotp_supported=1; isotp_dyn_server_ind=4; "
                             "event_can=1; sleep_mode_selection=1; sleep_wait_time=500");
        };
        row("events", true, events);
        row("events", false, events);
        row("static only", true,
            [](TestProject &project) { project.settings("enable_dynamic=0; event_pdo=2"); });
        row("settings", true, [](TestProject &project) {
            project.settings("sdo_blocktransfer_supported=1; sdo_blocktransfer_block_size=0x7F");
            project.setting("sdo_client_queue_size", "9"); // the queue itself is off
            project.settings("limit_check=1; user_tx_cob=2; only_one_hb_buffer=1");
            project.setting("co_node_id_fct", "my func /* \"");
            project.setting("co_timer_interval", "1000\n#error");
            project.store().setDescriptionSetting("SelfStarting", "1");
        });

        const Build virtuals = [](TestProject &project) {
            Sub sub = managed(CAN::UNSIGNED16, "1");
            sub.implementation = CANopen::VirtualObject;
            sub.nvstorage = true;
            project.variable(0, 0x2000, "virtual", sub);
            project.object(0, 0x2001, CANopen::ARRAY, "virtual", {sub, sub});
        };
        row("virtual objects", true, virtuals);
        row("virtual objects", false, virtuals);
        row("no virtual objects", true, {});
    }

    void defines()
    {
        QFETCH(bool, isV4);
        QFETCH(Build, build);
        TestProject project(isV4);
        project.addDevice(0);
        if (build)
            build(project);
        GeneratedHeaders files(project);
        compareWithGolden(files.run(*makeGenerator(isV4)));
        QCOMPARE(files.errorText(), QString());
    }

    void protocols_data()
    {

        const auto pgn = [](TestProject &project, quint32 number, quint8 direction,
                            quint8 sources) {
            project.store().addPGN(
                0, number,
                {.number = number, .direction = direction, .multiSourceAddress = sources});
        };
        const Build messages = [pgn](TestProject &project) {
            pgn(project, 0xFECA, ObjectDataBase::receive, 3);
            pgn(project, 0xFECB, ObjectDataBase::receive, 0);
            pgn(project, 0xFECC, ObjectDataBase::transmit, 0);
            pgn(project, 60928, ObjectDataBase::transmit, 0);
            ObjectDataBase &store = project.store();
            store.setJ1939Setting("bamsupport", "1");
            store.setJ1939Setting("bamcycletime", "0");
            store.setJ1939Setting("dm_transmitsize", "90");
            store.setJ1939Setting("safetysupport", "1");
            store.addPGN(0, 0xFED0,
                         {.number = 0xFED0,
                          .direction = ObjectDataBase::transmit,
                          .isSafe = 1,
                          .safetyType = 2});
            store.setJ1939Setting("diagsupport", "1");
            store.setJ1939Setting("diagsupport_dm3", "1");
            store.setJ1939Setting("diagsupport_dmtool4", "1");
            store.setJ1939Setting("cia510serversupport", "1");
        };
        const Build bootLoader = [](TestProject &project) {
            for (const char *key : {"receivebuffersize", "transmitbuffersize"})
                project.setting(key, QString());
            project.settings("uds_bl_setting=1; udsserver_supported=1; uds_static_indication=1; "
                             "uds_fct_generic=f");
            project.store().setUDSServiceActive(0, UDS::SID::Authentication, true);
        };
        testRows<QString, bool, bool, Build>(
            {"lineType", "hasJ1939", "multiProtocol", "build"},
            {{"J1939", "2", true, false, messages},
             {"CANopen and J1939", "5", true, true, messages},
             {"raw CAN", "4", false, true, Build([](TestProject &project) {
                  for (const quint32 id : {1u, 2u, 0x20000003u})
                      project.store().addCANID(0, id,
                                               {.id = id, .direction = ObjectDataBase::receive});
                  project.setting("changedindication_cnt", "1");
              })},
             {"boot loader", "4", false, true, bootLoader}});
    }

    void protocols()
    {
        QFETCH(QString, lineType);
        QFETCH(bool, hasJ1939);
        QFETCH(bool, multiProtocol);
        QFETCH(Build, build);
        TestProject project(true);
        project.setting("line0type", lineType);
        project.setting("udsserver_version", "4");
        if (lineType == "5")
            project.addDevice(0);
        build(project);
        GeneratedHeaders files(project);
        GenDefineGenerator generator;
        generator.setProtocols(hasJ1939, multiProtocol);
        compareWithGolden(files.run(generator));
    }

    void cobCounts_data()
    {
        testRows<Build, int>(
            {"build", "more"},
            {{"device", Build(), 0},
             {"SYNC, TIME, EMCY", Build([](TestProject &project) {
                  for (const quint16 index : {0x1005, 0x1012, 0x1014})
                      value(project, index, "0");
              }),
              3},
             {"SDO client", Build([](TestProject &p) { array(p, 0x1280, 3); }), 2},
             {"SRDO and GFC", Build([](TestProject &project) {
                  array(project, 0x1301, 6);
                  value(project, 0x1300, "1");
              }),
              3},
             {"PDOs", Build([](TestProject &project) {
                  project.pdo(0, 0x1400, {});
                  project.pdo(0, 0x1800, {});
              }),
              2},
             {"heartbeat consumers", Build([](TestProject &p) { array(p, 0x1016, 5); }), 5},
             {"heartbeat consumers on one message", Build([](TestProject &project) {
                  array(project, 0x1016, 5);
                  project.setting("only_one_hb_buffer", "1");
              }),
              1},
             {"LSS", setting("lss_supported", "1"), 2},
             {"of the user", Build([](TestProject &project) {
                  project.settings("user_tx_cob=1; user_rx_cob=2; additional_cob_count=4");
              }),
              7},
             {"no number", setting("additional_cob_count", "many"), 0}});
    }

    /// NMT, error control and the two messages of the SDO server stand for each device.
    void cobCounts()
    {
        QFETCH(Build, build);
        QFETCH(int, more);
        TestProject project(true);
        project.addDevice(0);
        if (build)
            build(project);
        const DefineFacts facts = DefineFacts::collect(project.store(), true);
        QCOMPARE(facts.lines.size(), 1);
        QCOMPARE(int(facts.lines.front().cobs), 4 + more);
    }

    void targets()
    {
        TestProject project(true);
        project.addDevice(0);
        for (const auto &[key, text] : std::initializer_list<std::pair<const char *, const char *>>{
                 {"co_timer_interval", "1000"},
                 {"endian", "1"},
                 {"hw_defines", "#define HW 1\\"},
                 {"targetsettings_cnt", "2"},
                 {"targetsettings_1_name", "second */ one"},
                 {"targetsettings_1_targetid", "my board"},
                 {"targetsettings_1_timer", "500"},
                 {"targetsettings_1_fullcan", "1"}})
            project.setting(key, text);
        GeneratedHeaders files(project);
        const auto hardware = [&] {
            GenDefineGenerator generator;
            const QString text = files.run(generator);
            const qsizetype from = text.indexOf("/* Hardware settings */\n");
            return text.mid(from, text.indexOf("/* do not modify") - from);
        };
        const QString first = "#define CORE_TIMER_INTERVAL\t1000u\n#define CORE_BIG_ENDIAN\t1u\n"
                              "\n/* target-specific defines */\n#define HW 1\\\n\n";
        const QString second = "#define CORE_TIMER_INTERVAL\t500u\n#define CORE_DRV_FILTER\t1u\n";
        QCOMPARE(hardware(), "/* Hardware settings */\n" + first + "\n\n");
        project.settings("targetsettings_active=1; endian=; hw_defines=");
        QCOMPARE(hardware(), "/* Hardware settings */\n" + second + "\n\n");

        project.settings("all_targets=1; targetsettings_0_timer=2000");
        QCOMPARE(hardware(), "/* Hardware settings */\n#ifdef TARGET_0\n/* Target 1 */\n"
                             "#define CORE_TIMER_INTERVAL\t2000u\n#endif /* Target 1*/ \n\n"
                             "#ifdef my_board\n/* second * / one */\n" +
                                 second + "#endif /* second * / one*/ \n\n\n\n");
    }

    void energyBus()
    {
        TestProject project(true);
        project.addDevice(0);
        for (const auto &[key, text] : std::initializer_list<std::pair<const char *, const char *>>{
                 {"device_cnt", "3"},
                 {"device_1", "ebc"},
                 {"device_2", "Battery"},
                 {"device_3", "mcu"},
                 {"device_4", "hmi"}, // left over from a time with more devices
                 {"sec_3_kind", "security"},
                 {"int_offset_bat", "2"},
                 {"ebc_max_dev_number", "9"},
                 {"ebc_max_bat_number", "4"},
                 {"ext_start_pos_bat", "5"},
                 {"ebc_tool_supported", "1"}})
            project.store().setEnergyBusSetting(key, text);
        GeneratedHeaders files(project);
        const auto section = [&] {
            GenDefineGenerator generator;
            const QString text = files.run(generator);
            const qsizetype from = text.indexOf("/* EnergyBus Defines */\n");
            return from < 0 ? QString() : text.mid(from, text.indexOf("\n\n", from) - from);
        };
        QCOMPARE(section(), QString());
        const QString edition = QCoreApplication::applicationName();
        QCoreApplication::setApplicationName("EnergyBus Marlwright");
        const QString text = section();
        QCoreApplication::setApplicationName(edition);
        const Defines wanted = {{"EB_VIRTUAL_DEV_CNT", "4u"},
                                {"EB_EBC_CNT", "1u"},
                                {"EB_SECURITY_CNT", "1u"},
                                {"EB_LOCAL_SECURITY_SUBIDX_OFFS", "0u"},
                                {"EB_BATTERY_CNT", "1u"},
                                {"EB_LOCAL_BATTERY_SUBIDX_OFFS", "2u"},
                                {"EB_MCU_CNT", "1u"},
                                {"EB_LOCAL_MCU_SUBIDX_OFFS", "0u"},
                                {"EB_NETWORK_VIRTUAL_DEV_CNT", "9u"},
                                {"EB_NETWORK_BATTERY_CNT", "4u"},
                                {"EB_NETWORK_BATTERY_SUBIDX_OFFS", "5u"},
                                {"EB_NETWORK_PC_TOOL_CNT", "1u"}};
        QCOMPARE(GeneratedHeaders::defines(text), wanted);
    }
};

QTEST_GUILESS_MAIN(TestGenDefine)
#include "tst_gendefine.moc"
