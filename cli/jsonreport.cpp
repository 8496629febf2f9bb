#include "cli/checkreport.h"

#include "check/warninggroups.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QJsonValue textOrNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

QJsonValue numberOrNull(int number)
{
    return number < 0 ? QJsonValue(QJsonValue::Null) : QJsonValue(number);
}

QJsonObject findingObject(const CheckFinding &finding)
{
    const CheckDefinition &definition = *finding.definition;
    return {{QStringLiteral("identifier"), finding.identifier()},
            {QStringLiteral("class"), checkClassName(definition.kind).toLower()},
            {QStringLiteral("warningGroup"), textOrNull(CheckReports::groupKey(definition.group))},
            {QStringLiteral("counted"), definition.errors > 0},
            {QStringLiteral("suppressed"), finding.suppressed},
            {QStringLiteral("text"), CheckReports::plainMessage(finding)},
            {QStringLiteral("reason"), QString::fromUtf8(definition.reason)},
            {QStringLiteral("object"), CheckReports::placeText(finding.place)},
            {QStringLiteral("line"), numberOrNull(finding.place.line)},
            {QStringLiteral("index"), numberOrNull(finding.place.index)},
            {QStringLiteral("subindex"), numberOrNull(finding.place.subindex)},
            {QStringLiteral("field"), textOrNull(finding.field())}};
}

QJsonObject groupObjects()
{
    QJsonObject groups;
    for (const WarningGroup &group : warningGroups())
        groups.insert(group.key, QJsonObject{{QStringLiteral("title"), group.title},
                                             {QStringLiteral("description"), group.description}});
    return groups;
}

} // namespace

QByteArray CheckReports::json(const CheckReport &report)
{
    QJsonArray findings;
    for (const CheckFinding &finding : report.findings)
        findings.append(findingObject(finding));
    const QFileInfo file(report.projectPath);
    const QJsonObject root{
        {QStringLiteral("tool"),
         QJsonObject{{QStringLiteral("name"), QCoreApplication::applicationName()},
                     {QStringLiteral("version"), QCoreApplication::applicationVersion()}}},
        {QStringLiteral("project"),
         QJsonObject{{QStringLiteral("name"), file.completeBaseName()},
                     {QStringLiteral("path"), report.projectPath},
                     {QStringLiteral("externallyModified"), report.isExternallyModified}}},
        {QStringLiteral("errors"), report.errorCount},
        {QStringLiteral("warnings"), countOf(report, CheckClass::Warning)},
        {QStringLiteral("suppressed"), suppressedCount(report)},
        {QStringLiteral("findings"), findings},
        {QStringLiteral("warningGroups"), groupObjects()}};
    return QJsonDocument(root).toJson();
}
