#include "resources/builder/sourcelexer.h"

#include <QRegularExpression>

namespace {

/// Reads a quoted text; `at` stands on the opening quote and ends behind the closing one.
QString quotedText(const QString &line, qsizetype &at, QString &error)
{
    QString text;
    for (++at; at < line.size(); ++at) {
        const QChar c = line.at(at);
        if (c == u'"') {
            ++at;
            return text;
        }
        if (c != u'\\') {
            text += c;
            continue;
        }
        ++at;
        const QChar escaped = at < line.size() ? line.at(at) : QChar();
        if (escaped == u'n')
            text += u'\n';
        else if (escaped == u't')
            text += u'\t';
        else if (escaped == u'"' || escaped == u'\\')
            text += escaped;
        else
            error = QStringLiteral("a backslash in quotes must be followed by \", \\, n or t");
    }
    error = QStringLiteral("closing quote is missing");
    return text;
}

bool isKeyCharacter(QChar c)
{
    return c.isLetterOrNumber() || c == u'_' || c == u':' || c == u'.' || c == u'-';
}

SourceWord nextWord(const QString &line, qsizetype &at, QString &error)
{
    SourceWord word;
    if (line.at(at) == u'"') {
        word.quoted = true;
        word.text = quotedText(line, at, error);
        return word;
    }
    qsizetype end = at;
    while (end < line.size() && isKeyCharacter(line.at(end)))
        ++end;
    if (end > at && end < line.size() && line.at(end) == u'=') {
        word.key = line.mid(at, end - at);
        at = end + 1;
        if (at < line.size() && line.at(at) == u'"') {
            word.quoted = true;
            word.text = quotedText(line, at, error);
            return word;
        }
    }
    end = at;
    while (end < line.size() && !line.at(end).isSpace())
        ++end;
    word.text = line.mid(at, end - at);
    at = end;
    if (word.text.contains(u'"'))
        error = QStringLiteral("a quote may not stand inside the word '%1'").arg(word.text);
    return word;
}

} // namespace

QList<SourceWord> SourceLexer::split(const QString &line, QString &error)
{
    QList<SourceWord> words;
    qsizetype at = 0;
    while (true) {
        while (at < line.size() && line.at(at).isSpace())
            ++at;
        if (at == line.size() || line.at(at) == u'#')
            return words;
        const SourceWord word = nextWord(line, at, error);
        if (error.isEmpty() && at < line.size() && !line.at(at).isSpace())
            error = QStringLiteral("a blank is missing behind a closing quote");
        if (!error.isEmpty())
            return words;
        words.append(word);
    }
}

QString SourceLexer::restOfLine(const QString &text, QString &error)
{
    const QString trimmed = text.trimmed();
    if (!trimmed.startsWith(u'"'))
        return trimmed;
    qsizetype at = 0;
    const QString value = quotedText(trimmed, at, error);
    if (error.isEmpty() && at < trimmed.size())
        error = QStringLiteral("nothing may follow the closing quote");
    return value;
}

QString SourceLexer::expand(const QString &text, int n)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\{n(?:([+-])(\\d{1,4}))?(?::0?(\\d)x)?\\}"));
    QString result;
    qsizetype last = 0;
    auto matches = pattern.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const int offset = match.captured(2).toInt();
        const int number = match.captured(1) == QLatin1String("-") ? n - offset : n + offset;
        result += QStringView(text).mid(last, match.capturedStart() - last);
        result +=
            match.captured(3).isEmpty()
                ? QString::number(number)
                : QStringLiteral("%1").arg(number, match.captured(3).toInt(), 16, QLatin1Char('0'));
        last = match.capturedEnd();
    }
    return result.append(QStringView(text).mid(last));
}
