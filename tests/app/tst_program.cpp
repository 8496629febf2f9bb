#include "tests/support/projectfixture.h"
#include "tests/support/rows.h"
#include "tests/support/shippedprogram.h"

#include <QDir>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace {

const QByteArray eds = "[ManufacturerObjects]\nSupportedObjects=1\n1=0x2345\n"
                       "[2345]\nParameterName=Speed\nObjectType=0x7\nDataType=0x6\n"
                       "AccessType=rw\nDefaultValue=5\nParameterValue=9\n";
const QByteArray csv = "index,sub,objectcode,datatype,access,edsname,value\n"
                       "0x2345,0,VARIABLE,UNSIGNED16,rw,Speed,5\n";

} // namespace

/// Starts the programs that ship, as a build server does: no display, no user.
class TestProgram : public QObject
{
    Q_OBJECT

    std::unique_ptr<ShippedProgram> m_program;

    QString file(const QString &name) const { return m_program->path(name); }
    QByteArray read(const QString &name) const { return m_program->read(name); }
    /// Errors of a run end it with code 0.
    ShippedProgram::Run run(const char *arguments) const
    {
        const ShippedProgram::Run result = m_program->run(words(arguments));
        if (result.exitCode != 0)
            QTest::qFail("the program failed", __FILE__, __LINE__);
        return result;
    }

private slots:
    void init()
    {
        m_program = std::make_unique<ShippedProgram>(u"canopen-quillforge"_s);
        QVERIFY(QDir(m_program->folder.path()).mkdir(u"home"_s));
        QVERIFY(ProjectFixture::save(file(u"device.vxmp"_s)));
    }

    void generatesUnattended_data()
    {
        addRows<QString>({{"database", "device.vxmp"}, {"text", "device.vxmt"}});
    }

    void generatesUnattended()
    {
        const auto [name] = row<QString>();
        QVERIFY(ProjectFixture::save(file(name)));
        const QByteArray before = read(name);
        const QByteArray command = name.toLatin1() + " -hidden -g";
        const ShippedProgram::Run result = run(command);

        // The messages of the run are lines of their own, without mark-up.
        const QList<QByteArray> lines = result.output.split('\n');
        QVERIFY2(lines.contains("Check of model consistency started"), result.output);
        QVERIFY(lines.contains("Generation of device completed."));
        QVERIFY(!result.output.contains('<'));
        const QByteArray written = read(u"device.eds"_s);
        QVERIFY(written.startsWith("[FileInfo]") || written.contains("\n[FileInfo]"));
        QVERIFY(written.contains("[2000]"));
        QCOMPARE(read(name), before); // without -s nothing is saved
        QVERIFY(QFile::remove(file(u"device.eds"_s)));
        run(command);
        QCOMPARE(read(u"device.eds"_s), written); // the same project gives the same bytes
    }

    void stepsKeepTheirOrder_data()
    {
        addRows<const char *>({
            {"as they run", "-j pgns.vxmp -dbmod change.txt -s -g"},
            {"reversed", "-g -s -dbmod change.txt -j pgns.vxmp"},
            {"mixed", "-s -j pgns.vxmp -g -dbmod change.txt"},
            {"value of -o", "-s -o none -j pgns.vxmp -dbmod change.txt -g"},
        });
    }

    void stepsKeepTheirOrder()
    {
        const auto [options] = row<const char *>();
        m_program->write(u"change.txt"_s,
                         "# sets the node\nGeneralSettings:co_node_id:5\nNoTable:a:b\n");
        QVERIFY(ProjectFixture::save(file(u"pgns.vxmp"_s), {.withPgn = true}));
        run(QByteArray("device.vxmp -hidden ") + options);
        QVERIFY(QFile::exists(file(u"device.eds"_s)));
        QVERIFY(QFile::exists(file(u"device.vxmp.bak"_s)));

        ObjectDataBase saved;
        QVERIFY(saved.openDataBase(file(u"device.vxmp"_s)));
        QVERIFY(!saved.wasExternallyModified());
        QCOMPARE(saved.getGeneralSetting(u"co_node_id"_s), u"5"_s);
        QCOMPARE(saved.getPGNList(0), QList<quint32>{65262});
        QCOMPARE(saved.getSPNList(0, 65262, ObjectDataBase::transmit), QList<quint32>{110});
    }

    void badOptionsDoNotStopTheRun_data()
    {
        addRows<const char *, QString>({
            {"option first", "-g", "Cannot open project file "},
            {"missing project", "none.vxmp -g", "none.vxmp."},
            {"two dashes first", "--importfile none.ini -g", "does not exist"},
            {"J1939 first, nothing saved yet", "-j1939 -s -g", "Save Project: cancelled"},
            {"missing files", "device.vxmp -i none.csv -j none.vxmp -dbmod none.txt -g",
             "none.txt"},
            {"unknown suffix", "device.vxmp -i device.vxmp -g", "try to import"},
            {"no project in the other file", "device.vxmp -j change.txt -g", "change.txt"},
            {"values missing", "device.vxmp -g -dbmod -j", ""},
        });
    }

    void badOptionsDoNotStopTheRun()
    {
        const auto [arguments, error] = row<const char *, QString>();
        m_program->write(u"change.txt"_s, "no project");
        const ShippedProgram::Run result = run(arguments + QByteArray(" -hidden"));
        QVERIFY2(result.errors.contains(error), qPrintable(result.errors));
        QVERIFY2(result.output.contains("Check of model consistency started"), result.output);
        QCOMPARE(QFile::exists(file(u"device.eds"_s)), QByteArray(arguments).startsWith("device"));
    }

    void hiddenProgramStaysUntilItIsEnded_data()
    {
        // The only window of one without a project is the box about it.
        addRows<const char *>(
            {{"project", "device.vxmp -hidden"}, {"no project", "none.vxmp -hidden -s"}});
    }

    void hiddenProgramStaysUntilItIsEnded()
    {
        const auto [arguments] = row<const char *>();
        QProcess process;
        m_program->prepare(process, words(arguments));
        process.start(QIODevice::ReadOnly);
        QVERIFY(process.waitForStarted(ShippedProgram::timeLimit));
        QVERIFY(!process.waitForFinished(2000));
        process.kill();
        QVERIFY(process.waitForFinished(ShippedProgram::timeLimit));
        QVERIFY(process.readAllStandardOutput().isEmpty());
    }

    void editionsDifferByTheirName_data()
    {
        addRows<QString, QString, bool>({
            {"CANopen", "canopen-quillforge", "CANopen Quillforge 4.3.3", false},
            {"J1939", "j1939-quillforge", "J1939 Quillforge 4.3.3", true},
            {"CAN", "can-quillforge", "CAN Quillforge 4.3.3", true},
            {"EnergyBus", "energybus-marlwright", "EnergyBus Marlwright 4.3.3", true},
        });
    }

    void editionsDifferByTheirName()
    {
        const auto [program, settings, opensJ1939] = row<QString, QString, bool>();
        m_program->program = program;
        QVERIFY(ProjectFixture::save(file(u"truck.vxmp"_s), {.lineType = 2, .withPgn = true}));
        const ShippedProgram::Run result = run("truck.vxmp -hidden -g");
        QCOMPARE(!result.errors.contains(u"File was not created with this tool."_s), opensJ1939);
        QVERIFY(QFile::exists(file(u"home/config/tolvex/%1.conf"_s.arg(settings))));

        // A new project opens its template and tells what is to be set first.
        const ShippedProgram::Run fresh = run("-j1939 -hidden -g");
        QVERIFY2(!fresh.errors.contains(u"Cannot create new project file."_s),
                 qPrintable(fresh.errors));
        QVERIFY2(
            fresh.output.contains("Timer interval not set in Common Settings -> Hardware/Target."),
            fresh.output);
    }

    void theLastProjectIsReopened_data()
    {
        addRows<int, QString, bool>({
            {"wanted", 1, "device.vxmp", true},
            {"not wanted", 0, "device.vxmp", false},
            {"gone", 1, "gone.vxmp", false},
        });
    }

    void theLastProjectIsReopened()
    {
        const auto [wanted, last, opened] = row<int, QString, bool>();
        QSettings settings(file(u"home/config/tolvex/CANopen Quillforge 4.3.3.conf"_s),
                           QSettings::IniFormat);
        settings.setValue(u"General/loadlastproject"_s, wanted);
        settings.setValue(u"General/lastproject"_s, file(last));
        settings.sync();
        const ShippedProgram::Run result = run("-j1939 -hidden -g");
        QCOMPARE(QFile::exists(file(u"device.eds"_s)), opened);
        QVERIFY2(!result.errors.contains(u"Cannot open"_s), qPrintable(result.errors));
    }

    void anUnwritableFolderIsTold()
    {
        const QString folder = m_program->folder.path();
        QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
        const ShippedProgram::Run result = run("device.vxmp -hidden -g");
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QVERIFY2(QString::fromUtf8(result.output)
                     .contains(u"ABORT - The output folder %1 is not writeable."_s.arg(folder)),
                 result.output);
        QVERIFY(result.errors.contains(u"The project contains critical errors."_s));
    }

    void withoutAFolderToWorkInItEnds()
    {
        const QString home = file(u"none"_s);
        m_program->environment.insert(u"HOME"_s, home);
        m_program->environment.insert(u"TMPDIR"_s, home + u"/tmp"_s);
        for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"})
            m_program->environment.remove(QLatin1String(name));
        const ShippedProgram::Run result = m_program->run(words("device.vxmp -hidden -g"));
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.errors.contains(home), qPrintable(result.errors));
        QVERIFY(!result.errors.contains(u"QSql"_s));
        QVERIFY(!QFileInfo::exists(home));
    }

    void importsOrTellsWhy_data()
    {
        // Only what people edit by hand is read unattended.
        addRows<QByteArray, bool, QString>({
            {"a.eds", eds, true, ""},
            {"a.DCF", eds, true, ""},
            {"a.csv", csv, true, ""},
            {"a.icsv", csv, true, ""},
            {"other.eds", "<?xml version=\"1.0\"?><a/>", false, "other.eds"},
            {"binary.eds", QByteArray("\0\1\2\3", 4).repeated(400), false, "binary.eds"},
            {"a.xdd", "<a/>", false, ""},
            {"a.codb", "2345::Speed:optional::VAR:m:UNSIGNED16:m:rw:m\n", false, ""},
        });
    }

    void importsOrTellsWhy()
    {
        const auto [content, isTaken, error] = row<QByteArray, bool, QString>();
        const QByteArray name = QTest::currentDataTag();
        m_program->write(QLatin1String(name), content);
        m_program->environment.insert(u"QT_LOGGING_RULES"_s, u"*.debug=false"_s);
        const QString errors = run("device.vxmp -hidden -i " + name + " -s -g").errors;
        QCOMPARE(errors.contains(QLatin1String(name)), !error.isEmpty());
        QVERIFY2(errors.contains(error), qPrintable(errors));

        ObjectDataBase store;
        QVERIFY(store.openDataBase(file(u"device.vxmp"_s)));
        QCOMPARE(store.indexExists(0, 0x2345), isTaken);
        // The values of a DCF are for a device, and none of the project's defaults.
        if (isTaken)
            QCOMPARE(store.getSubIndexDefaultValue(0, 0x2345, 0), u"5"_s);
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    application.setApplicationName(u"EnergyBus Marlwright"_s); // the fixture opens every edition's
    application.setApplicationVersion(u"4.3.3"_s);
    TestProgram test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_program.moc"
