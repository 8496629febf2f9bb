#include "canopen/helper.h"
#include "documents/csvgenerator.h"
#include "documents/csvrow.h"
#include "documents/icsvgenerator.h"
#include "tests/documents/textdocproject.h"
#include "tests/support/rows.h"

using Entry = DocumentProject::Entry;

class TestCsvGenerators : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { DocumentProject::initApplication(); }

    void init()
    {
        m_project = std::make_unique<DocumentProject>();
        QVERIFY(m_project->isReady());
    }

    void fileNames()
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

    void fields_data()
    {
        const QString mark = Helper::csvDescLinebreak;
        testRows<QString, QString>(
            {"text", "expected"},
            {{"empty", "", ""},
             {"plain", "0x12 $NODEID", "0x12 $NODEID"},
             {"comma", "a,b", "\"a,b\""},
             {"semicolon", "a;b", "\"a;b\""},
             {"quotes", "say \"a\"", "\"say \"\"a\"\"\""},
             {"blanks", " a", "\" a\""},
             {"line ends", "a\r\nb\nc\rd", "a" + mark + "b" + mark + "c" + mark + "d"},
             {"all", "\"a\",\n b", "\"\"\"a\"\"," + mark + " b\""}});
    }

    void fields()
    {
        QFETCH(QString, text);
        QTEST(CsvRow::field(text), "expected");
        // Only the name of a variable is nothing if it is blank.
        QCOMPARE(CsvRow::text({CsvRow::Variable{" \t"}, QString(" "), CsvRow::Variable{" a"}}),
                 "  ,\" \",\" a\"\n");
    }

    /// What stands in the device description is told by two flags of three values.
    void exportedDefaults()
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

private:
    std::unique_ptr<DocumentProject> m_project;
};

QTEST_GUILESS_MAIN(TestCsvGenerators)
#include "csvdocuments.moc"
