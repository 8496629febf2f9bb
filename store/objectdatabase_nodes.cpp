#include "store/objectdatabase_p.h"

#include "store/recordcolumns.h"
#include "store/rowvalues.h"
#include "store/schema.h"

#include <QDebug>

namespace {

/// Settings whose commas are the user's and separate no lines.
bool isFreeText(const QString &key)
{
    return key == QLatin1String("user_defines") || key == QLatin1String("hw_defines") ||
           key == QLatin1String("applicationheader") || key.startsWith(QLatin1String("note_")) ||
           (key.startsWith(QLatin1String("targetsettings_")) &&
            key.endsWith(QLatin1String("_defines")));
}

} // namespace

bool ObjectDataBase::State::upsert(const Upsert &row, const char *context)
{
    bool done = false;
    runner.exclusive([&] {
        const bool exists = runner.hasRow(QLatin1String("select 1 from ") + row.table +
                                          QLatin1String(" where ") + row.where);
        done = runner.exec(exists ? QLatin1String("update ") + row.table + QLatin1String(" set ") +
                                        row.assignments + QLatin1String(" where ") + row.where
                                  : QLatin1String("insert into ") + row.table +
                                        QLatin1String(" (") + row.columns.join(u',') +
                                        QLatin1String(") values(") + row.literals.join(u',') + u')',
                           context);
    });
    return done;
}

std::string ObjectDataBase::State::intoClause(const char *table, quint8 line)
{
    const QByteArray name = table + QByteArray::number(line);
    {
        const std::scoped_lock lock(orderMutex);
        if (const auto found = intoClauses.constFind(name); found != intoClauses.constEnd())
            return *found;
    }
    QStringList columns;
    runner.forEachRow(QStringLiteral("SELECT name FROM pragma_table_info(%1) ORDER BY cid")
                          .arg(SqlText::quoted(QString::fromLatin1(name))),
                      [&](const ResultRow &row) { columns.append(row.text(0)); });
    const Schema::Table &schema = Schema::table(QString::fromLatin1(table));
    std::string clause = "into " + name.toStdString();
    // Older files hold the columns in another order; only there they have to be named.
    if (columns != Schema::columnNames(schema))
        clause += " (" + Schema::columnList(schema).toStdString() + ')';
    clause += " values";
    const std::scoped_lock lock(orderMutex);
    if (!columns.isEmpty())
        intoClauses.insert(name, clause);
    return clause;
}

bool ObjectDataBase::State::createLineTables(quint8 line)
{
    bool created = true;
    for (const Schema::Table &table : Schema::tables()) {
        if (table.scope != Schema::Scope::Line || qstrcmp(table.name, "UDSSettings") == 0)
            continue;
        if (!runner.exec(Schema::createStatement(table, QString::number(line), true))) {
            qDebug() << "create table" << SqlText::lineTable(table.name, line)
                     << runner.lastError();
            created = false;
        }
    }
    return created;
}

bool ObjectDataBase::addNode(quint8 line, const NODE_DATA_T &data)
{
    if (d->refusesWrites())
        return false;
    RecordColumns::LiteralList list;
    RecordColumns::Writer values(list, d->strings);
    values.keys({line});
    RecordColumns::visit(values, data);
    const bool stored =
        d->upsert({.table = QLatin1String(RecordColumns::Table<NODE_DATA_T>::name),
                   .where = QLatin1String("nodeId = ") + SqlText::number(line),
                   .assignments = RecordColumns::assignments<NODE_DATA_T>(list.literals()),
                   .columns = RecordColumns::columnNames<NODE_DATA_T>(),
                   .literals = list.literals()},
                  Q_FUNC_INFO);
    const bool created = d->createLineTables(line);
    if (line != comparisonLine)
        d->inheritLineSettings(line);
    d->createUdsTable(line);
    notify({.kind = NodeAdded, .line = line});
    return stored && created;
}

void ObjectDataBase::State::inheritLineSettings(quint8 line)
{
    // The staging line is far behind the others and would pad every list up to itself.
    const QStringList &keys = line == stagingLine ? QStringList() : getMultiLineKeys();
    for (const QString &key : keys) {
        const QString list = face.getGeneralSetting(key);
        if (!list.isEmpty())
            face.setGeneralSettingForLine(key, StoreText::lineItem(list, line), line);
    }
    writeMissingDescriptionDefaults(line);
}

void ObjectDataBase::State::createUdsTable(quint8 line)
{
    static constexpr UDS::SID basicServices[] = {
        UDS::SID::DiagnosticSessionControl, UDS::SID::EcuReset, UDS::SID::TesterPresent,
        UDS::SID::ReadDataByIdentifier, UDS::SID::WriteDataByIdentifier};
    runner.exec(Schema::createStatement(Schema::table(QStringLiteral("UDSSettings")),
                                        QString::number(line), true),
                Q_FUNC_INFO);
    // A line that has services keeps them when its record is written again.
    if (!face.getUDSServices(line).isEmpty())
        return;
    for (const UDS::SID sid : basicServices) {
        changeUdsService(line, sid, [](UdsService &service) {
            service.active = true;
            service.sessions = QStringLiteral("1");
        });
    }
}

bool ObjectDataBase::deleteNode(quint8 line)
{
    if (d->refusesWrites())
        return false;
    for (const Schema::Table &table : Schema::tables()) {
        if (table.scope == Schema::Scope::Line)
            d->runner.exec(QLatin1String("drop table if exists ") +
                           SqlText::lineTable(table.name, line));
    }
    const bool deleted = d->runner.exec(
        QLatin1String("delete from Nodes where nodeId = ") + SqlText::number(line), Q_FUNC_INFO);
    d->deleteDescriptionOfLine(line);
    d->cutLineFromSettings("GeneralSettings", line);
    d->cutLineFromSettings("J1939Settings", line);
    const QString number = SqlText::number(line);
    d->runner.exec(QLatin1String("delete from Connections where prodnode = ") + number +
                       QLatin1String(" OR connode = ") + number,
                   Q_FUNC_INFO);
    d->objects.clear(line);
    d->pgns.drop(line);
    d->canIds.drop(line);
    {
        const std::scoped_lock lock(d->orderMutex);
        d->intoClauses.clear();
    }
    notify({.kind = NodeDeleted, .line = line});
    return deleted;
}

void ObjectDataBase::State::deleteDescriptionOfLine(quint8 line)
{
    // Keys of line 0 have no suffix; "BaudRate_10" is one of them and none of line 10.
    QSet<QString> plainKeys;
    for (const auto &entry : StoreText::descriptionDefaults())
        plainKeys.insert(entry.first);
    const QString suffix = u'_' + QString::number(line);
    for (const QString &key : settingKeys("DescriptionSettings")) {
        const bool plain = plainKeys.contains(key);
        const bool ofLine = line == 0 ? plain : !plain && key.endsWith(suffix);
        if (ofLine)
            runner.exec(QLatin1String("DELETE FROM DescriptionSettings WHERE item = ") +
                            SqlText::quoted(key),
                        Q_FUNC_INFO);
    }
}

void ObjectDataBase::State::cutLineFromSettings(const char *table, quint8 line)
{
    const QString typeKey = LineType::settingKey(line);
    for (const QString &key : settingKeys(table)) {
        if (key == typeKey) {
            runner.exec(QLatin1String("DELETE FROM ") + QLatin1String(table) +
                            QLatin1String(" WHERE item = ") + SqlText::quoted(key),
                        Q_FUNC_INFO);
            continue;
        }
        const QString value = setting(table, key);
        if (isFreeText(key) || !value.contains(u','))
            continue;
        QStringList items = value.split(u',');
        if (items.size() <= line)
            continue;
        items.removeAt(line);
        runner.exec(QLatin1String("update ") + QLatin1String(table) +
                        QLatin1String(" SET value = ") + SqlText::quoted(items.join(u',')) +
                        QLatin1String(" WHERE item = ") + SqlText::quoted(key),
                    Q_FUNC_INFO);
    }
}

QList<quint8> ObjectDataBase::getLines()
{
    QList<quint8> lines;
    d->runner.forEachRow(QStringLiteral("select nodeId from nodes"), [&](const ResultRow &row) {
        lines.append(quint8(row.value(0).toUInt()));
    });
    return lines;
}

bool ObjectDataBase::lineExists(quint8 line)
{
    return d->runner.hasRow(QLatin1String("select nodeId from nodes where nodeId = ") +
                            SqlText::number(line));
}

bool ObjectDataBase::getNodeData(quint8 line, NODE_DATA_T &data)
{
    static const QString columns = RecordColumns::columnNames<NODE_DATA_T>().join(u',');
    bool found = false;
    d->runner.forEachRow(
        QLatin1String("select ") + columns + QLatin1String(" from Nodes where nodeId = ") +
            SqlText::number(line),
        [&](const ResultRow &row) {
            RecordColumns::Reader values(row, StringTable::Texts(d->strings));
            RecordColumns::visit(values, data);
            found = true;
        },
        Q_FUNC_INFO);
    return found;
}

void ObjectDataBase::setNodeSqlValue(const QString &node, const QString &column,
                                     const QVariant &value)
{
    if (d->refusesWrites())
        return;
    if (d->runner.exec(QLatin1String("update Nodes set ") + column + u'=' +
                           SqlText::quoted(value.toString()) + QLatin1String(" where nodeId = ") +
                           node + u' ',
                       Q_FUNC_INFO))
        notify({.kind = NodeAdded, .line = quint8(node.toUInt())});
}

bool ObjectDataBase::removeProducerConnections(quint8 line, quint16 index)
{
    if (d->refusesWrites())
        return false;
    return d->runner.exec(QLatin1String("delete from Connections where prodnode = ") +
                              SqlText::number(line) + QLatin1String(" AND prodindex = ") +
                              SqlText::number(index),
                          Q_FUNC_INFO);
}

bool ObjectDataBase::removeConsumerConnection(quint8 line, quint16 index, quint8 subindex)
{
    if (d->refusesWrites())
        return false;
    return d->runner.exec(QLatin1String("delete from Connections where connode = ") +
                              SqlText::number(line) + QLatin1String(" AND conindex = ") +
                              SqlText::number(index) + QLatin1String(" AND consub = ") +
                              SqlText::number(subindex),
                          Q_FUNC_INFO);
}
