#include "store/objectdatabase_p.h"

#include "store/signallayout.h"

#include <QDebug>

namespace {

QString idTable(quint8 line)
{
    return SqlText::lineTable("CANIDs", line);
}

QString elementTable(quint8 line)
{
    return SqlText::lineTable("DataElements", line);
}

QString whereId(quint32 id, quint8 direction)
{
    return QLatin1String("id = ") + SqlText::number(id) + QLatin1String(" and direction = ") +
           SqlText::number(direction);
}

QString whereElementsOf(quint32 canId, quint8 direction)
{
    return QLatin1String("canid = ") + SqlText::number(canId) + QLatin1String(" and direction = ") +
           SqlText::number(direction);
}

QString whereElement(quint32 canId, quint8 direction, quint32 number)
{
    return whereElementsOf(canId, direction) + QLatin1String(" and number = ") +
           SqlText::number(number);
}

} // namespace

bool ObjectDataBase::addCANID(quint8 line, quint32 id, const CANID &data)
{
    if (d->refusesWrites())
        return false;
    const QString name = d->internedId(data.name);
    const QString desc = d->internedId(data.desc);
    const bool done =
        d->upsert(idTable(line), whereId(id, data.direction),
                  {{QStringLiteral("id"), SqlText::number(id)},
                   {QStringLiteral("cycletime_ms"), SqlText::number(data.cycleTime)},
                   {QStringLiteral("inhibittime_ms"), SqlText::number(data.inhibitTime)},
                   {QStringLiteral("mappingcount"), SqlText::number(data.mappingCount)},
                   {QStringLiteral("direction"), SqlText::number(data.direction)},
                   {QStringLiteral("name"), name},
                   {QStringLiteral("desc"), desc}},
                  {}, Q_FUNC_INFO);
    notify({.kind = CANIDAdded, .line = line, .canid = id, .direction = data.direction});
    return done;
}

bool ObjectDataBase::addDataElement(quint8 line, quint32 canId, quint8 direction, quint32 number,
                                    const DataElement &data)
{
    if (d->refusesWrites())
        return false;
    const QString name = d->internedId(data.name);
    const QString desc = d->internedId(data.desc);
    const QStringList insertOnly = {QStringLiteral("canid"), QStringLiteral("number"),
                                    QStringLiteral("pos"), QStringLiteral("bitsize"),
                                    QStringLiteral("direction")};
    const bool done =
        d->upsert(elementTable(line), whereElement(canId, direction, number),
                  {{QStringLiteral("canid"), SqlText::number(canId)},
                   {QStringLiteral("number"), SqlText::number(number)},
                   {QStringLiteral("datatype"), SqlText::number(data.dataType)},
                   {QStringLiteral("implementation"), SqlText::number(data.implementation)},
                   {QStringLiteral("varname"), SqlText::quoted(data.varName)},
                   {QStringLiteral("defaultvalue"), SqlText::quoted(data.defaultValue)},
                   {QStringLiteral("name"), name},
                   {QStringLiteral("desc"), desc},
                   {QStringLiteral("pos"), SqlText::number(data.pos)},
                   {QStringLiteral("bitsize"), SqlText::number(data.bitSize)},
                   {QStringLiteral("direction"), SqlText::number(direction)},
                   {QStringLiteral("bitpos"), SqlText::number(data.bitPos)}},
                  insertOnly, Q_FUNC_INFO);
    notify({.kind = DataElementAdded,
            .line = line,
            .canid = canId,
            .element = number,
            .direction = direction});
    return done;
}

bool ObjectDataBase::canIdExists(quint8 line, quint32 id, quint8 direction)
{
    return d->runner.hasRow(QLatin1String("select id from ") + idTable(line) +
                            QLatin1String(" where ") + whereId(id, direction));
}

bool ObjectDataBase::getCANID(quint8 line, quint32 id, quint8 direction, CANID &data)
{
    bool found = false;
    d->runner.forEachRow(
        QLatin1String(
            "select id,cycletime_ms,inhibittime_ms,mappingcount,direction,name,desc from ") +
            idTable(line) + QLatin1String(" where ") + whereId(id, direction),
        [&](const ResultRow &row) {
            data.id = row.value(0).toUInt();
            data.cycleTime = quint16(row.value(1).toUInt());
            data.inhibitTime = quint16(row.value(2).toUInt());
            data.mappingCount = quint16(row.value(3).toUInt());
            data.direction = quint8(row.value(4).toUInt());
            data.name = d->text(row.value(5));
            data.desc = d->text(row.value(6));
            found = true;
        },
        Q_FUNC_INFO);
    return found;
}

QString ObjectDataBase::getCANIDName(quint8 line, quint32 id, quint8 direction)
{
    return d->text(d->runner.value(QLatin1String("select name from ") + idTable(line) +
                                   QLatin1String(" where ") + whereId(id, direction)));
}

QList<quint32> ObjectDataBase::getCANIDList(quint8 line, quint8 direction)
{
    QString statement = QLatin1String("select id from ") + idTable(line);
    if (direction != 0)
        statement += QLatin1String(" where direction = ") + SqlText::number(direction);
    return selectNumbers(statement + QLatin1String(" order by id asc"));
}

bool ObjectDataBase::getDataElement(quint8 line, quint32 canId, quint8 direction, quint32 number,
                                    DataElement &data)
{
    bool found = false;
    d->runner.forEachRow(
        QLatin1String("select datatype,implementation,varname,defaultvalue,name,desc,pos,bitsize,"
                      "bitpos from ") +
            elementTable(line) + QLatin1String(" where ") + whereElement(canId, direction, number),
        [&](const ResultRow &row) {
            data.dataType = quint16(row.value(0).toUInt());
            data.implementation = quint8(row.value(1).toUInt());
            data.varName = row.value(2).toString();
            data.defaultValue = row.value(3).toString();
            data.name = d->text(row.value(4));
            data.desc = d->text(row.value(5));
            data.pos = quint16(row.value(6).toUInt());
            data.bitSize = quint16(row.value(7).toUInt());
            data.bitPos = quint16(row.value(8).toUInt());
            data.canId = canId;
            data.direction = direction;
            data.number = number;
            found = true;
        },
        Q_FUNC_INFO);
    return found;
}

QString ObjectDataBase::getDataElementName(quint8 line, quint32 canId, quint8 direction,
                                           quint32 number)
{
    return d->text(d->runner.value(QLatin1String("select name from ") + elementTable(line) +
                                   QLatin1String(" where ") +
                                   whereElement(canId, direction, number)));
}

QList<quint32> ObjectDataBase::getDataElementList(quint8 line, quint32 canId, quint8 direction)
{
    return selectNumbers(QLatin1String("select number from ") + elementTable(line) +
                         QLatin1String(" where ") + whereElementsOf(canId, direction) +
                         QLatin1String(" order by number asc"));
}

void ObjectDataBase::deleteCANID(quint8 line, quint32 id, quint8 direction)
{
    if (d->refusesWrites())
        return;
    d->runner.exec(QLatin1String("delete from ") + elementTable(line) + QLatin1String(" where ") +
                       whereElementsOf(id, direction),
                   Q_FUNC_INFO);
    d->runner.exec(QLatin1String("delete from ") + idTable(line) + QLatin1String(" where ") +
                       whereId(id, direction),
                   Q_FUNC_INFO);
    notify({.kind = CANIDDeleted, .line = line, .canid = id, .direction = direction});
}

void ObjectDataBase::deleteDataElement(quint8 line, quint32 canId, quint32 number, quint8 direction)
{
    if (d->refusesWrites())
        return;
    d->runner.exec(QLatin1String("delete from ") + elementTable(line) + QLatin1String(" where ") +
                       whereElement(canId, direction, number),
                   Q_FUNC_INFO);
    notify({.kind = SPNOrDataElementDeleted,
            .line = line,
            .canid = canId,
            .element = number,
            .direction = direction});
}

bool ObjectDataBase::copyCANID(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                               quint8 targetLine, quint32 id, quint8 direction,
                               quint8 targetDirection)
{
    CANID message;
    if (!source.getCANID(sourceLine, id, direction, message) || target.d->refusesWrites())
        return false;
    const QList<DataElement> elements = source.readDataElements(sourceLine, id, direction);
    target.deleteCANID(targetLine, id, targetDirection);
    message.direction = targetDirection;
    if (!target.addCANID(targetLine, id, message)) {
        qDebug() << "addCANID() failed: " << id;
        return false;
    }
    bool copied = true;
    for (const DataElement &element : elements)
        copied &= target.addDataElement(targetLine, id, targetDirection, element.number, element);
    return copied;
}

QList<ObjectDataBase::DataElement> ObjectDataBase::readDataElements(quint8 line, quint32 canId,
                                                                    quint8 direction)
{
    QList<DataElement> list;
    for (const quint32 number : getDataElementList(line, canId, direction)) {
        DataElement element;
        if (getDataElement(line, canId, direction, number, element))
            list.append(element);
    }
    return list;
}

void ObjectDataBase::realignDataElements(quint8 line, quint8 direction, quint32 canId)
{
    if (d->refusesWrites())
        return;
    d->runner.exclusive([&] {
        QList<DataElement> elements = readDataElements(line, canId, direction);
        if (!SignalLayout::layOut(elements, &DataElement::bitPos, false))
            return;
        for (const DataElement &element : std::as_const(elements))
            addDataElement(line, canId, direction, element.number, element);
    });
}
