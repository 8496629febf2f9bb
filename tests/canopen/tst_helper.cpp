#include "canopen/helper.h"
#include "canopen/numbertext.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

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

/// Text utilities: variables in names, lists of numbers, bytes for C, line ends of files.
class TestHelper : public QObject
{
    Q_OBJECT

private slots:
    void variables()
    {
        const char *const rows[][2] = {
            {"Speed", "Speed"},
            {"", ""},
            {"{0, 1}", "{0, 1}"},
            {"}{", "}{"},
            {"$i $I $s $S $z $L $l", "12314 301a 31 1f 30 3 3"},
            {"var_$I_$Sx", "var_301a_1fx"},
            {"$i$s$$s$", "1231431$31$"},
            {"$NODEID+0x180", "$NODEID+0x180"},
            {"$NODEID+$s", "$NODEID+31"},
            {"{$NODEID}+{$s+1}", "{$NODEID}+32"},
            {"$nodeid $Z $x", "$nodeid $Z $x"},
            {"Output {$s + 0x40}", "Output 95"},
            {"myData[{$i-0x100}].value", "myData[12058].value"},
            {"m[{$i-0x3000}][{$s-1}].x$L", "m[26][30].x3"},
            {"{$I + 1} {$S*2}", "12315 62"},
            {"{$I}_{ $S }_{$s}", "301a_1f_31"},
            {"{$s-1-2}", "28"},
            {"{$s-(1-2)}", "32"},
            {"{100/$s/2}", "1"},
            {"{1+$s*2}", "63"},
            {"{(1+$s)*2}", "64"},
            {"{-$s+1}", "-30"},
            {"{$s*-2}", "-62"},
            {"{$s- - -1}", "30"},
            {"{-7/($s-29)}", "-3"},
            {"{$s+010}", "41"},
            {"{ $s+0XfF }", "286"},
            {"{$s+9223372036854775776}", "9223372036854775807"},
            {"(T){1} $s", "(T){1} 31"},
            {"Gr\xC3\xB6\xC3\x9F"
             "e $s \xF0\x9F\x98\x80{$s+1}",
             "Gr\xC3\xB6\xC3\x9F"
             "e 31 \xF0\x9F\x98\x80"
             "32"},
        };
        for (const auto &[text, result] : rows)
            QCOMPARE(Helper::substituteVariables(text, 0x301A, 0x1F, 3), QString(result));
    }

    void unreadableTextsStay()
    {
        QStringList texts =
            QString("a $s {$s/0}|{$s/($s-$s)}|$i {$s+1|$i $s+1}|{$s+1}}|{{$s+1}}|{$s+{1}}|{$s+}|{*$"
                    "s}|{$s $s}|{$s$i}|{$s 1}|{$sx}|{$s+12ab}|{$s+0x}|{$s+0xg}|{$s+1.5}|{($s+1}|{$s"
                    "+1)}|{()+$s}|{$s+$}|{$s+$x}|{$s+$NODEID}|{$s%2}|{+$s}|{$s+9223372036854775807}"
                    "|{$s*9223372036854775807}|{-9223372036854775807-$s}|{(-9223372036854775807-1+$"
                    "s-$s)/-1}|{$s+99999999999999999999}|{$s+0xFFFFFFFFFFFFFFFF}")
                .split(u'|');
        texts << u"{%1$s%2}"_s.arg(QString(200000, u'('), QString(200000, u')'))
              << "{$s+" + QString(200000, u'(') + u'}';
        for (const QString &text : texts)
            QCOMPARE(Helper::substituteVariables(text, 0x301A, 0x1F, 3), text);
    }

    void subindexMinusOne()
    {
        QCOMPARE((QStringList{Helper::substituteVariables("$z {$z+1}", 0x2000, 1, 0),
                              Helper::substituteVariables("$z {$z+1}", 0x2000, 0, 0),
                              Helper::substituteVariables("$i $S $l", 0xFFFF, 255, 255)}),
                 (QStringList{"0 1", "-1 0", "65535 ff 255"}));
        QCOMPARE(Helper::substituteVariables("{" + QString(100001, u'-') + "$s}", 1, 7, 0),
                 u"-7"_s);
    }

    void numberLists()
    {
        const char *const rows[][2] = {{"10", "10u"},
                                       {"1,0x20, 3", "1u,0x20u, 3u"},
                                       {" 1 ,2\t", " 1u ,2u\t"},
                                       {"1u,2U,3", "1u,2U,3u"},
                                       {"COUNT,-1,0x,1.5,12ab", "COUNT,-1,0x,1.5,12ab"},
                                       {",1,,2,", ",1u,,2u,"},
                                       {"", ""}};
        for (const auto &[text, result] : rows) {
            QCOMPARE(Helper::addLowerCaseUtoNumberLists(text), QString(result));
            QCOMPARE(Helper::addLowerCaseUtoNumberLists(result), QString(result));
        }
    }

    void numberTexts()
    {
        using namespace NumberText;
        for (const char *text :
             {"", " ", "-", "+", "0x", "0b11", "08", "--5", "+-5", "1 2", "5u", "x"})
            QVERIFY2(!toBits(QString::fromLatin1(text)), text);
        QCOMPARE(toUnsigned(u" 0X1f "), std::optional<quint64>(31));
        QCOMPARE(toUnsigned(u"+017"), std::optional<quint64>(15));
        QCOMPARE(toUnsigned(u"017", Base::Decimal), std::optional<quint64>(17));
        QCOMPARE(toUnsigned(u"18446744073709551616"), std::nullopt);
        QCOMPARE(toUnsigned(u"-1"), std::nullopt);
        QCOMPARE(toUnsigned32(u"0xFFFFFFFF"), std::optional<quint32>(0xFFFFFFFF));
        QCOMPARE(toUnsigned32(u"0x100000000"), std::nullopt);
        QCOMPARE(toSigned(u"-0x10"), std::optional<qint64>(-16));
        QCOMPARE(toSigned(u"-9223372036854775808"),
                 std::optional(std::numeric_limits<qint64>::min()));
        QCOMPARE(toSigned(u"9223372036854775808"), std::nullopt);
        QCOMPARE(toBits(u"-99999999999999999999"), std::optional(quint64(1) << 63));
        QCOMPARE(toBits(u"99999999999999999999"), std::optional(~quint64(0)));
    }

    void utf8Arrays()
    {
        QCOMPARE(Helper::UTF8String2ArrayString("AB"), u"0x41, 0x42"_s);
        QCOMPARE(Helper::UTF8String2ArrayString(QString::fromUtf8("\xC3\xBC\xF0\x9F\x98\x80\n")),
                 u"0xc3, 0xbc, 0xf0, 0x9f, 0x98, 0x80, 0x0a"_s);
        QCOMPARE(Helper::UTF8String2ArrayString(QString()), QString());
        QCOMPARE(Helper::UTF8String2ByteArray(QString::fromUtf8("\xE2\x82\xAC")),
                 QByteArray("\xE2\x82\xAC"));
        QVERIFY(!Helper::csvDescLinebreak.isEmpty());
        QVERIFY(!Helper::csvDescLinebreak.contains(u'\n') &&
                !Helper::csvDescLinebreak.contains(u','));
        QCOMPARE(Helper::csvDescLinebreak.trimmed(), Helper::csvDescLinebreak);
    }

    void lineEnds()
    {
        const QByteArray mixed("a\r\nb\nc\rd\n\r\n\r\re\n\n");
        const struct
        {
            QByteArray before;
            QString ending;
            QByteArray after;
        } rows[] = {{mixed, "\n", "a\nb\nc\nd\n\n\n\ne\n\n"},
                    {mixed, "\r\n", "a\r\nb\r\nc\r\nd\r\n\r\n\r\n\r\ne\r\n\r\n"},
                    {mixed, "\r", "a\rb\rc\rd\r\r\r\re\r\r"},
                    {"a\nb", "\r\n", "a\r\nb"},
                    {{"\0\xFF\n\xC3", 4}, "\r\n", {"\0\xFF\r\n\xC3", 5}},
                    {"", "\r\n", ""}};
        const QTemporaryDir dir;
        const QString path = dir.filePath("gen_define.h");
        for (const auto &[before, ending, after] : rows) {
            QVERIFY(writeFile(path, before));
            for (int pass = 0; pass < 2; ++pass) {
                QVERIFY(Helper::modifyLineEnding(path, ending));
                QCOMPARE(readFile(path), after);
            }
        }
    }

    void lineEndsAtPieceBorders()
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

    void lineEndFailuresLeaveTheFile()
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

    void lineEndsKeepPermissionsAndFolder()
    {
        const QTemporaryDir dir;
        const QString path = dir.filePath("run.sh");
        QVERIFY(writeFile(path, "a\r\n"));
        QVERIFY(
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        const QFile::Permissions before = QFile::permissions(path);
        QVERIFY(Helper::modifyLineEnding(path, "\n"));
        QCOMPARE(QFile::permissions(path), before);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList("run.sh"));
    }
};

QTEST_GUILESS_MAIN(TestHelper)
#include "tst_helper.moc"
