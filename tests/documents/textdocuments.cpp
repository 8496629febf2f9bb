#include "documents/htmlgenerator.h"
#include "documents/htmlpage.h"
#include "documents/textdocgenerator.h"
#include "tests/documents/textdocproject.h"
#include "tests/support/rows.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

namespace {

/// The page as XML, with its elements that have no end tag closed.
QString asXml(QString html)
{
    html.replace("<br>", "<br/>");
    html.replace(QRegularExpression("<meta ([^>]*)>"), "<meta \\1/>");
    return html;
}

struct Page
{
    QStringList errors;
    QStringList anchors;
    QStringList links;
    QStringList cells; ///< text of th and td
    QSet<QString> elements;
};

Page parse(const QString &html)
{
    Page page;
    QXmlStreamReader reader(asXml(html));
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QString name = reader.name().toString();
        page.elements.insert(name);
        if (reader.attributes().hasAttribute("id"))
            page.anchors.append(reader.attributes().value("id").toString());
        if (name == "a")
            page.links.append(reader.attributes().value("href").toString());
        if (name == "td" || name == "th")
            page.cells.append(reader.readElementText(QXmlStreamReader::IncludeChildElements));
    }
    if (reader.hasError())
        page.errors.append(
            QStringLiteral("%1: %2").arg(reader.lineNumber()).arg(reader.errorString()));
    return page;
}

} // namespace

class TestTextDocuments : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { DocumentProject::initApplication(); }

    void init()
    {
        m_project = std::make_unique<DocumentProject>();
        QVERIFY(m_project->isReady());
    }

    void fileNames_data()
    {
        testRows<bool, QString, QString, QString>(
            {"multiLine", "suffix", "text", "html"},
            {{"plain", false, "", "device_doc.txt", "device.html"},
             {"suffix", false, "_co", "device_co_doc.txt", "device_co.html"},
             {"line", true, "", "device_1_doc.txt", "device_1.html"},
             {"both", true, "_co", "device_1_co_doc.txt", "device_1_co.html"}});
    }

    void fileNames()
    {
        QFETCH(bool, multiLine);
        QFETCH(QString, suffix);
        TextDocGenerator text;
        HTMLGenerator html;
        for (AbstractGenerator *generator :
             {static_cast<AbstractGenerator *>(&text), static_cast<AbstractGenerator *>(&html)}) {
            generator->setStore(&m_project->store());
            generator->setProjectName("device");
            generator->setLine(1);
            generator->setMultiLine(multiLine);
            generator->setFileSuffix(suffix);
        }
        QTEST(text.fileName(), "text");
        QTEST(html.fileName(), "html");
    }

    void linksOfThePage()
    {
        m_project->fill();
        ObjectDataBase &store = m_project->store();
        store.setDescriptionLine(1);
        store.setDescriptionSetting("VendorName", "Vendor of line 1");
        store.setDescriptionLine(0);
        HTMLGenerator generator;
        const QString html = m_project->generate(generator);

        QVERIFY(!html.contains("other line"));

        const Page page = parse(html);
        QCOMPARE(page.errors, QStringList());
        QCOMPARE(page.links,
                 QStringList({"#gen", "#com", "#index1018", "#index2000", "#index2001"}));
        QCOMPARE(QSet<QString>(page.anchors.begin(), page.anchors.end()).size(),
                 page.anchors.size());
        for (const QString &link : page.links)
            QVERIFY2(page.anchors.contains(link.mid(1)), qPrintable(link));

        HTMLGenerator other;
        QVERIFY(m_project->generate(other, 1, true).contains("Vendor of line 1"));
    }

    void namesAndDescriptions()
    {
        m_project->fill();
        HTMLGenerator html;
        const Page page = parse(m_project->generate(html));
        for (const char *cell : {" Object: 0x2000 - Level 2000", " Object: 0x2001 - unnamed object",
                                 "Vendor 4120", "number\nof CiA", "level8192"})
            QVERIFY2(page.cells.contains(QLatin1String(cell)), cell);
        TextDocGenerator text;
        const QString lines = m_project->generate(text);
        for (const char *line : {"\nIndex:       0x2001 - unnamed object\n",
                                 "\nDescription: Who\n             it is\n",
                                 "  Description: number\n               of CiA\n",
                                 "  Sub:          0x01 - Vendor 4120\n"})
            QVERIFY2(lines.contains(QLatin1String(line)), line);
    }

    void pageShowsTextsAsText()
    {
        const QString nasty = "<script>alert('x')</script>&amp; \"q\" \x01ä漢😀 --> end";
        const QString shown = "<script>alert('x')</script>&amp; \"q\" ä漢😀 --> end";
        m_project->setName("a--><script>b %1 %2");
        m_project->store().setDescriptionSetting("Comment", nasty);
        m_project->store().setDescriptionSetting("VendorName", nasty);
        m_project->add(0x2000, CANopen::VAR, nasty, nasty);
        DocumentProject::Entry entry =
            DocumentProject::entry(nasty, CAN::VISIBLE_STRING, nasty, nasty);
        entry.description = nasty + nasty;
        entry.lowlimit = entry.uplimit = entry.varname = nasty;
        m_project->add(0x2000, 0, entry);
        HTMLGenerator generator;
        const QString html = m_project->generate(generator);
        const Page page = parse(html);
        QCOMPARE(page.errors, QStringList());
        QVERIFY(!page.elements.contains("script"));
        QVERIFY(!html.contains("<script") || html.indexOf("<script") < html.indexOf("-->"));
        // comment, vendor; object name and description; head, name, access, value, limits, variable
        QCOMPARE(page.cells.filter(shown).size(), 12);
        QCOMPARE(page.cells.count(shown), 9);
    }

    void emptyProject()
    {
        m_project->store().setDescriptionSetting("Comment", QString());
        HTMLGenerator html;
        const Page page = parse(m_project->generate(html));
        QCOMPARE(page.errors, QStringList());
        QCOMPARE(page.anchors, QStringList({"gen", "com"}));
        QCOMPARE(page.cells.mid(page.cells.indexOf("Comment")), QStringList({"Comment", ""}));
        TextDocGenerator text;
        QCOMPARE(m_project->generate(text), "CANopen Object Dictionary Documenation for device\n");
    }

    void stopRequest()
    {
        m_project->fill();
        HTMLGenerator generator;
        connect(&generator, &AbstractGenerator::progress, &generator, [&](quint8 percent) {
            if (percent < 98)
                generator.requestStop();
        });
        QTest::ignoreMessage(QtDebugMsg, "Generation aborted");
        const Page page = parse(m_project->generate(generator));
        QCOMPARE(page.errors, QStringList());
        QVERIFY(page.anchors.contains("index1018"));
        QVERIFY(!page.anchors.contains("index2000"));
    }

private:
    std::unique_ptr<DocumentProject> m_project;
};

QTEST_GUILESS_MAIN(TestTextDocuments)
#include "textdocuments.moc"
