#include "store/objectdatabase_p.h"

#include "store/metadatablob.h"

namespace {

QString objectTable(quint8 line)
{
    return SqlText::lineTable("Objects", line);
}

const QString objectColumns = QStringLiteral(
    "name,datatype,objecttype,description,category,device_class,fwsupported,metadata");

} // namespace

ObjectDataBase::INDEX_DATA_T ObjectDataBase::readIndexRow(const QSqlQuery &row)
{
    INDEX_DATA_T data;
    data.name = d->text(row.value(0));
    data.datatype = quint16(row.value(1).toUInt());
    data.objecttype = row.value(2).toUInt();
    data.description = d->text(row.value(3));
    data.category = quint16(row.value(4).toUInt());
    data.deviceclass = d->text(row.value(5));
    data.fwsupported = row.value(6).toInt() != 0;
    data.metadata = MetaDataBlob::fromValue(row.value(7));
    return data;
}

bool ObjectDataBase::getIndexData(quint8 line, quint16 index, INDEX_DATA_T &data)
{
    if (const auto entry = d->objects.entry(line, index)) {
        if (entry->hasObject)
            data = entry->data;
        return entry->hasObject;
    }
    bool found = false;
    d->runner.forEachRow(QLatin1String("select ") + objectColumns + QLatin1String(" from ") +
                             objectTable(line) + QLatin1String(" where objectindex = ") +
                             SqlText::number(index),
                         [&](const QSqlQuery &row) {
                             data = readIndexRow(row);
                             found = true;
                         });
    return found;
}

QList<quint16> ObjectDataBase::getIndices(quint8 line, int low, int high)
{
    if (const auto cached = d->objects.indices(line, low, high))
        return *cached;
    QList<quint16> indices;
    d->runner.forEachRow(QLatin1String("select objectindex from ") + objectTable(line) +
                             QLatin1String(" order by objectindex asc"),
                         [&](const QSqlQuery &row) {
                             const int index = row.value(0).toInt();
                             if (index >= low && (high < 0 || index <= high))
                                 indices.append(quint16(index));
                         });
    return indices;
}

bool ObjectDataBase::indexExists(quint8 line, quint16 index)
{
    if (const auto entry = d->objects.entry(line, index))
        return entry->hasObject;
    return d->runner.hasRow(QLatin1String("select objectindex from ") + objectTable(line) +
                            QLatin1String(" where objectindex = ") + SqlText::number(index));
}

QString ObjectDataBase::getIndexName(quint8 line, quint16 index)
{
    if (const auto entry = d->objects.entry(line, index))
        return entry->data.name;
    return d->text(d->runner.value(QLatin1String("select name from ") + objectTable(line) +
                                   QLatin1String(" where objectindex = ") +
                                   SqlText::number(index)));
}

QString ObjectDataBase::columnLiteral(const char *stringIds, const QString &column,
                                      const QVariant &value)
{
    if (!QString::fromLatin1(stringIds).split(u',').contains(column))
        return QLatin1String(" = ") + SqlText::quoted(value.toString());
    QStringList ids;
    for (const qint64 id : d->strings.idsOf(value.toString()))
        ids.append(QString::number(id));
    return QLatin1String(" in (") + ids.join(u',') + u')';
}

QList<quint16> ObjectDataBase::findIndices(quint8 line, const QString &column,
                                           const QVariant &value)
{
    QList<quint16> indices;
    d->runner.forEachRow(
        QLatin1String("select objectindex from ") + objectTable(line) + QLatin1String(" where ") +
            column + columnLiteral("name,description,device_class", column, value),
        [&](const QSqlQuery &row) { indices.append(quint16(row.value(0).toUInt())); });
    return indices;
}

bool ObjectDataBase::addIndex(quint8 line, quint16 index, const INDEX_DATA_T &data)
{
    if (d->refusesWrites())
        return false;
    const QString description = d->internedId(data.description);
    const QString name = d->internedId(data.name);
    const QString deviceClass = d->internedId(data.deviceclass);
    const QString key = SqlText::number(index);
    const QString where = QLatin1String("objectindex = ") + key;
    const QList<std::pair<QString, QString>> values = {
        {QStringLiteral("objectindex"), key},
        {QStringLiteral("name"), name},
        {QStringLiteral("datatype"), SqlText::number(data.datatype)},
        {QStringLiteral("objecttype"), SqlText::number(data.objecttype)},
        {QStringLiteral("description"), description},
        {QStringLiteral("category"), SqlText::number(data.category)},
        {QStringLiteral("device_class"), deviceClass},
        {QStringLiteral("fwsupported"), SqlText::number(data.fwsupported)},
        {QStringLiteral("metadata"), QStringLiteral("0")}};
    // An update with an empty map leaves the metadata that is there.
    bool done = d->upsert(objectTable(line), where, values,
                          {QStringLiteral("objectindex"), QStringLiteral("metadata")}, Q_FUNC_INFO);
    if (!data.metadata.isEmpty())
        done &= d->runner.execBound(
            QLatin1String("update ") + objectTable(line) +
                QLatin1String(" SET metadata = :metadata where objectindex = :objectindex"),
            {{QStringLiteral(":metadata"), MetaDataBlob::toBlob(data.metadata)},
             {QStringLiteral(":objectindex"), index}},
            Q_FUNC_INFO);
    d->objects.dropWalk(line);
    notify({.kind = IndexAdded, .index = index, .line = line});
    return done;
}

bool ObjectDataBase::deleteIndex(quint8 line, quint16 index, bool keepConnections)
{
    if (d->refusesWrites())
        return false;
    const QString key = SqlText::number(index);
    bool done =
        d->runner.exec(QLatin1String("delete from ") + SqlText::lineTable("SubObjects", line) +
                           QLatin1String(" where objectindex = ") + key,
                       Q_FUNC_INFO);
    done &= d->runner.exec(QLatin1String("delete from ") + objectTable(line) +
                               QLatin1String(" where objectindex = ") + key,
                           Q_FUNC_INFO);
    if (!keepConnections) {
        removeProducerConnections(line, index);
        d->runner.exec(QLatin1String("delete from Connections where connode = ") +
                           SqlText::number(line) + QLatin1String(" AND conindex = ") + key,
                       Q_FUNC_INFO);
    }
    d->objects.removeIndex(line, index);
    d->objects.dropWalk(line);
    notify({.kind = IndexDeleted, .index = index, .line = line});
    return done;
}

void ObjectDataBase::setIndexName(quint8 line, quint16 index, const QString &name)
{
    if (d->refusesWrites())
        return;
    d->runner.exec(QLatin1String("update ") + objectTable(line) + QLatin1String(" set name=") +
                       d->internedId(name) + QLatin1String(" where ((objectindex = ") +
                       SqlText::number(index) + QLatin1String("))"),
                   Q_FUNC_INFO);
    d->objects.dropWalk(line);
}

QMap<std::pair<quint16, int>, ObjectDataBase::MetaData> ObjectDataBase::getAllMetaData(quint8 line)
{
    QMap<std::pair<quint16, int>, MetaData> result;
    const auto collect = [&](const QString &statement) {
        d->runner.forEachRow(statement, [&](const QSqlQuery &row) {
            MetaData map = MetaDataBlob::fromValue(row.value(2));
            if (!map.isEmpty())
                result.insert({quint16(row.value(0).toUInt()), row.value(1).toInt()},
                              std::move(map));
        });
    };
    collect(QLatin1String("SELECT objectindex, -1, metadata from ") + objectTable(line) +
            QLatin1String(" WHERE metadata IS NOT NULL"));
    collect(QLatin1String("SELECT objectindex, subindex, metadata from ") +
            SqlText::lineTable("SubObjects", line) + QLatin1String(" WHERE metadata IS NOT NULL"));
    return result;
}

QMap<quint16, ObjectDataBase::INDEX_DATA_T> ObjectDataBase::readObjects(quint8 line)
{
    QMap<quint16, INDEX_DATA_T> objects;
    d->runner.forEachRow(QLatin1String("select ") + objectColumns +
                             QLatin1String(",objectindex from ") + objectTable(line),
                         [&](const QSqlQuery &row) {
                             objects.insert(quint16(row.value(8).toUInt()), readIndexRow(row));
                         });
    return objects;
}
