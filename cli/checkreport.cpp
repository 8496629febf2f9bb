#include "cli/checkreport.h"

#include "check/checktable.h"
#include "check/warninggroups.h"
#include "generation/plaintextoutputhandler.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace CheckReports {

namespace {

QString plain(const QString &richText)
{
    return PlainTextOutputHandler::plainText(richText).simplified();
}

QString withoutMarkers(QString text)
{
    static const QRegularExpression marker(QStringLiteral("%[1-9]"));
    return text.replace(marker, QStringLiteral("..."));
}

QList<CheckRule> makeRules()
{
    QList<CheckRule> list;
    for (const CheckDefinition &definition : checkTable()) {
        list.append({QLatin1String(definition.identifier), definition.kind, definition.group,
                     withoutMarkers(plain(QString::fromUtf8(definition.text))),
                     QString::fromUtf8(definition.reason)});
    }
    return list;
}

QString counted(int count, const QString &noun)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(noun, QLatin1String(count == 1 ? "" : "s"));
}

QString sums(const CheckReport &report)
{
    QStringList parts{counted(report.errorCount, QStringLiteral("error")),
                      counted(countOf(report, CheckClass::Warning), QStringLiteral("warning"))};
    const std::pair<CheckClass, QString> others[] = {
        {CheckClass::Hint, QStringLiteral("hint")},
        {CheckClass::Info, QStringLiteral("info")},
        {CheckClass::Corrected, QStringLiteral("correction")},
    };
    for (const auto &[kind, noun] : others) {
        if (const int count = countOf(report, kind))
            parts.append(counted(count, noun));
    }
    if (const int suppressed = suppressedCount(report))
        parts.append(QStringLiteral("%1 suppressed").arg(suppressed));
    return parts.join(QLatin1String(", "));
}

} // namespace

const QList<CheckRule> &rules()
{
    static const QList<CheckRule> list = makeRules();
    return list;
}

QString plainMessage(const CheckFinding &finding)
{
    return plain(finding.text());
}

QString placeText(const CheckPlace &place)
{
    if (place.line < 0)
        return QStringLiteral("project");
    QString text = QStringLiteral("line%1").arg(place.line);
    if (place.index < 0)
        return text;
    text += QStringLiteral("/0x%1").arg(place.index, 4, 16, QLatin1Char('0'));
    if (place.subindex >= 0)
        text += QStringLiteral("/0x%1").arg(place.subindex, 2, 16, QLatin1Char('0'));
    return text;
}

QString groupKey(quint8 group)
{
    for (const WarningGroup &known : warningGroups()) {
        if (known.number == group)
            return known.key;
    }
    return {};
}

int countOf(const CheckReport &report, CheckClass kind)
{
    return static_cast<int>(std::count_if(
        report.findings.begin(), report.findings.end(), [&](const CheckFinding &finding) {
            return finding.definition->kind == kind && !finding.suppressed;
        }));
}

int suppressedCount(const CheckReport &report)
{
    return static_cast<int>(
        std::count_if(report.findings.begin(), report.findings.end(),
                      [](const CheckFinding &finding) { return finding.suppressed; }));
}

QByteArray text(const CheckReport &report)
{
    QString lines;
    if (report.isExternallyModified)
        lines += placeText({}) + QLatin1String(": ") + externalChangeNote + u'\n';
    for (const CheckFinding &finding : report.findings) {
        if (!finding.suppressed)
            lines +=
                QStringLiteral("%1: %2 [%3]\n")
                    .arg(placeText(finding.place), plainMessage(finding), finding.identifier());
    }
    return (lines + sums(report) + u'\n').toUtf8();
}

} // namespace CheckReports
