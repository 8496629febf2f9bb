#include "compare/settingstables.h"

#include <QScopeGuard>

#include <algorithm>
#include <array>

namespace SettingsTables {

namespace {

using Store = ObjectDataBase;
using Table = SettingDifference::Table;

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

constexpr std::array tablesOfKeys{
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

constexpr std::array columnsOfUds{
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

} // namespace

std::span<const KeyTable> keyTables()
{
    return tablesOfKeys;
}

std::span<const UdsColumn> udsColumns()
{
    return columnsOfUds;
}

bool belongsToLine(const KeyTable &table, const QString &key, const QSet<QString> &keys,
                   quint8 line)
{
    if (table.table == Table::General)
        return key == LineType::settingKey(line);
    const QString suffix = u'_' + QString::number(line);
    return table.table == Table::Description && line != 0 && key.endsWith(suffix) &&
           keys.contains(key.chopped(suffix.size()));
}

ObjectDataBase::NODE_DATA_T nodeOf(ObjectDataBase &store, quint8 line)
{
    ObjectDataBase::NODE_DATA_T node;
    store.getNodeData(line, node);
    return node;
}

QList<quint8> lines(ObjectDataBase &store)
{
    QList<quint8> result = store.getLines();
    result.removeAll(ObjectDataBase::comparisonLine);
    result.removeAll(ObjectDataBase::stagingLine);
    std::sort(result.begin(), result.end());
    return result;
}

} // namespace SettingsTables
