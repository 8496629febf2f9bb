#pragma once

#include <QByteArray>
#include <QString>

/// The syntax of INI text as `QSettings::IniFormat` reads and writes it, always in UTF-8 and with
/// line feeds, the same on every platform. Pure values, any thread.
///
/// It stands beside QSettings because a project of 50000 subindices has some 1.6 million keys:
/// as one map they take ten seconds and most of a gigabyte, and QSettings keeps files in a cache
/// of the process that misses a file rewritten with the same size within one tick of the clock.
namespace IniText {

/// Between the parts of a key; QSettings shows it as '/'.
constexpr char separator = '\\';

/// One part of a key. Everything but letters, digits and "_-." is escaped, '/' included, so that
/// a part stays one part. An empty part is a lonely '%': before the '=' a separator would escape
/// it.
[[nodiscard]] QByteArray encodeKey(QStringView part);
/// False if the bytes are not UTF-8. A '%' that begins no escape stands for itself.
bool decodeKey(QByteArrayView bytes, QString &part);

[[nodiscard]] bool isAscii(QByteArrayView bytes);
/// Whether a text stands in a file as it is.
[[nodiscard]] bool isPlain(QByteArrayView bytes);
/// Appends the value of a text. A leading '@' is doubled, since it marks other types.
void encodeValue(const QString &text, QByteArray &out);
/// The text of a value as the file holds it; false if it is not UTF-8. A comma outside of quotes
/// stands for itself.
bool decodeValue(QByteArrayView raw, QString &text);

/// Walks the sections and entries of an INI text, which has to outlive it. Linear, allocates
/// nothing.
class Scanner
{
public:
    enum Token { Section, Entry, End, Malformed };

    explicit Scanner(QByteArrayView content) : m_content(content)
    {
        if (m_content.startsWith("\xEF\xBB\xBF"))
            m_pos = 3;
    }

    Token next();

    /// Of the last token: name of the section or key of the entry, both still escaped.
    [[nodiscard]] QByteArrayView name() const { return m_name; }
    [[nodiscard]] QByteArrayView value() const { return m_value; }
    /// Line of the last token, from 1.
    [[nodiscard]] int line() const { return m_line; }
    /// What is wrong, after `Malformed`.
    [[nodiscard]] QString error() const { return m_error; }

private:
    [[nodiscard]] static bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

    void step();
    void skipEscaped();
    void skipLine();
    void skipToContent();
    Token malformed(const char *what);
    Token readSection();
    Token readEntry();

    QByteArrayView m_content;
    QByteArrayView m_name;
    QByteArrayView m_value;
    QString m_error;
    qsizetype m_pos = 0;
    int m_line = 0;
    int m_currentLine = 1;
};

} // namespace IniText
