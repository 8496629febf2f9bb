#pragma once

#include <QString>
#include <QTest>

/// Texts that have a meaning of their own somewhere on the way through an INI file or a statement.
namespace NastyTexts {

inline void addRows()
{
    QTest::addColumn<QString>("text");
    const auto add = [](const char *name, const QString &text) { QTest::newRow(name) << text; };
    add("empty", QStringLiteral(""));
    add("blank", QStringLiteral(" "));
    add("blanks around", QStringLiteral("  a b  "));
    add("tabs around", QStringLiteral("\ta\t"));
    add("line feed", QStringLiteral("a\nb\n"));
    add("carriage return line feed", QStringLiteral("a\r\nb\r\n"));
    add("carriage return", QStringLiteral("\ra\rb"));
    add("quotes", QStringLiteral("\"a\" \"\" 'b' it's ''"));
    add("one quote", QStringLiteral("\""));
    add("list", QStringLiteral("a, b,c,,\"d\", "));
    add("assignment", QStringLiteral("a=b=c"));
    add("comment", QStringLiteral("; a ; b # c"));
    add("hash", QStringLiteral("#define A 1"));
    add("section", QStringLiteral("[General]\nkey=value"));
    add("percent", QStringLiteral("100%41 %U0041 %1 %"));
    add("backslashes", QStringLiteral("C:\\new\\x41\\0\\"));
    add("at sign", QStringLiteral("@"));
    add("two at signs", QStringLiteral("@@home"));
    add("invalid mark", QStringLiteral("@Invalid()"));
    add("byte array mark", QStringLiteral("@ByteArray(x)"));
    add("variant mark", QStringLiteral("@Variant(\\0\\0)"));
    add("string mark", QStringLiteral("@String(x)"));
    add("umlauts", QString::fromUtf8("Größe µs Ωß"));
    add("4 bytes", QString::fromUtf8("😀\xF0\x9D\x84\x9E"));
    add("combining and no-break", QString::fromUtf8("e\xCC\x81\xC2\xA0\xC2\x85\xE2\x80\xA8 "));
    add("byte order mark", QString(QChar(0xFEFF)) + QStringLiteral("a"));
    add("control characters", QStringLiteral("\x01\x1f"
                                             "f\x07\x08\x0b\x0c\x7f"
                                             "9"));
    add("control before digits", QStringLiteral("\x01"
                                                "1ag\x02"
                                                ";"));
    add("numbers", QStringLiteral("0x10"));
    add("leading zeros", QStringLiteral("007"));
    add("statement", QStringLiteral("'); drop table Strings; --"));
    add("100 kB", QString::fromUtf8("ä\"\n;").repeated(30000));
    add("place markers", QStringLiteral("%1 %2 %99 %L1"));
}

} // namespace NastyTexts
