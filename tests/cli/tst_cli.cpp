#include "cliprogram.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTest>

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

/// A database that some other program has made.
void makeForeignDatabase(const QString &path)
{
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"foreign"_s);
        database.setDatabaseName(path);
        QVERIFY(database.open());
        QSqlQuery query(database);
        QVERIFY(query.exec(u"create table customers (name text)"_s));
    }
    QSqlDatabase::removeDatabase(u"foreign"_s);
}

const QMap<QString, QStringList> optionsOfCommands = {
    {u"generate"_s, {u"-o"_s, u"--ignore-errors"_s, u"--srdo yes|no"_s}},
    {u"check"_s, {u"--format text|json|sarif"_s}},
    {u"info"_s, {u"--json"_s}},
    {u"convert"_s, {u" IN "_s, u" OUT "_s}},
    {u"help"_s, {u"COMMAND"_s}}};

} // namespace

class TestCli : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CliProgram> m_program;

    CliProgram::Run run(const QStringList &words) const { return m_program->run(words); }

private slots:
    void init()
    {
        m_program = std::make_unique<CliProgram>();
        QVERIFY(m_program->folder.isValid());
    }

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
        const QByteArray overview = run({u"--help"_s}).output;
        QCOMPARE(run({u"help"_s}).output, overview);
        QFile page(QStringLiteral(QUILLFORGE_SOURCE_DIR "/docs/cli.md"));
        QVERIFY(page.open(QIODevice::ReadOnly));
        const QByteArray manual = page.readAll();
        for (auto it = optionsOfCommands.begin(); it != optionsOfCommands.end(); ++it) {
            QVERIFY2(overview.contains("\n  " + it.key().toUtf8() + ' '), qPrintable(it.key()));
            const CliProgram::Run help = run({u"help"_s, it.key()});
            QCOMPARE(help.exitCode, 0);
            QCOMPARE(help.errors, QString());
            for (const QString &option : it.value())
                QVERIFY2(help.output.contains(option.toUtf8()), qPrintable(option));
            QCOMPARE(run({it.key(), u"--help"_s}).output, help.output);
            QVERIFY2(manual.contains("```\n" + help.output + "```\n"), qPrintable(it.key()));
            for (const char *code : {"\n  0  ", "\n  1  ", "\n  2  ", "\n  3  ", "\n  4  "}) {
                QVERIFY(help.output.contains(code));
                QVERIFY(overview.contains(code));
            }
        }
        const CliProgram::Run version = run({u"--version"_s});
        QCOMPARE(version.exitCode, 0);
        QVERIFY(version.output.startsWith("quillforge-cli 4."));
    }

    void refusesWrongUsage_data()
    {
        QTest::addColumn<QStringList>("words");
        const auto row = [](const char *line) {
            QTest::newRow(line) << QString::fromLatin1(line).split(u' ', Qt::SkipEmptyParts);
        };
        row("");
        row("nonsense");
        row("--nonsense");
        row("--version now");
        row("help nonsense");
        row("help check info");
        row("generate");
        row("check");
        row("info");
        row("convert device.vxmp");
        row("check device.vxmp another.vxmp");
        row("info device.vxmp --xml");
        row("info device.vxmp --json=1");
        row("check device.vxmp --format");
        row("check device.vxmp --format xml");
        row("check device.vxmp --format SARIF");
        row("generate device.vxmp -o");
        row("generate device.vxmp --output=");
        row("generate device.vxmp --srdo maybe");
        row("generate device.vxmp --ignore-errors --format text");
        row("convert device.vxmp device.txt");
        row("convert device.eds device.vxmt");
        row("convert device.vxmp copy.vxmp");
        row("convert device vxmt");
    }

    void refusesWrongUsage()
    {
        QFETCH(QStringList, words);
        m_program->saveProject(u"device.vxmp"_s);
        const auto before = m_program->tree();
        const CliProgram::Run result = run(words);
        QCOMPARE(result.exitCode, 2);
        QCOMPARE(result.output, QByteArray());
        QVERIFY2(isOneError(result.errors), qPrintable(result.errors));
        QCOMPARE(m_program->tree(), before);
    }

    void refusesWhatIsNoProject_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("reason");
        QTest::newRow("missing") << u"missing.vxmp"_s << u"does not exist"_s;
        QTest::newRow("missing text") << u"missing.vxmt"_s << u"does not exist"_s;
        QTest::newRow("folder") << u"folder.vxmp"_s << u"is a folder"_s;
        QTest::newRow("folder text") << u"folder.vxmt"_s << u"is a folder"_s;
        QTest::newRow("empty") << u"empty.vxmp"_s << u"is not a project"_s;
        QTest::newRow("empty text") << u"empty.vxmt"_s << u"empty"_s;
        QTest::newRow("no database") << u"garbage.vxmp"_s << u"a file of another kind"_s;
        QTest::newRow("no text form") << u"garbage.vxmt"_s << u"line 1"_s;
        QTest::newRow("foreign database") << u"foreign.vxmp"_s << u"is not a project"_s;
        QTest::newRow("cut off") << u"half.vxmp"_s << u"damaged"_s;
        QTest::newRow("other edition") << u"j1939.vxmp"_s << u"another edition"_s;
    }

    void refusesWhatIsNoProject()
    {
        QFETCH(QString, name);
        QFETCH(QString, reason);
        const QDir root(m_program->folder.path());
        QVERIFY(root.mkdir(u"folder.vxmp"_s) && root.mkdir(u"folder.vxmt"_s));
        for (const char *empty : {"empty.vxmp", "empty.vxmt"})
            m_program->write(QLatin1String(empty), {});
        for (const char *garbage : {"garbage.vxmp", "garbage.vxmt"})
            m_program->write(QLatin1String(garbage), QByteArray(5000, 'x'));
        makeForeignDatabase(m_program->path(u"foreign.vxmp"_s));
        m_program->saveProject(u"j1939.vxmp"_s, makeJ1939, u"J1939 Quillforge"_s);
        m_program->saveProject(u"half.vxmp"_s);
        const QByteArray whole = m_program->read(u"half.vxmp"_s);
        m_program->write(u"half.vxmp"_s, whole.left(whole.size() / 2));
        m_program->write(u"target.vxmp"_s, "kept");
        m_program->write(u"target.vxmt"_s, "kept");

        const auto before = m_program->tree();
        const QString target = name.endsWith(u"vxmp") ? u"target.vxmt"_s : u"target.vxmp"_s;
        const QList<QStringList> commands = {{u"generate"_s, name, u"-o"_s, u"out"_s},
                                             {u"check"_s, name, u"--format"_s, u"sarif"_s},
                                             {u"info"_s, name, u"--json"_s},
                                             {u"convert"_s, name, target}};
        for (const QStringList &words : commands) {
            const CliProgram::Run result = run(words);
            QCOMPARE(result.exitCode, 3);
            QCOMPARE(result.output, QByteArray());
            QVERIFY2(isOneError(result.errors), qPrintable(result.errors));
            QVERIFY2(result.errors.contains(name) && result.errors.contains(reason),
                     qPrintable(result.errors));
        }
        QCOMPARE(m_program->tree(), before);
    }

    void tellsWhatCannotBeWritten_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<QString>("named");
        const auto row = [](const char *line, const char *named) {
            QTest::newRow(line) << QString::fromLatin1(line).split(u' ')
                                << QString(QLatin1String(named));
        };
        row("generate device.vxmp -o file", "file");
        row("generate device.vxmp -o file/below", "below");
        row("generate device.vxmp -o readonly", "readonly");
        row("generate device.vxmp -o occupied", "gen_define.h");
        row("convert device.vxmp missing/device.vxmt", "missing");
        row("convert device.vxmp folder.vxmt", "folder.vxmt");
        row("convert device.vxmp readonly.vxmt", "readonly.vxmt");
        row("convert device.vxmp readonly/device.vxmt", "readonly");
        row("convert device.vxmt readonly.vxmp", "readonly.vxmp");
    }

    void tellsWhatCannotBeWritten()
    {
        QFETCH(QStringList, words);
        QFETCH(QString, named);
        const QDir root(m_program->folder.path());
        QVERIFY(root.mkdir(u"readonly"_s) && root.mkdir(u"folder.vxmt"_s));
        QVERIFY(root.mkpath(u"occupied/gen_define.h"_s));
        for (const char *name : {"file", "readonly.vxmp", "readonly.vxmt"})
            m_program->write(QLatin1String(name), "kept");
        for (const char *name : {"readonly", "readonly.vxmp", "readonly.vxmt"})
            QFile::setPermissions(m_program->path(QLatin1String(name)),
                                  QFile::ReadOwner | QFile::ExeOwner);
        m_program->saveProject(u"device.vxmp"_s);
        m_program->saveProject(u"device.vxmt"_s);

        const auto before = m_program->tree();
        const CliProgram::Run result = run(words);
        const auto after = m_program->tree();
        QFile::setPermissions(m_program->path(u"readonly"_s),
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
        QVERIFY(QDir(m_program->folder.path()).mkdir(u"out"_s));
        QVERIFY(QFile::link(u"/dev/full"_s, m_program->path(u"out/device.eds"_s)));
        const CliProgram::Run failed = run({u"generate"_s, u"device.vxmp"_s, u"-o"_s, u"out"_s});
        QCOMPARE(failed.exitCode, 4);
        QVERIFY2(isOneError(failed.errors) && failed.errors.contains(u"device.eds"),
                 qPrintable(failed.errors));

        m_program->standardOutput = u"/dev/full"_s;
        QCOMPARE(run({u"info"_s, u"device.vxmp"_s}).exitCode, 3);
        QCOMPARE(run({u"--help"_s}).exitCode, 3);
    }

    void generatesElsewhere_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("database") << u"device.vxmp"_s;
        QTest::newRow("text") << u"device.vxmt"_s;
    }

    void generatesElsewhere()
    {
        QFETCH(QString, name);
        QVERIFY(QDir(m_program->folder.path()).mkdir(u"project"_s));
        const QString project = u"project/"_s + name;
        m_program->saveProject(project);
        const auto before = m_program->tree(u"project"_s);

        const CliProgram::Run result = run({u"generate"_s, u"-o"_s, u"out/new"_s, project});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.errors, QString());
        QVERIFY(result.output.contains("Generation finished.\n"));
        QVERIFY(!result.output.contains('<'));
        QCOMPARE(m_program->tree(u"project"_s), before);

        // The same files as beside the project.
        QCOMPARE(run({u"generate"_s, project}).exitCode, 0);
        auto beside = m_program->tree(u"project"_s);
        auto elsewhere = m_program->tree(u"out/new"_s);
        QCOMPARE(beside.take(name), before.value(name));
        QVERIFY(elsewhere.contains(u"device.eds"_s) && elsewhere.contains(u"gen_define.h"_s));
        QCOMPARE(elsewhere, beside);
    }

    void errorsStopGeneration()
    {
        QVERIFY(QDir(m_program->folder.path()).mkdir(u"project"_s));
        m_program->saveProject(u"project/device.vxmp"_s, breakProject);
        const auto before = m_program->tree(u"project"_s);
        QStringList words{u"generate"_s, u"project/device.vxmp"_s, u"--output"_s, u"out"_s};
        const CliProgram::Run stopped = run(words);
        QCOMPARE(stopped.exitCode, 1);
        QVERIFY2(isOneError(stopped.errors), qPrintable(stopped.errors));
        QVERIFY(stopped.output.contains("ABORT - "));
        QCOMPARE(m_program->tree(u"out"_s).keys(), QStringList{u"__vxmerrorlog.txt"_s});

        const CliProgram::Run ignored = run(words << u"--ignore-errors"_s);
        QCOMPARE(ignored.exitCode, 0);
        QVERIFY(QFile::exists(m_program->path(u"out/device.eds"_s)));
        QCOMPARE(m_program->tree(u"project"_s), before);
    }

    void outputsThatCantBeMade()
    {
        m_program->saveProject(u"device.vxmp"_s, [](ObjectDataBase &store) {
            store.setGeneralSetting(u"line0type"_s, u"5"_s);
            store.setGeneralSetting(u"use_core_headers"_s, u"V3"_s);
        });
        const CliProgram::Run result =
            run({u"generate"_s, u"device.vxmp"_s, u"-o"_s, u"out"_s, u"--ignore-errors"_s});
        QCOMPARE(result.exitCode, 4);
        QVERIFY(result.errors.contains(
            "Generation of gen_mp.c failed. This version can't make it yet.\n"));
        QVERIFY(QFile::exists(m_program->path(u"out/gen_define.h"_s)));
        QVERIFY(result.output.contains("Stack generation: V4, which is what the command line "
                                       "program writes; the project is set to V3.\n"));
    }

    void convertsBothWays()
    {
        m_program->saveProject(u"device.vxmp"_s);
        m_program->saveProject(u"expected.vxmt"_s);
        m_program->write(u"back.vxmp"_s, "former");
        const QByteArray original = m_program->read(u"device.vxmp"_s);
        for (const QStringList &words :
             {QStringList{u"convert"_s, u"device.vxmp"_s, u"device.vxmt"_s},
              QStringList{u"convert"_s, u"device.vxmt"_s, u"back.vxmp"_s},
              QStringList{u"convert"_s, u"back.vxmp"_s, u"AGAIN.VXMT"_s}}) {
            const CliProgram::Run result = run(words);
            QCOMPARE(result.exitCode, 0);
            QCOMPARE(result.output, QByteArray());
            QCOMPARE(result.errors, QString());
        }
        QCOMPARE(m_program->read(u"device.vxmt"_s), m_program->read(u"expected.vxmt"_s));
        QCOMPARE(m_program->read(u"AGAIN.VXMT"_s), m_program->read(u"device.vxmt"_s));
        QCOMPARE(m_program->read(u"device.vxmp"_s), original);
        QCOMPARE(m_program->tree().keys(),
                 QStringList({u"AGAIN.VXMT"_s, u"back.vxmp"_s, u"back.vxmp.bak"_s, u"device.vxmp"_s,
                              u"device.vxmt"_s, u"expected.vxmt"_s}));
        QCOMPARE(m_program->read(u"back.vxmp.bak"_s), QByteArray("former"));
    }

    void tellsWhatTheTextLacks_data()
    {
        using Change = CliProgram::Change;
        QTest::addColumn<Change>("change");
        QTest::addColumn<QString>("content");
        QTest::newRow("raw CAN") << Change([](ObjectDataBase &store) {
            ObjectDataBase::CANID message;
            message.id = 0x123;
            message.direction = ObjectDataBase::transmit;
            store.addCANID(0, message.id, message);
        }) << u"raw CAN messages (1)"_s;
        QTest::newRow("connections") << Change([](ObjectDataBase &store) {
            store.executeSql(u"insert into Connections values (0,1,2,0,3,4,0),(0,5,6,0,7,8,0)"_s);
        }) << u"connections (2)"_s;
        QTest::newRow("EnergyBus") << Change([](ObjectDataBase &store) {
            store.setEnergyBusSetting(u"device_cnt"_s, u"1"_s);
        }) << u"EnergyBus settings (1)"_s;
    }

    void tellsWhatTheTextLacks()
    {
        QFETCH(CliProgram::Change, change);
        QFETCH(QString, content);
        m_program->saveProject(u"device.vxmp"_s, change);
        const CliProgram::Run result = run({u"convert"_s, u"device.vxmp"_s, u"device.vxmt"_s});
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.errors.startsWith(u"quillforge-cli: warning: ") &&
                     result.errors.contains(content),
                 qPrintable(result.errors));
        QVERIFY(!m_program->read(u"device.vxmt"_s).isEmpty());
    }

    void needsNoHome_data()
    {
        QTest::addColumn<QString>("home");
        QTest::newRow("not set") << QString();
        QTest::newRow("no folder") << u"/dev/null"_s;
    }

    void needsNoHome()
    {
        QFETCH(QString, home);
        m_program->environment.clear();
        if (!home.isEmpty())
            m_program->environment.insert(u"HOME"_s, home);
        m_program->environment.insert(u"LC_ALL"_s, u"C"_s);
        for (const char *name : {"ger\u00E4t.vxmt", "device.vxmp"}) {
            m_program->saveProject(QString::fromUtf8(name));
            const CliProgram::Run result = run({u"generate"_s, QString::fromUtf8(name)});
            QCOMPARE(result.exitCode, 0);
            QCOMPARE(result.errors, QString());
        }
        QVERIFY(QFile::exists(m_program->path(QString::fromUtf8("ger\u00E4t.eds"))));
    }

    void traceStaysOffTheResult()
    {
        m_program->saveProject(u"device.vxmp"_s);
        const QStringList words{u"check"_s, u"device.vxmp"_s, u"--format"_s, u"json"_s};
        const CliProgram::Run quiet = run(words);
        QCOMPARE(quiet.errors, QString());
        QVERIFY(!QJsonDocument::fromJson(quiet.output).isNull());
        const CliProgram::Run verbose = run(words + QStringList{u"--verbose"_s});
        QVERIFY(verbose.errors.contains(u"openProject"));
        QCOMPARE(verbose.output, quiet.output);
        QCOMPARE(run(QStringList{u"--verbose"_s} + words).errors, verbose.errors);
        m_program->environment.insert(u"QT_LOGGING_RULES"_s, u"default.debug=true"_s);
        const CliProgram::Run traced = run(words);
        QVERIFY(traced.errors.contains(u"openProject"));
        QCOMPARE(traced.output, quiet.output);
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
