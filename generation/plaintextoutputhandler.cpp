#include "generation/plaintextoutputhandler.h"

#include <QRegularExpression>

#include <array>
#include <utility>

namespace {

/// The character of an entity's name or number, without its ampersand and semicolon; empty if it
/// is none.
QString entityText(QStringView name)
{
    static constexpr std::array<std::pair<const char *, char16_t>, 6> names = {{{"lt", u'<'},
                                                                                {"gt", u'>'},
                                                                                {"amp", u'&'},
                                                                                {"quot", u'"'},
                                                                                {"apos", u'\''},
                                                                                {"nbsp", u' '}}};
    for (const auto &[known, character] : names) {
        if (name == QLatin1String(known))
            return QString(QChar(character));
    }
    if (!name.startsWith(u'#'))
        return {};
    const bool isHex = name.size() > 1 && name.at(1).toLower() == u'x';
    bool ok = false;
    const uint code = name.mid(isHex ? 2 : 1).toUInt(&ok, isHex ? 16 : 10);
    const bool isCharacter =
        ok && code != 0 && code <= QChar::LastValidCodePoint && !(code >= 0xD800 && code <= 0xDFFF);
    const char32_t character = code;
    return isCharacter ? QString::fromUcs4(&character, 1) : QString();
}

QString decodeEntities(const QString &text)
{
    static const QRegularExpression entity(
        QStringLiteral("&(#[0-9]{1,7}|#[xX][0-9a-fA-F]{1,6}|[a-z]{2,6});"));
    QString result;
    qsizetype last = 0;
    auto matches = entity.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QString character = entityText(match.capturedView(1));
        if (character.isEmpty())
            continue;
        result += QStringView(text).mid(last, match.capturedStart() - last);
        result += character;
        last = match.capturedEnd();
    }
    return result.append(QStringView(text).mid(last));
}

/// Control characters of a name would steer the terminal.
QString withoutControls(QString text)
{
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control && character != QLatin1Char('\n') &&
            character != QLatin1Char('\t'))
            character = QLatin1Char(' ');
    }
    return text;
}

} // namespace

PlainTextOutputHandler::PlainTextOutputHandler(std::FILE *stream, QObject *parent)
    : OutputHandlerBase(parent), m_stream(stream)
{
}

void PlainTextOutputHandler::outputMessage(const QVariant &text)
{
    QString line = plainText(text.toString());
    // The message ends its line anyway.
    if (line.endsWith(QLatin1Char('\n')))
        line.chop(1);
    m_lines.append(line);
    if (!m_stream)
        return;
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), m_stream);
    std::fflush(m_stream);
}

QString PlainTextOutputHandler::loggingText() const
{
    return m_lines.isEmpty() ? QString() : m_lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

QString PlainTextOutputHandler::plainText(const QString &richText)
{
    static const QRegularExpression lineBreak(QStringLiteral("<br\\s*/?>"),
                                              QRegularExpression::CaseInsensitiveOption);
    // Only what rich text knows: messages also quote code with angle brackets.
    static const QRegularExpression tag(
        QStringLiteral("</?(?:a|b|i|u|em|strong|font|span|p|div|tt|code|pre|sub|sup|ul|ol|li|"
                       "table|tr|td|th|h[1-6]|html|body|img|hr)(?:\\s[^<>]*)?/?>"),
        QRegularExpression::CaseInsensitiveOption);
    QString text = richText;
    text.replace(lineBreak, QStringLiteral("\n"));
    text.remove(tag);
    return withoutControls(decodeEntities(text));
}
