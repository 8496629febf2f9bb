#include "generation/generatormainhandler.h"
#include "generators/base/outputhandlerbase.h"
#include "store/objectdatabase.h"
#include "tests/support/filesizelimit.h"
#include "tests/support/rows.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using Store = std::shared_ptr<ObjectDataBase>;

namespace {

/// Keeps the messages; what came through the html way is marked.
class Recorder : public OutputHandlerBase
{
public:
    void outputMessage(const QVariant &text) override
    {
        messages.append(text.toString());
        if (onMessage)
            onMessage(messages.constLast());
    }
    void outputHtml(const QVariant &html) override
    {
        messages.append(QLatin1String("html:") + html.toString());
    }
    QString loggingText() const override { return messages.join(QLatin1Char('\n')); }

    /// Messages of the driver, without those of the checks.
    QStringList ofDriver() const
    {
        const QStringList starts = {"\nCheck",  "Generation",        "The ",  "ABORT",
                                    "Warning:", "Warning line type", "html:", "<b>ERROR"};
        QStringList result;
        for (const QString &message : messages) {
            for (const QString &start : starts) {
                if (message.startsWith(start))
                    result.append(message);
            }
        }
        return result;
    }

    QStringList messages;
    std::function<void(const QString &)> onMessage;
};

ObjectDataBase::SUBINDEX_DATA_T value(quint16 type, const char *text, const char *access = "ro")
{
    ObjectDataBase::SUBINDEX_DATA_T data;
    data.name = "value";
    data.datatype = type;
    data.accesstype = QLatin1String(access);
    data.defaultvalue = QLatin1String(text);
    data.implementation = CANopen::ManagedConst;
    data.defaultineds = true;
    data.writedefaulttoeds = 2;
    return data;
}

void addVariable(ObjectDataBase &store, quint8 line, quint16 index, const char *text,
                 const ObjectDataBase::MetaData &metadata = {})
{
    ObjectDataBase::INDEX_DATA_T object;
    object.name = "object";
    object.metadata = metadata;
    store.addIndex(line, index, object);
    store.addSubIndex(line, index, 0, value(CAN::UNSIGNED32, text));
}

/// A line that passes the check.
void addCanopenLine(ObjectDataBase &store, quint8 line)
{
    store.addNode(line, {});
    store.setGeneralSetting(QStringLiteral("line%1type").arg(line), "1");
    store.setGeneralSettingForLine("co_node_id", "32", line);
    store.setGeneralSettingForLine("receivebuffersize", "10", line);
    store.setGeneralSettingForLine("transmitbuffersize", "10", line);
    addVariable(store, line, 0x1000, "0x191");
    addVariable(store, line, 0x1017, "1000");
    ObjectDataBase::INDEX_DATA_T object;
    object.name = "error register";
    store.addIndex(line, 0x1001, object);
    store.addSubIndex(line, 0x1001, 0, value(CAN::UNSIGNED8, "0"));
    object.name = "identity";
    object.objecttype = CANopen::RECORD;
    store.addIndex(line, 0x1018, object);
    store.addSubIndex(line, 0x1018, 0, value(CAN::UNSIGNED8, "4", "const"));
    for (quint8 sub = 1; sub <= 4; ++sub)
        store.addSubIndex(line, 0x1018, sub, value(CAN::UNSIGNED32, "0x1234"));
}

/// An array whose sub 0 the check sets to 2.
void addArrayToCorrect(ObjectDataBase &store)
{
    ObjectDataBase::INDEX_DATA_T object;
    object.name = "array";
    object.objecttype = CANopen::ARRAY;
    store.addIndex(0, 0x1F50, object);
    store.addSubIndex(0, 0x1F50, 0, value(CAN::UNSIGNED8, "1"));
    store.addSubIndex(0, 0x1F50, 1, value(CAN::UNSIGNED32, "1"));
    store.addSubIndex(0, 0x1F50, 2, value(CAN::UNSIGNED32, "2"));
}

void addError(ObjectDataBase &store)
{
    addVariable(store, 0, 0x2000, "no number");
}

} // namespace

class TestGeneratorMainHandler : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCoreApplication::setOrganizationName("tolvex");
        QCoreApplication::setApplicationName("CANopen Quillforge");
        qRegisterMetaType<GeneratorMainHandler::GeneratorResult>();
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_store = std::make_shared<ObjectDataBase>();
        QVERIFY(m_store->createNewDataBase());
        m_store->setGeneralSetting("co_timer_interval", "1000");
        addCanopenLine(*m_store, 0);
        m_output = std::make_unique<Recorder>();
        m_handler = std::make_unique<GeneratorMainHandler>(*m_output);
        m_handler->setProject(m_store, m_folder->path(), "device");
    }

    void messagesInOrder()
    {
        QCOMPARE(generate(), 0);
        const QString folder = m_folder->path();
        const QStringList expected = {
            "\nCheck of model consistency started",
            "\nCheck of model consistency finished.\n",
            QStringLiteral("Generation of gen_indices.h in %1 started").arg(folder),
            "Generation of gen_indices.h generator completed. ",
            QStringLiteral("Generation of textual object dictionary documentation in %1 started")
                .arg(folder),
            "Generation of Text documentation completed. ",
            QStringLiteral("Generation of HTML object dictionary documentation in %1 started")
                .arg(folder),
            "Generation of HTML documentation completed. ",
            QStringLiteral("Generation of gen_objdict.c in %1 started").arg(folder),
            "Generation of gen_objdict.c completed. ",
            QStringLiteral("Generation of gen_define.h in %1 started").arg(folder),
            "Generation of gen_define.h completed. ",
            QStringLiteral("Generation of gen_indication in %1 started").arg(folder),
            "Generation of gen_indication.h completed. ",
            QStringLiteral("Generation of CSV file (deprecated) in %1 started").arg(folder),
            "Generation of CSV documentation completed. ",
            QStringLiteral("Generation of ICSV file in %1 started").arg(folder),
            "Generation of ICSV documentation completed. ",
            QStringLiteral("Generation of device EDS file in %1 started").arg(folder),
            "Generation of EDS file completed. ",
            "Generation finished.",
            "Generation completed."};
        QCOMPARE(m_output->ofDriver(), expected);
        QCOMPARE(files(),
                 QStringList({"__vxmerrorlog.txt.bak", "device.csv", "device.eds", "device.html",
                              "device.icsv", "device_doc.txt", "gen_define.h", "gen_indication.h",
                              "gen_indices.h", "gen_objdict.c"}));
        QVERIFY(read("device.eds").contains("[1018sub4]"));
        QVERIFY(!m_store->isGenerating());
        QVERIFY(m_store->setGeneralSetting("later", "1"));
    }

    void outputsByProtocol_data()
    {
        using Settings = QMap<QString, QString>;
        const QStringList documents = {"device.csv", "device.eds", "device.html", "device.icsv",
                                       "device_doc.txt"};
        testRows<QString, QMap<QString, QString>, QStringList, QStringList>(
            {"type", "settings", "expected", "missing"},
            {{"CANopen",
              "1",
              Settings(),
              documents +
                  QStringList{"gen_define.h", "gen_indication.h", "gen_indices.h", "gen_objdict.c"},
              {}},
             {"CANopen, C++",
              "1",
              Settings{{"generate_cpp_output", "1"}},
              documents + QStringList{"gen_define.h", "gen_indication.h", "gen_indices.h",
                                      "gen_objdict.c", "gen_objdict.cpp"},
              {}},
             {"mixed: names say so, no dictionary of its own",
              "5",
              Settings(),
              {"device.csv", "device.eds", "device.icsv", "device_co.html", "device_co_doc.txt",
               "gen_define.h", "gen_extern_decl.h", "gen_indication.h", "gen_indices.h"},
              {"gen_mp.c", "J1939 documents (text, HTML)", "DBC file"}},
             {"J1939",
              "2",
              Settings(),
              QStringList({"gen_define.h", "gen_extern_decl.h", "gen_indices.h"}),
              {"J1939 documents (text, HTML)", "DBC file", "gen_pgn.c"}},
             {"J1939 with an SDO server",
              "2",
              Settings{{"j1939:cia510serversupport", "1"}},
              {"device.eds", "gen_define.h", "gen_extern_decl.h", "gen_indices.h", "gen_objdict.c"},
              {"J1939 documents (text, HTML)", "DBC file", "gen_pgn.c"}},
             {"raw CAN",
              "4",
              Settings(),
              QStringList({"gen_define.h", "gen_extern_decl.h", "gen_indices.h"}),
              {"gen_rawcan.c", "raw CAN documents (text, HTML)", "DBC file"}},
             {"J1939 and raw CAN, safety data",
              "7",
              Settings{{"j1939:safetysupport", "1"}},
              {"gen_define.h", "gen_extern_decl.h", "gen_indices.h"},
              {"gen_mp.c", "J1939 documents (text, HTML)", "raw CAN documents (text, HTML)",
               "DBC file", "gen_sdg.c"}},
             {"boot loader",
              "4",
              Settings{{"uds_bl_setting", "1"}, {"use_core_headers", "V4"}},
              {"gen_define.h"},
              {"gen_uds.c", "raw CAN documents (text, HTML)", "DBC file"}},
             {"UDS callbacks without CANopen",
              "4",
              Settings{{"uds_static_indication", "1"}},
              QStringList(
                  {"gen_define.h", "gen_extern_decl.h", "gen_indication.h", "gen_indices.h"}),
              {"gen_rawcan.c", "raw CAN documents (text, HTML)", "DBC file"}},
             {"no type", "3", Settings(), {"gen_define.h"}, {}}});
    }

    void outputsByProtocol()
    {
        QFETCH(QString, type);
        using Settings = QMap<QString, QString>;
        QFETCH(Settings, settings);
        m_store->setGeneralSetting("line0type", type);
        for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting) {
            if (setting.key().startsWith("j1939:"))
                m_store->setJ1939Setting(setting.key().mid(6), setting.value());
            else
                m_store->setGeneralSetting(setting.key(), setting.value());
        }
        QCOMPARE(generate(true), 0);
        QStringList made = files();
        made.removeIf([](const QString &name) {
            return name.startsWith("__") || name.startsWith("gen_var_decl");
        });
        QTEST(made, "expected");
        QStringList missing;
        for (const OutputFault &fault : m_handler->outputFaults()) {
            QCOMPARE(fault.kind, OutputFault::Failed);
            missing.append(fault.text.section(" failed. This version can't make it yet.", 0, 0));
        }
        missing.replaceInStrings("Generation of ", QString());
        QTEST(missing, "missing");
    }

    void stackGenerations()
    {
        for (const bool isV4 : {false, true}) {
            m_store->setGeneralSetting("use_core_headers",
                                       isV4 ? QStringLiteral("V4") : QStringLiteral("v4"));
            QCOMPARE(generate(), 0);
            QCOMPARE(read("gen_objdict.c").contains("(V4)"), isV4);
            QCOMPARE(read("gen_define.h").contains("(v4)"), isV4);
            QCOMPARE(read("gen_indication.h").contains("(V4)"), isV4);
        }
    }

    void userSectionIsReported()
    {
        QCOMPARE(generate(), 0);
        QVERIFY(m_output->messages.filter("user section").isEmpty());
        QByteArray header = read("gen_define.h");
        header.replace("/* user-specific section: start */\n",
                       "/* user-specific section: start */\n\n#define MINE 1\n\n");
        write("gen_define.h", header);
        QCOMPARE(generate(), 0);
        QVERIFY(m_output->messages.contains("gen_define.h contains user section:\n#define MINE 1"));
        QVERIFY(read("gen_define.h").contains("\n#define MINE 1\n"));
    }

    void virtualObjects()
    {
        write("gen_vobjdict.c", "of a former project");
        QCOMPARE(generate(), 0);
        QVERIFY(!files().contains("gen_vobjdict.c"));
        QVERIFY(m_output->messages.filter("gen_vobjdict.c").isEmpty());
        m_handler->setVirtualObjects(true);
        QCOMPARE(generate(), 0);
        QVERIFY(files().contains("gen_vobjdict.c"));
        QVERIFY(m_output->messages.contains(
            QStringLiteral("Generation of gen_vobjdict.c in %1 started").arg(m_folder->path())));
    }

    void props()
    {
        m_store->setGeneralSetting("gen_csharp_props", "1");
        QCOMPARE(generate(), 0);
        const QString folder = m_folder->path();
        QVERIFY(m_output->messages.contains(
            QStringLiteral(
                "Generation of gen_define.props and Directory.Build.props in %1 finished")
                .arg(folder)));
        QVERIFY(read("gen_define.props").contains("DefineConstants"));
        QVERIFY(QFile::remove(path("Directory.Build.props")));
        QVERIFY(QDir(folder).mkdir("Directory.Build.props"));
        QCOMPARE(generate(), 0);
        QVERIFY(m_output->messages.contains(
            QStringLiteral(
                "The files gen_define.props and Directory.Build.props in %1 are not writable")
                .arg(folder)));
    }

    void edsVariantsWithFd()
    {
        m_store->setGeneralSetting("canfd_supported", "1");
        addVariable(*m_store, 0, 0x2001, "1", {{"eds_define", "big"}});
        QCOMPARE(generate(true), 0);
        const QString folder = m_folder->path();
        const QStringList expected = {
            QStringLiteral("Generation of device EDS file in %1 started").arg(folder),
            "Generation of EDS file completed. ",
            QStringLiteral("Generation of device_classical classical EDS file in %1 started")
                .arg(folder),
            "Generation of EDS file completed. ",
            QStringLiteral("Generation of device_big EDS file in %1 started").arg(folder),
            "Generation of EDS file completed. ",
            QStringLiteral("Generation of device_big classical EDS file in %1 started").arg(folder),
            "Generation of EDS file completed. ",
            "Warning: multiple different EDS files to be generated.\n"};
        const QStringList messages = m_output->ofDriver();
        QCOMPARE(messages.mid(messages.indexOf(expected.constFirst()), expected.size()), expected);
        QVERIFY(files().contains("device_classical.eds") && files().contains("device_big.eds"));
        QVERIFY(read("device_big.eds").contains("[2001]"));
        QVERIFY(!read("device.eds").contains("[2001]"));
    }

    void headingsOfLines()
    {
        addCanopenLine(*m_store, 1);
        QCOMPARE(generate(true), 0);
        const QString rule(40, QLatin1Char('_'));
        const auto heading = [&](int line) {
            return QStringLiteral("html:<strong>%1 Checking line %2 %1</strong>")
                .arg(rule)
                .arg(line);
        };
        const QStringList messages = m_output->ofDriver();
        QCOMPARE(messages.mid(1, 4), QStringList({"html:", heading(0), "html:", heading(1)}));
        QVERIFY(files().contains("device_0.eds") && files().contains("device_1.eds"));
        QVERIFY(!files().contains("device.eds"));
    }

    void linesWithoutType()
    {
        for (const char *type : {"0", "3", "x", ""}) {
            m_output->messages.clear();
            m_store->setGeneralSetting("line0type", QLatin1String(type));
            QCOMPARE(generate(), 0);
            QVERIFY(m_output->messages.contains("Warning line type not set for line 0."));
            QVERIFY(!files().contains("device.eds"));
        }
    }

    void withoutLines()
    {
        m_store->deleteNode(0);
        // What a deleted line has left counts no more.
        m_store->setGeneralSetting("line0type", "1");
        QCOMPARE(generate(), 0);
        QVERIFY(!files().contains("device.eds"));
        QVERIFY(!files().contains("__vxmerrorlog.txt"));
        QVERIFY(files().contains("__vxmerrorlog.txt.bak"));
        QVERIFY(m_output->messages.contains("Generation finished."));
    }

    void checkErrors_data() { testRows<bool>({"ignore"}, {{"stop", false}, {"go on", true}}); }

    void checkErrors()
    {
        QFETCH(bool, ignore);
        addError(*m_store);
        QCOMPARE(generate(ignore), ignore ? 0 : 2);
        QVERIFY(m_output->loggingText().contains("Error: "));
        QCOMPARE(files().contains("device.eds"), ignore);
        QCOMPARE(files().contains("__vxmerrorlog.txt"), !ignore);
        QCOMPARE(files().contains("__vxmerrorlog.txt.bak"), ignore);
        if (ignore)
            return;
        // One value that can't be read counts twice.
        QCOMPARE(m_output->messages.constLast(),
                 "ABORT - Check of model consistency finished: failed (2 errors)");
        m_output->messages.removeLast();
        QCOMPARE(QString::fromUtf8(read("__vxmerrorlog.txt")), m_output->loggingText());
    }

    void errorLogKeepsItsFirstBackup()
    {
        write("__vxmerrorlog.txt.bak", "first");
        write("__vxmerrorlog.txt", "of a run that stopped");
        QCOMPARE(generate(), 0);
        QCOMPARE(read("__vxmerrorlog.txt.bak"), QByteArray("first"));
        QVERIFY(!files().contains("__vxmerrorlog.txt"));
    }

    void correctionsReachTheOutput()
    {
        addArrayToCorrect(*m_store);
        QSignalSpy corrected(m_handler.get(), &GeneratorMainHandler::doneCorrection);
        QCOMPARE(generate(true), 0);
        QCOMPARE(corrected.size(), 1);
        const QByteArray eds = read("device.eds");
        const qsizetype start = eds.indexOf("[1f50sub0]");
        QVERIFY(eds.mid(start, eds.indexOf("[1f50sub1]") - start).contains("DefaultValue=2\n"));
        QCOMPARE(generate(true), 0);
        QCOMPARE(corrected.size(), 1);
    }

    void unwritableFolder_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : {"missing", "file", "locked", ""})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void unwritableFolder()
    {
        QFETCH(QString, name);
        write("file", "x");
        QVERIFY(QDir(m_folder->path()).mkdir("locked"));
        QVERIFY(QFile::setPermissions(path("locked"), QFile::ReadOwner | QFile::ExeOwner));
        // A project that was never saved has none.
        const QString folder = name.isEmpty() ? QString() : m_folder->filePath(name);
        m_handler->setProject(m_store, folder, "device");
        QCOMPARE(generate(), 3);
        QCOMPARE(m_output->messages.constLast(),
                 QStringLiteral("ABORT - The output folder %1 is not writeable.").arg(folder));
        QVERIFY(!QFile::exists(folder + "/device.eds"));
    }

    void unwritableFile()
    {
        write("device.eds", "mine");
        QVERIFY(QFile::setPermissions(path("device.eds"), QFile::ReadOwner));
        QCOMPARE(generate(), 0);
        QCOMPARE(read("device.eds"), QByteArray("mine"));
        QVERIFY(m_output->messages.contains(
            QStringLiteral("The EDS file device.eds in %1 is not writable").arg(m_folder->path())));
        QVERIFY(!m_output->messages.contains("Generation of EDS file completed. "));
        QCOMPARE(m_output->messages.constLast(), "Generation completed.");
    }

    void fullDisk_data()
    {
        QTest::addColumn<unsigned>("size");
        for (const unsigned size : {0u, 1024u, 3000u, 8192u})
            QTest::addRow("%u bytes", size) << size;
    }

    /// What is there is whole, and what is missing is told.
    void fullDisk()
    {
        if (!FileSizeLimit::isSupported())
            QSKIP("This system has no limit on file sizes.");
        QFETCH(unsigned, size);
        qputenv("SOURCE_DATE_EPOCH", "0");
        QCOMPARE(generate(), 0);
        QMap<QString, QByteArray> whole;
        const QStringList names = files();
        for (const QString &name : names) {
            whole.insert(name, read(qPrintable(name)));
            QVERIFY(QFile::remove(m_folder->filePath(name)));
        }
        m_output->messages.clear();
        std::unique_ptr<FileSizeLimit> limit;
        m_output->onMessage = [&](const QString &message) {
            if (message.contains("finished.\n"))
                limit = std::make_unique<FileSizeLimit>(size);
            if (message == "Generation finished.")
                limit.reset();
        };
        const int result = generate();
        qunsetenv("SOURCE_DATE_EPOCH");
        QCOMPARE(result, 0);
        const QStringList made = files();
        for (const QString &name : made)
            QVERIFY2(read(qPrintable(name)) == whole.value(name), qPrintable(name));
        const auto told = [this](const char *text) {
            return m_output->messages.filter(QLatin1String(text)).size();
        };
        QCOMPARE(told("<b>ERROR - Generation of "), names.size() - made.size());
        QCOMPARE(told(" completed. "), names.size() - 1 - told("<b>ERROR - Generation of "));
        QVERIFY(size > 1024 || told("<b>ERROR - Generation of EDS file failed. ") == 1);
    }

    void stopRequest()
    {
        for (int i = 0; i < 3000; ++i)
            addVariable(*m_store, 0, static_cast<quint16>(0x2000 + i), "1");
        // Comes with the message that the generator has been started.
        m_output->onMessage = [this](const QString &message) {
            if (message.contains("EDS file in"))
                m_handler->requestStop();
        };
        QCOMPARE(generate(true), 0);
        const QByteArray eds = read("device.eds");
        QVERIFY(eds.contains("SupportedObjects=3000\n"));
        QVERIFY(!eds.contains("[2bb7]"));
        QCOMPARE(m_output->messages.constLast(), "Generation completed.");
    }

    void addressClaimIsRemoved()
    {
        const auto add = [this](quint8 direction) {
            ObjectDataBase::PGN pgn;
            pgn.name = "address claim";
            pgn.number = 60928;
            pgn.direction = direction;
            QVERIFY(m_store->addPGN(0, 60928, pgn));
        };
        add(ObjectDataBase::transmit);
        add(ObjectDataBase::receive);
        QCOMPARE(generate(), 0);
        QVERIFY(m_store->pgnExists(0, 60928, ObjectDataBase::transmit));
        m_store->setGeneralSetting("line0type", "5");
        generate(true);
        QVERIFY(!m_store->pgnExists(0, 60928, ObjectDataBase::transmit));
        QVERIFY(m_store->pgnExists(0, 60928, ObjectDataBase::receive));
    }

    void cppCopies()
    {
        write("gen_user.h", "RET_T userCall(void);\n/* RET_T */\n");
        QCOMPARE(generate(), 0);
        QVERIFY(!files().contains("gen_user.hpp"));
        m_store->setGeneralSetting("generate_cpp_output", "1");
        write("gen_user.h", "RET_T userCall(void);\n/* RET_T */\n");
        QCOMPARE(generate(), 0);
        QCOMPARE(read("gen_user.hpp"),
                 QByteArray("extern \"C\" RET_T userCall(void);\n/* extern \"C\" RET_T */\n"));
        QCOMPARE(read("gen_objdict.cpp"), read("gen_objdict.c"));
    }

    void staleJ1939Files()
    {
        m_store->setGeneralSetting("line0type", "2");
        const auto fill = [this] {
            for (const char *name : {"gen_j1939_adapter.c", "j1939_adapter.cs", "gen_indication.h"})
                write(name, "old");
        };
        fill();
        m_store->setJ1939Setting("j1939adapter", "1");
        QCOMPARE(generate(true), 0);
        QVERIFY(files().contains("gen_j1939_adapter.c") && !files().contains("gen_indication.h"));
        fill();
        m_store->setJ1939Setting("j1939adapter", "0");
        QCOMPARE(generate(true), 0);
        QVERIFY(!files().contains("gen_j1939_adapter.c") && !files().contains("j1939_adapter.cs"));
    }

    void openProject()
    {
        m_store->setGeneralSetting("use_core_headers", "V3");
        QVERIFY(m_store->saveDatabaseAsSql(path("my.device.vxmp")));
        QVERIFY(m_store->saveDatabaseAsText(path("text.VXMT")));
        const QByteArray before = read("my.device.vxmp");
        for (const char *name : {"my.device.vxmp", "text.VXMT"}) {
            GeneratorMainHandler handler(*m_output);
            QVERIFY(handler.store() && handler.store()->lineExists(0));
            QVERIFY2(handler.openProject(QDir().relativeFilePath(path(name))), name);
            QCOMPARE(handler.openErrorText(), QString());
            QCOMPARE(handler.outputFolder(), QFileInfo(path(name)).absolutePath());
            QCOMPARE(handler.projectName(), QFileInfo(path(name)).completeBaseName());
            QCOMPARE(handler.store()->getGeneralSetting("use_core_headers"), "V4");
            QCOMPARE(handler.store()->getGeneralSetting("new_init_structure"), "1");
            QCOMPARE(handler.generate(false), GeneratorMainHandler::Completed);
        }
        QVERIFY(files().contains("my.device.eds") && files().contains("text.eds"));
        QCOMPARE(read("my.device.vxmp"), before);
    }

    void openProjectFails_data()
    {
        testRows<QString, bool>({"name", "opens"},
                                {{"missing", "missing.vxmp", false},
                                 {"no database", "broken.vxmp", false},
                                 {"a template always opens", "folder.vxmt", true}});
    }

    void openProjectFails()
    {
        QFETCH(QString, name);
        write("broken.vxmp", QByteArray("nothing of a database").repeated(500));
        QVERIFY(QDir(m_folder->path()).mkdir("folder.vxmt"));
        GeneratorMainHandler handler(*m_output);
        QTEST(handler.openProject(m_folder->filePath(name)), "opens");
        QVERIFY(!handler.openErrorText().isEmpty());
    }

private:
    QString path(const char *name) const { return m_folder->filePath(QLatin1String(name)); }

    void write(const char *name, const QByteArray &text) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    QByteArray read(const char *name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }

    int generate(bool ignoreErrors = false)
    {
        QSignalSpy finished(m_handler.get(), &GeneratorMainHandler::finished);
        const int result = m_handler->generate(ignoreErrors);
        if (finished.size() != 1 || finished.constFirst().constFirst().toInt() != result)
            return -1;
        return result;
    }

    QStringList files() const { return QDir(m_folder->path()).entryList(QDir::Files); }

    std::unique_ptr<QTemporaryDir> m_folder;
    Store m_store;
    std::unique_ptr<Recorder> m_output;
    std::unique_ptr<GeneratorMainHandler> m_handler;
};

QTEST_GUILESS_MAIN(TestGeneratorMainHandler)
#include "tst_generatormainhandler.moc"
