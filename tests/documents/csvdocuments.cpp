#include "documents/csvgenerator.h"
#include "documents/csvrow.h"
#include "documents/icsvgenerator.h"
#include "store/canopen/helper.h"
#include "tests/documents/textdocproject.h"

using Entry = DocumentProject::Entry;

class TestCsvGenerators : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { DocumentProject::initApplication(); }
    void init();

    void fileNames();
    void fields_data();
    void fields();
    void csv();
    void icsv();
    void exportedDefaults();

private:
    std::unique_ptr<DocumentProject> m_project;
};

void TestCsvGenerators::init()
{
    m_project = std::make_unique<DocumentProject>();
    QVERIFY(m_project->isReady());
}

void TestCsvGenerators::fileNames()
{
    CSVGenerator csv;
    ICSVGenerator icsv;
    for (const bool multiLine : {false, true}) {
        m_project->generate(csv, 1, multiLine);
        m_project->generate(icsv, 1, multiLine);
        const QString base = multiLine ? QStringLiteral("device_1") : QStringLiteral("device");
        QVERIFY(QFile::exists(m_project->folder() + "/" + base + ".csv"));
        QVERIFY(QFile::exists(m_project->folder() + "/" + base + ".icsv"));
    }
}

void TestCsvGenerators::fields_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const QString mark = Helper::csvDescLinebreak;
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("plain") << "0x12 $NODEID"
                           << "0x12 $NODEID";
    QTest::newRow("comma") << "a,b"
                           << "\"a,b\"";
    QTest::newRow("semicolon") << "a;b"
                               << "\"a;b\"";
    QTest::newRow("quotes") << "say \"a\""
                            << "\"say \"\"a\"\"\"";
    QTest::newRow("blanks") << " a"
                            << "\" a\"";
    QTest::newRow("line ends") << "a\r\nb\nc\rd"
                               << "a" + mark + "b" + mark + "c" + mark + "d";
    QTest::newRow("all") << "\"a\",\n b"
                         << "\"\"\"a\"\"," + mark + " b\"";
}

void TestCsvGenerators::fields()
{
    QFETCH(QString, text);
    QTEST(CsvRow::field(text), "expected");
}

void TestCsvGenerators::csv()
{
    m_project->fill();
    CSVGenerator generator;
    QCOMPARE(
        m_project->generate(generator),
        QStringLiteral(
            "Index,Sub,EDSname,Datatype,Access,Value,varname,LowLimit,UpLimit,hasDefault,hasLimit,"
            "refuseRead,refuseWrite,defaultInEDS,implementation,Size,ObjectCode,mapable\n"
            "0x1018,,Identity,0x0023,,,,,,,,,,,,,RECORD,\n"
            "0x1018,0x00,Highest subindex,UNSIGNED8,const,1,,,,NONE,NONE,NONE,NONE,NONE,"
            "ManagedVariable,0,,none\n"
            "0x1018,0x01,Vendor $i,UNSIGNED32,ro,|x0x319,,,,yes,NONE,NONE,NONE,yes,"
            "ManagedConst,0,,none\n"
            "0x2000,0x00,Level {$I},INTEGER16,rwr,-5,level$i,-10,10,NONE,yes,NONE,NONE,NONE,"
            "Variable,0,VARIABLE,tpdo\n"
            "0x2001,0x00,unnamed object,DOMAIN,wo,,,,,NONE,NONE,NONE,NONE,NONE,"
            "ManagedVariable,512,DOMAIN,none\n"));
}

void TestCsvGenerators::icsv()
{
    m_project->fill();
    const QString mark = Helper::csvDescLinebreak;
    const QString head =
        QStringLiteral("# This is an importable ICSV file for the device project.\n"
                       "#\n"
                       "index,sub,objectcode,datatype,edsname,varname,access,"
                       "mapable,hasdefault,defaultineds,value,%1size,"
                       "implementation,haslimit,lowlimit,uplimit,nvstorage\n");
    ICSVGenerator generator;
    QCOMPARE(m_project->generate(generator),
             head.arg("description,") + "0x1018,,RECORD,0x0023,Identity,,,,,,,Who" + mark +
                 "it is,,,,,,\n"
                 "0x1018,0x00,RECORD,UNSIGNED8,Highest subindex,,const,none,no,no,1,,0,"
                 "ManagedVariable,no,,,0\n"
                 "0x1018,0x01,,UNSIGNED32,Vendor $i,,ro,none,yes,yes,|x0x319,number" +
                 mark +
                 "of CiA,0,ManagedConst,no,,,0\n"
                 "0x2000,0x00,VARIABLE,INTEGER16,Level {$I},level$i,rwr,tpdo,no,no,-5,,0,"
                 "Variable,yes,-10,10,1\n"
                 "0x2001,0x00,DOMAIN,DOMAIN,unnamed object,,wo,none,no,no,,,512,"
                 "ManagedVariable,no,,,0\n");

    ICSVGenerator bare;
    bare.setWithDescription(false);
    const QStringList lines = m_project->generate(bare).split(QLatin1Char('\n'));
    QCOMPARE(lines.mid(0, 3).join(QLatin1Char('\n')) + QLatin1Char('\n'), head.arg(QString()));
    for (const QString &line : lines.mid(3, lines.size() - 4))
        QCOMPARE(line.count(QLatin1Char(',')), 16);
}

/// What stands in the device description is told by two flags of three values.
void TestCsvGenerators::exportedDefaults()
{
    m_project->add(0x2000, CANopen::ARRAY, "a");
    for (int state = 0; state < 6; ++state) {
        Entry entry = m_project->entry("e", CAN::UNSIGNED8);
        entry.defaultineds = state % 2 == 1;
        entry.writedefaulttoeds = static_cast<quint8>(state / 2);
        m_project->add(0x2000, static_cast<quint8>(state), entry);
    }
    ICSVGenerator generator;
    const QStringList rows = m_project->generate(generator).split(QLatin1Char('\n')).mid(4, 6);
    QStringList flags;
    for (const QString &row : rows)
        flags.append(row.section(QLatin1Char(','), 8, 9));
    QCOMPARE(flags, QStringList({"no,no", "yes,no", "no,no", "yes,yes", "no,yes", "yes,yes"}));
}

QTEST_GUILESS_MAIN(TestCsvGenerators)
#include "csvdocuments.moc"
