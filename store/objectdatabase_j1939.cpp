#include "store/objectdatabase_p.h"

#include "store/signallayout.h"

#include <QDebug>

#include <mutex>

namespace {

const quint8 directions[] = {ObjectDataBase::receive, ObjectDataBase::transmit};

QString pgnTable(quint8 line)
{
    return SqlText::lineTable("PGNs", line);
}

QString spnTable(quint8 line)
{
    return SqlText::lineTable("SPNs", line);
}

QString wherePgn(quint32 number, quint8 direction)
{
    return QLatin1String("number = ") + SqlText::number(number) +
           QLatin1String(" and direction = ") + SqlText::number(direction);
}

QString whereSpnsOf(quint32 pgn, quint8 direction)
{
    return QLatin1String("pgnnumber = ") + SqlText::number(pgn) +
           QLatin1String(" and direction = ") + SqlText::number(direction);
}

QString whereSpn(quint32 pgn, quint8 direction, quint32 spn)
{
    return whereSpnsOf(pgn, direction) + QLatin1String(" and spnnumber = ") + SqlText::number(spn);
}

/// The order of the columns is that of `readSpn`.
const QString spnColumns = QStringLiteral(
    "datatype,implementation,varname,defaultvalue,name,desc,pos,bitsize,slot_df,bitposition,"
    "pgnnumber,direction,spnnumber");

ObjectDataBase::SPN readSpn(StringTable &strings, const ResultRow &row)
{
    ObjectDataBase::SPN spn;
    spn.dataType = quint16(row.value(0).toUInt());
    spn.implementation = quint8(row.value(1).toUInt());
    spn.varName = row.value(2).toString();
    spn.defaultValue = row.value(3).toString();
    spn.name = strings.lookup(row.value(4).toLongLong());
    spn.desc = strings.lookup(row.value(5).toLongLong());
    spn.pos = quint16(row.value(6).toUInt());
    spn.bitSize = quint16(row.value(7).toUInt());
    spn.slotDf = quint16(row.value(8).toUInt());
    spn.bitPosition = quint16(row.value(9).toUInt());
    spn.pgn = row.value(10).toUInt();
    spn.direction = quint8(row.value(11).toUInt());
    spn.spn = row.value(12).toUInt();
    return spn;
}

} // namespace

bool ObjectDataBase::addPGN(quint8 line, quint32 number, const PGN &data)
{
    if (d->refusesWrites())
        return false;
    const QString name = d->internedId(data.name);
    const QString desc = d->internedId(data.desc);
    const bool done = d->upsert(
        pgnTable(line), wherePgn(number, data.direction),
        {{QStringLiteral("number"), SqlText::number(number)},
         {QStringLiteral("edp_dp_key"), SqlText::number(data.edpDpKey)},
         {QStringLiteral("priority"), SqlText::number(data.priority)},
         {QStringLiteral("cycletime_ms"), SqlText::number(data.cycleTime)},
         {QStringLiteral("inhibittime_ms"), SqlText::number(data.inhibitTime)},
         {QStringLiteral("mappingcount"), SqlText::number(data.mappingCount)},
         {QStringLiteral("direction"), SqlText::number(data.direction)},
         {QStringLiteral("name"), name},
         {QStringLiteral("desc"), desc},
         {QStringLiteral("issafe"), SqlText::number(data.isSafe)},
         {QStringLiteral("srvt_ms"), SqlText::number(data.srvt)},
         {QStringLiteral("FD_TrailerFormat"), SqlText::number(data.fdTrailerFormat)},
         {QStringLiteral("FD_AssuranceType"), SqlText::number(data.fdAssuranceType)},
         {QStringLiteral("FD_AssuranceDataSize"), SqlText::number(data.fdAssuranceDataSize)},
         {QStringLiteral("multisourceaddress"), SqlText::number(data.multiSourceAddress)},
         {QStringLiteral("safetytype"), SqlText::number(data.safetyType)},
         {QStringLiteral("FD_DataId"), SqlText::number(data.fdDataId)}},
        {}, Q_FUNC_INFO);
    notify({.kind = PGNAdded, .line = line, .pgn = number, .direction = data.direction});
    return done;
}

bool ObjectDataBase::addSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn,
                            const SPN &data)
{
    if (d->refusesWrites())
        return false;
    const QString name = d->internedId(data.name);
    const QString desc = d->internedId(data.desc);
    d->signalCache.drop(line);
    const QStringList keys = {QStringLiteral("pgnnumber"), QStringLiteral("spnnumber"),
                              QStringLiteral("direction")};
    const bool done =
        d->upsert(spnTable(line), whereSpn(pgn, direction, spn),
                  {{keys.at(0), SqlText::number(pgn)},
                   {keys.at(1), SqlText::number(spn)},
                   {QStringLiteral("datatype"), SqlText::number(data.dataType)},
                   {QStringLiteral("implementation"), SqlText::number(data.implementation)},
                   {QStringLiteral("varname"), SqlText::quoted(data.varName)},
                   {QStringLiteral("defaultvalue"), SqlText::quoted(data.defaultValue)},
                   {QStringLiteral("name"), name},
                   {QStringLiteral("desc"), desc},
                   {QStringLiteral("pos"), SqlText::number(data.pos)},
                   {QStringLiteral("bitsize"), SqlText::number(data.bitSize)},
                   {keys.at(2), SqlText::number(direction)},
                   {QStringLiteral("slot_df"), SqlText::number(data.slotDf)},
                   {QStringLiteral("bitposition"), SqlText::number(data.bitPosition)}},
                  keys, Q_FUNC_INFO);
    notify({.kind = SPNAdded, .line = line, .pgn = pgn, .spn = spn, .direction = direction});
    return done;
}

bool ObjectDataBase::pgnExists(quint8 line, quint32 number, quint8 direction)
{
    return d->runner.hasRow(QLatin1String("select number from ") + pgnTable(line) +
                            QLatin1String(" where ") + wherePgn(number, direction));
}

bool ObjectDataBase::getPGN(quint8 line, quint32 number, quint8 direction, PGN &data)
{
    bool found = false;
    d->runner.forEachRow(
        QLatin1String("select number,edp_dp_key,priority,cycletime_ms,inhibittime_ms,mappingcount,"
                      "direction,name,desc,issafe,srvt_ms,FD_TrailerFormat,FD_AssuranceType,"
                      "FD_AssuranceDataSize,multisourceaddress,safetytype,FD_DataId from ") +
            pgnTable(line) + QLatin1String(" where ") + wherePgn(number, direction),
        [&](const ResultRow &row) {
            const auto number8 = [&](int column) { return quint8(row.value(column).toUInt()); };
            const auto number16 = [&](int column) { return quint16(row.value(column).toUInt()); };
            data.number = row.value(0).toUInt();
            data.edpDpKey = number8(1);
            data.priority = number8(2);
            data.cycleTime = number16(3);
            data.inhibitTime = number16(4);
            data.mappingCount = number16(5);
            data.direction = number8(6);
            data.name = d->text(row.value(7));
            data.desc = d->text(row.value(8));
            data.isSafe = number8(9);
            data.srvt = number16(10);
            data.fdTrailerFormat = number8(11);
            data.fdAssuranceType = number8(12);
            data.fdAssuranceDataSize = number8(13);
            data.multiSourceAddress = number8(14);
            data.safetyType = number8(15);
            data.fdDataId = row.value(16).toUInt();
            found = true;
        },
        Q_FUNC_INFO);
    return found;
}

QString ObjectDataBase::getPGNName(quint8 line, quint32 number, quint8 direction)
{
    return d->text(d->runner.value(QLatin1String("select name from ") + pgnTable(line) +
                                   QLatin1String(" where ") + wherePgn(number, direction)));
}

quint16 ObjectDataBase::getMappingCount(quint8 line, quint32 number, quint8 direction)
{
    return quint16(d->runner
                       .value(QLatin1String("select mappingcount from ") + pgnTable(line) +
                              QLatin1String(" where ") + wherePgn(number, direction))
                       .toUInt());
}

QList<quint32> ObjectDataBase::selectNumbers(const QString &statement)
{
    QList<quint32> numbers;
    d->runner.forEachRow(statement,
                         [&](const ResultRow &row) { numbers.append(row.value(0).toUInt()); });
    return numbers;
}

QList<quint32> ObjectDataBase::getPGNList(quint8 line, quint8 direction, bool withoutSafe)
{
    QStringList conditions;
    if (direction != 0)
        conditions.append(QLatin1String("direction = ") + SqlText::number(direction));
    if (withoutSafe)
        conditions.append(QStringLiteral("(issafe = 0 or issafe is NULL)"));
    QString statement = QLatin1String("select number from ") + pgnTable(line);
    if (!conditions.isEmpty())
        statement += QLatin1String(" where ") + conditions.join(QLatin1String(" AND "));
    return selectNumbers(statement + QLatin1String(" order by number asc"));
}

QList<quint32> ObjectDataBase::getSPNList(quint8 line, quint32 pgn, quint8 direction)
{
    {
        const std::shared_lock lock(d->signalCache.mutex);
        if (d->signalCache.lines.contains(line))
            return d->signalCache.lists.value({line, pgn, direction});
    }
    return selectNumbers(QLatin1String("select spnnumber from ") + spnTable(line) +
                         QLatin1String(" where ") + whereSpnsOf(pgn, direction) +
                         QLatin1String(" order by pos asc"));
}

bool ObjectDataBase::getSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, SPN &data)
{
    {
        const std::shared_lock lock(d->signalCache.mutex);
        const auto found = d->signalCache.spns.constFind({line, pgn, direction, spn});
        if (found != d->signalCache.spns.constEnd()) {
            data = *found;
            return true;
        }
    }
    bool found = false;
    d->runner.forEachRow(
        QLatin1String("select ") + spnColumns + QLatin1String(" from ") + spnTable(line) +
            QLatin1String(" where ") + whereSpn(pgn, direction, spn),
        [&](const ResultRow &row) {
            data = readSpn(d->strings, row);
            found = true;
        },
        Q_FUNC_INFO);
    return found;
}

quint16 ObjectDataBase::getSPNDataType(quint8 line, quint32 pgn, quint32 spn, quint8 direction)
{
    return quint16(d->runner
                       .value(QLatin1String("select datatype from ") + spnTable(line) +
                              QLatin1String(" where ") + whereSpn(pgn, direction, spn))
                       .toUInt());
}

QString ObjectDataBase::getSPNName(quint8 line, quint32 pgn, quint32 spn, quint8 direction)
{
    return d->text(d->runner.value(QLatin1String("select name from ") + spnTable(line) +
                                   QLatin1String(" where ") + whereSpn(pgn, direction, spn)));
}

void ObjectDataBase::deletePGN(quint8 line, quint32 number, quint8 direction)
{
    if (d->refusesWrites())
        return;
    d->signalCache.drop(line);
    d->runner.exec(QLatin1String("delete from ") + spnTable(line) + QLatin1String(" where ") +
                       whereSpnsOf(number, direction),
                   Q_FUNC_INFO);
    d->runner.exec(QLatin1String("delete from ") + pgnTable(line) + QLatin1String(" where ") +
                       wherePgn(number, direction),
                   Q_FUNC_INFO);
    notify({.kind = PGNDeleted, .line = line, .pgn = number, .direction = direction});
}

void ObjectDataBase::deleteSPN(quint8 line, quint32 pgn, quint32 spn, quint8 direction)
{
    if (d->refusesWrites())
        return;
    d->signalCache.drop(line);
    d->runner.exec(QLatin1String("delete from ") + spnTable(line) + QLatin1String(" where ") +
                       whereSpn(pgn, direction, spn),
                   Q_FUNC_INFO);
    notify({.kind = SPNOrDataElementDeleted,
            .line = line,
            .pgn = pgn,
            .spn = spn,
            .direction = direction});
}

QList<ObjectDataBase::SPN> ObjectDataBase::readSPNs(quint8 line, quint32 pgn, quint8 direction)
{
    QList<SPN> list;
    for (const quint32 number : getSPNList(line, pgn, direction)) {
        SPN spn;
        if (getSPN(line, pgn, direction, number, spn))
            list.append(spn);
    }
    return list;
}

void ObjectDataBase::realignSPNs(quint8 line, quint8 direction, quint32 pgn, bool force)
{
    if (d->refusesWrites())
        return;
    d->runner.exclusive([&] {
        QList<SPN> spns = readSPNs(line, pgn, direction);
        if (!SignalLayout::layOut(spns, &SPN::bitPosition, force))
            return;
        for (const SPN &spn : std::as_const(spns)) {
            if (spn.spn != 0)
                addSPN(line, pgn, direction, spn.spn, spn);
        }
    });
}

bool ObjectDataBase::copyPGN(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                             quint8 targetLine, quint32 number, quint8 direction,
                             quint8 targetDirection, int implementation)
{
    PGN pgn;
    if (!source.getPGN(sourceLine, number, direction, pgn))
        return false;
    QList<SPN> spns = source.readSPNs(sourceLine, number, direction);
    if (target.d->refusesWrites())
        return false;
    target.deletePGN(targetLine, number, targetDirection);
    pgn.direction = targetDirection;
    if (!target.addPGN(targetLine, number, pgn)) {
        qDebug() << "adPGN() failed: " << number;
        return false;
    }
    bool copied = true;
    for (SPN &spn : spns) {
        if (implementation == CANopen::ManagedVariable || implementation == CANopen::Variable)
            spn.implementation = quint8(implementation);
        spn.direction = targetDirection;
        copied &= target.addSPN(targetLine, number, targetDirection, spn.spn, spn);
    }
    return copied;
}

void ObjectDataBase::copyPGNs(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                              quint8 targetLine, quint32 highest)
{
    for (const quint8 direction : directions) {
        for (const quint32 number : source.getPGNList(sourceLine, direction)) {
            if (number <= highest)
                copyPGN(target, source, sourceLine, targetLine, number, direction, direction);
        }
    }
}

bool ObjectDataBase::loadSPNCache(quint8 line)
{
    QMap<SignalCache::SpnKey, SPN> spns;
    QMap<SignalCache::PgnKey, QList<quint32>> lists;
    const bool done = d->runner.forEachRow(
        QLatin1String("SELECT ") + spnColumns + QLatin1String(" from ") + spnTable(line) +
            QLatin1String(" order by pgnnumber asc, pos asc"),
        [&](const ResultRow &row) {
            const SPN spn = readSpn(d->strings, row);
            spns.insert({line, spn.pgn, spn.direction, spn.spn}, spn);
            lists[{line, spn.pgn, spn.direction}].append(spn.spn);
        },
        Q_FUNC_INFO);
    d->signalCache.drop(line);
    const std::unique_lock lock(d->signalCache.mutex);
    d->signalCache.spns.insert(spns);
    d->signalCache.lists.insert(lists);
    if (done)
        d->signalCache.lines.insert(line);
    return done;
}

void ObjectDataBase::clearSPNCache()
{
    d->signalCache.clear();
}

void SignalCache::clear()
{
    const std::unique_lock lock(mutex);
    spns.clear();
    lists.clear();
    lines.clear();
}

void SignalCache::drop(quint8 line)
{
    const std::unique_lock lock(mutex);
    if (!lines.remove(line))
        return;
    const auto isOfLine = [line](const auto &entry) { return std::get<0>(entry.key()) == line; };
    spns.removeIf(isOfLine);
    lists.removeIf(isOfLine);
}

void ObjectDataBase::repairMappingCounts(quint8 line)
{
    if (d->refusesWrites())
        return;
    QStringList statements;
    d->runner.forEachRow(
        QLatin1String("select p.rowid, count(s.spnnumber) from ") + pgnTable(line) +
            QLatin1String(" p left join ") + spnTable(line) +
            QLatin1String(" s on s.pgnnumber = p.number and s.direction = p.direction "
                          "group by p.rowid having ifnull(p.mappingcount,-1) != "
                          "count(s.spnnumber)"),
        [&](const ResultRow &row) {
            // By the row, as foreign rows may have no direction.
            statements.append(QStringLiteral("update PGNs%1 SET mappingcount = %2 where rowid = %3")
                                  .arg(line)
                                  .arg(row.integer(1))
                                  .arg(row.integer(0)));
        },
        Q_FUNC_INFO);
    for (const QString &statement : std::as_const(statements))
        d->runner.exec(statement, Q_FUNC_INFO);
}

void ObjectDataBase::foldPageKeys(quint8 line)
{
    if (d->refusesWrites())
        return;
    constexpr int pageShift = 16;
    for (const quint8 direction : directions) {
        const QList<quint32> numbers =
            selectNumbers(QLatin1String("select number from ") + pgnTable(line) +
                          QLatin1String(" where ifnull(edp_dp_key,0) != 0 and direction = ") +
                          SqlText::number(direction) + QLatin1String(" order by number asc"));
        for (const quint32 number : numbers) {
            PGN pgn;
            getPGN(line, number, direction, pgn);
            const QList<SPN> spns = readSPNs(line, number, direction);
            const quint32 folded = (quint32(pgn.edpDpKey) << pageShift) + number;
            if (pgnExists(line, folded, direction)) {
                qDebug() << "line" << line << "has PGN" << folded << "already, so" << number
                         << "keeps its page bits" << pgn.edpDpKey;
                continue;
            }
            pgn.edpDpKey = 0;
            pgn.number = folded;
            addPGN(line, folded, pgn);
            for (const SPN &spn : spns)
                addSPN(line, folded, direction, spn.spn, spn);
            deletePGN(line, number, direction);
        }
    }
}
