#include "cli/infocommand.h"

#include "check/modelchecker.h"
#include "cli/console.h"
#include "cli/projectaccess.h"
#include "generation/runfacts.h"
#include "store/objectdatabase.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

const QString jsonKey = QStringLiteral("json");

struct LineInfo
{
    quint8 line = 0;
    QString name;
    QStringList protocols;
    /// Names and numbers of what the line holds, in the order of the output.
    QList<std::pair<QString, qsizetype>> counts;
};

struct ProjectInfo
{
    QString path;
    QString createdWith;
    QString savedWith;
    QString schemaVersion;
    QString stackGeneration;
    QStringList suppressedGroups;
    bool isExternallyModified = false;
    QList<LineInfo> lines;
};

QStringList protocolNames(Protocols protocols)
{
    QStringList names;
    if (protocols.testFlag(Protocol::CANopen))
        names.append(QStringLiteral("CANopen"));
    if (protocols.testFlag(Protocol::J1939))
        names.append(QStringLiteral("J1939"));
    if (protocols.testFlag(Protocol::RawCAN))
        names.append(QStringLiteral("raw CAN"));
    return names;
}

/// How many messages and signals a line holds in both directions.
template <typename Messages, typename Signals>
std::pair<qsizetype, qsizetype> countSignals(Messages messages, Signals signalsOf)
{
    std::pair<qsizetype, qsizetype> counts;
    for (const quint8 direction : {ObjectDataBase::transmit, ObjectDataBase::receive}) {
        const QList<quint32> list = messages(direction);
        counts.first += list.size();
        for (const quint32 message : list)
            counts.second += signalsOf(message, direction).size();
    }
    return counts;
}

LineInfo readLine(ObjectDataBase &store, quint8 line, Protocols protocols)
{
    ObjectDataBase::NODE_DATA_T node;
    store.getNodeData(line, node);
    store.cacheAllSubs(line);
    const QList<quint16> objects = store.getIndices(line);
    qsizetype subindices = 0;
    for (const quint16 index : objects)
        subindices += store.getSubIndices(line, index).size();
    const auto [pgns, spns] = countSignals(
        [&](quint8 direction) { return store.getPGNList(line, direction); },
        [&](quint32 pgn, quint8 direction) { return store.getSPNList(line, pgn, direction); });
    const auto [canIds, elements] =
        countSignals([&](quint8 direction) { return store.getCANIDList(line, direction); },
                     [&](quint32 id, quint8 direction) {
                         return store.getDataElementList(line, id, direction);
                     });
    return {.line = line,
            .name = node.name,
            .protocols = protocolNames(protocols),
            .counts = {{QStringLiteral("objects"), objects.size()},
                       {QStringLiteral("subindices"), subindices},
                       {QStringLiteral("PGNs"), pgns},
                       {QStringLiteral("SPNs"), spns},
                       {QStringLiteral("CAN-IDs"), canIds},
                       {QStringLiteral("data elements"), elements}}};
}

QString toolText(ObjectDataBase &store, const char *nameKey, const char *versionKey)
{
    return QStringLiteral("%1 %2")
        .arg(store.getMiscSetting(QLatin1String(nameKey)),
             store.getMiscSetting(QLatin1String(versionKey)))
        .trimmed();
}

ProjectInfo readProject(const std::shared_ptr<ObjectDataBase> &store, const QString &path)
{
    RunFacts facts;
    facts.store = store;
    facts.classify();
    const QString suppressed = store->getMiscSetting(ModelChecker::SuppressedWarningGroups);
    const QByteArray groups = ModelChecker::parseWarningGroups(suppressed);
    ProjectInfo info{.path = QFileInfo(path).absoluteFilePath(),
                     .createdWith = toolText(*store, "CreateToolName", "CreateToolVersion"),
                     .savedWith = toolText(*store, "SaveToolType", "SaveToolVersion"),
                     .schemaVersion = store->getMiscSetting(QStringLiteral("DatabaseVersion")),
                     .stackGeneration = facts.stackGeneration(),
                     .suppressedGroups =
                         ModelChecker::formatWarningGroups(groups).split(u',', Qt::SkipEmptyParts),
                     .isExternallyModified = store->wasExternallyModified(),
                     .lines = {}};
    for (const quint8 line : std::as_const(facts.activeLines))
        info.lines.append(readLine(*store, line, facts.lineProtocols(line)));
    return info;
}

QString row(const QString &title, const QString &value)
{
    return QStringLiteral("%1 %2\n").arg((title + u':').leftJustified(20),
                                         value.isEmpty() ? QStringLiteral("-") : value);
}

/// The generation that the project is set to is not always the one that `generate` writes.
QString stackText(const QString &generation)
{
    return generation == QLatin1String("V4")
               ? generation
               : generation + QLatin1String(" (quillforge-cli generate writes V4)");
}

QString asText(const ProjectInfo &info)
{
    QString text =
        row(QStringLiteral("Project"), QFileInfo(info.path).completeBaseName()) +
        row(QStringLiteral("File"), QDir::toNativeSeparators(info.path)) +
        row(QStringLiteral("Created with"), info.createdWith) +
        row(QStringLiteral("Saved with"), info.savedWith) +
        row(QStringLiteral("Database version"), info.schemaVersion) +
        row(QStringLiteral("Stack generation"), stackText(info.stackGeneration)) +
        row(QStringLiteral("Changed elsewhere"),
            info.isExternallyModified ? QStringLiteral("yes, not saved by this tool the last time")
                                      : QStringLiteral("no")) +
        row(QStringLiteral("Suppressed groups"), info.suppressedGroups.join(QLatin1String(", ")));
    for (const LineInfo &line : info.lines) {
        const QString title = QStringLiteral("Line %1").arg(line.line);
        const QString protocols = line.protocols.isEmpty()
                                      ? QStringLiteral("no protocol set")
                                      : line.protocols.join(QLatin1String(", "));
        QStringList counts;
        for (const auto &[name, count] : line.counts) {
            if (count != 0)
                counts.append(QStringLiteral("%1 %2").arg(count).arg(name));
        }
        const QString name = line.name.isEmpty()
                                 ? QString()
                                 : QStringLiteral("\"%1\", ").arg(line.name.simplified());
        text += row(title, name + protocols + QLatin1String(": ") +
                               (counts.isEmpty() ? QStringLiteral("empty")
                                                 : counts.join(QLatin1String(", "))));
    }
    return text;
}

/// "data elements" gives "dataElements", "PGNs" "pgns", "CAN-IDs" "canIds".
QString jsonName(const QString &title)
{
    static const QHash<QString, QString> names = {
        {QStringLiteral("PGNs"), QStringLiteral("pgns")},
        {QStringLiteral("SPNs"), QStringLiteral("spns")},
        {QStringLiteral("CAN-IDs"), QStringLiteral("canIds")},
        {QStringLiteral("data elements"), QStringLiteral("dataElements")}};
    return names.value(title, title);
}

QString asJson(const ProjectInfo &info)
{
    QJsonArray lines;
    for (const LineInfo &line : info.lines) {
        QJsonObject object{
            {QStringLiteral("line"), line.line},
            {QStringLiteral("name"), line.name},
            {QStringLiteral("protocols"), QJsonArray::fromStringList(line.protocols)}};
        for (const auto &[name, count] : line.counts)
            object.insert(jsonName(name), count);
        lines.append(object);
    }
    const QJsonObject root{{QStringLiteral("name"), QFileInfo(info.path).completeBaseName()},
                           {QStringLiteral("path"), info.path},
                           {QStringLiteral("createdWith"), info.createdWith},
                           {QStringLiteral("savedWith"), info.savedWith},
                           {QStringLiteral("databaseVersion"), info.schemaVersion},
                           {QStringLiteral("stackGeneration"), info.stackGeneration},
                           {QStringLiteral("externallyModified"), info.isExternallyModified},
                           {QStringLiteral("suppressedWarningGroups"),
                            QJsonArray::fromStringList(info.suppressedGroups)},
                           {QStringLiteral("lines"), lines}};
    return QString::fromUtf8(QJsonDocument(root).toJson());
}

} // namespace

QString InfoCommand::name() const
{
    return QStringLiteral("info");
}

QString InfoCommand::summary() const
{
    return QStringLiteral("tells what a project holds");
}

QString InfoCommand::description() const
{
    return QStringLiteral(
        "Shows the tools that made and saved the project, the stack generation it is set\n"
        "to, whether another program has changed it since it was saved, and for each line\n"
        "its protocols and how much it holds.");
}

QList<CommandArgument> InfoCommand::arguments() const
{
    return {{QStringLiteral("PROJECT"), QStringLiteral("the project, a .vxmp or .vxmt file")}};
}

QList<CommandOption> InfoCommand::options() const
{
    return {{{jsonKey}, {}, QStringLiteral("show it as one JSON object")}};
}

ExitCode InfoCommand::run(const CommandCall &call, Console &console) const
{
    const QString path = call.arguments.first();
    const auto store = std::make_shared<ObjectDataBase>();
    const QString fault = ProjectAccess::open(*store, path);
    if (!fault.isEmpty()) {
        console.error(fault);
        return ExitCode::FileFailed;
    }
    const ProjectInfo info = readProject(store, path);
    console.result(call.isSet(jsonKey) ? asJson(info) : asText(info));
    return ExitCode::Done;
}
