#pragma once

#include <QString>
#include <QTest>

using namespace Qt::StringLiterals;

/// Texts that have a meaning of their own somewhere on the way through an INI file or a statement.
namespace NastyTexts {

inline void addRows()
{
    QTest::addColumn<QString>("text");
    const auto add = [](const char *name, const QString &text) { QTest::newRow(name) << text; };
    add("empty", u""_s);
    add("blank", u" "_s);
    add("blanks around", u"  a b  "_s);
    add("tabs around", u"\ta\t"_s);
    add("line feed", u"a\nb\n"_s);
    add("carriage return line feed", u"a\r\nb\r\n"_s);
    add("carriage return", u"\ra\rb"_s);
    add("quotes", u"\"a\" \"\" 'b' it's ''"_s);
    add("one quote", u"\""_s);
    add("list", u"a, b,c,,\"d\", "_s);
    add("assignment", u"a=b=c"_s);
    add("comment", u"; a ; b # c"_s);
    add("hash", u"#define A 1"_s);
    add("section", u"[General]\nkey=value"_s);
    add("percent", u"100%41 %U0041 %1 %"_s);
    add("backslashes", u"C:\\new\\x41\\0\\"_s);
    add("at sign", u"@"_s);
    add("two at signs", u"@@home"_s);
    add("invalid mark", u"@Invalid()"_s);
    add("byte array mark", u"@ByteArray(x)"_s);
    add("variant mark", u"@Variant(\\0\\0)"_s);
    add("string mark", u"@String(x)"_s);
    add("umlauts", QString::fromUtf8("Größe µs Ωß"));
    add("4 bytes", QString::fromUtf8("😀\xF0\x9D\x84\x9E"));
    add("combining and no-break", QString::fromUtf8("e\xCC\x81\xC2\xA0\xC2\x85\xE2\x80\xA8 "));
    add("byte order mark", QString(QChar(0xFEFF)) + u"a"_s);
    add("control characters", u"\x01\x1f"
                              "f\x07\x08\x0b\x0c\x7f"
                              "9"_s);
    add("control before digits", u"\x01"
                                 "1ag\x02"
                                 ";"_s);
    add("numbers", u"0x10"_s);
    add("leading zeros", u"007"_s);
    add("statement", u"'); drop table Strings; --"_s);
    add("100 kB", QString::fromUtf8("ä\"\n;").repeated(30000));
    add("place markers", u"%1 %2 %99 %L1"_s);
}

} // namespace NastyTexts
