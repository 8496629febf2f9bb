#include "generators/headers/indicesnames.h"

#include <QString>

IndicesNames::IndicesNames(const QList<QByteArray> &reserved)
{
    for (const QByteArray &name : reserved)
        m_uses.try_emplace(name, 0);
}

QByteArray IndicesNames::unique(const QByteArray &name)
{
    const auto [use, isFree] = m_uses.try_emplace(name, 0);
    if (isFree)
        return name;
    quint32 &number = use->second; // stays in its place when others are added
    QByteArray numbered;
    do {
        ++number;
        numbered = name + '_' + QByteArray::number(number);
    } while (!take(numbered));
    return numbered;
}

bool IndicesNames::take(const QByteArray &name)
{
    return m_uses.try_emplace(name, 0).second;
}

QByteArray IndicesNames::clean(const char *prefix, QStringView text)
{
    QByteArray result(prefix);
    result.reserve(result.size() + text.size() + 1);
    const auto append = [&result](QChar character) {
        const char16_t code = character.unicode();
        const bool isPlain = (code >= u'A' && code <= u'Z') || (code >= u'0' && code <= u'9');
        if (isPlain)
            result += char(code);
        else if (!result.endsWith('_'))
            result += '_';
    };
    for (const QChar character : text) {
        const char16_t code = character.unicode();
        if (code < 0x80) {
            append(code >= u'a' && code <= u'z' ? QChar(char16_t(code - u'a' + u'A')) : character);
        } else {
            // Some letters have a capital form of several, as the German sharp s.
            const QString upper = QString(character).toUpper();
            for (const QChar capital : upper)
                append(capital);
        }
    }
    if (result.isEmpty() || (result.front() >= '0' && result.front() <= '9'))
        result.prepend('_');
    return result;
}
