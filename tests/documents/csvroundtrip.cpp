#include "canopen/cohelper.h"
#include "documents/csvgenerator.h"
#include "documents/icsvgenerator.h"
#include "import/csvimporter.h"
#include "import/csvimporterreader.h"
#include "tests/documents/textdocproject.h"
#include "tests/support/rows.h"

using Entry = DocumentProject::Entry;
using Object = DocumentProject::Object;

namespace {

/// All that a table carries of a line, one line an object or a subindex, for comparison.
QStringList contentOf(ObjectDataBase &store, quint8 line, bool isIcsv)
{
    QStringList lines;
    const QList<quint16> indices = store.getIndices(line, 0x1000);
    for (const quint16 index : indices) {
        Object object;
        store.getIndexData(line, index, object);
        lines.append(QStringLiteral("%1 %2 %3 '%4' '%5'")
                         .arg(index, 4, 16)
                         .arg(object.objecttype)
                         .arg(object.datatype)
                         .arg(object.name, isIcsv ? object.description : QString()));
        const QList<quint8> subindices = store.getSubIndices(line, index);
        for (const quint8 subindex : subindices) {
            Entry e;
            store.getSubIndexData(line, index, subindex, e);
            QStringList fields = {e.name,
                                  e.accesstype,
                                  e.defaultvalue,
                                  e.lowlimit,
                                  e.uplimit,
                                  e.varname,
                                  e.pdomapping.label(),
                                  QString::number(e.datatype),
                                  QString::number(e.size),
                                  QString::number(e.implementation),
                                  QString::number(e.defaultineds),
                                  QString::number(e.writedefaulttoeds),
                                  QString::number(e.limitineds)};
            if (isIcsv)
                fields += {e.description, QString::number(e.nvstorage)};
            else
                fields += {QString::number(e.refuseread), QString::number(e.refusewrite)};
            lines.append(QStringLiteral("  %1: '%2'").arg(subindex).arg(fields.join("' '")));
        }
    }
    return lines;
}

/// Every data type, access, mapping, implementation and flag, and texts that a table may break.
void fillWithEverything(DocumentProject &project)
{
    const QStringList texts = {"plain",       "a,b",         "a;b",      "say \"hi\"",
                               "\"",          "#no",         " blanks ", "two\nlines",
                               "äö漢😀",       "'",           "a\tb",     "$I {$s}",
                               "=SUM(A1:A2)", "\"a\",\n\"b", "c,d",      "</td>"};
    const QStringList accesses = {"const", "ro", "wo", "rw", "rwr", "rww"};
    const QMap<quint16, QString> &types = COHelper::stringDataTypeIndexMap();
    quint16 index = 0x2000;
    int turn = 0;
    const auto text = [&] { return texts.at(turn++ % texts.size()); };
    for (auto type = types.begin(); type != types.end(); ++type, ++index) {
        const bool isArray = index % 3 == 1;
        const bool isRecord = index % 3 == 2;
        const quint32 code = isArray ? CANopen::ARRAY : isRecord ? CANopen::RECORD : CANopen::VAR;
        const QString description = text();
        project.add(index, code, text(), description, isRecord ? quint16(0x23) : type.key());
        const QList<quint8> subindices = isArray || isRecord
                                             ? QList<quint8>({0, 1, 8, 9, 10, 16, 100, 255})
                                             : QList<quint8>({0});
        for (const quint8 subindex : subindices) {
            Entry entry = DocumentProject::entry(text(), type.key(), accesses.at(turn % 6), text());
            entry.description = text();
            if (code == CANopen::VAR) { // one row for both
                entry.description = description;
                Object object;
                project.store().getIndexData(0, index, object);
                entry.name = object.name;
            }
            entry.pdomapping = PDOMapping::fromUInt(static_cast<uint>(turn % 5));
            entry.implementation = static_cast<quint8>(turn % 4);
            entry.varname = entry.implementation == CANopen::Variable ? "v" : turn % 2 ? "w" : "";
            entry.defaultineds = turn % 2 == 1;
            entry.writedefaulttoeds = entry.defaultineds ? turn % 3 == 0 : 2 * (turn % 3 == 0);
            entry.lowlimit = turn % 7 ? "-0x10" : "";
            entry.uplimit = turn % 5 ? "1.5e3" : "";
            entry.limitineds = turn % 4 == 0;
            entry.refuseread = turn % 11 == 0;
            entry.refusewrite = turn % 13 == 0;
            entry.nvstorage = turn % 6 == 0;
            entry.size = static_cast<quint32>(turn % 9);
            project.add(index, subindex, entry);
            ++turn;
        }
    }
    project.add(0x5000, CANopen::ARRAY, "without elements");
    project.add(0x5000, 0, DocumentProject::entry("count", CAN::UNSIGNED8, "ro", "0"));
    project.add(0x5001, CANopen::DOMAIN_OBJECT, "domain", {}, CAN::DOMAIN_TYPE);
    Entry domain = DocumentProject::entry("domain", CAN::DOMAIN_TYPE, "rw");
    domain.size = 100000;
    project.add(0x5001, 0, domain);
}

} // namespace

class TestCsvImport : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { DocumentProject::initApplication(); }

    void init()
    {
        m_project = std::make_unique<DocumentProject>();
        QVERIFY(m_project->isReady());
    }

    void roundTrip_data() { testRows<bool>({"isIcsv"}, {{"CSV", false}, {"ICSV", true}}); }

    void roundTrip()
    {
        QFETCH(bool, isIcsv);
        fillWithEverything(*m_project);
        std::unique_ptr<AbstractGenerator> generator = std::make_unique<CSVGenerator>();
        if (isIcsv)
            generator = std::make_unique<ICSVGenerator>();
        const QByteArray table = m_project->generate(*generator).toUtf8();
        const QStringList expected = contentOf(m_project->store(), 0, isIcsv);
        QVERIFY(expected.size() > 200);
        QCOMPARE(import(table, 1), QStringList());
        const QStringList actual = contentOf(m_project->store(), 1, isIcsv);
        for (qsizetype i = 0; i < std::min(expected.size(), actual.size()); ++i)
            QCOMPARE(actual.at(i), expected.at(i));
        QCOMPARE(actual.size(), expected.size());
    }

    /// What the table can't carry stays where it is.
    void importOntoItself()
    {
        m_project->fill();
        Entry entry;
        m_project->store().getSubIndexData(0, 0x1018, 1, entry);
        entry.writedefaulttoeds = 2;
        entry.category = CANopen::Mandatory;
        entry.denotation = "d";
        entry.metadata = {{"eds_define", "x"}};
        m_project->add(0x1018, 1, entry);
        CSVGenerator csv;
        ICSVGenerator icsv;
        QCOMPARE(import(m_project->generate(csv).toUtf8()), QStringList());
        QCOMPARE(import(m_project->generate(icsv).toUtf8()), QStringList());
        Entry after;
        m_project->store().getSubIndexData(0, 0x1018, 1, after);
        QCOMPARE(after.writedefaulttoeds, entry.writedefaulttoeds);
        QCOMPARE(after.category, entry.category);
        QCOMPARE(after.denotation, entry.denotation);
        QCOMPARE(after.metadata, entry.metadata);
    }

    void rows_data()
    {
        QTest::addColumn<QByteArray>("table");
        QTest::addColumn<QStringList>("expected"); // from contentOf, only the first fields
        const auto row = [](const char *name, const QByteArray &table,
                            const QStringList &expected) {
            QTest::newRow(name) << table << expected;
        };
        const QString plain = "' 'ro' '' '0' '255' 'v_81920' 'Forbidden' '5'";
        row("index alone", "index\n0x2000\n",
            {"2000 7 5 'Object_2000' ''", "  0: 'Object_2000" + plain});
        row("upper case, semicolon, any order", "EDSNAME;INDEX\nname;0x2000\n",
            {"2000 7 5 'name' ''", "  0: 'name" + plain});
        row("tabulator", "index\tedsname\n0x2000\ta,b\n",
            {"2000 7 5 'a,b' ''", "  0: 'a,b" + plain});
        row("comments, empty lines, line ends, mark",
            "\xEF\xBB\xBF# x\r\rindex,edsname\r\n\r\n,\n# y\n0x2000,name",
            {"2000 7 5 'name' ''", "  0: 'name" + plain});
        row("Latin-1", "index,edsname\n0x2000,\xE4\n", {"2000 7 5 'ä' ''", "  0: 'ä" + plain});
        row("field over two lines", "index,edsname\n0x2000,\"a\r\nb\"\n",
            {"2000 7 5 'a\nb' ''", "  0: 'a\nb" + plain});
        row("quotation mark inside", "index,edsname\n0x2000,5\" pipe\n",
            {"2000 7 5 '5\" pipe' ''", "  0: '5\" pipe" + plain});
        row("array",
            "index,sub,objectcode,edsname,datatype,access\n0x2000,,ARRAY,list,U16,\n"
            "0x2000,1,,one,U16,rw\n0x2000,10,,ten,,wo\n",
            {"2000 8 6 'list' ''",
             "  0: 'Highest Subindex supported' 'const' '10' '0' '255' '' 'Forbidden' '5' '0' '1'",
             "  1: 'one' 'rw' '' '0' '65535' 'v_81921' 'Forbidden' '6'",
             "  10: 'ten' 'wo' '' '0' '65535' 'v_819210' 'Forbidden' '6'"});
        row("record without a code", "index,sub,edsname\n0x2000,0,count\n0x2000,0x0a,ten\n",
            {"2000 9 0 'count' ''", "  0: 'count" + plain,
             "  10: 'ten' 'ro' '' '0' '255' 'v_819210' 'Forbidden' '5'"});
        row("string without an implementation",
            "index,datatype,access,value\n0x2000,VISIBLE_STRING,ro,abc\n0x2001,U8S,rw,\n",
            {"2000 7 9 'Object_2000' ''",
             "  0: 'Object_2000' 'ro' 'abc' '' '' 'v_81920' 'Forbidden' '9' '3' '1' '1' '1'",
             "2001 7 124 'Object_2001' ''",
             "  0: 'Object_2001' 'rw' '' '' '' 'v_81930' 'Forbidden' '124' '1' '2' '0' '0'"});
        row("virtual object", "index,implementation,varname\n0x2000,virtualobject,\n",
            {"2000 7 5 'Object_2000' ''",
             "  0: 'Object_2000' 'ro' '' '0' '255' '' 'Forbidden' '5' '0' '3'"});
        row("spellings",
            "index,access,mapable,lowlimit,uplimit,haslimit\n0x2000,Read/Write,1,3,,YES\n",
            {"2000 7 5 'Object_2000' ''",
             "  0: 'Object_2000' 'rw' '' '3' '' 'v_81920' 'Allowed' '5' '0' '0' '0' '0' '1'"});
    }

    void rows()
    {
        QFETCH(QByteArray, table);
        import(table);
        const QStringList actual = contentOf(m_project->store(), 0, true);
        QFETCH(QStringList, expected);
        QCOMPARE(actual.size(), expected.size());
        for (qsizetype i = 0; i < expected.size(); ++i)
            QCOMPARE(actual.at(i).left(expected.at(i).size()), expected.at(i));
    }

    void existingObjects()
    {
        m_project->fill();
        QCOMPARE(import("index,sub,value\n0x1018,1,0x42\n0x2000,0,7\n"), QStringList());
        const QStringList lines = contentOf(m_project->store(), 0, true);
        QVERIFY(lines.contains("1018 9 35 'Identity' 'Who\nit is'"));
        QVERIFY(
            lines.contains("  1: 'Vendor $i' 'ro' '0x42' '' '' '' 'Forbidden' '7' '0' '1' '1' '1' "
                           "'0' 'number\r\nof CiA' '0'"));
        QVERIFY(lines.contains("2000 7 3 'Level {$I}' ''"));
        QVERIFY(
            lines.contains("  0: 'Level' 'rwr' '7' '-10' '10' 'level$i' 'TPDO' '3' '0' '2' '0' '0' "
                           "'1' '' '1'"));
        // Limits of another type would mean nothing.
        QCOMPARE(import("index,sub,datatype\n0x2000,0,UNSIGNED8\n"), QStringList());
        Entry level;
        QVERIFY(m_project->store().getSubIndexData(0, 0x2000, 0, level));
        QCOMPARE(level.lowlimit + '-' + level.uplimit, "0-255");
        // A record that is stated to be a variable has no other subindices any more.
        QCOMPARE(
            import("index,objectcode\n0x1018,VARIABLE\n"),
            QStringList("in.csv: Arrays or records have become variables; subindices that went "
                        "with that: 1."));
        QCOMPARE(m_project->store().getSubIndices(0, 0x1018), QList<quint8>({0}));
    }

    void commands()
    {
        m_project->fill();
        ObjectDataBase &store = m_project->store();
        QCOMPARE(import("d,0x2000\nindex,edsname\nc,0x3000,0x2000\n0x4000,x\nC, 0x1018 ,0x4,0x1\n"
                        "d,0x1018,0\nd,0x7777\nd,0x2001,9\nc,0x3001,0x7777\n"),
                 QStringList());
        QVERIFY(store.indexExists(0, 0x3000));
        QVERIFY(!store.indexExists(0, 0x2000));
        QVERIFY(store.indexExists(0, 0x4000));
        QVERIFY(!store.indexExists(0, 0x3001));
        QCOMPARE(store.getSubIndices(0, 0x1018), QList<quint8>({1, 4}));
        QCOMPARE(store.getSubIndexName(0, 0x1018, 4), "Vendor $i");
        QVERIFY(store.subIndexExists(0, 0x2001, 0));
        // Commands need no table.
        QCOMPARE(import("d,0x4000\n"), QStringList());
        QVERIFY(!store.indexExists(0, 0x4000));
    }

    void linesAndRange()
    {
        ObjectDataBase &store = m_project->store();
        const QByteArray table =
            "index,line\n0x2000,\n0x2001,0\n0x2002,1\n0x2003,7\n0x1fff,\n0x3001,\n";
        QCOMPARE(import(table, 1, 0x2000, 0x3000),
                 QStringList({"in.csv:5: The project has no line '7'; the row is passed over."}));
        QCOMPARE(store.getIndices(0), QList<quint16>({0x2001}));
        QCOMPARE(store.getIndices(1), QList<quint16>({0x2000, 0x2002}));
        store.addNode(255, {});
        QCOMPARE(import(table, 255, 0x2000, 0x3000), QStringList());
        QCOMPARE(store.getIndices(255), QList<quint16>({0x2000, 0x2001, 0x2002, 0x2003}));
    }

    void numbers_data()
    {
        testRows<QString, int>({"text", "expected"},
                               {{"decimal", "10", 10},
                                {"zeros in front are no octal mark", "010", 10},
                                {"prefix", "0x10", 16},
                                {"suffix", "10h", 16},
                                {"letter", "0a", 10},
                                {"highest", "255", 255},
                                {"above", "256", -1},
                                {"negative", "-1", -1},
                                {"empty", "", -1},
                                {"no number", "sub", -1}});
    }

    void numbers()
    {
        QFETCH(QString, text);
        QTEST(CsvReader::number(text, 255), "expected");
    }

    void refusedFiles_data()
    {
        testRows<QByteArray, QString>(
            {"bytes", "expected"},
            {{"empty", {}, "no column \"index\""},
             {"no index", "a,b\n1,2\n", "no column \"index\""},
             {"EDS", "[FileInfo]\nFileName=x\n", "no column \"index\""},
             {"binary", QByteArray("index\n\0\1\2", 9), "binary data"},
             {"large", QByteArray(65 * 1024 * 1024, '#'), "larger than 64 MB"},
             {"long line", "index\n0x2000," + QByteArray(2 * 1024 * 1024, 'x'),
              "in.csv:2: The line is too long"}});
    }

    void refusedFiles()
    {
        m_project->fill();
        const QString before = m_project->store().contentHash();
        QFETCH(QByteArray, bytes);
        QFETCH(QString, expected);
        const QStringList reports = import(bytes);
        QCOMPARE(reports.size(), 1);
        QVERIFY2(reports.constFirst().contains(expected), qPrintable(reports.constFirst()));
        QCOMPARE(m_project->store().contentHash(), before);
    }

    void messages()
    {
        QCOMPARE(
            import("index,sub,datatype,objectcode,size,implementation\nx,,,,,\n0x2000,256,,,,\n"
                   "0x2001,0,THING,SHAPE,big,magic\nd,\nc,0x2000\n0x2002,\"0\n"),
            QStringList({"in.csv:2: The index 'x' can't be read; the row is passed over.",
                         "in.csv:3: The sub-index '256' can't be read; the row is passed over.",
                         "in.csv:4: The object code 'SHAPE' is unknown.",
                         "in.csv:4: The data type 'THING' is unknown; it becomes UNSIGNED8.",
                         "in.csv:4: The implementation 'magic' is unknown.",
                         "in.csv:4: The size 'big' can't be read.",
                         "in.csv:5: The delete command can't be read; it is passed over.",
                         "in.csv:6: The copy command can't be read; it is passed over.",
                         "in.csv:7: A quotation mark has no end; the field ends with the line."}));
        QCOMPARE(m_project->store().getIndices(0), QList<quint16>({0x2001, 0x2002}));
    }

    /// Marks that open a field in each line would otherwise make each line look for its end.
    void quotationMarksAreBounded()
    {
        QByteArray table = "index,edsname,value\n";
        table += QByteArray("0x2000,a\"b,\"c\n").repeated(300000);
        QElapsedTimer timer;
        timer.start();
        import(table);
        QVERIFY(timer.elapsed() < 20000);
        QCOMPARE(m_project->store().getSubIndexDefaultValue(0, 0x2000, 0), "c");
    }

private:
    /// Imports a text and gives back the importer's messages and errors.
    QStringList import(const QByteArray &text, quint8 line = 0, quint32 low = 0x1000,
                       quint32 high = 0xFFFF)
    {
        QFile file(m_project->folder() + "/in.csv");
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            return {"not written"};
        file.close();
        CsvImporter importer;
        importer.setLine(line);
        importer.setDatabase(&m_project->store());
        importer.setRange(low, high);
        importer.setFile(file.fileName());
        importer.doImport();
        QStringList reports = importer.messages();
        if (!importer.errorString().isEmpty())
            reports.append(importer.errorString());
        return reports.replaceInStrings(file.fileName(), "in.csv");
    }

    std::unique_ptr<DocumentProject> m_project;
};

QTEST_GUILESS_MAIN(TestCsvImport)
#include "csvroundtrip.moc"
