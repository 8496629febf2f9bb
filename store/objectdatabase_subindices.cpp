#include "store/objectdatabase_p.h"

#include "store/metadatablob.h"
#include "store/recordcolumns.h"
#include "store/rowvalues.h"

#include <QDebug>

#include <algorithm>

namespace {

template <typename Values>
void writeSubIndex(Values &list, StringTable &strings, quint16 index, quint8 subindex,
                   const ObjectDataBase::SUBINDEX_DATA_T &data)
{
    RecordColumns::Writer values(list, strings);
    values.intern({&data.description, &data.name, &data.denotation});
    values.keys({index, subindex});
    RecordColumns::visit(values, data);
}

QString subTable(quint8 line)
{
    return SqlText::lineTable("SubObjects", line);
}

QString whereKey(quint16 index, quint8 subindex)
{
    return QLatin1String(" where objectindex = ") + SqlText::number(index) +
           QLatin1String(" and subindex = ") + SqlText::number(subindex);
}

/// Reads rows for `readSubIndexRow`.
QString selectSubIndices(quint8 line)
{
    static const QString select =
        QLatin1String("select ") +
        RecordColumns::columnNames<ObjectDataBase::SUBINDEX_DATA_T>().join(u',') +
        QLatin1String(" from ");
    return select + subTable(line);
}

/// Gives the key of the cache.
quint32 readSubIndexRow(RecordColumns::Reader values, ObjectDataBase::SUBINDEX_DATA_T &data)
{
    RecordColumns::visit(values, data);
    return ObjectCache::key(quint16(values.key(0)), quint8(values.key(1)));
}

void traceDeviceType(quint16 index, quint8 subindex, const ObjectDataBase::SUBINDEX_DATA_T &data)
{
    if (index == 0x1000 && subindex == 1)
        qDebug() << "ODB:aSI 0x1000:1 = " << data.defaultvalue;
}

} // namespace

bool ObjectDataBase::getSubIndexData(quint8 line, quint16 index, quint8 subindex,
                                     SUBINDEX_DATA_T &data)
{
    if (auto cached = d->objects.sub(line, index, subindex)) {
        data = std::move(*cached);
        return true;
    }
    if (d->objects.hasWalk(line))
        return false;
    bool found = false;
    d->runner.forEachRow(selectSubIndices(line) + whereKey(index, subindex),
                         [&](const ResultRow &row) {
                             data = {};
                             readSubIndexRow({row, StringTable::Texts(d->strings)}, data);
                             found = true;
                         });
    return found;
}

QList<quint8> ObjectDataBase::getSubIndices(quint8 line, quint16 index)
{
    if (const auto cached = d->objects.subindices(line, index))
        return *cached;
    QList<quint8> subindices;
    d->runner.forEachRow(
        QLatin1String("select subindex from ") + subTable(line) +
            QLatin1String(" where objectindex = ") + SqlText::number(index) +
            QLatin1String(" order by subindex asc"),
        [&](const ResultRow &row) { subindices.append(quint8(row.value(0).toUInt())); });
    return subindices;
}

bool ObjectDataBase::subIndexExists(quint8 line, quint16 index, quint8 subindex)
{
    if (d->objects.sub(line, index, subindex))
        return true;
    if (d->objects.hasWalk(line))
        return false;
    return d->runner.hasRow(QLatin1String("select objectindex from ") + subTable(line) +
                            whereKey(index, subindex));
}

QVariant ObjectDataBase::State::subIndexColumn(quint8 line, quint16 index, quint8 subindex,
                                               const char *column)
{
    return runner.value(QLatin1String("select ") + QLatin1String(column) + QLatin1String(" from ") +
                        subTable(line) + whereKey(index, subindex));
}

QString ObjectDataBase::getSubIndexName(quint8 line, quint16 index, quint8 subindex)
{
    if (const auto cached = d->objects.sub(line, index, subindex))
        return cached->name;
    return d->text(d->subIndexColumn(line, index, subindex, "name"));
}

QString ObjectDataBase::getSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex)
{
    if (const auto cached = d->objects.sub(line, index, subindex))
        return cached->defaultvalue;
    return d->subIndexColumn(line, index, subindex, "defaultvalue").toString();
}

quint16 ObjectDataBase::getSubIndexDataType(quint8 line, quint16 index, quint8 subindex)
{
    if (const auto cached = d->objects.sub(line, index, subindex))
        return cached->datatype;
    return quint16(d->subIndexColumn(line, index, subindex, "datatype").toUInt());
}

QList<ObjectDataBase::SubIndexKey> ObjectDataBase::State::selectKeys(const QString &statement)
{
    QList<SubIndexKey> keys;
    runner.forEachRow(statement, [&](const ResultRow &row) {
        keys.append({quint16(row.value(0).toUInt()), quint8(row.value(1).toUInt())});
    });
    return keys;
}

QList<ObjectDataBase::SubIndexKey>
ObjectDataBase::findSubIndices(quint8 line, const QString &column, const QVariant &value)
{
    return d->selectKeys(
        QLatin1String("select objectindex,subindex from ") + subTable(line) +
        QLatin1String(" where ") + column +
        d->columnLiteral(RecordColumns::columnNames<SUBINDEX_DATA_T>(true), column, value) +
        QLatin1String(" order by objectindex,subindex ASC"));
}

QList<ObjectDataBase::SubIndexKey> ObjectDataBase::getMappableSubIndices(quint8 line)
{
    return d->selectKeys(QLatin1String("select objectindex,subindex from ") + subTable(line) +
                         QLatin1String(" where pdomapping != 0 order by objectindex, subindex"));
}

void ObjectDataBase::State::appendSubIndexValues(std::string &statement, quint16 index,
                                                 quint8 subindex, const SUBINDEX_DATA_T &data)
{
    statement += '(';
    SqlText::ValueList values(statement);
    writeSubIndex(values, strings, index, subindex, data);
    statement += ')';
}

bool ObjectDataBase::State::writeSubMetaData(quint8 line, quint16 index, quint8 subindex,
                                             const MetaData &metadata)
{
    return runner.execBound(
        QLatin1String("update ") + subTable(line) +
            QLatin1String(" SET metadata = :metadata where objectindex = :objectindex and "
                          "subindex = :subindex"),
        {{QStringLiteral(":metadata"), MetaDataBlob::toBlob(metadata)},
         {QStringLiteral(":objectindex"), index},
         {QStringLiteral(":subindex"), subindex}},
        Q_FUNC_INFO);
}

bool ObjectDataBase::addSubIndex(quint8 line, quint16 index, quint8 subindex,
                                 const SUBINDEX_DATA_T &data)
{
    if (d->refusesWrites())
        return false;
    traceDeviceType(index, subindex, data);
    std::string statement = "insert or replace " + d->intoClause("SubObjects", line);
    d->appendSubIndexValues(statement, index, subindex, data);
    bool done = d->runner.execUtf8(statement, Q_FUNC_INFO);
    if (!data.metadata.isEmpty())
        done &= d->writeSubMetaData(line, index, subindex, data.metadata);
    if (!d->objects.replaceSub(line, index, subindex, data))
        d->objects.dropWalk(line);
    notify({.kind = SubIndexAdded, .index = index, .subindex = subindex, .line = line});
    return done;
}

bool ObjectDataBase::addSubIndices(const QList<SubEntry> &entries)
{
    if (d->refusesWrites())
        return false;
    bool done = true;
    QSet<quint8> lines;
    const bool committed = d->runner.transaction([&] {
        for (qsizetype from = 0; from < entries.size();) {
            lines.insert(entries.at(from).line);
            const qsizetype behind = d->writeBatch(entries, from, done);
            for (; from < behind; ++from) {
                const SubEntry &entry = entries.at(from);
                if (!entry.data.metadata.isEmpty())
                    done &= d->writeSubMetaData(entry.line, entry.index, entry.subindex,
                                                entry.data.metadata);
            }
        }
    });
    for (const quint8 line : std::as_const(lines))
        d->objects.dropWalk(line);
    return done && committed;
}

/// Writes neighbouring rows of one line; gives the place behind the last.
qsizetype ObjectDataBase::State::writeBatch(const QList<SubEntry> &entries, qsizetype from,
                                            bool &done)
{
    if (!runner.isDirect())
        return writeBatchAsText(entries, from, done);
    const quint8 line = entries.at(from).line;
    const auto isOther = [line](const SubEntry &entry) { return entry.line != line; };
    const qsizetype next =
        std::find_if(entries.begin() + from, entries.end(), isOther) - entries.begin();
    // One statement for all rows: to read the text of each takes most of the time otherwise.
    static const std::string places = [] {
        const auto columns = RecordColumns::columnNames<SUBINDEX_DATA_T>().size();
        return '(' + QByteArray("?,").repeated(columns).chopped(1).toStdString() + ')';
    }();
    done &= runner.execMany(
        "insert or replace " + intoClause("SubObjects", line) + places, next - from,
        [&](qsizetype row, BoundRow &values) {
            const SubEntry &entry = entries.at(from + row);
            traceDeviceType(entry.index, entry.subindex, entry.data);
            writeSubIndex(values, strings, entry.index, entry.subindex, entry.data);
        },
        Q_FUNC_INFO);
    return next;
}

/// The same with some rows a statement.
qsizetype ObjectDataBase::State::writeBatchAsText(const QList<SubEntry> &entries, qsizetype from,
                                                  bool &done)
{
    constexpr size_t mostText = 200000;
    const quint8 line = entries.at(from).line;
    std::string statement = "insert or replace " + intoClause("SubObjects", line);
    qsizetype next = from;
    for (; next < entries.size() && entries.at(next).line == line &&
           next - from < mostRowsOfInsert && statement.size() < mostText;
         ++next) {
        const SubEntry &entry = entries.at(next);
        traceDeviceType(entry.index, entry.subindex, entry.data);
        if (next != from)
            statement += ',';
        appendSubIndexValues(statement, entry.index, entry.subindex, entry.data);
    }
    if (runner.execUtf8(statement))
        return next;
    // One row that can't be written takes no other with it.
    for (; from < next; ++from) {
        const SubEntry &entry = entries.at(from);
        std::string single = "insert or replace " + intoClause("SubObjects", line);
        appendSubIndexValues(single, entry.index, entry.subindex, entry.data);
        done &= runner.execUtf8(single, Q_FUNC_INFO);
    }
    return next;
}

bool ObjectDataBase::deleteSubIndex(quint8 line, quint16 index, quint8 subindex,
                                    bool keepConnections)
{
    if (d->refusesWrites())
        return false;
    const bool done = d->runner.exec(
        QLatin1String("delete from ") + subTable(line) + whereKey(index, subindex), Q_FUNC_INFO);
    if (!keepConnections) {
        d->runner.exec(QLatin1String("delete from Connections where prodnode = ") +
                           SqlText::number(line) + QLatin1String(" AND prodindex = ") +
                           SqlText::number(index) + QLatin1String(" AND prodsub = ") +
                           SqlText::number(subindex),
                       Q_FUNC_INFO);
        removeConsumerConnection(line, index, subindex);
    }
    d->objects.removeSub(line, index, subindex);
    d->objects.dropWalk(line);
    notify({.kind = SubIndexDeleted, .index = index, .subindex = subindex, .line = line});
    return done;
}

void ObjectDataBase::setSubIndexName(quint8 line, quint16 index, quint8 subindex,
                                     const QString &name)
{
    if (d->refusesWrites())
        return;
    if (!d->runner.exec(QLatin1String("update ") + subTable(line) + QLatin1String(" set name=") +
                            d->internedId(name) + QLatin1String(" where ((objectindex = ") +
                            SqlText::number(index) + QLatin1String(") and (subindex = ") +
                            SqlText::number(subindex) + QLatin1String("))"),
                        Q_FUNC_INFO))
        return;
    if (auto cached = d->objects.sub(line, index, subindex)) {
        cached->name = name;
        d->objects.replaceSub(line, index, subindex, *cached);
    }
    notify({.kind = SubIndexAdded, .index = index, .subindex = subindex, .line = line});
}

bool ObjectDataBase::setSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex,
                                             const QString &value)
{
    if (d->refusesWrites())
        return false;
    const bool done = d->runner.exec(QLatin1String("update ") + subTable(line) +
                                         QLatin1String(" set defaultvalue=") +
                                         SqlText::quoted(value) + whereKey(index, subindex),
                                     Q_FUNC_INFO);
    if (!done)
        return false;
    if (auto cached = d->objects.sub(line, index, subindex)) {
        cached->defaultvalue = value;
        d->objects.replaceSub(line, index, subindex, *cached);
    }
    notify({.kind = SubIndexAdded, .index = index, .subindex = subindex, .line = line});
    return true;
}

bool ObjectDataBase::cacheAllSubs(quint8 line, quint16 index)
{
    // Nothing can have changed while a generator runs.
    if (d->generating && d->objects.hasWalk(line))
        return true;
    ObjectCache::Subs subs;
    ObjectCache::Walk walk;
    bool done = false;
    d->runner.exclusive([&] {
        done = index == 0 ? d->readLine(line, subs, walk) : d->readSubs(line, index, subs);
    });
    if (!done)
        d->objects.clear(line);
    else if (index != 0)
        d->objects.setIndex(line, index, subs);
    else
        d->objects.setLine(line, std::move(subs), std::move(walk));
    return done;
}

/// All subindices of the line, or of one index.
bool ObjectDataBase::State::readSubs(quint8 line, quint16 index, ObjectCache::Subs &subs)
{
    QString statement = selectSubIndices(line);
    if (index != 0) {
        statement += QLatin1String(" where objectindex = ") + SqlText::number(index);
    } else {
        const QVariant count =
            runner.value(QLatin1String("select count(*) from ") + subTable(line));
        subs.reserve(count.toInt());
    }
    const StringTable::Texts texts(strings);
    RecordColumns::TextPool pool;
    return runner.forEachRow(
        statement,
        [&](const ResultRow &row) {
            SUBINDEX_DATA_T data;
            const quint32 key = readSubIndexRow({row, texts, &pool}, data);
            subs.insert(key, std::move(data));
        },
        Q_FUNC_INFO);
}

bool ObjectDataBase::State::readLine(quint8 line, ObjectCache::Subs &subs, ObjectCache::Walk &walk)
{
    if (!readSubs(line, 0, subs))
        return false;
    readObjects(line, walk);
    const QList<quint32> keys = subs.sortedKeys();
    for (auto key = keys.cbegin(); key != keys.cend();) {
        const auto index = quint16(*key >> 8);
        const auto behind =
            std::find_if(key, keys.cend(), [&](quint32 other) { return other >> 8 != index; });
        QList<quint8> &subindices = walk[index].subindices;
        subindices.reserve(behind - key);
        for (; key != behind; ++key)
            subindices.append(quint8(*key));
    }
    return true;
}

bool ObjectDataBase::cacheSubIndexNames(quint8 line)
{
    return d->runner.forEachRow(
        QLatin1String("select denotation, name, objectindex, subindex from ") + subTable(line),
        [&](const ResultRow &row) {
            (void)d->strings.lookup(row.integer(0));
            (void)d->strings.lookup(row.integer(1));
        });
}
