#include "cli/checkreport.h"

#include "check/warninggroups.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

namespace {

QJsonObject message(const QString &text)
{
    return {{QStringLiteral("text"), text}};
}

/// SARIF 2.1.0, 3.27.10: the levels of a result.
QString levelOf(CheckClass kind)
{
    switch (kind) {
    case CheckClass::Error:
        return QStringLiteral("error");
    case CheckClass::Warning:
        return QStringLiteral("warning");
    default:
        return QStringLiteral("note");
    }
}

QJsonObject properties(CheckClass kind, quint8 group)
{
    QJsonObject bag{{QStringLiteral("class"), checkClassName(kind).toLower()}};
    if (group != 0)
        bag.insert(QStringLiteral("warningGroup"), CheckReports::groupKey(group));
    return bag;
}

QString helpText(const CheckRule &rule)
{
    if (rule.group == 0)
        return rule.reason;
    QString title;
    for (const WarningGroup &group : warningGroups()) {
        if (group.number == rule.group)
            title = group.title;
    }
    return QStringLiteral("%1 A project can suppress it by the warning group %2 (%3).")
        .arg(rule.reason, CheckReports::groupKey(rule.group), title);
}

QJsonArray ruleObjects()
{
    QJsonArray list;
    for (const CheckRule &rule : CheckReports::rules()) {
        list.append(QJsonObject{{QStringLiteral("id"), rule.identifier},
                                {QStringLiteral("shortDescription"), message(rule.text)},
                                {QStringLiteral("fullDescription"), message(rule.reason)},
                                {QStringLiteral("help"), message(helpText(rule))},
                                {QStringLiteral("defaultConfiguration"),
                                 QJsonObject{{QStringLiteral("level"), levelOf(rule.kind)}}},
                                {QStringLiteral("properties"), properties(rule.kind, rule.group)}});
    }
    return list;
}

int ruleIndex(const QString &identifier)
{
    static const QHash<QString, int> indices = [] {
        QHash<QString, int> map;
        for (const CheckRule &rule : CheckReports::rules())
            map.insert(rule.identifier, static_cast<int>(map.size()));
        return map;
    }();
    return indices.value(identifier, -1);
}

/// The object in the model is what a user looks for; the file is named as well, since many
/// readers show nothing without one.
QJsonObject location(const CheckPlace &place, const QString &uri)
{
    const QString name = CheckReports::placeText(place);
    const QJsonObject object{{QStringLiteral("name"), name.section(u'/', -1)},
                             {QStringLiteral("fullyQualifiedName"), name},
                             {QStringLiteral("kind"), place.index < 0 ? QStringLiteral("module")
                                                                      : QStringLiteral("object")}};
    const QJsonObject artifact{{QStringLiteral("uri"), uri}, {QStringLiteral("index"), 0}};
    return {{QStringLiteral("logicalLocations"), QJsonArray{object}},
            {QStringLiteral("physicalLocation"),
             QJsonObject{{QStringLiteral("artifactLocation"), artifact}}}};
}

QJsonArray suppressions(const CheckFinding &finding)
{
    if (!finding.suppressed)
        return {};
    const QString why = QStringLiteral("The project suppresses the warning group %1.")
                            .arg(CheckReports::groupKey(finding.definition->group));
    return {QJsonObject{{QStringLiteral("kind"), QStringLiteral("external")},
                        {QStringLiteral("justification"), why}}};
}

QJsonObject resultObject(const CheckFinding &finding, const QString &uri)
{
    const CheckDefinition &definition = *finding.definition;
    // Where one result tells whether it is suppressed, all have to (3.27.23).
    return {{QStringLiteral("ruleId"), finding.identifier()},
            {QStringLiteral("ruleIndex"), ruleIndex(finding.identifier())},
            {QStringLiteral("level"), levelOf(definition.kind)},
            {QStringLiteral("message"), message(CheckReports::plainMessage(finding))},
            {QStringLiteral("locations"), QJsonArray{location(finding.place, uri)}},
            {QStringLiteral("suppressions"), suppressions(finding)},
            {QStringLiteral("properties"), properties(definition.kind, definition.group)}};
}

QJsonObject driverObject()
{
    return {{QStringLiteral("name"), QCoreApplication::applicationName()},
            {QStringLiteral("organization"), QCoreApplication::organizationName()},
            {QStringLiteral("version"), QCoreApplication::applicationVersion()},
            {QStringLiteral("semanticVersion"), QCoreApplication::applicationVersion()},
            {QStringLiteral("rules"), ruleObjects()}};
}

} // namespace

QByteArray CheckReports::sarif(const CheckReport &report)
{
    const QString uri =
        QString::fromLatin1(QUrl::fromLocalFile(report.projectPath).toEncoded(QUrl::FullyEncoded));
    QJsonArray results;
    for (const CheckFinding &finding : report.findings)
        results.append(resultObject(finding, uri));
    const QJsonObject artifact{
        {QStringLiteral("location"), QJsonObject{{QStringLiteral("uri"), uri}}},
        {QStringLiteral("description"), message(QFileInfo(report.projectPath).completeBaseName())}};
    const QJsonObject run{
        {QStringLiteral("tool"), QJsonObject{{QStringLiteral("driver"), driverObject()}}},
        {QStringLiteral("columnKind"), QStringLiteral("utf16CodeUnits")},
        {QStringLiteral("artifacts"), QJsonArray{artifact}},
        {QStringLiteral("results"), results},
        {QStringLiteral("properties"),
         QJsonObject{{QStringLiteral("externallyModified"), report.isExternallyModified}}}};
    const QJsonObject root{
        {QStringLiteral("$schema"),
         QStringLiteral(
             "https://docs.oasis-open.org/sarif/sarif/v2.1.0/os/schemas/sarif-schema-2.1.0.json")},
        {QStringLiteral("version"), QStringLiteral("2.1.0")},
        {QStringLiteral("runs"), QJsonArray{run}}};
    return QJsonDocument(root).toJson();
}
