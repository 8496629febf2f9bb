#include "store/objectdatabase_p.h"

#include "store/metadatablob.h"
#include "store/recordcolumns.h"
#include "store/rowvalues.h"

namespace {

QString objectTable(quint8 line)
{
    return SqlText::lineTable("Objects", line);
}

using Index = ObjectDataBase::INDEX_DATA_T;

const QString &columnList()
{
    static const QString list = RecordColumns::columnNames<Index>().join(u',');
    return list;
}

/// Reads rows for `readIndexRow`.
QString selectObjects(quint8 line)
{
    return QLatin1String("select ") + columnList() + QLatin1String(" from ") + objectTable(line);
}

/// Behind an insert: objects that are there already get the new values. Their metadata stay, as
/// those of the row are empty.
std::string updateOfOthers()
{
    QStringList values;
    for (const QString &column : RecordColumns::columnNames<Index>())
        values.append(QLatin1String("excluded.") + column);
    return " on conflict(objectindex) do update set " +
           RecordColumns::assignments<Index>(values).toStdString();
}

/// Gives the object's index.
quint16 readIndexRow(RecordColumns::Reader values, Index &data)
{
    RecordColumns::visit(values, data);
    return quint16(values.key());
}

template <typename Values>
void writeIndexRow(Values &list, StringTable &strings, quint16 index, const Index &data)
{
    RecordColumns::Writer values(list, strings);
    values.intern({&data.description, &data.name, &data.deviceclass});
    values.keys({index});
    RecordColumns::visit(values, data);
}

} // namespace

bool ObjectDataBase::getIndexData(quint8 line, quint16 index, INDEX_DATA_T &data)
{
    if (const auto entry = d->objects.entry(line, index)) {
        if (entry->hasObject)
            data = entry->data;
        return entry->hasObject;
    }
    bool found = false;
    d->runner.forEachRow(selectObjects(line) + QLatin1String(" where objectindex = ") +
                             SqlText::number(index),
                         [&](const ResultRow &row) {
                             data = {};
                             readIndexRow({row, StringTable::Texts(d->strings)}, data);
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
                         [&](const ResultRow &row) {
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

QString ObjectDataBase::State::columnLiteral(const QStringList &stringIds, const QString &column,
                                             const QVariant &value)
{
    if (!stringIds.contains(column))
        return QLatin1String(" = ") + SqlText::quoted(value.toString());
    QStringList ids;
    for (const qint64 id : strings.idsOf(value.toString()))
        ids.append(QString::number(id));
    return QLatin1String(" in (") + ids.join(u',') + u')';
}

QList<quint16> ObjectDataBase::findIndices(quint8 line, const QString &column,
                                           const QVariant &value)
{
    QList<quint16> indices;
    d->runner.forEachRow(
        QLatin1String("select objectindex from ") + objectTable(line) + QLatin1String(" where ") +
            column + d->columnLiteral(RecordColumns::columnNames<Index>(true), column, value),
        [&](const ResultRow &row) { indices.append(quint16(row.value(0).toUInt())); });
    return indices;
}

bool ObjectDataBase::addIndex(quint8 line, quint16 index, const INDEX_DATA_T &data)
{
    if (d->refusesWrites())
        return false;
    const bool done = d->writeIndex(line, index, data);
    d->objects.dropWalk(line);
    notify({.kind = IndexAdded, .index = index, .line = line});
    return done;
}

bool ObjectDataBase::State::writeIndex(quint8 line, quint16 index, const INDEX_DATA_T &data)
{
    RecordColumns::LiteralList list;
    writeIndexRow(list, strings, index, data);
    // An update with an empty map leaves the metadata that is there.
    const bool done = upsert({.table = objectTable(line),
                              .where = QLatin1String("objectindex = ") + SqlText::number(index),
                              .assignments = RecordColumns::assignments<Index>(list.literals()),
                              .columns = RecordColumns::columnNames<Index>(),
                              .literals = list.literals()},
                             Q_FUNC_INFO);
    return writeIndexMetaData(line, index, data.metadata) && done;
}

bool ObjectDataBase::State::writeIndexMetaData(quint8 line, quint16 index, const MetaData &metadata)
{
    return metadata.isEmpty() ||
           runner.execBound(
               QLatin1String("update ") + objectTable(line) +
                   QLatin1String(" SET metadata = :metadata where objectindex = :objectindex"),
               {{QStringLiteral(":metadata"), MetaDataBlob::toBlob(metadata)},
                {QStringLiteral(":objectindex"), index}},
               Q_FUNC_INFO);
}

bool ObjectDataBase::addIndices(const QList<IndexEntry> &entries)
{
    if (d->refusesWrites())
        return false;
    bool done = true;
    const bool committed = d->runner.transaction([&] {
        for (qsizetype from = 0; from < entries.size();)
            from = d->writeBatch(entries, from, done);
    });
    for (const IndexEntry &entry : entries)
        d->objects.dropWalk(entry.line);
    for (const IndexEntry &entry : entries)
        notify({.kind = IndexAdded, .index = entry.index, .line = entry.line});
    return done && committed;
}

/// Writes neighbouring rows of one line with one statement; gives the place behind the last.
qsizetype ObjectDataBase::State::writeBatch(const QList<IndexEntry> &entries, qsizetype from,
                                            bool &done)
{
    const quint8 line = entries.at(from).line;
    std::string statement = "insert " + intoClause("Objects", line);
    qsizetype next = from;
    for (; next < entries.size() && entries.at(next).line == line && next - from < mostRowsOfInsert;
         ++next) {
        if (next != from)
            statement += ',';
        statement += '(';
        SqlText::ValueList list(statement);
        writeIndexRow(list, strings, entries.at(next).index, entries.at(next).data);
        statement += ')';
    }
    // A table without the key, as other programs leave behind, takes no such statement.
    const bool written = runner.execUtf8(statement + updateOfOthers());
    for (; from < next; ++from) {
        const IndexEntry &entry = entries.at(from);
        done &= written ? writeIndexMetaData(line, entry.index, entry.data.metadata)
                        : writeIndex(line, entry.index, entry.data);
    }
    return next;
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
    const bool done =
        d->runner.exec(QLatin1String("update ") + objectTable(line) + QLatin1String(" set name=") +
                           d->internedId(name) + QLatin1String(" where ((objectindex = ") +
                           SqlText::number(index) + QLatin1String("))"),
                       Q_FUNC_INFO);
    d->objects.dropWalk(line);
    if (done)
        notify({.kind = IndexAdded, .index = index, .line = line});
}

QMap<std::pair<quint16, int>, ObjectDataBase::MetaData> ObjectDataBase::getAllMetaData(quint8 line)
{
    QMap<std::pair<quint16, int>, MetaData> result;
    const auto collect = [&](const QString &statement) {
        d->runner.forEachRow(statement, [&](const ResultRow &row) {
            if (!row.isBlob(2))
                return;
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

void ObjectDataBase::State::readObjects(quint8 line, ObjectCache::Walk &walk)
{
    const StringTable::Texts texts(strings);
    runner.forEachRow(selectObjects(line), [&](const ResultRow &row) {
        ObjectCache::WalkEntry entry{.hasObject = true, .data = {}, .subindices = {}};
        const quint16 index = readIndexRow({row, texts}, entry.data);
        walk.insert(walk.cend(), index, std::move(entry));
    });
}
