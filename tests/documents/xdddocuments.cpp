#include "documents/xddgenerator.h"
#include "tests/documents/textdocproject.h"
#include "tests/support/rows.h"

#include <QSignalSpy>
#include <QXmlStreamReader>

using Entry = DocumentProject::Entry;

namespace {

/// One line an element: its depth in blanks, its name, its attributes, its text.
QStringList outline(const QString &text, QString *error)
{
    QStringList lines;
    QXmlStreamReader reader(text);
    int depth = 0;
    auto last = QXmlStreamReader::NoToken;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement: {
            QString line = QString(depth++, QLatin1Char(' ')) + reader.name().toString();
            const QXmlStreamAttributes attributes = reader.attributes();
            for (const QXmlStreamAttribute &attribute : attributes)
                line += QStringLiteral(" %1=%2").arg(attribute.qualifiedName(), attribute.value());
            lines.append(line);
            break;
        }
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        case QXmlStreamReader::Characters:
            // One text may come in several pieces.
            if (last == QXmlStreamReader::Characters)
                lines.last() += reader.text();
            else if (!reader.isWhitespace())
                lines.last() += QStringLiteral(": ") + reader.text().toString();
            break;
        case QXmlStreamReader::Comment:
            lines.append(QStringLiteral("comment: ") + reader.text().toString());
            break;
        default:
            break;
        }
        last = reader.tokenType();
    }
    *error = reader.errorString();
    return lines;
}

} // namespace

class TestXddGenerator : public QObject
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
        testRows<QString, bool, QString>(
            {"vendor", "multiLine", "expected"},
            {{"hexadecimal", "0x319", false, "00000319_device.xdd"},
             {"display mark", "|x0xABCDEF01", false, "abcdef01_device.xdd"},
             {"decimal", "10", true, "0000000a_device_1.xdd"},
             {"none", "", true, "00000000_device_1.xdd"}});
    }

    void fileNames()
    {
        QFETCH(QString, vendor);
        QFETCH(bool, multiLine);
        m_project->add(0x1018, CANopen::RECORD, "Identity", {}, 0, 1);
        m_project->add(0x1018, 1, m_project->entry("Vendor", CAN::UNSIGNED32, "ro", vendor), 1);
        XDDGenerator generator;
        generator.setStore(&m_project->store());
        generator.setProjectName("device");
        generator.setLine(1);
        generator.setMultiLine(multiLine);
        QTEST(generator.fileName(), "expected");
    }

    void progress()
    {
        m_project->fill();
        XDDGenerator generator;
        QSignalSpy progress(&generator, &AbstractGenerator::progress);
        m_project->generate(generator);
        QCOMPARE(progress.constFirst().constFirst().toInt(), 20);
        QVERIFY(std::is_sorted(progress.begin(), progress.end(), [](const auto &a, const auto &b) {
            return a.constFirst().toInt() < b.constFirst().toInt();
        }));
    }

    void elements_data()
    {
        QTest::addColumn<Entry>("entry");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &access, PDOMapping mapping,
                            const char *expected, const std::function<void(Entry &)> &change = {}) {
            Entry entry = DocumentProject::entry("x", CAN::UNSIGNED8, access, "5");
            entry.pdomapping = mapping;
            if (change)
                change(entry);
            QTest::newRow(name) << entry << QString(QLatin1String(expected));
        };
        row("const", "const", PDOMapping::Forbidden,
            "modification=const accessUSDO=ro accessPDO=no");
        row("ro", "ro", PDOMapping::TPDO, "modification=true accessUSDO=ro accessPDO=rw");
        row("wo", "wo", PDOMapping::RPDO, "modification=true accessUSDO=wo accessPDO=wo");
        row("rw", "rw", PDOMapping::Allowed, "modification=true accessUSDO=rw accessPDO=rw");
        row("rwr", "rwr", PDOMapping::Default, "modification=true accessUSDO=rw accessPDO=rw");
        row("rww", "rww", PDOMapping::RPDO, "modification=true accessUSDO=rw accessPDO=wo");
        row("refused write", "rw", PDOMapping::Forbidden,
            "modification=false accessUSDO=rw accessPDO=no",
            [](Entry &e) { e.refusewrite = true; });
        const auto withDefault = [](int write, bool flag, const char *value) {
            return [=](Entry &e) {
                e.writedefaulttoeds = static_cast<quint8>(write);
                e.defaultineds = flag;
                e.defaultvalue = QLatin1String(value);
            };
        };
        const char *plain = "modification=true accessUSDO=rw accessPDO=no";
        row("default: never", "rw", {}, plain, withDefault(0, true, "5"));
        row("default: not flagged", "rw", {}, plain, withDefault(1, false, "5"));
        row("default: flagged", "rw", {},
            "modification=true accessUSDO=rw accessPDO=no defaultValue=$NODEID+5",
            withDefault(1, true, "$NODEID+5"));
        row("default: always", "rw", {},
            "modification=true accessUSDO=rw accessPDO=no defaultValue=0x1F",
            withDefault(2, false, "|x0x1F"));
        row("default: empty", "rw", {}, plain, withDefault(2, true, ""));
    }

    void elements()
    {
        QFETCH(Entry, entry);
        m_project->add(0x6000, CANopen::ARRAY, "array");
        m_project->add(0x6000, 0xAB, entry);
        const QString start = "      CANopenFDDataElement subIndex=ab name=x dataType=05 ";
        QFETCH(QString, expected);
        QCOMPARE(generated().constLast(), start + expected);
    }

    void forbiddenCharacters()
    {
        const QString half = QChar(0xD800);
        QCOMPARE(XDDGenerator::xmlText(half + "a\uFFFE" + half + "😀" + QChar(0xDC00)),
                 "\uFFFDa\uFFFD😀\uFFFD");
        const QString nasty = "a\x01\x0B<b>&\"c\"\n\t😀]]>";
        const QString kept = "a<b>&\"c\"\n\t😀]]>";
        QCOMPARE(XDDGenerator::xmlText(nasty), kept);
        m_project->setName("a--b\x02--> %1 %4");
        m_project->store().setDescriptionSetting("VendorName", nasty);
        m_project->add(0x2000, CANopen::VAR, nasty);
        Entry entry = m_project->entry(nasty, CAN::VISIBLE_STRING, "rw", nasty);
        entry.writedefaulttoeds = 2;
        entry.limitineds = true;
        entry.lowlimit = entry.uplimit = nasty;
        m_project->add(0x2000, 0, entry);
        const QStringList lines = generated();
        QCOMPARE(m_error, QString());
        QCOMPARE(lines.filter(kept).size(), 3);
        QCOMPARE(lines.constLast().count("😀]]>"), 4);
    }

private:
    QStringList generated(quint8 line = 0)
    {
        XDDGenerator generator;
        return outline(m_project->generate(generator, line, line > 0), &m_error);
    }

    std::unique_ptr<DocumentProject> m_project;
    QString m_error;
};

QTEST_GUILESS_MAIN(TestXddGenerator)
#include "xdddocuments.moc"
