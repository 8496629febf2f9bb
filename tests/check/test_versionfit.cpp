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

const QString older = QStringLiteral("CO-STACK-OLDER");

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
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("can't write %s", qPrintable(path));
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
    void readerNeedsAFile();
};

void TestVersionFit::folders_data()
{
    QTest::addColumn<Files>("files");
    QTest::addColumn<QString>("said");
    QTest::addColumn<QString>("ownVersion");
    const auto row = [](const char *name, const Files &files, const QString &said,
                        const QString &ownVersion = QStringLiteral("4.3.3")) {
        QTest::newRow(name) << files << said << ownVersion;
    };
    const QString f = QStringLiteral("co_featureinfo_1.xml");
    row("equal", {{f, info(" 4.3\n")}}, {});
    row("own version of one dot", {{f, info("4.3")}}, {}, "4.3");
    row("own version of two dots", {{f, info("4.10")}}, {}, "4.10.12");
    row("own version of three dots", {{f, info("4.3")}}, {}, "4.3.3.117");
    row("lower", {{f, info("4.2")}}, "CO-STACK-VERSION 4.2 4.3");
    row("higher", {{f, info("4.4")}}, "CO-STACK-VERSION 4.4 4.3");
    row("empty element", {{f, info("")}}, "CO-STACK-VERSION  4.3");
    row("element missing", {{f, "<a><tool_version>4.3</tool_version></a>"}}, older);
    row("first element counts", {{f, "<a>" + info("4.3").mid(21) + info("9.9").mid(21) + "</a>"}},
        {});
    row("broken", {{f, "<a><required_tool_version>4.3</required_tool_version>"}}, older);
    row("empty file", {{f, ""}}, older);
    row("no XML", {{f, QByteArray(1000, '\0')}}, older);
    row("entities", {{f, bomb()}}, older);
    row("one entity",
        {{f, "<!DOCTYPE a [<!ENTITY v \"4.3\">]><a><required_tool_version>&v;"
             "</required_tool_version></a>"}},
        older);
    row("document type", {{f, "<!DOCTYPE a><a>" + info("4.3").mid(21) + "</a>"}}, {});
    row("nested", {{f, QByteArray("<a>").repeated(300000) + QByteArray("</a>").repeated(300000)}},
        older);
    row("huge", {{f, "<a>" + info("4.3").mid(21) + QByteArray(5 << 20, ' ') + "</a>"}}, older);
    row("two, the second differs", {{"a_featureinfo_1.xml", info("4.3")}, {f, info("4.1")}},
        "CO-STACK-VERSION 4.1 4.3");
    row("two, both differ", {{"a_featureinfo_1.xml", info("5.0")}, {f, info("4.1")}},
        "CO-STACK-VERSION 5.0 4.3");
    row("other files", {{f, info("4.3")}, {"featureinfo.xml", info("1.0")}}, {});
}

void TestVersionFit::folders()
{
    QFETCH(Files, files);
    QFETCH(QString, said);
    QFETCH(QString, ownVersion);
    QCoreApplication::setApplicationVersion(ownVersion);
    TestProject project;
    QTemporaryDir stack;
    for (auto it = files.cbegin(); it != files.cend(); ++it)
        write(stack.filePath(it.key()), it.value());
    project.misc("costackpath", stack.path());
    QCOMPARE(project.check(), said.isEmpty() ? 0 : 1);
    QCOMPARE(project.said, said);
}

void TestVersionFit::paths()
{
    TestProject project;
    project.misc("costackpath", QString());
    QCOMPARE(project.check(), 0);
    QCOMPARE(project.said, QStringLiteral("CO-STACK-NO-PATH; CO-STACK-NO-PATH-NOTE"));

    const QDir folder(project.folder.path());
    QVERIFY(folder.mkdir(QStringLiteral("empty")));
    const QString canonical = QFileInfo(project.folder.path()).canonicalFilePath();
    const QList<std::pair<QString, QString>> paths = {
        {QStringLiteral("stack/../empty"), canonical + "/empty"},
        {QStringLiteral("gone"), project.folder.filePath(QStringLiteral("gone"))},
        {folder.filePath(QStringLiteral("empty")), folder.filePath(QStringLiteral("empty"))},
        {folder.filePath(QStringLiteral("gone")), folder.filePath(QStringLiteral("gone"))}};
    for (const auto &[path, shown] : paths) {
        project.misc("costackpath", path);
        QCOMPARE(project.check(), 0);
        QCOMPARE(project.said, QStringLiteral("CO-STACK-NO-FILE %1").arg(shown));
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
    QCOMPARE(project.said, older);
#endif
}

void TestVersionFit::suppressed()
{
    TestProject project;
    project.misc("costackpath", QString());
    project.misc("SuppressedWarningGroups", QStringLiteral("WG_TOOLCHAIN"));
    QCOMPARE(project.check(), 0);
    QCOMPARE(project.said, QString());
    QCOMPARE(
        project.checker.suppressedSummary(),
        QStringLiteral("<strong>Note: </strong>1 warning(s) suppressed by the project settings:\n"
                       "&nbsp;&nbsp;WG_TOOLCHAIN (Protocol stack and toolchain): 1"));
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
