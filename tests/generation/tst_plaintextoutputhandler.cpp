#include "generation/plaintextoutputhandler.h"

#include <QTest>

class TestPlainTextOutputHandler : public QObject
{
    Q_OBJECT

private slots:
    void plainText_data()
    {
        QTest::addColumn<QString>("rich");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *rich, const char *expected) {
            QTest::newRow(rich) << QString::fromUtf8(rich) << QString::fromUtf8(expected);
        };
        row("plain ü 50 % of it", "plain ü 50 % of it");
        row("<strong><font color='red'>Error: </font></strong>x", "Error: x");
        row("<i>Corrected: Object 0x1018</i>: y", "Corrected: Object 0x1018: y");
        row("one<br>two<BR />three", "one\ntwo\nthree");
        row("&lt;b&gt; &amp;lt; &quot;q&quot; &#65;&#x42;", "<b> &lt; \"q\" AB");
        row("&nbsp;&nbsp;WG_EDS (x): 1", "  WG_EDS (x): 1");
        row("a & b; &unknown; &#0; &#xD800;", "a & b; &unknown; &#0; &#xD800;");
        row("#include <stdio.h> if (a < b && b > c)", "#include <stdio.h> if (a < b && b > c)");
        row("\x1b[31mred\a", " [31mred ");
        row("<a href=\"1 - 2\">Object 0x2000</a>", "Object 0x2000");
    }

    void plainText()
    {
        QFETCH(QString, rich);
        QTEST(PlainTextOutputHandler::plainText(rich), "expected");
    }

    void linesAsTheyCome()
    {
        std::FILE *file = std::tmpfile();
        QVERIFY(file);
        PlainTextOutputHandler output(file);
        output.outputMessage("\n<b>first</b>");
        QCOMPARE(std::ftell(file), 7L); // put out at once
        output.outputHtml("ü");
        output.outputMessage("last\n");
        const QByteArray expected = "\nfirst\nü\nlast\n";
        QCOMPARE(output.loggingText(), QString::fromUtf8(expected));
        std::rewind(file);
        QByteArray bytes(100, '\0');
        bytes.resize(static_cast<qsizetype>(std::fread(bytes.data(), 1, 100, file)));
        std::fclose(file);
        QCOMPARE(bytes, expected);
    }
};

QTEST_GUILESS_MAIN(TestPlainTextOutputHandler)
#include "tst_plaintextoutputhandler.moc"
