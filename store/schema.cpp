#include "store/schema.h"

#include "store/recordcolumns.h"

#include <algorithm>
#include <vector>

namespace Schema {

namespace {

constexpr const char *settingsDefinition = "item text unique, value text";

/// The table of a record, made from its columns.
template <typename Record>
Table ofRecord(Scope scope, const char *constraint = "")
{
    static const QByteArray definition = RecordColumns::definition<Record>() + constraint;
    static const QByteArray stringIds =
        RecordColumns::columnNames<Record>(true).join(u',').toLatin1();
    return {RecordColumns::Table<Record>::name, scope, definition.constData(),
            stringIds.constData()};
}

const std::vector<Table> &allTables()
{
    static const std::vector<Table> list = {
        {"Strings", Scope::Project, "id integer primary key, string text", ""},
        ofRecord<Records::Node>(Scope::Project),
        {"GeneralSettings", Scope::Project, settingsDefinition, ""},
        {"DescriptionSettings", Scope::Project, settingsDefinition, ""},
        {"EnergyBusSettings", Scope::Project, settingsDefinition, ""},
        {"J1939Settings", Scope::Project, settingsDefinition, ""},
        {"MiscSettings", Scope::Project, settingsDefinition, ""},
        {"Connections", Scope::Project,
         "prodnode integer, prodindex integer, prodsub integer, connode integer, conindex integer, "
         "consub integer, priority integer",
         ""},
        {"LockedMappings", Scope::Project, "node integer, pdoindex integer", ""},
        {"LockedPDOs", Scope::Project, "node integer, pdoindex integer", ""},
        {"VirtualNodes", Scope::Project,
         "virtualnodeid integer primary key, line integer, dbnodeid integer, name text", ""},
        {"SignalGroups", Scope::Project, "sigid integer primary key, name text", ""},
        {"Signals", Scope::Project,
         "sigid integer primary key, nodeid integer, name integer, datatype integer not null, "
         "accesstype text not null, defaultvalue text, signalgroup integer, ref integer, "
         "transmittype integer, transmittrigger integer, eventtimer integer, syncvalue integer, "
         "syncstartvalue integer, routing integer",
         "name"},
        {"Groups", Scope::Project, "name text, nodeidlist text", ""},
        ofRecord<Records::Index>(Scope::Line),
        ofRecord<Records::SubIndex>(Scope::Line, ",UNIQUE(objectindex,subindex)"),
        ofRecord<Records::PGN>(Scope::Line),
        ofRecord<Records::SPN>(Scope::Line),
        ofRecord<Records::CANID>(Scope::Line),
        ofRecord<Records::DataElement>(Scope::Line),
        {"UDSSettings", Scope::Line,
         "sid integer not null, active integer, sessions text, userlevels text, authentication "
         "text, "
         "UNIQUE(sid)",
         ""},
    };
    return list;
}

} // namespace

std::span<const Table> tables()
{
    return allTables();
}

const Table &table(const QString &name)
{
    const std::vector<Table> &all = allTables();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const Table &t) { return name == QLatin1String(t.name); });
    Q_ASSERT(found != all.end());
    return *found;
}

QList<Column> columns(const Table &table)
{
    const QStringList ids = QString::fromLatin1(table.stringIds).split(u',', Qt::SkipEmptyParts);
    QList<Column> result;
    for (const QString &part : QString::fromLatin1(table.definition).split(u',')) {
        const QStringList words = part.simplified().split(u' ');
        if (words.first().startsWith(QLatin1String("UNIQUE(")))
            break; // the constraint stands behind all columns
        result.append({words.first(), words.value(1), ids.contains(words.first())});
    }
    return result;
}

QStringList columnNames(const Table &table)
{
    QStringList names;
    for (const Column &column : columns(table))
        names.append(column.name);
    return names;
}

QString columnList(const Table &table)
{
    return columnNames(table).join(u',');
}

QString createStatement(const Table &table, const QString &suffix, bool ifNotExists)
{
    return QLatin1String(ifNotExists ? "create table if not exists " : "create table ") +
           QLatin1String(table.name) + suffix + QLatin1String(" (") +
           QLatin1String(table.definition) + u')';
}

} // namespace Schema
