#include "projectfixture.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSaveFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr int timeLimit = 60000;

struct Run
{
    bool ended = false;
    int exitCode = -1;
    QString output;
    QString errors;
};

bool write(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() &&
           file.commit();
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// Starts the programs that ship, as a build server does: no display, no user.
class TestProgram : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;

    QString file(const QString &name) const { return m_folder->filePath(name); }

    void prepare(QProcess &process, const QString &program, const QStringList &arguments) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QLatin1String(name));
        environment.insert(u"HOME"_s, file(u"home"_s));
        environment.insert(u"XDG_CONFIG_HOME"_s, file(u"home/config"_s));
        environment.insert(u"XDG_DATA_HOME"_s, file(u"home/data"_s));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_folder->path());
        process.setProgram(QStringLiteral(QUILLFORGE_BINARY_DIR "/bin/") + program);
        process.setArguments(arguments);
    }

    Run run(const QStringList &arguments, const QString &program = u"canopen-quillforge"_s) const
    {
        QProcess process;
        prepare(process, program, arguments);
        process.start(QIODevice::ReadOnly);
        Run result;
        result.ended = process.waitForFinished(timeLimit);
        result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        result.output = QString::fromUtf8(process.readAllStandardOutput());
        result.errors = QString::fromUtf8(process.readAllStandardError());
        return result;
    }

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        QVERIFY(QDir(m_folder->path()).mkdir(u"home"_s));
        QVERIFY(ProjectFixture::save(file(u"device.vxmp"_s)));
    }

    void generatesUnattended_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("database") << u"device.vxmp"_s;
        QTest::newRow("text") << u"device.vxmt"_s;
    }

    void generatesUnattended()
    {
        QFETCH(QString, name);
        QVERIFY(ProjectFixture::save(file(name)));
        const QByteArray before = read(file(name));
        const Run result = run({name, u"-hidden"_s, u"-g"_s});
        QVERIFY(result.ended);
        QCOMPARE(result.exitCode, 0);

        // The messages of the run are lines of their own, without mark-up.
        const QStringList lines = result.output.split(u'\n');
        QVERIFY2(lines.contains(u"Check of model consistency started"_s),
                 qPrintable(result.output));
        QVERIFY(lines.contains(u"Generation of device completed."_s));
        QVERIFY(!result.output.contains(u'<'));
        const QByteArray eds = read(file(u"device.eds"_s));
        QVERIFY(eds.startsWith("[FileInfo]") || eds.contains("\n[FileInfo]"));
        QVERIFY(eds.contains("[2000]"));
        QCOMPARE(read(file(name)), before); // without -s nothing is saved
    }

    void sameProjectSameBytes()
    {
        qputenv("SOURCE_DATE_EPOCH", "1700000000");
        run({u"device.vxmp"_s, u"-hidden"_s, u"-g"_s});
        const QByteArray first = read(file(u"device.eds"_s));
        QVERIFY(QFile::remove(file(u"device.eds"_s)));
        run({u"device.vxmp"_s, u"-hidden"_s, u"-g"_s});
        qunsetenv("SOURCE_DATE_EPOCH");
        QVERIFY(!first.isEmpty());
        QCOMPARE(read(file(u"device.eds"_s)), first);
    }

    void stepsKeepTheirOrder_data()
    {
        QTest::addColumn<QStringList>("options");
        const QStringList modify{u"-dbmod"_s, u"change.txt"_s};
        const QStringList foreign{u"-j"_s, u"pgns.vxmp"_s};
        const QStringList save{u"-s"_s};
        const QStringList generate{u"-g"_s};
        QTest::newRow("as they run") << foreign + modify + save + generate;
        QTest::newRow("reversed") << generate + save + modify + foreign;
        QTest::newRow("mixed") << save + foreign + generate + modify;
        QTest::newRow("value of -o")
            << save + QStringList{u"-o"_s, u"none"_s} + foreign + modify + generate;
    }

    void stepsKeepTheirOrder()
    {
        QFETCH(QStringList, options);
        QVERIFY(write(file(u"change.txt"_s),
                      "# sets the node\nGeneralSettings:co_node_id:5\nNoTable:a:b\n"));
        QVERIFY(ProjectFixture::save(file(u"pgns.vxmp"_s), {.withPgn = true}));
        const Run result = run(QStringList{u"device.vxmp"_s, u"-hidden"_s} + options);
        QVERIFY(result.ended);
        QCOMPARE(result.exitCode, 0);
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
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("error"); // what standard error tells
        QTest::newRow("option first") << QStringList{u"-g"_s} << u"Cannot open project file "_s;
        QTest::newRow("missing project") << QStringList{u"none.vxmp"_s, u"-g"_s} << u"none.vxmp."_s;
        QTest::newRow("two dashes first")
            << QStringList{u"--importfile"_s, u"none.ini"_s, u"-g"_s} << u"does not exist"_s;
        QTest::newRow("J1939 first, nothing saved yet")
            << QStringList{u"-j1939"_s, u"-s"_s, u"-g"_s} << u"Save Project: cancelled"_s;
        QTest::newRow("missing files")
            << QStringList{u"device.vxmp"_s, u"-i"_s,     u"none.csv"_s, u"-j"_s,
                           u"none.vxmp"_s,   u"-dbmod"_s, u"none.txt"_s, u"-g"_s}
            << u"none.txt"_s;
        QTest::newRow("unknown suffix")
            << QStringList{u"device.vxmp"_s, u"-i"_s, u"device.vxmp"_s, u"-g"_s}
            << u"try to import"_s;
        QTest::newRow("no project in the other file")
            << QStringList{u"device.vxmp"_s, u"-j"_s, u"change.txt"_s, u"-g"_s} << u"change.txt"_s;
        QTest::newRow("values missing")
            << QStringList{u"device.vxmp"_s, u"-g"_s, u"-dbmod"_s, u"-j"_s} << QString();
    }

    void badOptionsDoNotStopTheRun()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, error);
        QVERIFY(write(file(u"change.txt"_s), "no project"));
        const Run result = run(arguments + QStringList{u"-hidden"_s});
        QVERIFY(result.ended);
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.errors.contains(error), qPrintable(result.errors));
        QVERIFY2(result.output.contains(u"Check of model consistency started"_s),
                 qPrintable(result.output));
        QCOMPARE(QFile::exists(file(u"device.eds"_s)), arguments.first() == u"device.vxmp"_s);
    }

    void hiddenProgramStaysUntilItIsEnded_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("project") << QStringList{u"device.vxmp"_s, u"-hidden"_s};
        // Its only window is the box about the project.
        QTest::newRow("no project") << QStringList{u"none.vxmp"_s, u"-hidden"_s, u"-s"_s};
    }

    void hiddenProgramStaysUntilItIsEnded()
    {
        QFETCH(QStringList, arguments);
        QProcess process;
        prepare(process, u"canopen-quillforge"_s, arguments);
        process.start(QIODevice::ReadOnly);
        QVERIFY(process.waitForStarted(timeLimit));
        QVERIFY(!process.waitForFinished(2000));
        process.kill();
        QVERIFY(process.waitForFinished(timeLimit));
        QVERIFY(process.readAllStandardOutput().isEmpty());
    }

    void editionsDifferByTheirName_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("settings");
        QTest::addColumn<bool>("opensJ1939");
        QTest::newRow("CANopen") << u"canopen-quillforge"_s << u"CANopen Quillforge 4.3.3"_s
                                 << false;
        QTest::newRow("J1939") << u"j1939-quillforge"_s << u"J1939 Quillforge 4.3.3"_s << true;
        QTest::newRow("CAN") << u"can-quillforge"_s << u"CAN Quillforge 4.3.3"_s << true;
        QTest::newRow("EnergyBus")
            << u"energybus-marlwright"_s << u"EnergyBus Marlwright 4.3.3"_s << true;
    }

    void editionsDifferByTheirName()
    {
        QFETCH(QString, program);
        QFETCH(QString, settings);
        QFETCH(bool, opensJ1939);
        QVERIFY(ProjectFixture::save(file(u"truck.vxmp"_s), {.lineType = 2, .withPgn = true}));
        const Run result = run({u"truck.vxmp"_s, u"-hidden"_s, u"-g"_s}, program);
        QVERIFY(result.ended);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(!result.errors.contains(u"File was not created with this tool."_s), opensJ1939);
        QVERIFY(QFile::exists(file(u"home/config/tolvex/%1.conf"_s.arg(settings))));

        // A new project opens its template and tells what is to be set first.
        const Run fresh = run({u"-j1939"_s, u"-hidden"_s, u"-g"_s}, program);
        QVERIFY2(!fresh.errors.contains(u"Cannot create new project file."_s),
                 qPrintable(fresh.errors));
        QVERIFY2(fresh.output.contains(
                     u"Timer interval not set in Common Settings -> Hardware/Target."_s),
                 qPrintable(fresh.output));
    }

    void theLastProjectIsReopened_data()
    {
        QTest::addColumn<int>("wanted");
        QTest::addColumn<QString>("last");
        QTest::addColumn<bool>("opened");
        QTest::newRow("wanted") << 1 << u"device.vxmp"_s << true;
        QTest::newRow("not wanted") << 0 << u"device.vxmp"_s << false;
        QTest::newRow("gone") << 1 << u"gone.vxmp"_s << false;
    }

    void theLastProjectIsReopened()
    {
        QFETCH(int, wanted);
        QFETCH(QString, last);
        QFETCH(bool, opened);
        {
            QSettings settings(file(u"home/config/tolvex/CANopen Quillforge 4.3.3.conf"_s),
                               QSettings::IniFormat);
            settings.setValue(u"General/loadlastproject"_s, wanted);
            settings.setValue(u"General/lastproject"_s, file(last));
        }
        const Run result = run({u"-j1939"_s, u"-hidden"_s, u"-g"_s});
        QVERIFY(result.ended);
        QCOMPARE(QFile::exists(file(u"device.eds"_s)), opened);
        QVERIFY2(!result.errors.contains(u"Cannot open"_s), qPrintable(result.errors));
    }

    void anUnwritableFolderIsTold()
    {
        QVERIFY(QFile::setPermissions(m_folder->path(), QFile::ReadOwner | QFile::ExeOwner));
        const Run result = run({u"device.vxmp"_s, u"-hidden"_s, u"-g"_s});
        QFile::setPermissions(m_folder->path(),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QVERIFY(result.ended);
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.output.contains(
                     u"ABORT - The output folder %1 is not writeable."_s.arg(m_folder->path())),
                 qPrintable(result.output));
        QVERIFY(result.errors.contains(u"The project contains critical errors."_s));
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
