#include "generators/canopen/indicesnames.h"

#include <QStringList>

IndicesNames::IndicesNames(const QStringList &reserved)
{
    for (const QString &name : reserved)
        m_uses.insert(name, 0);
}

QString IndicesNames::unique(const QString &name)
{
    if (take(name))
        return name;
    quint32 number = m_uses.value(name);
    QString numbered;
    do {
        ++number;
        numbered = name + QLatin1Char('_') + QString::number(number);
    } while (!take(numbered));
    m_uses[name] = number;
    return numbered;
}

bool IndicesNames::take(const QString &name)
{
    if (m_uses.contains(name))
        return false;
    m_uses.insert(name, 0);
    return true;
}

QString IndicesNames::clean(const QString &text)
{
    const QString upper = text.toUpper();
    QString result;
    result.reserve(upper.size());
    for (const QChar character : upper) {
        const char16_t code = character.unicode();
        const bool isPlain = (code >= u'A' && code <= u'Z') || (code >= u'0' && code <= u'9');
        if (isPlain)
            result += character;
        else if (result.isEmpty() || result.back() != QLatin1Char('_'))
            result += QLatin1Char('_');
    }
    return result;
}

QString IndicesNames::cleanWhole(const QString &text)
{
    QString result = clean(text);
    if (result.isEmpty() || result.front().isDigit())
        result.prepend(QLatin1Char('_'));
    return result;
}
