#include "store/objectdatabase_p.h"

#include "store/metadatablob.h"

#include <QDebug>

namespace {

/// The map of metadata comes as the bytes of its stored form, or as a map.
ObjectDataBase::MetaData metaDataOf(const QVariant &value)
{
    return MetaDataBlob::fromValue(value);
}

/// For metadata the line is told by the last character of the table's name.
int metaDataLine(const QString &table)
{
    return table.isEmpty() ? -1 : table.back().digitValue();
}

/// The number behind the table's name.
quint8 lineOfTable(const QString &table)
{
    qsizetype digits = 0;
    while (digits < table.size() && table.at(table.size() - 1 - digits).digitValue() >= 0)
        ++digits;
    return quint8(table.right(digits).toUInt());
}

} // namespace

QString ObjectDataBase::State::sqlValueText(const QString &column, const QVariant &value)
{
    if (column == QLatin1String("name") || column == QLatin1String("description"))
        return internedId(value.toString());
    return value.toString().simplified();
}

void ObjectDataBase::setObjectIndexSqlValue(const QString &table, const QString &index,
                                            const QString &column, const QVariant &value)
{
    if (d->refusesWrites() || !value.isValid())
        return;
    const auto number = quint16(index.toUInt(nullptr, 0));
    if (column == QLatin1String("metadata")) {
        const int line = metaDataLine(table);
        if (line < 0)
            qDebug() << "error";
        else if (const MetaData map = metaDataOf(value);
                 !map.isEmpty() && d->writeIndexMetaData(quint8(line), number, map))
            d->tellIndexValue(quint8(line), number);
        return;
    }
    const QString text = d->sqlValueText(column, value);
    const State::Row row{table, QLatin1String(" where objectindex = ") + index,
                         QLatin1String(" (objectindex,name,datatype,objecttype,description,"
                                       "category,device_class,fwsupported,metadata) values(") +
                             index + QLatin1String(",0,0,0,0,0,0,0,0)")};
    if (!text.isEmpty() && d->writeColumn(row, column, text))
        d->tellIndexValue(lineOfTable(table), number);
}

void ObjectDataBase::setSubindexSqlValue(const QString &table, const QString &index,
                                         const QString &subindex, const QString &column,
                                         const QVariant &value)
{
    if (d->refusesWrites() || !value.isValid())
        return;
    const auto number = quint16(index.toUInt(nullptr, 0));
    const auto sub = quint8(subindex.toUInt(nullptr, 0));
    if (column == QLatin1String("metadata")) {
        const int line = metaDataLine(table);
        if (line < 0)
            qDebug() << "error";
        else if (const MetaData map = metaDataOf(value);
                 !map.isEmpty() && d->writeSubMetaData(quint8(line), number, sub, map))
            d->tellSubIndexValue(quint8(line), number, sub);
        return;
    }
    const QString text = d->sqlValueText(column, value);
    const State::Row row{
        table,
        QLatin1String(" where objectindex = ") + index + QLatin1String(" and subindex = ") +
            subindex,
        QLatin1String(" (objectindex,subindex,datatype,accesstype,implementation) values(") +
            index + u',' + subindex + QLatin1String(",0,0,0)")};
    if (!text.isEmpty() && d->writeColumn(row, column, text))
        d->tellSubIndexValue(lineOfTable(table), number, sub);
}

bool ObjectDataBase::State::writeColumn(const Row &row, const QString &column, const QString &text)
{
    bool done = false;
    runner.exclusive([&] {
        if (!runner.hasRow(QLatin1String("select objectindex from ") + row.table + row.where))
            runner.exec(QLatin1String("insert into ") + row.table + row.inserted, Q_FUNC_INFO);
        done = runner.exec(QLatin1String("update ") + row.table + QLatin1String(" set ") + column +
                               u'=' + SqlText::quoted(text) + row.where,
                           Q_FUNC_INFO);
    });
    return done;
}

void ObjectDataBase::State::tellIndexValue(quint8 line, quint16 index)
{
    objects.dropWalk(line);
    notify({.kind = IndexAdded, .index = index, .line = line});
}

void ObjectDataBase::State::tellSubIndexValue(quint8 line, quint16 index, quint8 subindex)
{
    objects.removeSub(line, index, subindex);
    objects.dropWalk(line);
    notify({.kind = SubIndexAdded, .index = index, .subindex = subindex, .line = line});
}
