#include "app/outputlinks.h"

#include "canopen/indextext.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace {

struct SettingWord
{
    const char *word;   ///< as a message spells it, in any case of letters
    const char *search; ///< what finds the setting
};

constexpr std::array settingWords{
    SettingWord{"Limit Check", "Limit Check"},
    SettingWord{"Node-Id", "Node-ID"},
    SettingWord{"The manufacturer ID", "Manufacturer Code"},
    SettingWord{"Manufacturer code", "Manufacturer Code"},
    SettingWord{"bitwise mapping", "Bitwise mapping"},
    SettingWord{"Identity number", "Identity Number"},
    SettingWord{"Vehicle instance", "Vehicle Instance"},
    SettingWord{"ECU instance", "ECU Instance"},
    SettingWord{"Function instance", "Function Instance"},
    SettingWord{"Industy Group", "Industry Group"},
    SettingWord{"Industry Group", "Industry Group"},
};

const QRegularExpression &objectPattern()
{
    static const QRegularExpression pattern(QStringLiteral(
        "\\b[Oo]bject 0x([0-9A-Fa-f]{1,4})(?![0-9A-Fa-f])(?:-(?:0x)?([0-9A-Fa-f]{1,3})\\b)?"));
    return pattern;
}

const QRegularExpression &wordPattern()
{
    static const QRegularExpression pattern = [] {
        QStringList words;
        for (const SettingWord &row : settingWords)
            words.append(QRegularExpression::escape(QLatin1String(row.word)));
        return QRegularExpression(QStringLiteral("\\b(?:%1)\\b").arg(words.join(u'|')),
                                  QRegularExpression::CaseInsensitiveOption);
    }();
    return pattern;
}

quint8 lineOf(const QString &text, quint8 line)
{
    static const QRegularExpression pattern(QStringLiteral("\\bof line (\\d+)"));
    bool isByte = false;
    const ushort named = pattern.match(text).captured(1).toUShort(&isByte);
    return isByte && named <= 0xFF ? static_cast<quint8>(named) : line;
}

std::optional<quint8> subindexOf(const QString &digits, int base)
{
    bool ok = false;
    const uint number = digits.toUInt(&ok, base);
    return ok && number <= 0xFF ? std::optional(static_cast<quint8>(number)) : std::nullopt;
}

OutputLinks::Target objectTarget(const QRegularExpressionMatch &match, quint8 line, int base)
{
    OutputLinks::Target target;
    target.line = line;
    target.index = match.captured(1).toUShort(nullptr, 16);
    if (const auto subindex = subindexOf(match.captured(2), base)) {
        target.kind = OutputLinks::Target::Kind::SubObject;
        target.subindex = *subindex;
    }
    return target;
}

QString searchOf(const QString &word)
{
    const auto *row =
        std::find_if(settingWords.begin(), settingWords.end(), [&](const auto &known) {
            return word.compare(QLatin1String(known.word), Qt::CaseInsensitive) == 0;
        });
    return row != settingWords.end() ? QString::fromLatin1(row->search) : word;
}

void findObjects(const QString &text, quint8 line, QList<OutputLinks::Link> &links)
{
    // This one message tells the subindex in decimal behind its "0x".
    const int base = text.contains(QLatin1String("Value conversion failed")) ? 10 : 16;
    const quint8 namedLine = lineOf(text, line);
    auto matches = objectPattern().globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        links.append(
            {match.capturedStart(), match.capturedLength(), objectTarget(match, namedLine, base)});
    }
}

void findSettings(const QString &text, QList<OutputLinks::Link> &links)
{
    auto matches = wordPattern().globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        OutputLinks::Target target;
        target.kind = OutputLinks::Target::Kind::Setting;
        target.search = searchOf(match.captured());
        links.append({match.capturedStart(), match.capturedLength(), target});
    }
}

} // namespace

QString OutputLinks::Target::anchor() const
{
    switch (kind) {
    case Kind::Object:
        return QStringLiteral("%1 - %2").arg(line).arg(IndexText::hex(index));
    case Kind::SubObject:
        return QStringLiteral("%1 - %2-%3")
            .arg(line)
            .arg(IndexText::hex(index), IndexText::subHex(subindex));
    case Kind::Setting:
        break;
    }
    return search;
}

std::optional<OutputLinks::Target> OutputLinks::Target::fromAnchor(const QString &anchor)
{
    static const QRegularExpression pattern(
        QStringLiteral("^(\\d{1,3}) - (?:0x)?([0-9A-Fa-f]{1,4})(?:-(?:0x)?([0-9A-Fa-f]{1,2}))?$"));
    Target target;
    const QRegularExpressionMatch match = pattern.match(anchor.trimmed());
    if (!match.hasMatch()) {
        target.kind = Kind::Setting;
        target.search = anchor.trimmed();
        return target.search.isEmpty() ? std::nullopt : std::optional(target);
    }
    const uint line = match.capturedView(1).toUInt();
    if (line > 0xFF)
        return std::nullopt;
    target.line = static_cast<quint8>(line);
    target.index = match.capturedView(2).toUShort(nullptr, 16);
    if (const auto subindex = subindexOf(match.captured(3), 16)) {
        target.kind = Kind::SubObject;
        target.subindex = *subindex;
    }
    return target;
}

QList<OutputLinks::Link> OutputLinks::find(const QString &text, quint8 line)
{
    QList<Link> links;
    findObjects(text, line, links);
    findSettings(text, links);
    std::sort(links.begin(), links.end(),
              [](const Link &left, const Link &right) { return left.begin < right.begin; });
    return links;
}

bool OutputLinks::namesObject(const QString &text)
{
    return text.contains(QLatin1String("Object 0x"));
}
