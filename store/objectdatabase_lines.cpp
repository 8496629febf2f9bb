#include "canopen/indextext.h"
#include "store/objectdatabase_p.h"

#include "store/schema.h"

#include <QScopeGuard>

namespace {

const quint8 directions[] = {ObjectDataBase::receive, ObjectDataBase::transmit};

} // namespace

bool ObjectDataBase::copyLine(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                              quint8 targetLine, quint16 low, quint16 high)
{
    if (target.d->refusesWrites())
        return false;
    if (&target == &source && sourceLine == targetLine)
        return true;
    source.cacheAllSubs(sourceLine);
    bool copied = true;
    for (const quint16 index : source.getIndices(sourceLine, low, high)) {
        INDEX_DATA_T object;
        source.getIndexData(sourceLine, index, object);
        if (object.name.isEmpty())
            object.name = IndexText::unnamedObject;
        const QList<quint8> subindices = source.getSubIndices(sourceLine, index);
        target.deleteIndex(targetLine, index, true);
        copied &= target.addIndex(targetLine, index, object);
        for (const quint8 subindex : subindices) {
            SUBINDEX_DATA_T data;
            if (source.getSubIndexData(sourceLine, index, subindex, data))
                copied &= target.addSubIndex(targetLine, index, subindex, data);
        }
    }
    source.clearSubCache(sourceLine);
    copyPGNs(target, source, sourceLine, targetLine, highestPGN);
    for (const quint8 direction : directions) {
        for (const quint32 id : source.getCANIDList(sourceLine, direction))
            copied &= copyCANID(target, source, sourceLine, targetLine, id, direction, direction);
    }
    copyUDSSettings(target, source, sourceLine, targetLine);
    return copied;
}

void ObjectDataBase::copyUDSSettings(ObjectDataBase &target, ObjectDataBase &source,
                                     quint8 sourceLine, quint8 targetLine)
{
    QStringList rows;
    const Schema::Table &table = Schema::table(QStringLiteral("UDSSettings"));
    const QString columns = Schema::columnList(table);
    source.d->runner.forEachRow(QLatin1String("select ") + columns + QLatin1String(" from ") +
                                    SqlText::lineTable(table.name, sourceLine),
                                [&](const ResultRow &row) {
                                    rows.append(row.value(0).toString() + u',' +
                                                SqlText::number(row.value(1).toInt() != 0) + u',' +
                                                SqlText::quoted(row.value(2).toString()) + u',' +
                                                SqlText::quoted(row.value(3).toString()) + u',' +
                                                SqlText::quoted(row.value(4).toString()));
                                });
    const QString name = SqlText::lineTable(table.name, targetLine);
    target.d->runner.exec(QLatin1String("delete from ") + name, Q_FUNC_INFO);
    for (const QString &row : rows)
        target.d->runner.exec(QLatin1String("insert into ") + name + QLatin1String(" (") + columns +
                                  QLatin1String(") values(") + row + u')',
                              Q_FUNC_INFO);
}

bool ObjectDataBase::copySettings(ObjectDataBase &source)
{
    if (d->refusesWrites())
        return false;
    bool copied = true;
    for (const char *name : {"GeneralSettings", "DescriptionSettings"}) {
        // Read first, so that a source that can't be read costs nothing.
        QList<std::pair<QString, QString>> rows;
        const QString select = QLatin1String("select item, value from ") + QLatin1String(name);
        if (!source.d->runner.forEachRow(select, [&](const ResultRow &row) {
                rows.append({row.value(0).toString(), row.value(1).toString()});
            }))
            return false;
        copied &= d->runner.exec(QLatin1String("drop table ") + QLatin1String(name), Q_FUNC_INFO);
        copied &= d->runner.exec(Schema::createStatement(Schema::table(QString::fromLatin1(name))),
                                 Q_FUNC_INFO);
        for (const auto &[key, value] : rows)
            copied &= d->runner.exec(QLatin1String("insert into ") + QLatin1String(name) +
                                         QLatin1String(" values(") + SqlText::quoted(key) + u',' +
                                         SqlText::quoted(value) + u')',
                                     Q_FUNC_INFO);
    }
    notify({.kind = GeneralSettingChanged});
    notify({.kind = DescriptionSettingChanged, .line = d->descriptionLine});
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
    if (indexExists(targetLine, newIndex))
        deleteIndex(targetLine, newIndex);
    bool copied = addIndex(targetLine, newIndex, object);
    {
        // One notification for the whole object, so that forms aren't flooded.
        const bool formerly = blockSignals(true);
        const auto unblock = qScopeGuard([&] { blockSignals(formerly); });
        for (const auto &[subindex, data] : subs)
            copied &= addSubIndex(targetLine, newIndex, subindex, data);
    }
    notify({.kind = SubIndexAdded, .index = newIndex, .line = targetLine});
    return copied;
}

bool ObjectDataBase::moveIndex(quint8 sourceLine, quint16 index, quint8 targetLine,
                               quint16 newIndex)
{
    if (d->refusesWrites())
        return false;
    if (sourceLine == targetLine && index == newIndex)
        return true;
    return copyIndex(sourceLine, index, targetLine, newIndex) && deleteIndex(sourceLine, index);
}
