#include "canopen/namevariables.h"

#include <QtNumeric>

#include <limits>

namespace {

/// Recursive descent over one section in braces. Every function returns nothing at junk, at an
/// overflow of 64 bits and at a division by zero.
class Expression
{
public:
    Expression(QStringView text, const NameVariables &variables)
        : m_text(text), m_variables(variables)
    {
    }

    [[nodiscard]] std::optional<qint64> evaluate()
    {
        const auto result = sum();
        skipBlanks();
        return m_pos == m_text.size() ? result : std::nullopt;
    }

private:
    using Value = std::optional<qint64>;

    /// Far beyond what a name needs, and a bound for the stack however long the text is.
    static constexpr int maxDepth = 50;

    Value sum()
    {
        Value left = product();
        while (left) {
            const QChar sign = peek();
            if (sign != u'+' && sign != u'-')
                break;
            ++m_pos;
            left = apply(sign, *left, product());
        }
        return left;
    }

    Value product()
    {
        Value left = factor();
        while (left) {
            const QChar sign = peek();
            if (sign != u'*' && sign != u'/')
                break;
            ++m_pos;
            left = apply(sign, *left, factor());
        }
        return left;
    }

    Value factor()
    {
        bool negative = false;
        for (; peek() == u'-'; ++m_pos)
            negative = !negative;
        const Value value = atom();
        return value && negative ? apply(u'-', 0, value) : value;
    }

    Value atom()
    {
        const QChar first = peek();
        if (first == u'(')
            return parentheses();
        if (first != u'$')
            return number();
        m_pos += 2;
        return m_pos <= m_text.size() ? m_variables.value(m_text[m_pos - 1]) : std::nullopt;
    }

    Value parentheses()
    {
        if (++m_depth > maxDepth)
            return std::nullopt;
        ++m_pos;
        const Value value = sum();
        if (peek() != u')')
            return std::nullopt;
        ++m_pos;
        --m_depth;
        return value;
    }

    Value number()
    {
        const bool hex = m_text.mid(m_pos).startsWith(u"0x", Qt::CaseInsensitive);
        m_pos += hex ? 2 : 0;
        const qsizetype start = m_pos;
        while (m_pos < m_text.size() && isDigit(m_text[m_pos], hex))
            ++m_pos;
        bool ok = false;
        const qint64 value = m_text.mid(start, m_pos - start).toLongLong(&ok, hex ? 16 : 10);
        return ok ? Value(value) : std::nullopt;
    }

    static bool isDigit(QChar c, bool hex)
    {
        const char16_t lower = c.unicode() | 0x20;
        return (c >= u'0' && c <= u'9') || (hex && lower >= u'a' && lower <= u'f');
    }

    static Value apply(QChar sign, qint64 left, Value right)
    {
        if (!right)
            return std::nullopt;
        qint64 result = 0;
        bool overflow = false;
        switch (sign.unicode()) {
        case u'+':
            overflow = qAddOverflow(left, *right, &result);
            break;
        case u'-':
            overflow = qSubOverflow(left, *right, &result);
            break;
        case u'*':
            overflow = qMulOverflow(left, *right, &result);
            break;
        default:
            overflow = *right == 0 || (*right == -1 && left == std::numeric_limits<qint64>::min());
            result = overflow ? 0 : left / *right;
        }
        return overflow ? std::nullopt : Value(result);
    }

    void skipBlanks()
    {
        while (m_pos < m_text.size() && m_text[m_pos].isSpace())
            ++m_pos;
    }

    QChar peek()
    {
        skipBlanks();
        return m_pos < m_text.size() ? m_text[m_pos] : QChar();
    }

    QStringView m_text;
    const NameVariables &m_variables;
    qsizetype m_pos = 0;
    int m_depth = 0;
};

} // namespace

std::optional<QString> NameVariables::substitute(QStringView text) const
{
    QString result;
    result.reserve(text.size() + 8);
    qsizetype pos = 0;
    while (pos < text.size()) {
        const qsizetype open = text.indexOf(u'{', pos);
        const QStringView plain = open < 0 ? text.mid(pos) : text.mid(pos, open - pos);
        if (plain.contains(u'}'))
            return std::nullopt;
        appendPlain(result, plain);
        if (open < 0)
            break;
        const qsizetype close = text.indexOf(u'}', open);
        if (close < 0 || !appendSection(result, text.mid(open + 1, close - open - 1)))
            return std::nullopt;
        pos = close + 1;
    }
    return result;
}

std::optional<qint64> NameVariables::value(QChar letter) const
{
    switch (letter.unicode()) {
    case u'i':
    case u'I':
        return m_index;
    case u's':
    case u'S':
        return m_subindex;
    case u'z':
        return m_subindex - 1;
    case u'l':
    case u'L':
        return m_line;
    default:
        return std::nullopt;
    }
}

QString NameVariables::write(QChar letter, qint64 value) const
{
    return QString::number(value, letter == u'I' || letter == u'S' ? 16 : 10);
}

void NameVariables::appendPlain(QString &result, QStringView text) const
{
    qsizetype pos = 0;
    for (;;) {
        const qsizetype dollar = text.indexOf(u'$', pos);
        if (dollar < 0 || dollar + 1 == text.size()) {
            result.append(text.mid(pos));
            return;
        }
        result.append(text.mid(pos, dollar - pos));
        const QChar letter = text[dollar + 1];
        if (const auto number = value(letter)) {
            result.append(write(letter, *number));
            pos = dollar + 2;
        } else {
            // Only the dollar is passed over: in "$$i" the second one starts a variable.
            result.append(u'$');
            pos = dollar + 1;
        }
    }
}

bool NameVariables::appendSection(QString &result, QStringView section) const
{
    if (section.contains(u'{'))
        return false;
    // Braces of C, as in "(POINT_T){0, 1}", or around "$NODEID" are the user's own.
    if (!holdsVariable(section)) {
        result.append(u'{').append(section).append(u'}');
        return true;
    }
    // Around nothing but a variable the braces only set it apart from what follows.
    if (const QStringView alone = section.trimmed(); alone.size() == 2) {
        appendPlain(result, alone);
        return true;
    }
    const auto number = Expression(section, *this).evaluate();
    if (number)
        result.append(QString::number(*number));
    return number.has_value();
}

bool NameVariables::holdsVariable(QStringView text) const
{
    for (qsizetype at = text.indexOf(u'$'); at >= 0; at = text.indexOf(u'$', at + 1)) {
        if (at + 1 < text.size() && value(text[at + 1]))
            return true;
    }
    return false;
}
