#pragma once

#include <QList>
#include <QString>

/// One word of a source line: `text`, `"quoted text"`, `key=text` or `key="quoted text"`.
struct SourceWord
{
    QString key; ///< empty for a word without "="
    QString text;
    bool quoted = false;
};

/// Splits source lines into words. Stateless.
class SourceLexer
{
public:
    /// Words are separated by blanks; a word that starts with "#" begins a comment. In quotes,
    /// \" \\ \n and \t stand for a quote, a backslash, a line feed and a tab. On bad input `error`
    /// is set and the words before it are given.
    [[nodiscard]] static QList<SourceWord> split(const QString &line, QString &error);
    /// A value that takes the rest of its line: verbatim without blanks around it, or in quotes.
    [[nodiscard]] static QString restOfLine(const QString &text, QString &error);
    /// Replaces "{n}", "{n+4}", "{n-1}" by a number in decimal, and "{n:02x}" by one in
    /// hexadecimal with that many digits. Other braces stay.
    [[nodiscard]] static QString expand(const QString &text, int n);
};
