#include "canopen/indextext.h"
#include "store/objectdatabase_p.h"

#include "store/schema.h"

bool ObjectDataBase::copyLine(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                              quint8 targetLine, quint16 low, quint16 high)
{
    if (target.d->refusesWrites())
        return false;
    if (&target == &source && sourceLine == targetLine)
        return true;
    StoreBulkChange bulk(target);
    const bool copied = target.d->copyObjects(source, sourceLine, targetLine, low, high) &&
                        copyPGNs(target, source, sourceLine, targetLine, J1939::highestPgn) &&
                        copyCANIDs(target, source, sourceLine, targetLine) &&
                        target.d->copyUdsSettings(*source.d, sourceLine, targetLine);
    bulk.tellAs({.kind = ProjectReplaced});
    return copied && bulk.commit();
}

bool ObjectDataBase::State::copyObjects(ObjectDataBase &source, quint8 sourceLine,
                                        quint8 targetLine, int low, int high)
{
    source.cacheAllSubs(sourceLine);
    QList<IndexEntry> indices;
    QList<SubEntry> subs;
    for (const quint16 index : source.getIndices(sourceLine, low, high)) {
        IndexEntry entry{.line = targetLine, .index = index, .data = {}};
        source.getIndexData(sourceLine, index, entry.data);
        if (entry.data.name.isEmpty())
            entry.data.name = IndexText::unnamedObject;
        indices.append(entry);
        for (const quint8 subindex : source.getSubIndices(sourceLine, index)) {
            SubEntry sub{.line = targetLine, .index = index, .subindex = subindex, .data = {}};
            if (source.getSubIndexData(sourceLine, index, subindex, sub.data))
                subs.append(sub);
        }
    }
    source.clearSubCache(sourceLine);
    bool copied = true;
    for (const IndexEntry &entry : std::as_const(indices))
        copied &= face.deleteIndex(targetLine, entry.index, true);
    copied &= face.addIndices(indices) && face.addSubIndices(subs);
    // The batch goes past records that are cached.
    objects.clear(targetLine);
    return copied;
}

bool ObjectDataBase::State::copyUdsSettings(State &source, quint8 sourceLine, quint8 targetLine)
{
    QStringList rows;
    const Schema::Table &table = Schema::table(QStringLiteral("UDSSettings"));
    const QString columns = Schema::columnList(table);
    bool copied = source.runner.forEachRow(
        QLatin1String("select ") + columns + QLatin1String(" from ") +
            SqlText::lineTable(table.name, sourceLine),
        [&](const ResultRow &row) {
            rows.append(QString::number(row.integer(0)) + u',' +
                        SqlText::number(row.integer(1) != 0) + u',' + SqlText::quoted(row.text(2)) +
                        u',' + SqlText::quoted(row.text(3)) + u',' + SqlText::quoted(row.text(4)));
        },
        Q_FUNC_INFO);
    const QString name = SqlText::lineTable(table.name, targetLine);
    copied = copied && runner.exec(QLatin1String("delete from ") + name, Q_FUNC_INFO);
    for (const QString &row : std::as_const(rows))
        copied = copied && runner.exec(QLatin1String("insert into ") + name + QLatin1String(" (") +
                                           columns + QLatin1String(") values(") + row + u')',
                                       Q_FUNC_INFO);
    return copied;
}

bool ObjectDataBase::copySettings(ObjectDataBase &source)
{
    if (d->refusesWrites())
        return false;
    StoreBulkChange bulk(*this);
    bulk.tellAs({.kind = ProjectReplaced});
    for (const char *table : {"GeneralSettings", "DescriptionSettings"}) {
        if (!d->copySettings(table, *source.d))
            return false;
    }
    return bulk.commit();
}

bool ObjectDataBase::State::copySettings(const char *table, State &source)
{
    QList<std::pair<QString, QString>> rows;
    const QString name = QString::fromLatin1(table);
    bool copied = source.runner.forEachRow(
        QLatin1String("select item, value from ") + name,
        [&](const ResultRow &row) {
            rows.append({row.text(0), row.text(1)});
        },
        Q_FUNC_INFO);
    copied = copied && runner.exec(QLatin1String("drop table ") + name, Q_FUNC_INFO) &&
             runner.exec(Schema::createStatement(Schema::table(name)), Q_FUNC_INFO);
    for (const auto &[key, value] : std::as_const(rows))
        copied =
            copied && runner.exec(QLatin1String("insert into ") + name + QLatin1String(" values(") +
                                      SqlText::quoted(key) + u',' + SqlText::quoted(value) + u')',
                                  Q_FUNC_INFO);
    return copied;
}

bool ObjectDataBase::copyIndex(quint8 sourceLine, quint16 index, quint8 targetLine,
                               quint16 newIndex, ObjectDataBase *source)
{
    ObjectDataBase &from = source == nullptr ? *this : *source;
    if (d->refusesWrites())
        return false;
    if (&from == this && sourceLine == targetLine && index == newIndex)
        return true;
    INDEX_DATA_T object;
    if (!from.getIndexData(sourceLine, index, object))
        return false;
    QList<std::pair<quint8, SUBINDEX_DATA_T>> subs;
    for (const quint8 subindex : from.getSubIndices(sourceLine, index)) {
        SUBINDEX_DATA_T data;
        if (from.getSubIndexData(sourceLine, index, subindex, data))
            subs.append({subindex, data});
    }
    StoreBulkChange bulk(*this);
    bool copied = !indexExists(targetLine, newIndex) || deleteIndex(targetLine, newIndex);
    copied = copied && addIndex(targetLine, newIndex, object);
    for (const auto &[subindex, data] : std::as_const(subs))
        copied = copied && addSubIndex(targetLine, newIndex, subindex, data);
    bulk.tellAs({.kind = SubIndexAdded, .index = newIndex, .line = targetLine});
    return copied && bulk.commit();
}

bool ObjectDataBase::moveIndex(quint8 sourceLine, quint16 index, quint8 targetLine,
                               quint16 newIndex)
{
    if (d->refusesWrites())
        return false;
    if (sourceLine == targetLine && index == newIndex)
        return true;
    StoreBulkChange bulk(*this);
    if (!copyIndex(sourceLine, index, targetLine, newIndex) || !deleteIndex(sourceLine, index))
        return false;
    bulk.tellAs({.kind = SubIndexAdded, .index = newIndex, .line = targetLine});
    if (!bulk.commit())
        return false;
    notify({.kind = IndexDeleted, .index = index, .line = sourceLine});
    return true;
}
