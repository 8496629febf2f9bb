#include "store/objectdatabase_p.h"

#include "store/schema.h"

#include <QDebug>

namespace {

using Node = ObjectDataBase::NODE_DATA_T;

/// Columns with the literal of a record's value; the last five change by `setNodeSqlValue` only.
QList<std::pair<QString, QString>> nodeValues(const Node &node)
{
    const auto text = [](const QString &value) { return SqlText::quoted(value); };
    const auto flag = [](bool value) { return SqlText::number(value); };
    return {{QStringLiteral("name"), text(node.name)},
            {QStringLiteral("edspath"), text(node.edspath)},
            {QStringLiteral("xddpath"), text(node.xddpath)},
            {QStringLiteral("dcfpath"), text(node.dcfpath)},
            {QStringLiteral("tpdocnt"), SqlText::number(node.tpdocnt)},
            {QStringLiteral("rpdocnt"), SqlText::number(node.rpdocnt)},
            {QStringLiteral("ismaster"), flag(node.ismaster)},
            {QStringLiteral("issyncproducer"), flag(node.issyncproducer)},
            {QStringLiteral("issyncconsumer"), flag(node.issyncconsumer)},
            {QStringLiteral("ishbconsumer"), flag(node.ishbconsumer)},
            {QStringLiteral("isemergencyproducer"), flag(node.isemergencyproducer)},
            {QStringLiteral("isemergencyconsumer"), flag(node.isemergencyconsumer)},
            {QStringLiteral("ismpdosupported"), flag(node.ismpdosupported)},
            {QStringLiteral("iscanopengateway"), flag(node.iscanopengateway)},
            {QStringLiteral("allpdosstatic"), flag(node.allpdosstatic)},
            {QStringLiteral("excludegeneration"), flag(node.excludegeneration)},
            {QStringLiteral("generatedcf"), flag(node.generatedcf)},
            {QStringLiteral("prefix"), text(node.prefix)},
            {QStringLiteral("outputpath"), text(node.outputpath)},
            {QStringLiteral("iconpath"), text(node.iconpath)},
            {QStringLiteral("isbootupmanager"), flag(node.isbootupmanager)},
            {QStringLiteral("isconfigmanager"), flag(node.isconfigmanager)},
            {QStringLiteral("excludepdolinking"), flag(node.excludepdolinking)},
            {QStringLiteral("multilinedata"), SqlText::number(node.multilinedata)},
            {QStringLiteral("lssslave"), flag(node.lssslave)}};
}

const QStringList &columnsOfInsertOnly()
{
    static const QStringList columns = {
        QStringLiteral("isbootupmanager"), QStringLiteral("isconfigmanager"),
        QStringLiteral("excludepdolinking"), QStringLiteral("multilinedata"),
        QStringLiteral("lssslave")};
    return columns;
}

/// Settings whose commas are the user's and separate no lines.
bool isFreeText(const QString &key)
{
    return key == QLatin1String("user_defines") || key == QLatin1String("hw_defines") ||
           key == QLatin1String("applicationheader") || key.startsWith(QLatin1String("note_")) ||
           (key.startsWith(QLatin1String("targetsettings_")) &&
            key.endsWith(QLatin1String("_defines")));
}

} // namespace

bool ObjectDataBase::State::upsert(const QString &table, const QString &where,
                                   const QList<std::pair<QString, QString>> &values,
                                   const QStringList &insertOnlyColumns, const char *context)
{
    bool done = false;
    runner.exclusive([&] {
        const bool exists = runner.hasRow(QLatin1String("select 1 from ") + table +
                                          QLatin1String(" where ") + where);
        QStringList columns;
        QStringList literals;
        QStringList terms;
        for (const auto &[column, value] : values) {
            columns.append(column);
            literals.append(value);
            if (!insertOnlyColumns.contains(column))
                terms.append(column + QLatin1String(" = ") + value);
        }
        const QString statement =
            exists
                ? QLatin1String("update ") + table + QLatin1String(" set ") +
                      terms.join(QLatin1String(", ")) + QLatin1String(" where ") + where
                : QLatin1String("insert into ") + table + QLatin1String(" (") + columns.join(u',') +
                      QLatin1String(") values(") + literals.join(u',') + u')';
        done = runner.exec(statement, context);
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
    QList<std::pair<QString, QString>> values = nodeValues(data);
    values.prepend({QStringLiteral("nodeId"), SqlText::number(line)});
    QStringList insertOnly = columnsOfInsertOnly();
    insertOnly.append(QStringLiteral("nodeId"));
    const bool stored =
        d->upsert(QStringLiteral("Nodes"), QLatin1String("nodeId = ") + SqlText::number(line),
                  values, insertOnly, Q_FUNC_INFO);
    const bool created = d->createLineTables(line);
    if (line != comparisonLine)
        inheritLineSettings(line);
    createUDSTable(line);
    notify({.kind = NodeAdded, .line = line});
    return stored && created;
}

void ObjectDataBase::inheritLineSettings(quint8 line)
{
    // The staging line is far behind the others and would pad every list up to itself.
    const QStringList &keys = line == stagingLine ? QStringList() : getMultiLineKeys();
    for (const QString &key : keys) {
        const QString list = getGeneralSetting(key);
        if (!list.isEmpty())
            setGeneralSettingForLine(key, StoreText::lineItem(list, line), line);
    }
    d->writeMissingDescriptionDefaults(line);
}

void ObjectDataBase::createUDSTable(quint8 line)
{
    static constexpr UDS::SID basicServices[] = {
        UDS::SID::DiagnosticSessionControl, UDS::SID::EcuReset, UDS::SID::TesterPresent,
        UDS::SID::ReadDataByIdentifier, UDS::SID::WriteDataByIdentifier};
    d->runner.exec(Schema::createStatement(Schema::table(QStringLiteral("UDSSettings")),
                                           QString::number(line), true),
                   Q_FUNC_INFO);
    // A line that has services keeps them when its record is written again.
    if (!getUDSServices(line).isEmpty())
        return;
    for (const UDS::SID sid : basicServices) {
        d->changeUdsService(line, sid, [](UdsService &service) {
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
    deleteDescriptionOfLine(line);
    cutLineFromSettings("GeneralSettings", line);
    cutLineFromSettings("J1939Settings", line);
    const QString number = SqlText::number(line);
    d->runner.exec(QLatin1String("delete from Connections where prodnode = ") + number +
                       QLatin1String(" OR connode = ") + number,
                   Q_FUNC_INFO);
    d->objects.clear(line);
    d->signalCache.drop(line);
    {
        const std::scoped_lock lock(d->orderMutex);
        d->intoClauses.clear();
    }
    notify({.kind = NodeDeleted, .line = line});
    return deleted;
}

void ObjectDataBase::deleteDescriptionOfLine(quint8 line)
{
    // Keys of line 0 have no suffix; "BaudRate_10" is one of them and none of line 10.
    QSet<QString> plainKeys;
    for (const auto &entry : StoreText::descriptionDefaults())
        plainKeys.insert(entry.first);
    const QString suffix = u'_' + QString::number(line);
    for (const QString &key : d->settingKeys("DescriptionSettings")) {
        const bool plain = plainKeys.contains(key);
        const bool ofLine = line == 0 ? plain : !plain && key.endsWith(suffix);
        if (ofLine)
            d->runner.exec(QLatin1String("DELETE FROM DescriptionSettings WHERE item = ") +
                               SqlText::quoted(key),
                           Q_FUNC_INFO);
    }
}

void ObjectDataBase::cutLineFromSettings(const char *table, quint8 line)
{
    const QString typeKey = QStringLiteral("line%1type").arg(line);
    for (const QString &key : d->settingKeys(table)) {
        if (key == typeKey) {
            d->runner.exec(QLatin1String("DELETE FROM ") + QLatin1String(table) +
                               QLatin1String(" WHERE item = ") + SqlText::quoted(key),
                           Q_FUNC_INFO);
            continue;
        }
        const QString value = d->setting(table, key);
        if (isFreeText(key) || !value.contains(u','))
            continue;
        QStringList items = value.split(u',');
        if (items.size() <= line)
            continue;
        items.removeAt(line);
        d->runner.exec(QLatin1String("update ") + QLatin1String(table) +
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
    bool found = false;
    d->runner.forEachRow(
        QLatin1String("select name,edspath,xddpath,dcfpath,tpdocnt,rpdocnt,ismaster,  "
                      "issyncproducer, issyncconsumer, ishbconsumer, isemergencyproducer,  "
                      "isemergencyconsumer, ismpdosupported, iscanopengateway, allpdosstatic,  "
                      "excludegeneration, generatedcf, prefix, outputpath, iconpath, "
                      "isbootupmanager, isconfigmanager, excludepdolinking, multilinedata, "
                      "lssslave from Nodes where nodeId = ") +
            SqlText::number(line),
        [&](const ResultRow &row) {
            int column = 0;
            const auto text = [&] { return row.value(column++).toString(); };
            const auto number = [&] { return row.value(column++).toUInt(); };
            const auto flag = [&] { return row.value(column++).toInt() != 0; };
            data.name = text();
            data.edspath = text();
            data.xddpath = text();
            data.dcfpath = text();
            data.tpdocnt = quint16(number());
            data.rpdocnt = quint16(number());
            data.ismaster = flag();
            data.issyncproducer = flag();
            data.issyncconsumer = flag();
            data.ishbconsumer = flag();
            data.isemergencyproducer = flag();
            data.isemergencyconsumer = flag();
            data.ismpdosupported = flag();
            data.iscanopengateway = flag();
            data.allpdosstatic = flag();
            data.excludegeneration = flag();
            data.generatedcf = flag();
            data.prefix = text();
            data.outputpath = text();
            data.iconpath = text();
            data.isbootupmanager = flag();
            data.isconfigmanager = flag();
            data.excludepdolinking = flag();
            data.multilinedata = number();
            data.lssslave = flag();
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
