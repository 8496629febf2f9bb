#include "cliprogram.h"
#include "tests/support/projectfixture.h"
#include "tests/support/rows.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

/// CiA 301 demands the error register.
void breakProject(ObjectDataBase &store)
{
    store.deleteIndex(0, 0x1001);
}

void makeJ1939(ObjectDataBase &store)
{
    store.setGeneralSetting(u"line0type"_s, u"2"_s);
}

bool isOneError(const QString &errors)
{
    return errors.startsWith(u"quillforge-cli: error: ") && errors.count(u'\n') == 1 &&
           errors.endsWith(u'\n');
}

} // namespace

class TestCli : public QObject
{
    Q_OBJECT

    std::unique_ptr<CliProgram> m_program;

    CliProgram::Run run(const QByteArray &line) const { return m_program->run(words(line)); }
    /// The output of a run without an error.
    QByteArray succeeds(const QByteArray &line) const
    {
        const CliProgram::Run result = run(line);
        return result.exitCode == 0 && result.errors.isEmpty() ? result.output : line + " failed";
    }
    /// The error of a run that fails with nothing else; nothing if it does otherwise.
    QString fails(const QByteArray &line, int exitCode) const
    {
        const CliProgram::Run result = run(line);
        const bool is = result.exitCode == exitCode && result.output.isEmpty();
        return is && isOneError(result.errors) ? result.errors : QString();
    }
    QString path(const char *name) const { return m_program->path(QString::fromUtf8(name)); }
    void makeFolder(const char *name) const { QVERIFY(QDir().mkpath(path(name))); }

private slots:
    void init() { m_program = std::make_unique<CliProgram>(); }

    void linksNoWindow()
    {
        const QString ldd = QStandardPaths::findExecutable(u"ldd"_s);
        if (ldd.isEmpty())
            QSKIP("ldd is not installed");
        QProcess process;
        process.start(ldd, {QStringLiteral(QUILLFORGE_BINARY_DIR "/bin/quillforge-cli")});
        QVERIFY(process.waitForFinished());
        const QByteArray libraries = process.readAllStandardOutput();
        QVERIFY(libraries.contains("libQt6Core"));
        for (const char *name : {"libQt6Gui", "libQt6Widgets", "libX11", "libGL"})
            QVERIFY2(!libraries.contains(name), name);
    }

    void helpIsComplete()
    {
        const std::pair<QByteArray, QList<QByteArray>> commands[] = {
            {"generate", {"-o", "--ignore-errors", "--srdo yes|no"}},
            {"check", {"--format text|json|sarif"}},
            {"info", {"--json"}},
            {"convert", {" IN ", " OUT "}},
            {"help", {"COMMAND"}},
        };
        const QByteArray overview = run("--help").output;
        QCOMPARE(run("help").output, overview);
        QFile page(QStringLiteral(QUILLFORGE_SOURCE_DIR "/docs/cli.md"));
        QVERIFY(page.open(QIODevice::ReadOnly));
        const QByteArray manual = page.readAll();
        for (const auto &[command, options] : commands) {
            QVERIFY2(overview.contains("\n  " + command + ' '), command);
            const QByteArray help = succeeds("help " + command);
            for (const QByteArray &option : options)
                QVERIFY2(help.contains(option), option);
            QCOMPARE(run(command + " --help").output, help);
            QVERIFY2(manual.contains("```\n" + help + "```\n"), command);
            for (const char *code : {"\n  0  ", "\n  1  ", "\n  2  ", "\n  3  ", "\n  4  "})
                QVERIFY(help.contains(code) && overview.contains(code));
        }
        QVERIFY(succeeds("--version").startsWith("quillforge-cli 4."));
    }

    void refusesWrongUsage()
    {
        m_program->saveProject(u"device.vxmp"_s);
        const auto before = m_program->tree();
        const QByteArray lines =
            ";nonsense;--nonsense;--version now;help nonsense;help check info;generate;check;info;"
            "convert device.vxmp;check device.vxmp another.vxmp;info device.vxmp --xml;"
            "info device.vxmp --json=1;check device.vxmp --format;check device.vxmp --format xml;"
            "check device.vxmp --format SARIF;generate device.vxmp -o;"
            "generate device.vxmp --output=;generate device.vxmp --srdo maybe;"
            "generate device.vxmp --ignore-errors --format text;convert device.vxmp device.txt;"
            "convert device.eds device.vxmt;convert device.vxmp copy.vxmp;convert device vxmt";
        for (const QByteArray &line : lines.split(';')) {
            QVERIFY2(!fails(line, 2).isEmpty(), line);
            QVERIFY2(m_program->tree() == before, line);
        }
    }

    void refusesWhatIsNoProject_data()
    {
        addRows<QString, QString>({
            {"missing", "missing.vxmp", "does not exist"},
            {"missing text", "missing.vxmt", "does not exist"},
            {"folder", "folder.vxmp", "is a folder"},
            {"folder text", "folder.vxmt", "is a folder"},
            {"empty", "empty.vxmp", "is not a project"},
            {"empty text", "empty.vxmt", "empty"},
            {"no database", "garbage.vxmp", "a file of another kind"},
            {"no text form", "garbage.vxmt", "line 1"},
            {"foreign database", "foreign.vxmp", "is not a project"},
            {"cut off", "half.vxmp", "damaged"},
            {"other edition", "j1939.vxmp", "another edition"},
        });
    }

    void refusesWhatIsNoProject()
    {
        const auto [name, reason] = row<QString, QString>();
        makeFolder("folder.vxmp");
        makeFolder("folder.vxmt");
        for (const auto &suffix : {u".vxmp"_s, u".vxmt"_s}) {
            m_program->write(u"empty"_s + suffix, {});
            m_program->write(u"garbage"_s + suffix, QByteArray(5000, 'x'));
            m_program->write(u"target"_s + suffix, "kept");
        }
        ProjectFixture::runOn(path("foreign.vxmp"), u"create table customers (name text)"_s);
        m_program->saveProject(u"j1939.vxmp"_s, makeJ1939, u"J1939 Quillforge"_s);
        m_program->saveProject(u"half.vxmp"_s);
        const QByteArray whole = m_program->read(u"half.vxmp"_s);
        m_program->write(u"half.vxmp"_s, whole.left(whole.size() / 2));

        const auto before = m_program->tree();
        const auto target = name.endsWith(u"vxmp") ? " target.vxmt" : " target.vxmp";
        const QByteArray file = name.toLatin1();
        for (const QByteArray &line :
             {"generate " + file + " -o out", "info " + file + " --json",
              "check " + file + " --format sarif", "convert " + file + target}) {
            const QString errors = fails(line, 3);
            QVERIFY2(errors.contains(name) && errors.contains(reason), qPrintable(errors));
        }
        QCOMPARE(m_program->tree(), before);
    }

    void tellsWhatCannotBeWritten_data()
    {
        addRows<QString>({
            {"generate device.vxmp -o file", "file"},
            {"generate device.vxmp -o file/below", "below"},
            {"generate device.vxmp -o readonly", "readonly"},
            {"generate device.vxmp -o occupied", "gen_define.h"},
            {"convert device.vxmp missing/device.vxmt", "missing"},
            {"convert device.vxmp folder.vxmt", "folder.vxmt"},
            {"convert device.vxmp readonly.vxmt", "readonly.vxmt"},
            {"convert device.vxmp readonly/device.vxmt", "readonly"},
            {"convert device.vxmt readonly.vxmp", "readonly.vxmp"},
        });
    }

    void tellsWhatCannotBeWritten()
    {
        const auto [named] = row<QString>();
        for (const char *name : {"readonly", "folder.vxmt", "occupied/gen_define.h"})
            makeFolder(name);
        for (const auto &name : {u"file"_s, u"readonly.vxmp"_s, u"readonly.vxmt"_s})
            m_program->write(name, "kept");
        for (const char *name : {"readonly", "readonly.vxmp", "readonly.vxmt"})
            QFile::setPermissions(path(name), QFile::ReadOwner | QFile::ExeOwner);
        m_program->saveProject(u"device.vxmp"_s);
        m_program->saveProject(u"device.vxmt"_s);

        const auto before = m_program->tree();
        const CliProgram::Run result = run(QTest::currentDataTag());
        const auto after = m_program->tree();
        QFile::setPermissions(path("readonly"),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(result.exitCode, 3);
        QVERIFY2(isOneError(result.errors), qPrintable(result.errors));
        QVERIFY2(result.errors.contains(named), qPrintable(result.errors));
        if (named == u"gen_define.h")
            QVERIFY(after.contains(u"occupied/device.eds"_s)); // the run went on
        else
            QVERIFY(after == before || named == u"readonly");
    }

    void tellsOfFullDisks()
    {
        if (!QFileInfo::exists(u"/dev/full"_s))
            QSKIP("this system has no device that is always full");
        m_program->saveProject(u"device.vxmp"_s);
        makeFolder("out");
        QVERIFY(QFile::link(u"/dev/full"_s, path("out/device.eds")));
        const CliProgram::Run failed = run("generate device.vxmp -o out");
        QCOMPARE(failed.exitCode, 4);
        QVERIFY2(isOneError(failed.errors) && failed.errors.contains(u"device.eds"),
                 qPrintable(failed.errors));

        m_program->standardOutput = u"/dev/full"_s;
        QCOMPARE(run("info device.vxmp").exitCode, 3);
        QCOMPARE(run("--help").exitCode, 3);
    }

    void generatesElsewhere_data()
    {
        addRows<QString>({{"database", "device.vxmp"}, {"text", "device.vxmt"}});
    }

    void generatesElsewhere()
    {
        const auto [name] = row<QString>();
        makeFolder("project");
        const QString project = u"project/"_s + name;
        m_program->saveProject(project);
        const auto before = m_program->tree(u"project"_s);

        const QByteArray output = succeeds("generate -o out/new " + project.toLatin1());
        QVERIFY(output.contains("Generation finished.\n") && !output.contains('<'));
        QCOMPARE(m_program->tree(u"project"_s), before);

        // The same files as beside the project.
        QVERIFY(succeeds("generate " + project.toLatin1()).contains("Generation finished.\n"));
        auto beside = m_program->tree(u"project"_s);
        auto elsewhere = m_program->tree(u"out/new"_s);
        QCOMPARE(beside.take(name), before.value(name));
        QVERIFY(elsewhere.contains(u"device.eds"_s) && elsewhere.contains(u"gen_define.h"_s));
        QCOMPARE(elsewhere, beside);
    }

    void errorsStopGeneration()
    {
        makeFolder("project");
        m_program->saveProject(u"project/device.vxmp"_s, breakProject);
        const auto before = m_program->tree(u"project"_s);
        const QByteArray line = "generate project/device.vxmp --output out";
        const CliProgram::Run stopped = run(line);
        QCOMPARE(stopped.exitCode, 1);
        QVERIFY2(isOneError(stopped.errors), qPrintable(stopped.errors));
        QVERIFY(stopped.output.contains("ABORT - "));
        QCOMPARE(m_program->tree(u"out"_s).keys(), QStringList{u"__vxmerrorlog.txt"_s});

        const CliProgram::Run ignored = run(line + " --ignore-errors");
        QCOMPARE(ignored.exitCode, 0);
        QVERIFY(QFile::exists(path("out/device.eds")));
        QCOMPARE(m_program->tree(u"project"_s), before);
    }

    void outputsThatCantBeMade()
    {
        m_program->saveProject(u"device.vxmp"_s, [](ObjectDataBase &store) {
            store.setGeneralSetting(u"line0type"_s, u"5"_s);
            store.setGeneralSetting(u"use_core_headers"_s, u"V3"_s);
        });
        const CliProgram::Run result = run("generate device.vxmp -o out --ignore-errors");
        QCOMPARE(result.exitCode, 4);
        QVERIFY(result.errors.contains(
            "Generation of gen_mp.c failed. This version can't make it yet.\n"));
        QVERIFY(QFile::exists(path("out/gen_define.h")));
        QVERIFY(result.output.contains("Stack generation: V4, which is what the command line "
                                       "program writes; the project is set to V3.\n"));
    }

    void convertsBothWays()
    {
        m_program->saveProject(u"device.vxmp"_s);
        m_program->saveProject(u"expected.vxmt"_s);
        m_program->write(u"back.vxmp"_s, "former");
        const QByteArray original = m_program->read(u"device.vxmp"_s);
        for (const char *line : {"convert device.vxmp device.vxmt", "convert device.vxmt back.vxmp",
                                 "convert back.vxmp AGAIN.VXMT"}) {
            QCOMPARE(succeeds(line), QByteArray());
        }
        QCOMPARE(m_program->read(u"device.vxmt"_s), m_program->read(u"expected.vxmt"_s));
        QCOMPARE(m_program->read(u"AGAIN.VXMT"_s), m_program->read(u"device.vxmt"_s));
        QCOMPARE(m_program->read(u"device.vxmp"_s), original);
        QCOMPARE(m_program->tree().keys(),
                 QStringList({u"AGAIN.VXMT"_s, u"back.vxmp"_s, u"back.vxmp.bak"_s, u"device.vxmp"_s,
                              u"device.vxmt"_s, u"expected.vxmt"_s}));
        QCOMPARE(m_program->read(u"back.vxmp.bak"_s), QByteArray("former"));
    }

    void tellsWhatTheTextLacks()
    {
        m_program->saveProject(u"device.vxmp"_s, [](ObjectDataBase &store) {
            store.addCANID(0, 0x123, {.id = 0x123, .direction = ObjectDataBase::transmit});
            store.executeSql(u"insert into Connections values (0,1,2,0,3,4,0),(0,5,6,0,7,8,0)"_s);
            store.setEnergyBusSetting(u"device_cnt"_s, u"1"_s);
        });
        const CliProgram::Run result = run("convert device.vxmp device.vxmt");
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.errors.startsWith(u"quillforge-cli: warning: "));
        for (const char *lost :
             {"raw CAN messages (1)", "connections (2)", "EnergyBus settings (1)"})
            QVERIFY2(result.errors.contains(QLatin1String(lost)), qPrintable(result.errors));
        QVERIFY(!m_program->read(u"device.vxmt"_s).isEmpty());
    }

    void needsNoHome_data() { addRows<QString>({{"not set", ""}, {"no folder", "/dev/null"}}); }

    void needsNoHome()
    {
        const auto [home] = row<QString>();
        m_program->environment.clear();
        if (!home.isEmpty())
            m_program->environment.insert(u"HOME"_s, home);
        m_program->environment.insert(u"LC_ALL"_s, u"C"_s);
        for (const char *name : {"ger\u00E4t.vxmt", "device.vxmp"}) {
            m_program->saveProject(QString::fromUtf8(name));
            QVERIFY(succeeds(QByteArray("generate ") + name).contains("Generation finished.\n"));
        }
        QVERIFY(QFile::exists(path("ger\u00E4t.eds")));
    }

    void traceStaysOffTheResult()
    {
        m_program->saveProject(u"device.vxmp"_s);
        const QByteArray line = "check device.vxmp --format json";
        const CliProgram::Run quiet = run(line);
        QCOMPARE(quiet.errors, QString());
        QVERIFY(!QJsonDocument::fromJson(quiet.output).isNull());
        const CliProgram::Run verbose = run(line + " --verbose");
        QVERIFY(verbose.errors.contains(u"openProject"));
        QCOMPARE(verbose.output, quiet.output);
        QCOMPARE(run("--verbose " + line).errors, verbose.errors);
        m_program->environment.insert(u"QT_LOGGING_RULES"_s, u"default.debug=true"_s);
        const CliProgram::Run traced = run(line);
        QVERIFY(traced.errors.contains(u"openProject"));
        QCOMPARE(traced.output, quiet.output);
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
