#include "compare/settingscomparison.h"

#include "compare/recordproperties.h"

#include <QScopeGuard>
#include <QSet>

#include <algorithm>
#include <array>

namespace SettingsComparison {

namespace {

using Table = SettingDifference::Table;

// --- tables of keys and values ------------------------------------------------------------------

/// The accessors of description settings add the suffix of the line that they are set to. Line 0
/// has none, so that every key is reached by its full name.
template <typename Access>
auto withFullDescriptionKeys(ObjectDataBase &store, const Access &access)
{
    const quint8 formerLine = store.descriptionLine();
    store.setDescriptionLine(0);
    const auto restore = qScopeGuard([&] { store.setDescriptionLine(formerLine); });
    return access();
}

QString descriptionValue(ObjectDataBase &store, const QString &key)
{
    return withFullDescriptionKeys(store, [&] { return store.getDescriptionSetting(key); });
}

bool writeDescription(ObjectDataBase &store, const QString &key, const QString &value)
{
    return withFullDescriptionKeys(store, [&] { return store.setDescriptionSetting(key, value); });
}

bool writeEnergyBus(ObjectDataBase &store, const QString &key, const QString &value)
{
    return value.isEmpty() ? store.deleteEnergyBusSetting(key)
                           : store.setEnergyBusSetting(key, value);
}

struct KeyTable
{
    Table table;
    QStringList (*keys)(ObjectDataBase &);
    QString (*value)(ObjectDataBase &, const QString &);
    bool (*write)(ObjectDataBase &, const QString &, const QString &);
};

template <QStringList (ObjectDataBase::*keys)()>
QStringList keysBy(ObjectDataBase &store)
{
    return (store.*keys)();
}

template <QString (ObjectDataBase::*value)(const QString &)>
QString valueBy(ObjectDataBase &store, const QString &key)
{
    return (store.*value)(key);
}

template <bool (ObjectDataBase::*write)(const QString &, const QString &)>
bool writeBy(ObjectDataBase &store, const QString &key, const QString &value)
{
    return (store.*write)(key, value);
}

using Store = ObjectDataBase;
constexpr std::array keyTables{
    KeyTable{Table::General, keysBy<&Store::getGeneralSettingKeys>,
             valueBy<&Store::getGeneralSetting>, writeBy<&Store::setGeneralSetting>},
    KeyTable{Table::Description, keysBy<&Store::getDescriptionSettingKeys>, descriptionValue,
             writeDescription},
    KeyTable{Table::EnergyBus, keysBy<&Store::getEnergyBusSettingKeys>,
             valueBy<&Store::getEnergyBusSetting>, writeEnergyBus},
    KeyTable{Table::J1939, keysBy<&Store::getJ1939SettingKeys>, valueBy<&Store::getJ1939Setting>,
             writeBy<&Store::setJ1939Setting>},
    KeyTable{Table::Misc, keysBy<&Store::getMiscSettingKeys>, valueBy<&Store::getMiscSetting>,
             writeBy<&Store::setMiscSetting>},
};

/// What the tool notes in a file by itself: who made and saved it, and its hash.
const QSet<QString> &ownKeys()
{
    static const QSet<QString> keys{
        QStringLiteral("CreateToolName"),      QStringLiteral("CreateToolVersion"),
        QStringLiteral("DatabaseVersion"),     QStringLiteral("FileHash"),
        QStringLiteral("PreviousToolVersion"), QStringLiteral("SaveToolType"),
        QStringLiteral("SaveToolVersion"),     QStringLiteral("TamperLog")};
    return keys;
}

QStringList sortedUnion(const QStringList &current, const QStringList &other)
{
    QStringList keys = current + other;
    std::sort(keys.begin(), keys.end(), [](const QString &a, const QString &b) {
        const int order = a.compare(b, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a < b;
    });
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

/// Whether a key exists only because its line does.
bool belongsToLine(const KeyTable &table, const QString &key, const QSet<QString> &keys,
                   quint8 line)
{
    if (table.table == Table::General)
        return key == LineType::settingKey(line);
    const QString suffix = u'_' + QString::number(line);
    return table.table == Table::Description && line != 0 && key.endsWith(suffix) &&
           keys.contains(key.chopped(suffix.size()));
}

void compareKeys(const KeyTable &table, ObjectDataBase &current, ObjectDataBase &other,
                 const QList<quint8> &passedLines, QList<SettingDifference> &differences)
{
    const QStringList keys = sortedUnion(table.keys(current), table.keys(other));
    const QSet<QString> known(keys.begin(), keys.end());
    for (const QString &key : keys) {
        const QString here = table.value(current, key);
        const QString there = table.value(other, key);
        if (here == there || (table.table == Table::Misc && ownKeys().contains(key)))
            continue;
        const bool isOfLine = std::any_of(passedLines.begin(), passedLines.end(), [&](quint8 line) {
            return belongsToLine(table, key, known, line);
        });
        if (!isOfLine)
            differences.append({table.table, 0, 0, key, here, there});
    }
}

// --- lines --------------------------------------------------------------------------------------

ObjectDataBase::NODE_DATA_T nodeOf(ObjectDataBase &store, quint8 line)
{
    ObjectDataBase::NODE_DATA_T node;
    store.getNodeData(line, node);
    return node;
}

void compareNodes(ObjectDataBase &current, ObjectDataBase &other, quint8 line,
                  QList<SettingDifference> &differences)
{
    const ObjectDataBase::NODE_DATA_T here = nodeOf(current, line);
    const ObjectDataBase::NODE_DATA_T there = nodeOf(other, line);
    for (const PropertyRow &row : RecordProperties::rows(&here, &there, false)) {
        if (row.differs)
            differences.append({Table::Node, line, 0, row.property, row.current, row.other});
    }
}

bool takeOverNode(ObjectDataBase &current, ObjectDataBase &other,
                  const SettingDifference &difference)
{
    const ObjectDataBase::NODE_DATA_T there = nodeOf(other, difference.line);
    for (const auto &property : RecordProperties::properties<ObjectDataBase::NODE_DATA_T>()) {
        if (difference.key != QLatin1String(property.name))
            continue;
        current.setNodeSqlValue(QString::number(difference.line), difference.key,
                                property.text(there));
        return true;
    }
    return false;
}

bool addLine(ObjectDataBase &current, ObjectDataBase &other, quint8 line)
{
    if (!current.addNode(line, nodeOf(other, line)))
        return false;
    for (const KeyTable &table : keyTables) {
        const QStringList keys = table.keys(other);
        const QSet<QString> known(keys.begin(), keys.end());
        for (const QString &key : keys) {
            if (belongsToLine(table, key, known, line))
                table.write(current, key, table.value(other, key));
        }
    }
    return ObjectDataBase::copyLine(current, other, line, line);
}

bool takeOverLine(ObjectDataBase &current, ObjectDataBase &other, quint8 line)
{
    if (other.lineExists(line))
        return addLine(current, other, line);
    const QList<quint8> present = lines(current);
    return line != 0 && !present.isEmpty() && present.last() == line && current.deleteNode(line);
}

// --- UDS ----------------------------------------------------------------------------------------

struct UdsColumn
{
    const char *name;
    QString (*value)(ObjectDataBase &, quint8, UDS::SID);
    void (*write)(ObjectDataBase &, quint8, UDS::SID, const QString &);
};

constexpr std::array udsColumns{
    UdsColumn{"active",
              [](Store &store, quint8 line, UDS::SID sid) {
                  return QString::number(int(store.getUDSServiceActive(line, sid)));
              },
              [](Store &store, quint8 line, UDS::SID sid, const QString &value) {
                  store.setUDSServiceActive(line, sid, value == u"1");
              }},
    UdsColumn{"authentication",
              [](Store &store, quint8 line, UDS::SID sid) {
                  return store.getUDSAuthentication(line, sid);
              },
              [](Store &store, quint8 line, UDS::SID sid, const QString &value) {
                  store.setUDSAuthentication(line, sid, value);
              }},
    UdsColumn{"sessions",
              [](Store &store, quint8 line, UDS::SID sid) {
                  return store.getUDSServiceSessions(line, sid);
              },
              [](Store &store, quint8 line, UDS::SID sid, const QString &value) {
                  store.setUDSServiceSessions(line, sid, value);
              }},
    UdsColumn{"userlevels",
              [](Store &store, quint8 line, UDS::SID sid) {
                  return store.getUDSServiceUserLevels(line, sid);
              },
              [](Store &store, quint8 line, UDS::SID sid, const QString &value) {
                  store.setUDSServiceUserLevels(line, sid, value);
              }},
};

void compareUds(ObjectDataBase &current, ObjectDataBase &other, quint8 line,
                QList<SettingDifference> &differences)
{
    QMap<UDS::SID, bool> services = current.getUDSServices(line);
    services.insert(other.getUDSServices(line));
    for (auto sid = services.keyBegin(); sid != services.keyEnd(); ++sid) {
        for (const UdsColumn &column : udsColumns) {
            const QString here = column.value(current, line, *sid);
            const QString there = column.value(other, line, *sid);
            if (here != there) {
                differences.append({Table::Uds, line, quint8(*sid),
                                    QString::fromLatin1(column.name), here, there});
            }
        }
    }
}

bool takeOverUds(ObjectDataBase &current, const SettingDifference &difference)
{
    for (const UdsColumn &column : udsColumns) {
        if (difference.key != QLatin1String(column.name))
            continue;
        column.write(current, difference.line, UDS::SID(difference.sid), difference.other);
        return true;
    }
    return false;
}

} // namespace

QList<quint8> lines(ObjectDataBase &store)
{
    QList<quint8> result = store.getLines();
    result.removeAll(ObjectDataBase::comparisonLine);
    result.removeAll(ObjectDataBase::stagingLine);
    std::sort(result.begin(), result.end());
    return result;
}

QList<SettingDifference> compare(ObjectDataBase &current, ObjectDataBase &other)
{
    const QList<quint8> here = lines(current);
    const QList<quint8> there = lines(other);
    QList<quint8> common;
    QList<quint8> oneSided;
    std::set_intersection(here.begin(), here.end(), there.begin(), there.end(),
                          std::back_inserter(common));
    std::set_symmetric_difference(here.begin(), here.end(), there.begin(), there.end(),
                                  std::back_inserter(oneSided));

    const QList<quint8> passed =
        oneSided + QList<quint8>{ObjectDataBase::comparisonLine, ObjectDataBase::stagingLine};

    QList<SettingDifference> differences;
    for (const KeyTable &table : keyTables)
        compareKeys(table, current, other, passed, differences);
    const auto presence = [](const QList<quint8> &list, quint8 line) {
        return list.contains(line) ? QStringLiteral("exists") : QString();
    };
    for (const quint8 line : std::as_const(oneSided)) {
        differences.append(
            {Table::Line, line, 0, QString(), presence(here, line), presence(there, line)});
    }
    for (const quint8 line : std::as_const(common)) {
        compareNodes(current, other, line, differences);
        compareUds(current, other, line, differences);
    }
    return differences;
}

bool takeOver(ObjectDataBase &current, ObjectDataBase &other, const SettingDifference &difference)
{
    if (current.writesBlocked())
        return false;
    switch (difference.table) {
    case Table::Node:
        return takeOverNode(current, other, difference);
    case Table::Uds:
        return takeOverUds(current, difference);
    case Table::Line:
        return takeOverLine(current, other, difference.line);
    default:
        break;
    }
    const auto *table = std::find_if(keyTables.begin(), keyTables.end(), [&](const KeyTable &row) {
        return row.table == difference.table;
    });
    return table != keyTables.end() &&
           table->write(current, difference.key, table->value(other, difference.key));
}

} // namespace SettingsComparison
