#include "testproject.h"

#include "check/versionreader.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTest>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

const QString noPathText = QStringLiteral(
    "Info: Path to protocol stack not specified. Cannot check if generated code fits to installed "
    "stack/framework.");
const QString noPathNote = QStringLiteral("Specify path to protocol stack at Options -> Settings.");
const QString noFileText = QStringLiteral(
    "Info: No *_featureinfo_*.xml file found in protocol stack folder %1. Cannot check if "
    "generated code fits to installed stack/framework.");
const QString olderText = QStringLiteral(
    "<strong><font color='red'>Error: </font></strong>Version of installed stack does not fit. It "
    "requires an older version of the tool. Cannot generate files.");
const QString otherText = QStringLiteral(
    "<strong><font color='red'>Error: </font></strong>Version of installed stack does not fit. It "
    "requires tool version %1. Cannot generate files. This is version %2.");

QByteArray info(const QByteArray &version)
{
    return "<?xml version=\"1.0\"?><a><b><required_tool_version>" + version +
           "</required_tool_version></b></a>";
}

/// Entities that grow tenfold with each step.
QByteArray bomb()
{
    QByteArray text = "<!DOCTYPE a [<!ENTITY e0 \"4.3\">";
    for (int i = 1; i < 12; ++i) {
        const QByteArray before = "&e" + QByteArray::number(i - 1) + ";";
        text += "<!ENTITY e" + QByteArray::number(i) + " \"" + before.repeated(10) + "\">";
    }
    return text + "]><a><required_tool_version>&e11;</required_tool_version></a>";
}

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("can't write %s", qPrintable(path));
    }
}

using Files = QMap<QString, QByteArray>;

} // namespace

class TestVersionFit : public QObject
{
    Q_OBJECT

private slots:
    void init() { QCoreApplication::setApplicationVersion(QStringLiteral("4.3.3")); }

    void folders_data();
    void folders();
    void paths();
    void unreadableFile();
    void suppressed();
    void ownVersion_data();
    void ownVersion();
    void readerNeedsAFile();
};

void TestVersionFit::folders_data()
{
    QTest::addColumn<Files>("files");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, const Files &files, const QString &message) {
        QTest::newRow(name) << files << message;
    };
    const QString f = QStringLiteral("co_featureinfo_1.xml");
    row("equal", {{f, info(" 4.3\n")}}, {});
    row("lower", {{f, info("4.2")}}, otherText.arg("4.2", "4.3"));
    row("higher", {{f, info("4.4")}}, otherText.arg("4.4", "4.3"));
    row("empty element", {{f, info("")}}, otherText.arg("", "4.3"));
    row("element missing", {{f, "<a><tool_version>4.3</tool_version></a>"}}, olderText);
    row("first element counts", {{f, "<a>" + info("4.3").mid(21) + info("9.9").mid(21) + "</a>"}},
        {});
    row("broken", {{f, "<a><required_tool_version>4.3</required_tool_version>"}}, olderText);
    row("empty file", {{f, ""}}, olderText);
    row("no XML", {{f, QByteArray(1000, '\0')}}, olderText);
    row("entities", {{f, bomb()}}, olderText);
    row("one entity",
        {{f, "<!DOCTYPE a [<!ENTITY v \"4.3\">]><a><required_tool_version>&v;"
             "</required_tool_version></a>"}},
        olderText);
    row("document type", {{f, "<!DOCTYPE a><a>" + info("4.3").mid(21) + "</a>"}}, {});
    row("nested", {{f, QByteArray("<a>").repeated(300000) + QByteArray("</a>").repeated(300000)}},
        olderText);
    row("huge", {{f, "<a>" + info("4.3").mid(21) + QByteArray(5 << 20, ' ') + "</a>"}}, olderText);
    row("two, the second differs", {{"a_featureinfo_1.xml", info("4.3")}, {f, info("4.1")}},
        otherText.arg("4.1", "4.3"));
    row("two, both differ", {{"a_featureinfo_1.xml", info("5.0")}, {f, info("4.1")}},
        otherText.arg("5.0", "4.3"));
    row("other files", {{f, info("4.3")}, {"featureinfo.xml", info("1.0")}}, {});
}

void TestVersionFit::folders()
{
    QFETCH(Files, files);
    QFETCH(QString, message);
    TestProject project;
    QTemporaryDir stack;
    for (auto it = files.cbegin(); it != files.cend(); ++it) {
        write(stack.filePath(it.key()), it.value());
    }
    project.misc("costackpath", stack.path());
    QCOMPARE(project.check(), message.isEmpty() ? 0 : 1);
    QCOMPARE(project.messages, message.isEmpty() ? QStringList() : QStringList(message));
}

void TestVersionFit::paths()
{
    TestProject project;
    project.misc("costackpath", QString());
    QCOMPARE(project.check(), 0);
    QCOMPARE(project.messages, QStringList({noPathText, noPathNote}));

    const QDir folder(project.folder.path());
    QVERIFY(folder.mkdir(QStringLiteral("empty")));
    const QString canonical = QFileInfo(project.folder.path()).canonicalFilePath();
    const QList<std::pair<QString, QString>> paths = {
        {QStringLiteral("stack/../empty"), canonical + "/empty"},
        {QStringLiteral("gone"), project.folder.filePath(QStringLiteral("gone"))},
        {folder.filePath(QStringLiteral("empty")), folder.filePath(QStringLiteral("empty"))},
        {folder.filePath(QStringLiteral("gone")), folder.filePath(QStringLiteral("gone"))}};
    for (const auto &[path, shown] : paths) {
        project.messages.clear();
        project.misc("costackpath", path);
        QCOMPARE(project.check(), 0);
        QCOMPARE(project.messages, QStringList(noFileText.arg(shown)));
    }
}

void TestVersionFit::unreadableFile()
{
#ifdef Q_OS_UNIX
    TestProject project;
    const QString path = project.folder.filePath(QStringLiteral("stack/co_featureinfo_1.xml"));
    QVERIFY(QFile::setPermissions(path, QFileDevice::Permissions()));
    if (::geteuid() == 0) {
        // the administrator reads every file, but no folder
        QVERIFY(QFile::remove(path));
        QVERIFY(QDir().mkdir(path));
        VersionReader reader;
        QVERIFY(reader.setFile(path));
        QCOMPARE(reader.requiredToolVersion(), QStringLiteral("0.0"));
        return;
    }
    QCOMPARE(project.check(), 1);
    QCOMPARE(project.messages, QStringList(olderText));
#endif
}

void TestVersionFit::suppressed()
{
    TestProject project;
    project.misc("costackpath", QString());
    project.misc("SuppressedWarningGroups", QStringLiteral("WG_TOOLCHAIN"));
    QCOMPARE(project.check(), 0);
    QCOMPARE(project.messages, QStringList());
    QCOMPARE(
        project.checker.suppressedSummary(),
        QStringLiteral("<strong>Note: </strong>1 warning(s) suppressed by the project settings:\n"
                       "&nbsp;&nbsp;WG_TOOLCHAIN (Protocol stack and toolchain): 1"));
}

void TestVersionFit::ownVersion_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("required");
    QTest::newRow("one dot") << "4.3"
                             << "4.3";
    QTest::newRow("two dots") << "4.10.12"
                              << "4.10";
    QTest::newRow("three dots") << "4.3.3.117"
                                << "4.3";
}

void TestVersionFit::ownVersion()
{
    QFETCH(QString, version);
    QFETCH(QString, required);
    QCoreApplication::setApplicationVersion(version);
    TestProject project;
    write(project.folder.filePath(QStringLiteral("stack/co_featureinfo_1.xml")),
          info(required.toUtf8()));
    QCOMPARE(project.check(), 0);
    QCOMPARE(project.messages, QStringList());
}

void TestVersionFit::readerNeedsAFile()
{
    QTemporaryDir folder;
    VersionReader reader;
    QVERIFY(!reader.setFile(folder.filePath(QStringLiteral("none.xml"))));
    QCOMPARE(reader.requiredToolVersion(), QStringLiteral("0.0"));
    write(folder.filePath(QStringLiteral("one.xml")), info("7.1"));
    QVERIFY(reader.setFile(folder.filePath(QStringLiteral("one.xml"))));
    QVERIFY(!reader.setFile(folder.filePath(QStringLiteral("none.xml"))));
    QCOMPARE(reader.requiredToolVersion(), QStringLiteral("7.1"));
}

QTEST_GUILESS_MAIN(TestVersionFit)
#include "test_versionfit.moc"
