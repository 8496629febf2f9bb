#include "app/outputmarkup.h"

#include "generation/plaintextoutputhandler.h"

#include <QBrush>
#include <QColor>
#include <QRegularExpression>
#include <QStack>

namespace {

const QRegularExpression &tagPattern()
{
    static const QRegularExpression pattern(
        QStringLiteral("<(/?)(b|strong|i|em|u|font|br)(\\s[^<>]*)?/?>"),
        QRegularExpression::CaseInsensitiveOption);
    return pattern;
}

QColor colourOf(const QString &attributes)
{
    static const QRegularExpression pattern(QStringLiteral("color\\s*=\\s*['\"]?([#\\w]+)"),
                                            QRegularExpression::CaseInsensitiveOption);
    const QString name = pattern.match(attributes).captured(1);
    return QColor::isValidColor(name) ? QColor(name) : QColor();
}

QTextCharFormat opened(QTextCharFormat format, const QString &tag, const QString &attributes)
{
    if (tag == u"b" || tag == u"strong")
        format.setFontWeight(QFont::Bold);
    else if (tag == u"i" || tag == u"em")
        format.setFontItalic(true);
    else if (tag == u"u")
        format.setFontUnderline(true);
    else if (const QColor colour = colourOf(attributes); colour.isValid())
        format.setForeground(colour);
    return format;
}

} // namespace

QList<OutputMarkup::Run> OutputMarkup::runs(const QString &message)
{
    QList<Run> result;
    QStack<QTextCharFormat> formats;
    formats.push({});
    qsizetype last = 0;
    const auto addText = [&](qsizetype end) {
        const QString text = message.mid(last, end - last);
        if (!text.isEmpty())
            result.append({PlainTextOutputHandler::plainText(text), formats.top()});
    };
    auto matches = tagPattern().globalMatch(message);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        addText(match.capturedStart());
        last = match.capturedEnd();
        const QString tag = match.captured(2).toLower();
        if (tag == u"br")
            result.append({QStringLiteral("\n"), formats.top()});
        else if (match.capturedLength(1) == 0)
            formats.push(opened(formats.top(), tag, match.captured(3)));
        else if (formats.size() > 1)
            formats.pop();
    }
    addText(message.size());
    return result;
}
