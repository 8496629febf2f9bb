#include "store/objectdatabase_p.h"

#include "store/metadatablob.h"

#include <QDebug>

namespace {

/// The map of metadata comes as the bytes of its stored form, or as a map.
ObjectDataBase::MetaData metaDataOf(const QVariant &value)
{
    return MetaDataBlob::fromValue(value);
}

/// The line is told by the last character of the table's name.
int lineOfTable(const QString &table)
{
    return table.isEmpty() ? -1 : table.back().digitValue();
}

} // namespace

/// The text that a single column write stores; empty if there is nothing to write.
QString ObjectDataBase::sqlValueText(const QString &column, const QVariant &value)
{
    if (column == QLatin1String("name") || column == QLatin1String("description"))
        return d->internedId(value.toString());
    return value.toString().simplified();
}

void ObjectDataBase::setObjectIndexSqlValue(const QString &table, const QString &index,
                                            const QString &column, const QVariant &value)
{
    if (d->refusesWrites() || !value.isValid())
        return;
    const QString where = QLatin1String(" where objectindex = ") + index;
    const int line = lineOfTable(table);
    if (column == QLatin1String("metadata")) {
        const MetaData map = metaDataOf(value);
        if (line < 0)
            qDebug() << "error";
        else if (!map.isEmpty())
            d->runner.execBound(QLatin1String("update Objects") + QString::number(line) +
                                    QLatin1String(" SET metadata = :metadata where objectindex = "
                                                  ":objectindex"),
                                {{QStringLiteral(":metadata"), MetaDataBlob::toBlob(map)},
                                 {QStringLiteral(":objectindex"), index}},
                                Q_FUNC_INFO);
    } else if (const QString text = sqlValueText(column, value); !text.isEmpty()) {
        if (!d->runner.hasRow(QLatin1String("select objectindex from ") + table + where))
            d->runner.exec(QLatin1String("insert into ") + table +
                               QLatin1String(" (objectindex,name,datatype,objecttype,description,"
                                             "category,device_class,fwsupported,metadata) "
                                             "values(") +
                               index + QLatin1String(",0,0,0,0,0,0,0,0)"),
                           Q_FUNC_INFO);
        d->runner.exec(QLatin1String("update ") + table + QLatin1String(" set ") + column + u'=' +
                           SqlText::quoted(text) + where,
                       Q_FUNC_INFO);
    }
    if (line >= 0)
        d->objects.dropWalk(quint8(line));
}

void ObjectDataBase::setSubindexSqlValue(const QString &table, const QString &index,
                                         const QString &subindex, const QString &column,
                                         const QVariant &value)
{
    if (d->refusesWrites() || !value.isValid())
        return;
    if (column == QLatin1String("metadata")) {
        const MetaData map = metaDataOf(value);
        const int line = lineOfTable(table);
        if (line < 0)
            qDebug() << "error";
        else if (!map.isEmpty())
            writeSubMetaData(quint8(line), quint16(index.toUInt(nullptr, 0)),
                             quint8(subindex.toUInt(nullptr, 0)), map);
        return;
    }
    const QString text = sqlValueText(column, value);
    if (text.isEmpty())
        return;
    const QString where = QLatin1String(" where objectindex = ") + index +
                          QLatin1String(" and subindex = ") + subindex;
    if (!d->runner.hasRow(QLatin1String("select objectindex from ") + table + where))
        d->runner.exec(QLatin1String("insert into ") + table +
                           QLatin1String(" (objectindex,subindex,datatype,accesstype,"
                                         "implementation) values(") +
                           index + u',' + subindex + QLatin1String(",0,0,0)"),
                       Q_FUNC_INFO);
    d->runner.exec(QLatin1String("update ") + table + QLatin1String(" set ") + column + u'=' +
                       SqlText::quoted(text) + where,
                   Q_FUNC_INFO);
}
