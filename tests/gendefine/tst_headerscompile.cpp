#include "tests/gendefine/generatedheaders.h"

#include "generators/base/indicationtable.h"
#include "generators/canopen/objdictgeneratorv4.h"
#include "generators/define/gendefinegenerator.h"
#include "generators/headers/extdeclgeneratorv4.h"
#include "generators/headers/indicationgeneratorv4.h"

#include <QProcess>
#include <QTest>

#include <memory>

namespace {

/// Generates the whole folder and runs compilers over it.
class Sources
{
public:
    Sources(TestProject &project, bool isV4) : m_project(project), m_isV4(isV4), m_files(project) {}

    void generate()
    {
        run<ObjDictGeneratorV4, ObjDictGenerator>(false);
        run<GenDefineGenerator, CoDefineGenerator>();
        QCOMPARE(m_files.errorText(), QString());
        run<indicationgeneratorv4, indicationgenerator>();
        QCOMPARE(m_files.errorText(), QString());
    }

    template <typename V4, typename V3, typename... Arguments>
    std::unique_ptr<V3> make(Arguments... arguments)
    {
        if (m_isV4)
            return std::make_unique<V4>(arguments...);
        return std::make_unique<V3>(arguments...);
    }
    template <typename V4, typename V3, typename... Arguments>
    void run(Arguments... arguments)
    {
        m_files.run(*make<V4, V3>(arguments...));
    }
    [[nodiscard]] GeneratedHeaders &files() { return m_files; }

    /// What the compiler says about one file; empty if it is content.
    QString check(const QString &compiler, const QString &file, const QStringList &options = {})
    {
        const QString stub = QLatin1String(QUILLFORGE_SOURCE_DIR "/tests/stackstub");
        QStringList arguments = {"-std=c99", "-Wall", "-Wextra", "-Werror", "-fsyntax-only",
                                 // 24 bit signed tables have no place in the structure of tables
                                 "-Wno-unused-variable", "-Wno-unused-const-variable", "-I",
                                 m_files.folder(), "-I", stub + (m_isV4 ? "/v4" : "/v3")};
        const QMap<QString, QString> defines =
            GeneratedHeaders::defines(m_files.read("gen_define.h"));
        if (defines.contains(m_isV4 ? "CAN_MULTI_LINE" : "CO_MULTI_LINE"))
            arguments << "-DSTACKSTUB_MULTI_LINE";
        const QString dictionary = m_files.read("gen_objdict.c");
        const std::pair<const char *, const char *> switches[] = {
            {"gen_user.h", "-DSTACKSTUB_USER"},
            {"userOverwriteCobIdSettings", "-DSTACKSTUB_OVERWRITE"}};
        for (const auto &[text, option] : switches) {
            if (dictionary.contains(text))
                arguments << option;
        }
        QProcess process;
        process.start(compiler, arguments + options + QStringList{m_files.path(file)});
        if (!process.waitForFinished())
            return compiler + " does not run";
        return process.exitCode() == 0
                   ? QString()
                   : file + ": " + QString::fromUtf8(process.readAllStandardError());
    }

private:
    TestProject &m_project;
    bool m_isV4;
    GeneratedHeaders m_files;
};

} // namespace

/// Whatever was typed, the headers compile.
class TestHeadersCompile : public QObject
{
    Q_OBJECT

private slots:
    void allIndications_data()
    {
        QTest::addColumn<bool>("isV4");
        QTest::addColumn<bool>("hasLines");
        for (const bool isV4 : {false, true}) {
            for (const bool hasLines : {false, true})
                QTest::addRow("%s, %s", isV4 ? "V4" : "V3", hasLines ? "lines" : "one line")
                    << isV4 << hasLines;
        }
    }

    /// Each prototype fits the pointer that the dictionary makes of the function.
    void allIndications()
    {
        QFETCH(bool, isV4);
        QFETCH(bool, hasLines);
        TestProject project(isV4);
        project.addDevice(0);
        if (hasLines) {
            project.addLine(1);
            project.addDevice(1);
        }
        project.setting("applicationheader", QString());
        project.settings("usdo_server_enabled=1; usdo_client_enabled=1");
        int bound = 0;
        for (const auto &prototype : IndicationTable::prototypes()) {
            const QString key = QLatin1String(prototype.key);
            project.setting(prototype.key, key + "_function");
            project.setting(qPrintable("note_" + key), "ends */ early\n*/ and \\\nsplices \\");
            bound += (isV4 ? prototype.v4 : prototype.v3) != nullptr;
        }
        Sources sources(project, isV4);
        sources.generate();
        QCOMPARE(sources.files().read("gen_indication.h").count("_function("), bound);
        for (const char *compiler : {"gcc", "clang"})
            QCOMPARE(sources.check(compiler, "gen_objdict.c"), QString());
    }

    void hostileSettings_data()
    {
        QTest::addColumn<bool>("isV4");
        QTest::addColumn<QString>("text");
        const QString texts[] = {
            "x */ /* \" \\\n#error broken", "1u\n#error", "\\",   "\?\?/", "// \"",
            "99999999999999999999",         "-1",         "üß\t", "f(",    "int x; "};
        for (const QString &text : texts) {
            for (const bool isV4 : {false, true})
                QTest::addRow("%s, %s", qPrintable(text.simplified()), isV4 ? "V4" : "V3")
                    << isV4 << text;
        }
    }

    /// Whatever stands in a setting that is no C text of the user, the headers are valid C.
    void hostileSettings()
    {
        QFETCH(bool, isV4);
        QFETCH(QString, text);
        TestProject project(isV4);
        project.addDevice(0);
        QStringList keys = {"co_node_id",
                            "co_node_id_fct",
                            "receivebuffersize",
                            "transmitbuffersize",
                            "additional_cob_count",
                            "user_tx_cob",
                            "co_timer_interval",
                            "endian",
                            "target_id",
                            "targetsettings_0_name",
                            "targetsettings_0_targetid",
                            "sleep_wait_time",
                            "max_slave_assignment",
                            "co_network_id",
                            "isotp_client_con",
                            "uds_session_timeout",
                            "co_srdo_interval"};
        for (const auto &row : IndicationTable::staticSwitches())
            keys << row.key;
        for (const auto &row : IndicationTable::dynamicCounts())
            keys << row.key;
        for (const auto &row : IndicationTable::prototypes())
            keys << row.key << QString("note_") + row.key;
        for (const auto &row : IndicationTable::udsBindings())
            keys << row.key;
        for (const QString &key : std::as_const(keys))
            project.setting(qPrintable(key), text);
        for (const char *key : {"uds_static_indication", "isotp_supported", "udsserver_supported",
                                "all_targets", "generate_generation_counter"})
            project.setting(key, "1");
        project.setting("targetsettings_cnt", "2");

        for (const char *bootLoader : {"0", "1"}) {
            project.setting("uds_bl_setting", bootLoader);
            Sources sources(project, isV4);
            sources.run<GenDefineGenerator, CoDefineGenerator>();
            sources.run<indicationgeneratorv4, indicationgenerator>();
            sources.files().write("application.c",
                                  "#include <gen_define.h>\n#include <gen_define.h>\n"
                                  "extern int application;\n");
            sources.files().write("prototypes.c",
                                  "#include <co_canopen.h>\n#include <gen_indication.h>\n");
            QCOMPARE(sources.check("gcc", "application.c"), QString());
            // One function can't have several types, so only one key is bound here.
            for (const auto &row : IndicationTable::prototypes())
                project.setting(row.key, QString(row.key) == "fct_sync" ? text : QString());
            sources.run<indicationgeneratorv4, indicationgenerator>();
            QCOMPARE(sources.check("gcc", "prototypes.c"), QString());
        }
    }

    void declarations_data()
    {
        QTest::addColumn<bool>("isV4");
        QTest::newRow("V3") << false;
        QTest::newRow("V4") << true;
    }

    /// The variables of a project with several protocols: declared and defined once, whatever was
    /// typed as their names.
    void declarations()
    {
        QFETCH(bool, isV4);
        TestProject project(isV4);
        ObjectDataBase &store = project.store();
        project.addLine(1);
        project.settings("line0type=5; line1type=6");
        const std::pair<quint16, const char *> variables[] = {
            {CAN::UNSIGNED16, "speed"},        {CAN::UNSIGNED24, "wide"},
            {CAN::INTEGER8, "table[2]"},       {CAN::INTEGER8, "table[7]"},
            {CAN::REAL32, "device.gain"},      {CAN::UNSIGNED8, "get(1)"},
            {CAN::VISIBLE_STRING, "openText"}, {CAN::BOOLEAN, "*/ p->x"}};
        for (quint8 line = 0; line < 2; ++line) {
            quint16 index = 0x2000;
            for (const auto &[type, name] : variables)
                project.variable(line, index++, name, application(type, "", name));
        }
        // A safety message has a number of addresses of its own.
        store.setJ1939Setting("safetysupport", "1");
        store.setJ1939Setting("sdm_rec_addr_cnt", "4");
        for (const auto &[number, isSafe, name] :
             {std::tuple(0xFECA, 0, "sources"), std::tuple(0xFED0, 1, "safeSources")}) {
            store.addPGN(0, number,
                         {.number = quint32(number),
                          .direction = ObjectDataBase::receive,
                          .isSafe = quint8(isSafe),
                          .multiSourceAddress = 3});
            store.addSPN(0, number, ObjectDataBase::receive, 84,
                         {.dataType = CAN::BITS11,
                          .pgn = quint32(number),
                          .direction = ObjectDataBase::receive,
                          .spn = 84,
                          .varName = name});
        }
        store.addCANID(1, 0x20000123, {.id = 0x20000123, .direction = ObjectDataBase::transmit});
        store.addDataElement(1, 0x20000123, ObjectDataBase::transmit, 1,
                             {.dataType = CAN::BITS29,
                              .canId = 0x20000123,
                              .direction = ObjectDataBase::transmit,
                              .number = 1,
                              .varName = "raw"});

        Sources sources(project, isV4);
        sources.run<GenDefineGenerator, CoDefineGenerator>();
        sources.run<ExtDeclGeneratorV4, ExtDeclGenerator>();
        const QString header = sources.files().read("gen_extern_decl.h");
        for (const char *text :
             {"extern UNSIGNED16 speed;\n", "extern UNSIGNED24 wide;\n",
              "extern INTEGER8 table[8];\n", "extern char openText[];\n",
              "/* PGN 0xfeca */\nextern UNSIGNED16 sources[3];\t/* SPN84 */\n",
              "extern UNSIGNED16 safeSources[4];\t/* SPN84 */\n",
              "/* CAN-ID 1/0x123 ext */\nextern UNSIGNED32 raw;", "\n/* line 1*/\n"})
            QVERIFY2(header.count(text) == 1, text);
        QVERIFY(!header.contains("get"));

        sources.files().write("application.c",
                              "#include <gen_define.h>\n#include <co_canopen.h>\n"
                              "#include <gen_extern_decl.h>\n#include \"gen_var_decl.c\"\n");
        for (const char *compiler : {"gcc", "clang"})
            QCOMPARE(sources.check(compiler, "application.c"), QString());
    }
};

QTEST_GUILESS_MAIN(TestHeadersCompile)
#include "tst_headerscompile.moc"
