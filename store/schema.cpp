#include "store/schema.h"

#include <algorithm>

namespace Schema {

namespace {

constexpr const char *settingsDefinition = "item text unique, value text";

constexpr Table allTables[] = {
    {"Strings", Scope::Project, "id integer primary key, string text", ""},
    {"Nodes", Scope::Project,
     "nodeId integer primary key, name text, edspath text, xddpath text, dcfpath text, "
     "tpdocnt integer, rpdocnt integer, ismaster integer, issyncproducer integer, "
     "issyncconsumer integer, ishbconsumer integer, isemergencyproducer integer, "
     "isemergencyconsumer integer, ismpdosupported integer, iscanopengateway integer, "
     "allpdosstatic integer, excludegeneration integer, generatedcf integer, prefix text, "
     "outputpath text, iconpath text, isbootupmanager integer, isconfigmanager integer, "
     "excludepdolinking integer, multilinedata integer, lssslave",
     ""},
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
    {"Objects", Scope::Line,
     "objectindex integer primary key, name integer, datatype integer not null, "
     "objecttype integer not null, description integer, category integer, device_class integer, "
     "fwsupported integer, metadata blob",
     "name,description,device_class"},
    {"SubObjects", Scope::Line,
     "objectindex integer not null, subindex integer not null, name integer, "
     "datatype integer not null, accesstype text not null, defaultvalue text, currentvalue text, "
     "pdomapping integer,lowlimit text, uplimit text, size integer, defaultineds integer, "
     "limitineds integer, refuseread integer, refusewrite integer, allowedaccesstypes text, "
     "implementation integer not null, varname text, description integer, category integer, "
     "writedefaulttoeds integer, cyclicread integer, dcfcomponent integer, "
     "changedbyuser integer, wizardsource integer, denotation integer, sharedlines integer, "
     "managedbytsk integer, signalid integer, nvstorage integer,metadata blob,"
     "UNIQUE(objectindex,subindex)",
     "name,denotation,description"},
    {"PGNs", Scope::Line,
     "number integer not null, edp_dp_key integer, priority integer, cycletime_ms integer, "
     "inhibittime_ms integer, mappingcount integer, direction integer, name integer, "
     "desc integer,issafe integer,srvt_ms integer, FD_TrailerFormat integer,"
     "FD_AssuranceType integer,FD_AssuranceDataSize integer,multisourceaddress integer,"
     "safetytype integer,FD_DataId integer",
     "name,desc"},
    {"SPNs", Scope::Line,
     "pgnnumber integer not null, spnnumber integer not null, datatype integer, "
     "implementation integer, varname text, defaultvalue text, name integer, desc integer, "
     "pos integer, bitsize integer, direction integer, slot_df integer, bitposition integer",
     "name,desc"},
    {"CANIDs", Scope::Line,
     "id integer not null, cycletime_ms integer, inhibittime_ms integer, mappingcount integer, "
     "direction integer, name integer, desc integer",
     "name,desc"},
    {"DataElements", Scope::Line,
     "canid integer not null, number integer not null, datatype integer, implementation integer, "
     "varname text, defaultvalue text, name integer, desc integer, pos integer, bitsize integer, "
     "direction integer, bitpos integer",
     "name,desc"},
    {"UDSSettings", Scope::Line,
     "sid integer not null, active integer, sessions text, userlevels text, authentication text, "
     "UNIQUE(sid)",
     ""},
};

} // namespace

std::span<const Table> tables()
{
    return allTables;
}

const Table &table(const QString &name)
{
    const auto *found = std::find_if(std::begin(allTables), std::end(allTables),
                                     [&](const Table &t) { return name == QLatin1String(t.name); });
    Q_ASSERT(found != std::end(allTables));
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
