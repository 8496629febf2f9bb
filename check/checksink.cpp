#include "check/checksink.h"

#include "check/warninggroups.h"

#include <QStringList>

void CheckSink::add(CheckFinding finding)
{
    const CheckDefinition &definition = *finding.definition;
    finding.suppressed = definition.group != 0 && isSuppressed(definition.group);
    // A note belongs to the message before it, which was counted.
    if (finding.suppressed && definition.kind != CheckClass::Note)
        countSuppressed(definition.group);
    m_findings.append(finding);
    if (!finding.suppressed)
        m_listener(finding);
}

QString CheckSink::suppressedSummary() const
{
    quint32 sum = 0;
    for (const quint32 count : m_suppressedCounts)
        sum += count;
    if (sum == 0)
        return {};
    QStringList lines(QStringLiteral("<strong>Note: </strong>%1 warning(s) suppressed by the "
                                     "project settings:")
                          .arg(sum));
    for (const WarningGroup &group : warningGroups()) {
        const quint32 count = m_suppressedCounts.value(group.number);
        if (count != 0)
            lines.append(QStringLiteral("&nbsp;&nbsp;%1 (%2): %3")
                             .arg(group.key, group.title, QString::number(count)));
    }
    return lines.join(u'\n');
}
