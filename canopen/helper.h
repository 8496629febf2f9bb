#pragma once

#include <QByteArray>
#include <QString>

/// Text utilities shared by generators and importers. Stateless; any thread.
class Helper
{
public:
    /// Marker for a line break inside a description in CSV files; can't occur in a description.
    static const QString csvDescLinebreak;

    /// Replaces the variables of an object or variable name: `$i` index and `$s` subindex in
    /// decimal, `$I` and `$S` in hexadecimal (lower case, no prefix), `$z` subindex minus 1, `$L`
    /// and `$l` the line. Any other `$`, as in "$NODEID", stays.
    ///
    /// A section in braces that holds a variable is an expression of variables, numbers (decimal
    /// or with 0x), + - * / (integer, towards zero), minus signs and parentheses; its value is
    /// written in decimal. Braces around a single variable only set it apart, so "{$I}" is
    /// hexadecimal. Braces without a variable stay as they are. A text that can't be read (junk,
    /// unbalanced or nested braces, division by zero, more than 64 bits) comes back unchanged,
    /// whole.
    [[nodiscard]] static QString substituteVariables(const QString &text, quint16 index,
                                                     quint8 subindex, quint8 line);
    /// The text with a blank in place of each tab, line break and other white space, as it stands
    /// in one line of C.
    [[nodiscard]] static QString onOneLine(const QString &text);
    /// "1,0x20, 3" to "1u,0x20u, 3u"; entries that are no numbers, or end in "u", stay.
    [[nodiscard]] static QString addLowerCaseUtoNumberLists(const QString &text);
    /// The UTF-8 bytes of a text as the initialiser of a C array, without braces: "0x41, 0x42".
    [[nodiscard]] static QString UTF8String2ArrayString(const QString &text);
    [[nodiscard]] static QByteArray UTF8String2ByteArray(const QString &text);
    /// Rewrites all line ends (CR LF, LF, CR, also mixed) of a file to `ending`, one of these
    /// three. The new file is written aside and then takes the place and permissions of the old
    /// one; a file that needs no change isn't touched. False, with the file as it was, if it can't
    /// be read or written or `ending` is none of the three.
    static bool modifyLineEnding(const QString &path, const QString &ending);
};
