#include "canopen/helper.h"
#include "canopen/numbertext.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <optional>

/// Text utilities: variables in names, lists of numbers, bytes for C, line ends of files.
class TestHelper : public QObject
{
    Q_OBJECT

private slots:
    void variables_data();
    void variables();
    void unreadableTextsStay_data();
    void unreadableTextsStay();
    void subindexMinusOne();
    void numberLists_data();
    void numberLists();
    void numberTexts();
    void utf8Arrays();
    void lineEnds_data();
    void lineEnds();
    void lineEndsAtPieceBorders();
    void lineEndFailuresLeaveTheFile();
    void lineEndsKeepPermissionsAndFolder();
};

void TestHelper::variables_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("result"); // for 0x301A, 0x1F, line 3
    const auto row = [](const char *text, const char *result) {
        QTest::addRow("%s", text) << QString::fromUtf8(text) << QString::fromUtf8(result);
    };
    row("Speed", "Speed");
    row("", "");
    row("{0, 1}", "{0, 1}");
    row("}{", "}{");
    row("$i $I $s $S $z $L $l", "12314 301a 31 1f 30 3 3");
    row("var_$I_$Sx", "var_301a_1fx");
    row("$i$s$$s$", "1231431$31$");
    row("$NODEID+0x180", "$NODEID+0x180");
    row("$NODEID+$s", "$NODEID+31");
    row("{$NODEID}+{$s+1}", "{$NODEID}+32");
    row("$nodeid $Z $x", "$nodeid $Z $x");
    row("Output {$s + 0x40}", "Output 95");
    row("myData[{$i-0x100}].value", "myData[12058].value");
    row("m[{$i-0x3000}][{$s-1}].x$L", "m[26][30].x3");
    row("{$I + 1} {$S*2}", "12315 62");
    row("{$I}_{ $S }_{$s}", "301a_1f_31");
    row("{$s-1-2}", "28");
    row("{$s-(1-2)}", "32");
    row("{100/$s/2}", "1");
    row("{1+$s*2}", "63");
    row("{(1+$s)*2}", "64");
    row("{-$s+1}", "-30");
    row("{$s*-2}", "-62");
    row("{$s- - -1}", "30");
    row("{-7/($s-29)}", "-3");
    row("{$s+010}", "41");
    row("{ $s+0XfF }", "286");
    row("{$s+9223372036854775776}", "9223372036854775807");
    row("(T){1} $s", "(T){1} 31");
    row("Gr\xC3\xB6\xC3\x9F"
        "e $s \xF0\x9F\x98\x80{$s+1}",
        "Gr\xC3\xB6\xC3\x9F"
        "e 31 \xF0\x9F\x98\x80"
        "32");
}

void TestHelper::variables()
{
    QFETCH(QString, text);
    QTEST(Helper::substituteVariables(text, 0x301A, 0x1F, 3), "result");
}

void TestHelper::unreadableTextsStay_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"a $s {$s/0}",
                             "{$s/($s-$s)}",
                             "$i {$s+1",
                             "$i $s+1}",
                             "{$s+1}}",
                             "{{$s+1}}",
                             "{$s+{1}}",
                             "{$s+}",
                             "{*$s}",
                             "{$s $s}",
                             "{$s$i}",
                             "{$s 1}",
                             "{$sx}",
                             "{$s+12ab}",
                             "{$s+0x}",
                             "{$s+0xg}",
                             "{$s+1.5}",
                             "{($s+1}",
                             "{$s+1)}",
                             "{()+$s}",
                             "{$s+$}",
                             "{$s+$x}",
                             "{$s+$NODEID}",
                             "{$s%2}",
                             "{+$s}",
                             "{$s+9223372036854775807}",
                             "{$s*9223372036854775807}",
                             "{-9223372036854775807-$s}",
                             "{(-9223372036854775807-1+$s-$s)/-1}",
                             "{$s+99999999999999999999}",
                             "{$s+0xFFFFFFFFFFFFFFFF}"}) {
        QTest::addRow("%s", text) << QString::fromUtf8(text);
    }
    const QString deep = QString(200000, u'(') + "$s" + QString(200000, u')');
    QTest::addRow("deep parentheses") << u'{' + deep + u'}';
    QTest::addRow("open parentheses") << "{$s+" + QString(200000, u'(') + u'}';
}

void TestHelper::unreadableTextsStay()
{
    QFETCH(QString, text);
    QCOMPARE(Helper::substituteVariables(text, 0x301A, 0x1F, 3), text);
}

void TestHelper::subindexMinusOne()
{
    QCOMPARE(Helper::substituteVariables("$z {$z+1}", 0x2000, 1, 0), QStringLiteral("0 1"));
    QCOMPARE(Helper::substituteVariables("$z {$z+1}", 0x2000, 0, 0), QStringLiteral("-1 0"));
    QCOMPARE(Helper::substituteVariables("$i $S $l", 0xFFFF, 255, 255),
             QStringLiteral("65535 ff 255"));
    QCOMPARE(Helper::substituteVariables("{" + QString(100001, u'-') + "$s}", 1, 7, 0),
             QStringLiteral("-7"));
}

void TestHelper::numberLists_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("result");
    QTest::addRow("one") << "10"
                         << "10u";
    QTest::addRow("list") << "1,0x20, 3"
                          << "1u,0x20u, 3u";
    QTest::addRow("blanks") << " 1 ,2\t"
                            << " 1u ,2u\t";
    QTest::addRow("there already") << "1u,2U,3"
                                   << "1u,2U,3u";
    QTest::addRow("no numbers") << "COUNT,-1,0x,1.5,12ab"
                                << "COUNT,-1,0x,1.5,12ab";
    QTest::addRow("holes") << ",1,,2,"
                           << ",1u,,2u,";
    QTest::addRow("empty") << ""
                           << "";
}

void TestHelper::numberLists()
{
    QFETCH(QString, text);
    QFETCH(QString, result);
    const QString once = Helper::addLowerCaseUtoNumberLists(text);
    QCOMPARE(once, result);
    QCOMPARE(Helper::addLowerCaseUtoNumberLists(once), result);
}

void TestHelper::numberTexts()
{
    using namespace NumberText;
    for (const char *text : {"", " ", "-", "+", "0x", "0b11", "08", "--5", "+-5", "1 2", "5u", "x"})
        QVERIFY2(!toBits(QString::fromLatin1(text)), text);
    QCOMPARE(toUnsigned(u" 0X1f "), std::optional<quint64>(31));
    QCOMPARE(toUnsigned(u"+017"), std::optional<quint64>(15));
    QCOMPARE(toUnsigned(u"017", Base::Decimal), std::optional<quint64>(17));
    QCOMPARE(toUnsigned(u"18446744073709551616"), std::nullopt);
    QCOMPARE(toUnsigned(u"-1"), std::nullopt);
    QCOMPARE(toUnsigned32(u"0xFFFFFFFF"), std::optional<quint32>(0xFFFFFFFF));
    QCOMPARE(toUnsigned32(u"0x100000000"), std::nullopt);
    QCOMPARE(toSigned(u"-0x10"), std::optional<qint64>(-16));
    QCOMPARE(toSigned(u"-9223372036854775808"), std::optional(std::numeric_limits<qint64>::min()));
    QCOMPARE(toSigned(u"9223372036854775808"), std::nullopt);
    QCOMPARE(toBits(u"-99999999999999999999"), std::optional(quint64(1) << 63));
    QCOMPARE(toBits(u"99999999999999999999"), std::optional(~quint64(0)));
}

void TestHelper::utf8Arrays()
{
    QCOMPARE(Helper::UTF8String2ArrayString("AB"), QStringLiteral("0x41, 0x42"));
    QCOMPARE(Helper::UTF8String2ArrayString(QString::fromUtf8("\xC3\xBC\xF0\x9F\x98\x80\n")),
             QStringLiteral("0xc3, 0xbc, 0xf0, 0x9f, 0x98, 0x80, 0x0a"));
    QCOMPARE(Helper::UTF8String2ArrayString(QString()), QString());
    QCOMPARE(Helper::UTF8String2ByteArray(QString::fromUtf8("\xE2\x82\xAC")),
             QByteArray("\xE2\x82\xAC"));
    QVERIFY(!Helper::csvDescLinebreak.isEmpty());
    QVERIFY(!Helper::csvDescLinebreak.contains(u'\n') && !Helper::csvDescLinebreak.contains(u','));
    QCOMPARE(Helper::csvDescLinebreak.trimmed(), Helper::csvDescLinebreak);
}

namespace {

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

} // namespace

void TestHelper::lineEnds_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("ending");
    QTest::addColumn<QByteArray>("after");
    const QByteArray mixed("a\r\nb\nc\rd\n\r\n\r\re\n\n");
    QTest::addRow("to lf") << mixed << "\n" << QByteArray("a\nb\nc\nd\n\n\n\ne\n\n");
    QTest::addRow("to crlf") << mixed << "\r\n"
                             << QByteArray("a\r\nb\r\nc\r\nd\r\n\r\n\r\n\r\ne\r\n\r\n");
    QTest::addRow("to cr") << mixed << "\r" << QByteArray("a\rb\rc\rd\r\r\r\re\r\r");
    QTest::addRow("no end") << QByteArray("a\nb") << "\r\n" << QByteArray("a\r\nb");
    QTest::addRow("binary bytes") << QByteArray("\0\xFF\n\xC3", 4) << "\r\n"
                                  << QByteArray("\0\xFF\r\n\xC3", 5);
    QTest::addRow("empty") << QByteArray("") << "\r\n" << QByteArray("");
}

void TestHelper::lineEnds()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, ending);
    const QTemporaryDir dir;
    const QString path = dir.filePath("gen_define.h");
    QVERIFY(writeFile(path, before));
    QVERIFY(Helper::modifyLineEnding(path, ending));
    QTEST(readFile(path), "after");
    QVERIFY(Helper::modifyLineEnding(path, ending));
    QTEST(readFile(path), "after");
}

void TestHelper::lineEndsAtPieceBorders()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath("large.c");
    for (const int length : {(1 << 20) - 1, 1 << 20, (1 << 20) - 2}) {
        const QByteArray line(length, 'x');
        QVERIFY(writeFile(path, line + "\r\n" + line + "\r\ny"));
        QVERIFY(Helper::modifyLineEnding(path, "\n"));
        QVERIFY(readFile(path) == line + '\n' + line + "\ny");
    }
}

void TestHelper::lineEndFailuresLeaveTheFile()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath("a.h");
    QVERIFY(!Helper::modifyLineEnding(path, "\n"));
    QVERIFY(!QFile::exists(path));
    QVERIFY(!Helper::modifyLineEnding(dir.path(), "\n"));
    QVERIFY(!Helper::modifyLineEnding(QString(), "\n"));
    QVERIFY(writeFile(path, "a\r\n"));
    for (const char *ending : {"", "x", "\n\n", "\n\r"}) {
        QVERIFY(!Helper::modifyLineEnding(path, ending));
    }
    QCOMPARE(readFile(path), QByteArray("a\r\n"));
}

void TestHelper::lineEndsKeepPermissionsAndFolder()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath("run.sh");
    QVERIFY(writeFile(path, "a\r\n"));
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    const QFile::Permissions before = QFile::permissions(path);
    QVERIFY(Helper::modifyLineEnding(path, "\n"));
    QCOMPARE(QFile::permissions(path), before);
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList("run.sh"));
}

QTEST_GUILESS_MAIN(TestHelper)
#include "test_helper.moc"
