#pragma once

#include <QString>

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

/// Builds the value list of an insert. Rows are written by the ten thousand, so nothing is made
/// that is not needed for the text itself.
class ValueList
{
public:
    explicit ValueList(QString &statement) : m_statement(statement) {}

    void number(quint64 value)
    {
        separate();
        char16_t digits[20];
        int count = 0;
        do {
            digits[count++] = char16_t(u'0' + value % 10);
            value /= 10;
        } while (value != 0);
        while (count > 0)
            m_statement += QChar(digits[--count]);
    }
    void id(qint64 value)
    {
        if (value >= 0)
            number(quint64(value));
        else
            raw(QString::number(value));
    }
    void text(const QString &value)
    {
        separate();
        m_statement += u'\'';
        if (value.contains(u'\'') || value.contains(QChar(u'\0')) || !value.isValidUtf16())
            m_statement += escaped(value);
        else
            m_statement += value;
        m_statement += u'\'';
    }
    void raw(const QString &literal)
    {
        separate();
        m_statement += literal;
    }

private:
    void separate()
    {
        if (m_first)
            m_first = false;
        else
            m_statement += u',';
    }

    QString &m_statement;
    bool m_first = true;
};

/// Name of a table of one line.
inline QString lineTable(const char *name, quint8 line)
{
    return QLatin1String(name) + QString::number(line);
}

} // namespace SqlText
