#include "testproject.h"
#include "tests/support/storefile.h"

#include "check/versionreader.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTest>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace {

const QString older = u"CO-STACK-OLDER"_s;

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

using Files = QMap<QString, QByteArray>;

} // namespace

class TestVersionFit : public QObject
{
    Q_OBJECT

private slots:
    void init() { QCoreApplication::setApplicationVersion(u"4.3.3"_s); }

    void folders()
    {
        const QString f = u"co_featureinfo_1.xml"_s;
        struct Row
        {
            Files files;
            QString said;
            QString ownVersion = u"4.3.3"_s;
        };
        const Row rows[] = {
            {{{f, info(" 4.3\n")}}, {}},
            {{{f, info("4.3")}}, {}, "4.3"},
            {{{f, info("4.10")}}, {}, "4.10.12"},
            {{{f, info("4.3")}}, {}, "4.3.3.117"},
            {{{f, info("4.2")}}, "CO-STACK-VERSION 4.2 4.3"},
            {{{f, info("4.4")}}, "CO-STACK-VERSION 4.4 4.3"},
            {{{f, info("")}}, "CO-STACK-VERSION  4.3"},
            {{{f, "<a><tool_version>4.3</tool_version></a>"}}, older},
            {{{f, "<a>" + info("4.3").mid(21) + info("9.9").mid(21) + "</a>"}}, {}},
            {{{f, "<a><required_tool_version>4.3</required_tool_version>"}}, older},
            {{{f, ""}}, older},
            {{{f, QByteArray(1000, '\0')}}, older},
            {{{f, bomb()}}, older},
            {{{f, "<!DOCTYPE a [<!ENTITY v \"4.3\">]><a><required_tool_version>&v;"
                  "</required_tool_version></a>"}},
             older},
            {{{f, "<!DOCTYPE a><a>" + info("4.3").mid(21) + "</a>"}}, {}},
            {{{f, QByteArray("<a>").repeated(300000) + QByteArray("</a>").repeated(300000)}},
             older},
            {{{f, "<a>" + info("4.3").mid(21) + QByteArray(5 << 20, ' ') + "</a>"}}, older},
            {{{"a_featureinfo_1.xml", info("4.3")}, {f, info("4.1")}}, "CO-STACK-VERSION 4.1 4.3"},
            {{{"a_featureinfo_1.xml", info("5.0")}, {f, info("4.1")}}, "CO-STACK-VERSION 5.0 4.3"},
            {{{f, info("4.3")}, {"featureinfo.xml", info("1.0")}}, {}}};
        for (const auto &[files, said, ownVersion] : rows) {
            QCoreApplication::setApplicationVersion(ownVersion);
            TestProject project;
            QTemporaryDir stack;
            for (auto it = files.cbegin(); it != files.cend(); ++it)
                writeFile(stack.filePath(it.key()), it.value());
            project.misc("costackpath", stack.path());
            QCOMPARE(project.check(), said.isEmpty() ? 0 : 1);
            QCOMPARE(project.said, said);
        }
    }

    void paths()
    {
        TestProject project;
        project.misc("costackpath", QString());
        QCOMPARE(project.check(), 0);
        QCOMPARE(project.said, u"CO-STACK-NO-PATH; CO-STACK-NO-PATH-NOTE"_s);

        const QDir folder(project.folder.path());
        QVERIFY(folder.mkdir(u"empty"_s));
        const QString canonical = QFileInfo(project.folder.path()).canonicalFilePath();
        const QList<std::pair<QString, QString>> paths = {
            {u"stack/../empty"_s, canonical + "/empty"},
            {u"gone"_s, project.folder.filePath(u"gone"_s)},
            {folder.filePath(u"empty"_s), folder.filePath(u"empty"_s)},
            {folder.filePath(u"gone"_s), folder.filePath(u"gone"_s)}};
        for (const auto &[path, shown] : paths) {
            project.misc("costackpath", path);
            QCOMPARE(project.check(), 0);
            QCOMPARE(project.said, u"CO-STACK-NO-FILE %1"_s.arg(shown));
        }
    }

    void unreadableFile()
    {
#ifdef Q_OS_UNIX
        TestProject project;
        const QString path = project.folder.filePath(u"stack/co_featureinfo_1.xml"_s);
        QVERIFY(QFile::setPermissions(path, QFileDevice::Permissions()));
        if (::geteuid() == 0) {
            // the administrator reads every file, but no folder
            QVERIFY(QFile::remove(path));
            QVERIFY(QDir().mkdir(path));
            VersionReader reader;
            QVERIFY(reader.setFile(path));
            QCOMPARE(reader.requiredToolVersion(), u"0.0"_s);
            return;
        }
        QCOMPARE(project.check(), 1);
        QCOMPARE(project.said, older);
#endif
    }

    void readerNeedsAFile()
    {
        QTemporaryDir folder;
        VersionReader reader;
        QVERIFY(!reader.setFile(folder.filePath(u"none.xml"_s)));
        QCOMPARE(reader.requiredToolVersion(), u"0.0"_s);
        writeFile(folder.filePath(u"one.xml"_s), info("7.1"));
        QVERIFY(reader.setFile(folder.filePath(u"one.xml"_s)));
        QVERIFY(!reader.setFile(folder.filePath(u"none.xml"_s)));
        QCOMPARE(reader.requiredToolVersion(), u"7.1"_s);
    }
};

QTEST_GUILESS_MAIN(TestVersionFit)
#include "tst_versionfit.moc"
