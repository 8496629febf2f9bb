#include "tests/generatedc/expectedobjects.h"
#include "tests/generatedc/generatedproject.h"
#include "tests/golden/foldercompare.h"
#include "tests/support/rows.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

const ProjectCase &caseNamed(const QString &name)
{
    const auto &cases = projectCases();
    return *std::find_if(cases.begin(), cases.end(),
                         [&](const ProjectCase &entry) { return entry.name == name; });
}

/// The case whose V3 files are all kept, banners and words among them.
const QString fullV3Case = "two lines";
const QString goldenFolder = QLatin1String(QUILLFORGE_SOURCE_DIR "/tests/generatedc/golden/");

/// The lines of a V3 file, or of a V4 file in the words of V3; the banner's lines are left out, for
/// each generation has its own.
QStringList linesOfV3(const QByteArray &content, bool isV4)
{
    QString text = QString::fromUtf8(content);
    const std::pair<const char *, const char *> words[] = {{"CORE_PROT_TYPE", "MP_PROT_TYPE"},
                                                           {"CORE_", "CO_"},
                                                           {"CAN_MULTI_LINE", "CO_MULTI_LINE"},
                                                           {"CAN_LINE", "CO_LINE"}};
    for (const auto &[v4, v3] : words) {
        if (isV4)
            text.replace(v4, v3);
    }
    QStringList lines = text.split('\n');
    lines.removeIf([](const QString &line) { return line.startsWith(" * "); });
    return lines;
}

bool isSameButForWords(const QString &v3File, const QString &v4File)
{
    return QFile::exists(v4File) && linesOfV3(FolderCompare::contentOf(v3File), false) ==
                                        linesOfV3(FolderCompare::contentOf(v4File), true);
}

/// What the sources differ in from the expected ones of the case; empty if in nothing. A V3 file
/// is kept where it differs from that of V4 by more than the words of the generation.
QString differencesFromGolden(const QString &name, bool isV4, const QString &folder)
{
    const QString base = goldenFolder + QString(name).replace(QRegularExpression("[ ,]+"), "-");
    const QString expected = base + (isV4 ? "-v4" : "-v3");
    const QStringList files = FolderCompare::filesBelow(folder);
    if (!isV4 && files != FolderCompare::filesBelow(base + "-v4"))
        return "other files than those of V4: " + files.join(' ');
    QTemporaryDir remaining;
    if (!FolderCompare::copyTree(folder, remaining.path()))
        return "can't copy " + folder;
    for (const QString &file : files) {
        if (!isV4 && name != fullV3Case &&
            isSameButForWords(folder + '/' + file, base + "-v4/" + file))
            QFile::remove(remaining.filePath(file));
    }
    if (!FolderCompare::isUpdateWanted())
        return FolderCompare::differences(expected, remaining.path());
    return QDir(expected).removeRecursively() && FolderCompare::copyTree(remaining.path(), expected)
               ? QString()
               : "can't write " + expected;
}

void compare(const QMap<QString, ExpectedSub> &actual, const QMap<QString, ExpectedSub> &expected)
{
    QCOMPARE(actual.keys(), expected.keys());
    for (auto it = expected.begin(); it != expected.end(); ++it) {
        const ExpectedSub &is = actual[it.key()];
        const ExpectedSub &wanted = *it;
        const auto check = [&](const char *what, const QString &a, const QString &b) {
            if (a != b)
                QFAIL(qPrintable(QString("%1 %2: is %3, has to be %4")
                                     .arg(it.key(), QLatin1String(what), a, b)));
        };
        check("type", is.type, wanted.type);
        check("attributes", is.attributes, wanted.attributes);
        if (!wanted.value.isEmpty() && is.value != "service")
            check("value", is.value, wanted.value);
        check("default", is.defaultValue, wanted.defaultValue);
        check("low limit", is.low, wanted.low);
        check("high limit", is.high, wanted.high);
    }
}

} // namespace

/// The generated dictionaries compile, and what they hold is what the project says.
class TestGeneratedC : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("SOURCE_DATE_EPOCH", "1704067200"); }

    void dictionary_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isV4");
        for (const ProjectCase &projectCase : projectCases()) {
            for (const bool isV4 : {true, false})
                QTest::addRow("%s, %s", projectCase.name, isV4 ? "V4" : "V3")
                    << QString(projectCase.name) << isV4;
        }
    }

    void dictionary()
    {
        QFETCH(QString, name);
        QFETCH(bool, isV4);
        const ProjectCase &projectCase = caseNamed(name);
        GeneratedProject generated(projectCase, isV4);
        generated.generate();
        QCOMPARE(!generated.errorText().isEmpty(), projectCase.hasError);
        const QString report = differencesFromGolden(name, isV4, generated.folder());
        QVERIFY2(report.isEmpty(), qPrintable(report));
        QCOMPARE(generated.compile("clang"), QString());
        QCOMPARE(generated.compile("gcc"), QString());
        QString output;
        QCOMPARE(generated.run(output), QString());

        QStringList problems;
        const auto actual = ExpectedObjects::parse(output, problems);
        QCOMPARE(problems, QStringList());
        QVERIFY(output.contains("init 0"));
        if (!projectCase.hasError)
            compare(actual, ExpectedObjects::of(generated.project().store()));
    }

    void initialisation_data()
    {
        testRows<QString, QStringList>(
            {"name", "lines"},
            {{"services",
              "services",
              {"call 0 led", "call 0 sdo server 1", "call 0 sdo client 1",
               "call 0 error control 1000 3", "call 0 emcy producer", "call 0 sync 80 10000 500",
               "call 0 emcy consumer 5", "call 0 time 100", "call 0 srd", "call 0 gfc 1 1",
               "call 0 srdo 1", "call 0 isotp", "call 0 idnego", "call 0 guarding",
               "call 0 lss master", "call 0 nmt 1"}},
             {"PDOs",
              "PDOs",
              {"call 0 rpdo 1 type=254 inhibit=100 event=0 table=1",
               "map 0 RPDO2 1 20000010 length=2 numeric=1 ok row=ok",
               "call 0 rpdo 2 type=254 inhibit=100 event=0 table=1",
               "map 0 RPDO3 1 00050008 length=1 numeric=1 null row=none",
               "map 0 RPDO3 2 21000020 length=4 numeric=1 ok row=ok",
               "call 0 rpdo 4 type=254 inhibit=100 event=0 table=0",
               "map 0 TPDO1 3 21010008 length=1 numeric=1 ok",
               "call 0 tpdo 1 type=254 inhibit=100 event=500 start=7 table=1",
               "map 0 TPDO2 1 21020008 length=1 numeric=1 null",
               "map 0 TPDO2 2 7fff0008 length=1 numeric=0 null",
               "call 0 tpdo 3 type=254 inhibit=100 event=500 start=7 table=0",
               "call 0 tpdo 4 type=254 inhibit=100 event=500 start=7 table=1",
               "call 0 tpdo 5 type=0 inhibit=0 event=0 start=0 table=0"}},
             {"bits",
              "PDOs, bitwise",
              {"map 0 TPDO6 1 22000001 length=1 numeric=1 ok",
               "map 0 TPDO6 2 20020008 length=8 numeric=1 ok"}},
             {"COB-IDs",
              "overwritten connection set",
              {"call 0 cobid 1200:01 605", "call 0 cobid 1200:02 585", "call 0 cobid 1201:01 701",
               "call 0 cobid 1201:02 702", "call 0 cobid 1400:01 201", "call 0 cobid 1800:01 185",
               "overwrite 0"}},
             {"two lines",
              "two lines",
              {"call 0 nmt 0", "call 1 nmt 1", "call 0 cobid 1800:01 185", "overwrite 0",
               "object 1 2001 ARRAY rows=4 highest=3",
               "map 1 RPDO2 1 20020010 length=2 numeric=1 ok row=ok",
               "call 1 tpdo 1 type=254 inhibit=100 event=500 "
               "start=7 table=1"}},
             {"CAN FD", "CAN FD", {"call 0 usdo server", "call 0 usdo client 3"}},
             {"compact",
              "compact",
              {"object 0 2100 ARRAY rows=2 highest=10", "object 0 2101 ARRAY rows=4 highest=6",
               "object 0 2102 ARRAY rows=2 highest=5", "object 0 1f82 ARRAY rows=2 highest=127"}},
             {"strings", "hostile texts", {"texts say \"hi\" 1234 1234"}}});
    }

    void initialisation()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, lines);
        GeneratedProject generated(caseNamed(name), true);
        generated.generate();
        QCOMPARE(generated.compile("gcc"), QString());
        QString output;
        QCOMPARE(generated.run(output), QString());
        for (const QString &line : std::as_const(lines))
            QVERIFY2(output.contains('\n' + line + '\n'), qPrintable(line + "\nin\n" + output));
    }

    /// The dictionary that a J1939 device serves over CAN-IDs of its own.
    void serverOnly()
    {
        for (const char *name : {"device", "two lines"}) {
            for (const bool isV4 : {false, true}) {
                GeneratedProject generated(caseNamed(name), isV4);
                generated.project().setting("line0type", "2");
                generated.generateServerOnly();
                QCOMPARE(generated.errorText(), QString());
                QVERIFY(generated.text("gen_objdict.c").contains("RET_T\tj1939OdInit("));
                QVERIFY(!generated.text("gen_objdict.c").contains("serviceInitVars"));
                QCOMPARE(generated.compileDictionary("clang"), QString());
                QCOMPARE(generated.compileDictionary("gcc"), QString());
            }
        }
    }

    void withoutStdlib()
    {
        GeneratedProject generated(caseNamed("device"), true);
        generated.addFile("no_stdlib_include.txt");
        generated.generate();
        QVERIFY(!generated.text("gen_objdict.c").contains("stdlib.h"));
    }

    /// The stand-in stack's types notice what a slip of the generator would look like.
    void strictStub()
    {
        const QList<std::pair<QString, QString>> slips = {
            {"CORE_DTYPE_U32, CO_DSPEC_CONST", "CO_DSPEC_CONST, CORE_DTYPE_U32"},
            {"CORE_DTYPE_U32, CO_DSPEC_CONST", "CORE_DTYPE_U32 CO_DSPEC_CONST"},
            {"CORE_DTYPE_U32, CO_DSPEC_CONST", "CO_DSPEC_CONST"},
            {"#define CO_OBJ_DESC_CNT ", "#define CO_OBJ_DESC_CNT 1u + 0u * "},
            {"#define CO_OD_ASSIGN_CNT ", "#define CO_OD_ASSIGN_CNT 1u + 0u * "},
            {"u, CO_ODTYPE_VAR,", "u, 1u, CO_ODTYPE_VAR,"},
            {"    , od_const_u16\n", ""},
            {"    , od_const_u16\n    , od_const_u32\n",
             "    , od_const_u32\n    , od_const_u16\n"},
            {"   { CO_TXPDO_COUNTS },", "   { CO_TXPDO_COUNTS }"},
        };
        GeneratedProject generated(caseNamed("device"), true);
        generated.generate();
        const QString original = generated.text("gen_objdict.c");
        for (const auto &[from, to] : slips) {
            QVERIFY2(original.contains(from), qPrintable(from));
            generated.replaceSource(QString(original).replace(from, to));
            QVERIFY2(!generated.compile("gcc").isEmpty(), qPrintable(from + " -> " + to));
        }
    }
};

QTEST_GUILESS_MAIN(TestGeneratedC)
#include "tst_generatedc.moc"
