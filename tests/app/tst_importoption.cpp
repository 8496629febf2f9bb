#include "projectfixture.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr int timeLimit = 60000;

const QByteArray eds = "[ManufacturerObjects]\nSupportedObjects=1\n1=0x2345\n"
                       "[2345]\nParameterName=Speed\nObjectType=0x7\nDataType=0x6\n"
                       "AccessType=rw\nDefaultValue=5\nParameterValue=9\n";
const QByteArray csv = "index,sub,objectcode,datatype,access,edsname,value\n"
                       "0x2345,0,VARIABLE,UNSIGNED16,rw,Speed,5\n";

} // namespace

/// Imports of the command line, with the program that ships.
class TestImportOption : public QObject
{
    Q_OBJECT

private slots:
    void importsOrTellsWhy_data();
    void importsOrTellsWhy();
};

void TestImportOption::importsOrTellsWhy_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isTaken");
    QTest::addColumn<QString>("error"); // part of what standard error says
    QTest::newRow("a.eds") << eds << true << QString();
    QTest::newRow("a.DCF") << eds << true << QString();
    QTest::newRow("a.csv") << csv << true << QString();
    QTest::newRow("a.icsv") << csv << true << QString();
    QTest::newRow("other.eds") << QByteArray("<?xml version=\"1.0\"?><a/>") << false
                               << u"other.eds"_s;
    QTest::newRow("binary.eds") << QByteArray("\0\1\2\3", 4).repeated(400) << false
                                << u"binary.eds"_s;
    // Only what people edit by hand is read unattended.
    QTest::newRow("a.xdd") << QByteArray("<a/>") << false << QString();
    QTest::newRow("a.codb") << QByteArray("2345::Speed:optional::VAR:m:UNSIGNED16:m:rw:m\n")
                            << false << QString();
}

void TestImportOption::importsOrTellsWhy()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isTaken);
    QFETCH(QString, error);
    const QTemporaryDir folder;
    const QString project = folder.filePath(u"device.vxmp"_s);
    QVERIFY(QDir(folder.path()).mkdir(u"home"_s));
    QVERIFY(ProjectFixture::save(project));
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    QFile file(folder.filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    file.close();

    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QLatin1String(variable));
    environment.insert(u"HOME"_s, folder.filePath(u"home"_s));
    environment.insert(u"XDG_CONFIG_HOME"_s, folder.filePath(u"home/config"_s));
    environment.insert(u"XDG_DATA_HOME"_s, folder.filePath(u"home/data"_s));
    environment.insert(u"QT_LOGGING_RULES"_s, u"*.debug=false"_s);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder.path());
    process.start(QStringLiteral(QUILLFORGE_BINARY_DIR "/bin/canopen-quillforge"),
                  {u"device.vxmp"_s, u"-hidden"_s, u"-i"_s, name, u"-s"_s, u"-g"_s});
    QVERIFY(process.waitForFinished(timeLimit));
    QCOMPARE(process.exitCode(), 0);
    const QString errors = QString::fromUtf8(process.readAllStandardError());
    QCOMPARE(errors.contains(name), !error.isEmpty());
    QVERIFY2(errors.contains(error), qPrintable(errors));

    ObjectDataBase store;
    QVERIFY(store.openDataBase(project));
    QCOMPARE(store.indexExists(0, 0x2345), isTaken);
    // The values of a DCF are for a device, and none of the project's defaults.
    if (isTaken)
        QCOMPARE(store.getSubIndexDefaultValue(0, 0x2345, 0), u"5"_s);
}

QTEST_GUILESS_MAIN(TestImportOption)
#include "tst_importoption.moc"
