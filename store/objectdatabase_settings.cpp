#include "store/objectdatabase_p.h"

namespace {

constexpr const char *generalTable = "GeneralSettings";
constexpr const char *descriptionTable = "DescriptionSettings";
constexpr const char *energyBusTable = "EnergyBusSettings";
constexpr const char *miscTable = "MiscSettings";
constexpr const char *j1939Table = "J1939Settings";

QString whereItem(const char *table, const QString &key)
{
    return QLatin1String(" from ") + QLatin1String(table) + QLatin1String(" where item = ") +
           SqlText::quoted(key);
}

} // namespace

QString StoreText::lineItem(const QString &list, quint8 line)
{
    const QStringList items = list.split(u',');
    return line < items.size() ? items.at(line) : items.constLast();
}

QString StoreText::ownLineItem(const QString &list, quint8 line)
{
    return list.split(u',').value(line);
}

QString ObjectDataBase::State::setting(const char *table, const QString &key)
{
    return runner.value(QLatin1String("select value") + whereItem(table, key)).toString();
}

bool ObjectDataBase::State::settingExists(const char *table, const QString &key)
{
    return runner.hasRow(QLatin1String("select item") + whereItem(table, key));
}

QStringList ObjectDataBase::State::settingKeys(const char *table)
{
    QStringList keys;
    runner.forEachRow(QLatin1String("select item from ") + QLatin1String(table),
                      [&](const ResultRow &row) { keys.append(row.value(0).toString()); });
    return keys;
}

ObjectDataBase::State::SettingChange
ObjectDataBase::State::writeSetting(const char *table, const QString &key, const QString &value)
{
    SettingChange result = SettingChange::Failed;
    runner.exclusive([&] {
        QString statement;
        if (!settingExists(table, key)) {
            statement = QLatin1String("insert into ") + QLatin1String(table) +
                        QLatin1String(" values(") + SqlText::quoted(key) + u',' +
                        SqlText::quoted(value) + u')';
        } else if (setting(table, key) == value) {
            result = SettingChange::Unchanged;
            return;
        } else {
            statement = QLatin1String("update ") + QLatin1String(table) +
                        QLatin1String(" set value = ") + SqlText::quoted(value) +
                        QLatin1String(" where item = ") + SqlText::quoted(key);
        }
        if (runner.exec(statement, Q_FUNC_INFO))
            result = SettingChange::Written;
    });
    return result;
}

ObjectDataBase::State::SettingChange ObjectDataBase::State::writeLineSetting(const char *table,
                                                                             const QString &key,
                                                                             const QString &value,
                                                                             quint8 line)
{
    SettingChange result = SettingChange::Failed;
    runner.exclusive([&] {
        const QString list = setting(table, key);
        QStringList items = list.isEmpty() ? QStringList() : list.split(u',');
        while (items.size() <= line)
            items.append(QString());
        items[line] = value;
        result = writeSetting(table, key, items.join(u','));
    });
    return result;
}

bool ObjectDataBase::State::setSetting(const char *table, const QString &key, const QString &value,
                                       const ChangeSet &change)
{
    if (refusesWrites())
        return false;
    const SettingChange result = writeSetting(table, key, value);
    if (result == SettingChange::Written)
        notify(change);
    return result != SettingChange::Failed;
}

bool ObjectDataBase::State::setLineSetting(const char *table, const QString &key,
                                           const QString &value, quint8 line,
                                           const ChangeSet &change)
{
    if (refusesWrites())
        return false;
    const SettingChange result = writeLineSetting(table, key, value, line);
    if (result == SettingChange::Written)
        notify(change);
    return result != SettingChange::Failed;
}

// --- general ------------------------------------------------------------------------------------

QString ObjectDataBase::getGeneralSetting(const QString &key)
{
    return d->setting(generalTable, key);
}

bool ObjectDataBase::setGeneralSetting(const QString &key, const QString &value)
{
    return d->setSetting(generalTable, key, value, {.kind = GeneralSettingChanged});
}

bool ObjectDataBase::setGeneralSettingForLine(const QString &key, const QString &value, quint8 line)
{
    return d->setLineSetting(generalTable, key, value, line, {.kind = GeneralSettingChanged});
}

QString ObjectDataBase::getGeneralLineSetting(const QString &key, quint8 line)
{
    return StoreText::lineItem(getGeneralSetting(key), line);
}

QString ObjectDataBase::getGeneralOwnLineSetting(const QString &key, quint8 line)
{
    return StoreText::ownLineItem(getGeneralSetting(key), line);
}

QStringList ObjectDataBase::getGeneralSettingKeys()
{
    return d->settingKeys(generalTable);
}

bool ObjectDataBase::generalSettingExists(const QString &key)
{
    return d->settingExists(generalTable, key);
}

const QStringList &ObjectDataBase::getMultiLineKeys()
{
    static const QStringList keys = {QStringLiteral("nmtmaster"),
                                     QStringLiteral("co_node_id"),
                                     QStringLiteral("co_node_id_fct"),
                                     QStringLiteral("overwrite_predef"),
                                     QStringLiteral("receivebuffersize"),
                                     QStringLiteral("transmitbuffersize"),
                                     QStringLiteral("isotp_client_con"),
                                     QStringLiteral("isotp_server_con"),
                                     QStringLiteral("uds_physical_request_id"),
                                     QStringLiteral("uds_physical_response_id"),
                                     QStringLiteral("uds_functional_request_id")};
    return keys;
}

int ObjectDataBase::getLineType(quint8 line)
{
    return getGeneralSetting(LineType::settingKey(line)).toInt();
}

// --- description --------------------------------------------------------------------------------

QString ObjectDataBase::getDescriptionSetting(const QString &key)
{
    return d->setting(descriptionTable, d->descriptionKey(key));
}

bool ObjectDataBase::setDescriptionSetting(const QString &key, const QString &value)
{
    return d->setSetting(descriptionTable, d->descriptionKey(key), value,
                         {.kind = DescriptionSettingChanged, .line = d->descriptionLine});
}

QStringList ObjectDataBase::getDescriptionSettingKeys()
{
    return d->settingKeys(descriptionTable);
}

bool ObjectDataBase::descriptionSettingExists(const QString &key)
{
    return d->settingExists(descriptionTable, d->descriptionKey(key));
}

void ObjectDataBase::setDescriptionLine(quint8 line)
{
    d->descriptionLine = line;
}

quint8 ObjectDataBase::descriptionLine() const
{
    return d->descriptionLine;
}

const QList<std::pair<QString, QString>> &StoreText::descriptionDefaults()
{
    static const QList<std::pair<QString, QString>> defaults = [] {
        QList<std::pair<QString, QString>> list;
        for (const int rate : {10, 20, 50, 125, 250, 500, 800, 1000})
            list.append({QStringLiteral("BaudRate_%1").arg(rate),
                         rate == 125 || rate == 250 ? QStringLiteral("1") : QStringLiteral("0")});
        for (int dummy = 1; dummy <= 7; ++dummy)
            list.append({QStringLiteral("Dummy000%1").arg(dummy), QStringLiteral("0")});
        const std::pair<const char *, const char *> rest[] = {
            {"LSS_Supported", "0"}, {"SelfStarting", "0"}, {"VendorName", ""},
            {"ProductName", ""},    {"CreatedBy", ""},     {"ModifiedBy", ""},
            {"FileVersion", "1"},   {"FileRevision", "1"}, {"OrderCode", "0815-BUY-ME"},
            {"Granularity", "0"},   {"Comment", ""},       {"AdditionalSections", ""}};
        for (const auto &[key, value] : rest)
            list.append({QString::fromLatin1(key), QString::fromLatin1(value)});
        return list;
    }();
    return defaults;
}

void ObjectDataBase::State::writeMissingDescriptionDefaults(quint8 line)
{
    const QString suffix = line == 0 ? QString() : u'_' + QString::number(line);
    const QStringList keys = settingKeys(descriptionTable);
    const QSet<QString> present(keys.begin(), keys.end());
    for (const auto &[key, value] : StoreText::descriptionDefaults()) {
        if (!present.contains(key + suffix))
            writeSetting(descriptionTable, key + suffix, value);
    }
}

// --- EnergyBus ----------------------------------------------------------------------------------

QString ObjectDataBase::getEnergyBusSetting(const QString &key)
{
    return d->setting(energyBusTable, key);
}

bool ObjectDataBase::setEnergyBusSetting(const QString &key, const QString &value)
{
    return d->setSetting(energyBusTable, key, value, {.kind = EnergyBusSettingChanged});
}

bool ObjectDataBase::deleteEnergyBusSetting(const QString &key)
{
    if (d->refusesWrites())
        return false;
    const bool done = d->runner.exec(QLatin1String("delete from EnergyBusSettings where item = ") +
                                         SqlText::quoted(key),
                                     Q_FUNC_INFO);
    if (done)
        notify({.kind = EnergyBusSettingChanged});
    return done;
}

QStringList ObjectDataBase::getEnergyBusSettingKeys()
{
    return d->settingKeys(energyBusTable);
}

bool ObjectDataBase::energyBusSettingExists(const QString &key)
{
    return d->settingExists(energyBusTable, key);
}

// --- misc and J1939 -----------------------------------------------------------------------------

QString ObjectDataBase::getMiscSetting(const QString &key)
{
    return d->setting(miscTable, key);
}

bool ObjectDataBase::setMiscSetting(const QString &key, const QString &value)
{
    return d->setSetting(miscTable, key, value, {.kind = MiscSettingChanged});
}

QStringList ObjectDataBase::getMiscSettingKeys()
{
    return d->settingKeys(miscTable);
}

bool ObjectDataBase::miscSettingExists(const QString &key)
{
    return d->settingExists(miscTable, key);
}

QString ObjectDataBase::getJ1939Setting(const QString &key)
{
    return d->setting(j1939Table, key);
}

QString ObjectDataBase::getJ1939LineSetting(const QString &key, quint8 line)
{
    return StoreText::lineItem(getJ1939Setting(key), line);
}

QString ObjectDataBase::getJ1939OwnLineSetting(const QString &key, quint8 line)
{
    return StoreText::ownLineItem(getJ1939Setting(key), line);
}

bool ObjectDataBase::setJ1939LineSetting(const QString &key, const QString &value, quint8 line)
{
    return d->setLineSetting(j1939Table, key, value, line, {.kind = J1939SettingChanged});
}

bool ObjectDataBase::setJ1939Setting(const QString &key, const QString &value)
{
    return d->setSetting(j1939Table, key, value, {.kind = J1939SettingChanged});
}

QStringList ObjectDataBase::getJ1939SettingKeys()
{
    return d->settingKeys(j1939Table);
}

bool ObjectDataBase::j1939SettingExists(const QString &key)
{
    return d->settingExists(j1939Table, key);
}
