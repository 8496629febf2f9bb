#include "documents/htmlgenerator.h"
#include "documents/htmlpage.h"
#include "documents/textdocgenerator.h"
#include "tests/documents/textdocproject.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

namespace {

/// The page as XML, with its elements that have no end tag closed.
QString asXml(QString html)
{
    html.replace(QLatin1String("<br>"), QLatin1String("<br/>"));
    html.replace(QRegularExpression(QStringLiteral("<meta ([^>]*)>")),
                 QStringLiteral("<meta \\1/>"));
    return html;
}

struct Page
{
    QStringList errors;
    QStringList anchors;
    QStringList links;
    QStringList cells;  ///< text of th and td
    QStringList shades; ///< class of each tr
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
        if (name == QLatin1String("a"))
            page.links.append(reader.attributes().value("href").toString());
        if (name == QLatin1String("tr"))
            page.shades.append(reader.attributes().value("class").toString());
        if (name == QLatin1String("td") || name == QLatin1String("th"))
            page.cells.append(reader.readElementText(QXmlStreamReader::IncludeChildElements));
    }
    if (reader.hasError())
        page.errors.append(
            QStringLiteral("%1: %2").arg(reader.lineNumber()).arg(reader.errorString()));
    return page;
}

/// Each text stands in the page, behind the one before it.
QString firstMissing(const QString &page, const QStringList &texts)
{
    qsizetype place = 0;
    for (const QString &text : texts) {
        place = page.indexOf(text, place);
        if (place < 0)
            return text;
        place += text.size();
    }
    return {};
}

} // namespace

class TestTextDocuments : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { DocumentProject::initApplication(); }
    void init();

    void fileNames_data();
    void fileNames();
    void textDocument();
    void pageFrame();
    void pageOfObjects();
    void pageShowsTextsAsText();
    void emptyProject();
    void stopRequest();

private:
    std::unique_ptr<DocumentProject> m_project;
};

void TestTextDocuments::init()
{
    m_project = std::make_unique<DocumentProject>();
    QVERIFY(m_project->isReady());
}

void TestTextDocuments::fileNames_data()
{
    QTest::addColumn<bool>("multiLine");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("html");
    QTest::newRow("plain") << false << ""
                           << "device_doc.txt"
                           << "device.html";
    QTest::newRow("suffix") << false << "_co"
                            << "device_co_doc.txt"
                            << "device_co.html";
    QTest::newRow("line") << true << ""
                          << "device_1_doc.txt"
                          << "device_1.html";
    QTest::newRow("both") << true << "_co"
                          << "device_1_co_doc.txt"
                          << "device_1_co.html";
}

void TestTextDocuments::fileNames()
{
    QFETCH(bool, multiLine);
    QFETCH(QString, suffix);
    TextDocGenerator text;
    HTMLGenerator html;
    for (AbstractGenerator *generator :
         {static_cast<AbstractGenerator *>(&text), static_cast<AbstractGenerator *>(&html)}) {
        generator->setStore(&m_project->store());
        generator->setProjectName(QStringLiteral("device"));
        generator->setLine(1);
        generator->setMultiLine(multiLine);
        generator->setFileSuffix(suffix);
    }
    QTEST(text.fileName(), "text");
    QTEST(html.fileName(), "html");
}

void TestTextDocuments::textDocument()
{
    m_project->fill();
    TextDocGenerator generator;
    QCOMPARE(m_project->generate(generator),
             QStringLiteral("CANopen Object Dictionary Documenation for device\n"
                            "\n"
                            "Index:       0x1018 - Identity\n"
                            "DataType:    0x0023\n"
                            "ObjectCode:  RECORD\n"
                            "Description: Who\n"
                            "             it is\n"
                            "  Sub:          0x00 - Highest subindex\n"
                            "  DataType:     UNSIGNED8\n"
                            "  DefaultValue: 1\n"
                            "  AccessType:   const\n"
                            "  PDOMapping:   Forbidden\n"
                            "  Description: \n"
                            "  Sub:          0x01 - Vendor 4120\n"
                            "  DataType:     UNSIGNED32\n"
                            "  DefaultValue: 0x319\n"
                            "  AccessType:   ro\n"
                            "  PDOMapping:   Forbidden\n"
                            "  Description: number\n"
                            "               of CiA\n"
                            "\n"
                            "Index:       0x2000 - Level 2000\n"
                            "DataType:    INTEGER16\n"
                            "ObjectCode:  VAR\n"
                            "Description: \n"
                            "  Sub:          0x00 - Level\n"
                            "  DataType:     INTEGER16\n"
                            "  DefaultValue: -5\n"
                            "  AccessType:   rwr\n"
                            "  PDOMapping:   TPDO\n"
                            "  Description: \n"
                            "\n"
                            "Index:       0x2001 - unnamed object\n"
                            "DataType:    DOMAIN\n"
                            "ObjectCode:  DOMAIN\n"
                            "Description: \n"
                            "  Sub:          0x00 - Firmware\n"
                            "  DataType:     DOMAIN\n"
                            "  DefaultValue: \n"
                            "  AccessType:   wo\n"
                            "  PDOMapping:   Forbidden\n"
                            "  Description: \n"));
    TextDocGenerator other;
    const QString text = m_project->generate(other, 1, true);
    QCOMPARE(text.count(QLatin1String("Index:")), 1);
    QVERIFY(text.contains(QLatin1String("Index:       0x3000 - other line\n")));
}

void TestTextDocuments::pageFrame()
{
    m_project->fill();
    ObjectDataBase &store = m_project->store();
    store.setDescriptionLine(1);
    store.setDescriptionSetting("VendorName", "Vendor of line 1");
    store.setDescriptionLine(0);
    for (const char *key : {"VendorName", "ProductName", "FileVersion", "FileRevision", "OrderCode",
                            "CreatedBy", "ModifiedBy"})
        store.setDescriptionSetting(QLatin1String(key), QLatin1String("my ") + QLatin1String(key));
    store.setDescriptionSetting("Comment", "first\nsecond");
    HTMLGenerator generator;
    const QString html = m_project->generate(generator);

    QVERIFY(html.startsWith(
        QLatin1String("<!-- HTML file for device - generated by Doc Test 1.2.3 -->\n<html>\n"
                      " <head>\n  <title>Object Dictionary Documenation of device - ")));
    QCOMPARE(firstMissing(
                 html, {"</title>\n",
                        "charset=\"utf-8\"",
                        "<style>\n",
                        "html *",
                        "   font-size: 1em;\n",
                        "   font-family: Arial !important;\n",
                        "border-collapse:collapse;\n",
                        "border:0px solid black;\n",
                        "padding: 5px 10px 5px 10px;\n",
                        "font-family: Arial, Helvetica, Verdana, sans-serif;\n",
                        "word-wrap: break-word;\n",
                        "tr.head td",
                        "font-size: 1.5em;\n",
                        "background-color:#a5a5a5;\n",
                        "font-size: 1.2em;\n",
                        "width: 30%;\n",
                        "width: 70%;\n",
                        "tr.head td, th[colspan=\"2\"]",
                        "width: 100%;\n",
                        "tr td",
                        "background-color: #f0f0f0;\n",
                        "text-align:justify;\n",
                        "tr.alt td",
                        "background-color: #d5d5d5;\n",
                        "#bbbbbb",
                        "#dddddd",
                        "div.toc",
                        "position:fixed; right:20px; top:20px;\n",
                        "max-height:75%; overflow-y: scroll;\n",
                        "padding:10px;\n",
                        "font-size: 0.8em;\n",
                        "@media print",
                        "</style>\n </head>\n <body>\n  <div class=\"left\">\n"
                        "  <table width=\"70%\">\n   <tr class=\"head\">\n"
                        "    <td  colspan=\"2\">  Object Dictionary Documentation of device",
                        "id=\"gen\">Generation information ",
                        "   <td>Generation time: </td>",
                        "2023-11-14 22:13:20",
                        "   <td>Vendor name:</td>",
                        "my VendorName",
                        "   <td>Product name: </td>",
                        "my ProductName",
                        "   <td>File version:</td>",
                        "my FileVersion",
                        "   <td>File Revision: </td>",
                        "my FileRevision",
                        "   <td>Order Code:</td>",
                        "my OrderCode",
                        "   <td>Created by: </td>",
                        "my CreatedBy",
                        "   <td>Modified by: </td>",
                        "my ModifiedBy",
                        "id=\"com\">Comment",
                        "first<br>\nsecond",
                        " <div class=\"toc\">\n<a href=\"#gen\">Generation Information</a><br />\n"
                        "<a href=\"#com\">Comment</a><br />\n",
                        ">0x1018</a><br>\n",
                        ">0x2000</a><br>\n",
                        ">0x2001</a><br>\n",
                        " </div>\n  <div class=\"center\">\n <p>\n",
                        "  </body>\n </html>\n"}),
             QString());
    QVERIFY(html.endsWith(QLatin1String("  </body>\n </html>\n")));
    QVERIFY(!html.contains(QLatin1String("other line")));

    const Page page = parse(html);
    QCOMPARE(page.errors, QStringList());
    QCOMPARE(QSet<QString>(page.anchors.begin(), page.anchors.end()).size(), page.anchors.size());
    for (const QString &link : page.links)
        QVERIFY2(page.anchors.contains(link.mid(1)), qPrintable(link));

    HTMLGenerator other;
    QVERIFY(m_project->generate(other, 1, true).contains(QLatin1String("Vendor of line 1")));
}

void TestTextDocuments::pageOfObjects()
{
    m_project->fill();
    HTMLGenerator generator;
    const QString html = m_project->generate(generator);
    const Page page = parse(html);
    const qsizetype start = page.cells.indexOf(QLatin1String(" Object: 0x2000 - Level 2000"));
    QVERIFY(start > 0);
    QCOMPARE(page.cells.mid(start, 27), QStringList({" Object: 0x2000 - Level 2000",
                                                     "Object Code",
                                                     "VAR",
                                                     "Description",
                                                     "",
                                                     "Sub ",
                                                     "0x00 - Level",
                                                     "Name ",
                                                     "Level",
                                                     "Data Type",
                                                     "INTEGER16",
                                                     "Access ",
                                                     "rwr",
                                                     "Defaultvalue ",
                                                     "-5",
                                                     "Low Limit ",
                                                     "-10",
                                                     "High Limit ",
                                                     "10",
                                                     "PDO Mapping",
                                                     "TPDO",
                                                     "Implementation Type",
                                                     "Variable",
                                                     "Variable Name",
                                                     "level8192",
                                                     "Size in bytes ",
                                                     "2"}));
    QVERIFY(page.cells.contains(QLatin1String("number\nof CiA")));
    QCOMPARE(page.cells.constLast(), QStringLiteral("512"));
    QCOMPARE(html.count(QLatin1String("  <hr />\n")), 2);
    QCOMPARE(html.count(QLatin1String("  </table>\n <br/>\n </p>\n")), 7);
    // The rows of a table change their shade; the head row of a subindex has none.
    QCOMPARE(page.shades.mid(page.shades.size() - 11, 5), QStringList({"", "alt", "", "alt", ""}));
}

void TestTextDocuments::pageShowsTextsAsText()
{
    const QString nasty = QStringLiteral("<script>alert('x')</script>&amp; \"q\" \x01ä漢😀 --> end");
    const QString shown = QStringLiteral("<script>alert('x')</script>&amp; \"q\" ä漢😀 --> end");
    m_project->setName(QStringLiteral("a--><script>b %1 %2"));
    m_project->store().setDescriptionSetting("Comment", nasty);
    m_project->store().setDescriptionSetting("VendorName", nasty);
    m_project->add(0x2000, CANopen::VAR, nasty, nasty);
    DocumentProject::Entry entry = DocumentProject::entry(nasty, CAN::VISIBLE_STRING, nasty, nasty);
    entry.description = nasty + nasty;
    entry.lowlimit = entry.uplimit = entry.varname = nasty;
    m_project->add(0x2000, 0, entry);
    HTMLGenerator generator;
    const QString html = m_project->generate(generator);
    const Page page = parse(html);
    QCOMPARE(page.errors, QStringList());
    QVERIFY(!page.elements.contains(QLatin1String("script")));
    QVERIFY(!html.contains(QLatin1String("<script")) ||
            html.indexOf(QLatin1String("<script")) < html.indexOf(QLatin1String("-->")));
    // comment, vendor; object name and description; head, name, access, value, limits, variable
    QCOMPARE(page.cells.filter(shown).size(), 12);
    QCOMPARE(page.cells.count(shown), 9);
}

void TestTextDocuments::emptyProject()
{
    m_project->store().setDescriptionSetting("Comment", QString());
    HTMLGenerator html;
    const Page page = parse(m_project->generate(html));
    QCOMPARE(page.errors, QStringList());
    QCOMPARE(page.anchors, QStringList({"gen", "com"}));
    QCOMPARE(page.cells.mid(page.cells.indexOf(QLatin1String("Comment"))),
             QStringList({"Comment", ""}));
    TextDocGenerator text;
    QCOMPARE(m_project->generate(text),
             QStringLiteral("CANopen Object Dictionary Documenation for device\n"));
}

void TestTextDocuments::stopRequest()
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
    QVERIFY(page.anchors.contains(QLatin1String("index1018")));
    QVERIFY(!page.anchors.contains(QLatin1String("index2000")));
}

QTEST_GUILESS_MAIN(TestTextDocuments)
#include "textdocuments.moc"
