#include "tests/gendefine/generatedheaders.h"

#include "generators/define/gendefinegenerator.h"
#include "tests/support/filesizelimit.h"
#include "tests/support/rows.h"

#include <QDir>
#include <QTest>

using Build = std::function<void(TestProject &)>;
using Defines = QMap<QString, QString>;
Q_DECLARE_METATYPE(Build)

namespace {

const QByteArray oldHead = "#ifndef GEN_DEFINE_H\n#define GEN_DEFINE_H 1\n";
const QByteArray notice = "/* do not modify comments starting with 'user-specific section:' */\n";
const QByteArray startMark = "/* user-specific section: start */\n";
const QByteArray endMark = "/* user-specific section: end */\n";
const QByteArray oldTail = "\n#endif /* GEN_DEFINE_H */\n";

QByteArray utf16(const QByteArray &text)
{
    const QString wide = QChar(0xFEFF) + QString::fromUtf8(text);
    return QByteArray(reinterpret_cast<const char *>(wide.utf16()), wide.size() * 2);
}

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

/// The bytes between the markers.
QByteArray sectionOf(const QByteArray &header)
{
    const qsizetype from = header.indexOf(startMark) + startMark.size();
    return header.mid(from, header.lastIndexOf(endMark) - from);
}

} // namespace

/// What a new gen_define.h keeps of its former self.
class TestUserSection : public QObject
{
    Q_OBJECT

private slots:
    void userSection_data()
    {

        const QByteArray text = "#define MINE 1\n\n  /* indented */\n";
        const QByteArray whole = oldHead + notice + startMark + text + endMark + oldTail;
        const QByteArray bytes = "caf\xE9 \xFF\xFE \xC3\xA4 tab\t\x01\n";
        const QByteArray longLine = QByteArray(5000000, 'x') + '\n';
        testRows<QByteArray, QByteArray>(
            {"former", "lines"},
            {{"none", {}, "\n"},
             {"LF", whole, text},
             {"CR LF", QByteArray(whole).replace("\n", "\r\n"), text},
             {"CR", QByteArray(whole).replace("\n", "\r"), text},
             {"mixed", QByteArray(whole).replace("1\n", "1\r\n"), text},
             {"UTF-16", utf16(whole), text},
             {"bytes that are no UTF-8", oldHead + startMark + bytes + endMark + oldTail, bytes},
             {"no end marker", oldHead + startMark + text + "last", text + "last\n"},
             {"no start marker", oldHead + notice + text + endMark + oldTail, text},
             {"markers in other lines", whole + "x " + startMark + "lost? " + endMark, text},
             {"two sections", whole + startMark + "more\n" + endMark, text + "more\n"},
             {"huge", oldHead + startMark + QByteArray(text).repeated(200000) + endMark,
              QByteArray(text).repeated(200000)},
             {"long line", oldHead + startMark + longLine + endMark, longLine},
             {"no header at all", QByteArray("\0\x80junk", 6), "\n"}});
    }

    void userSection()
    {
        QFETCH(QByteArray, former);
        QFETCH(QByteArray, lines);
        TestProject project(true);
        project.addDevice(0);
        GeneratedHeaders files(project);
        if (!former.isEmpty())
            files.write("gen_define.h", former);
        GenDefineGenerator generator;
        files.run(generator);
        const QByteArray written = readBytes(files.path("gen_define.h"));
        QVERIFY(sectionOf(written) == lines);
        QVERIFY(written.endsWith(endMark + oldTail));
        QCOMPARE(generator.userSection().trimmed(), QString::fromUtf8(lines).trimmed());
    }

    void hundredRuns()
    {
        TestProject project(false);
        project.addDevice(0);
        project.settings("generate_generation_counter=1");
        project.setting("user_defines", "#ifdef GEN_GENERATION_COUNT_SHOWN\n#endif");
        GeneratedHeaders files(project);
        const QByteArray lines = "\n#define MINE \"\xE9\" \\\n  2\n\n";
        files.write("gen_define.h", startMark + lines + endMark);
        for (int run = 1; run <= 100; ++run) {
            CoDefineGenerator generator;
            const QString text = files.run(generator);
            QVERIFY(sectionOf(readBytes(files.path("gen_define.h"))) == lines);
            QVERIFY(text.contains(QString("#define GEN_GENERATION_COUNT\t%1ul\n").arg(run)));
        }
    }

    void generationCount_data()
    {

        const Build on = [](TestProject &project) {
            project.setting("generate_generation_counter", "1");
        };
        const QByteArray old = "#define GEN_GENERATION_COUNT\t17ul\n";
        const Build tool = [on](TestProject &project) {
            on(project);
            project.setting("tsk_generation_count", "5");
        };
        testRows<QByteArray, Build, bool, QString>(
            {"former", "build", "fromNetworkTool", "count"},
            {{"counts on", old, on, false, "18ul"},
             {"CR LF", QByteArray(old).replace("\n", "\r\n"), on, false, "18ul"},
             {"hexadecimal", "#define GEN_GENERATION_COUNT\t0x1Ful\n", on, false, "32ul"},
             {"damaged", "#define GEN_GENERATION_COUNT\tul\n", on, false, "1ul"},
             {"off", old, Build(), false, "missing"},
             {"network tool", old, tool, true, "5ul"},
             {"network tool without count", old, on, true, "missing"}});
    }

    void generationCount()
    {
        QFETCH(QByteArray, former);
        QFETCH(Build, build);
        QFETCH(bool, fromNetworkTool);
        QFETCH(QString, count);
        TestProject project(true);
        if (build)
            build(project);
        GeneratedHeaders files(project);
        files.write("gen_define.h", former);
        GenDefineGenerator generator;
        generator.setFromNetworkTool(fromNetworkTool);
        const Defines defines = GeneratedHeaders::defines(files.run(generator));
        QCOMPARE(defines.value("GEN_GENERATION_COUNT", "missing"), count);
    }

    void failedRuns_data()
    {
        testRows<QString>({"failure"}, {{"disk full", "disk full"}, {"stopped", "stopped"}});
    }

    /// A run that does not end well leaves the former file as it was, and says so.
    void failedRuns()
    {
        QFETCH(QString, failure);
        TestProject project(true);
        project.addDevice(0);
        GeneratedHeaders files(project);
        const QByteArray former = oldHead + startMark + "#define MINE 1\n" + endMark + oldTail;
        files.write("gen_define.h", former);
        GenDefineGenerator generator;
        connect(&generator, &AbstractGenerator::progress, &generator, [&](quint8 percent) {
            if (failure == "stopped" && percent < 100)
                QCOMPARE(generator.requestStop(), int(AbstractGenerator::Done));
        });
        if (failure == "disk full") {
            if (!FileSizeLimit::isSupported())
                QSKIP("no way to limit files");
            const FileSizeLimit limit(500);
            files.run(generator);
        } else {
            files.run(generator);
        }
        QVERIFY(generator.errorCode() != 0);
        QCOMPARE(readBytes(files.path("gen_define.h")), former);
        QCOMPARE(QDir(files.folder()).entryList(QDir::Files), QStringList("gen_define.h"));
    }
};

QTEST_GUILESS_MAIN(TestUserSection)
#include "tst_usersection.moc"
