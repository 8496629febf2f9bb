#pragma once

#include <QString>

#include <array>
#include <charconv>
#include <string>

/// Forms of values inside statements. Statements are made as text, so every text that comes from
/// outside goes through `quoted`.
namespace SqlText {

/// Doubles apostrophes. A NUL would end the statement early, so it is dropped; half of a surrogate
/// pair would derange the database's reading of it, so it becomes the replacement character.
inline QString escaped(QString text)
{
    if (!text.isValidUtf16())
        text = QString::fromUtf8(text.toUtf8());
    text.remove(QChar(u'\0'));
    text.replace(u'\'', QLatin1String("''"));
    return text;
}

/// The text as an SQL literal, apostrophes included.
inline QString quoted(const QString &text)
{
    return u'\'' + escaped(text) + u'\'';
}

template <typename Number>
QString number(Number value)
{
    return QString::number(value);
}

inline QString number(bool value)
{
    return value ? QStringLiteral("1") : QStringLiteral("0");
}

/// Appends decimal digits.
template <typename Number>
void appendNumber(std::string &text, Number value)
{
    if (value >= 0 && value <= 9) {
        text += char('0' + int(value));
        return;
    }
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    text.append(digits.data(), end.ptr);
}

/// Builds the value list of an insert, in UTF-8. Rows are written by the ten thousand, so nothing
/// is made that is not needed for the text itself.
class ValueList
{
public:
    explicit ValueList(std::string &statement) : m_statement(statement) {}

    void number(quint64 value)
    {
        separate();
        appendNumber(m_statement, value);
    }
    void id(qint64 value)
    {
        separate();
        appendNumber(m_statement, value);
    }
    void text(const QString &value)
    {
        separate();
        const size_t start = m_statement.size();
        m_statement += '\'';
        for (const QChar c : value) {
            if (c.unicode() == 0 || c.unicode() >= 0x80 || c == u'\'') {
                m_statement.resize(start);
                m_statement += quoted(value).toStdString();
                return;
            }
            m_statement += char(c.unicode());
        }
        m_statement += '\'';
    }

private:
    void separate()
    {
        if (m_first)
            m_first = false;
        else
            m_statement += ',';
    }

    std::string &m_statement;
    bool m_first = true;
};

/// Name of a table of one line.
inline QString lineTable(const char *name, quint8 line)
{
    return QLatin1String(name) + QString::number(line);
}

} // namespace SqlText
