#include "store/objectdatabase_p.h"

#include "store/metadatablob.h"
#include "store/schema.h"

#include <QDebug>

#include <algorithm>

namespace {

QString subTable(quint8 line)
{
    return SqlText::lineTable("SubObjects", line);
}

QString whereKey(quint16 index, quint8 subindex)
{
    return QLatin1String(" where objectindex = ") + SqlText::number(index) +
           QLatin1String(" and subindex = ") + SqlText::number(subindex);
}

/// A byte order mark at the front is a character of the text here, and no mark.
QString textOfBytes(const QByteArray &bytes)
{
    constexpr QByteArrayView mark("\xEF\xBB\xBF");
    if (!bytes.startsWith(mark))
        return QString::fromUtf8(bytes);
    return QChar(QChar::ByteOrderMark) + QString::fromUtf8(bytes.sliced(mark.size()));
}

/// Texts that stand in nearly every row come as small numbers instead.
const QStringList &commonAccessTypes()
{
    static const QStringList texts = {QStringLiteral("const"),
                                      QStringLiteral("ro"),
                                      QStringLiteral("wo"),
                                      QStringLiteral("rw"),
                                      QStringLiteral("rwr"),
                                      QStringLiteral("rww"),
                                      QStringLiteral("const,ro,rw,wo,rww,rwr")};
    return texts;
}

QString codedColumn(const char *column, qsizetype first, qsizetype last)
{
    QString term = QLatin1String("case ") + QLatin1String(column);
    for (qsizetype i = first; i <= last; ++i)
        term += QStringLiteral(" when '%1' then %2").arg(commonAccessTypes().at(i)).arg(i);
    return term + QLatin1String(" else ") + QLatin1String(column) + QLatin1String(" end");
}

QString decoded(const QVariant &value)
{
    return value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Int
               ? commonAccessTypes().value(value.toInt())
               : value.toString();
}

/// In the order of their bits.
constexpr const char *flagColumns[] = {"defaultineds", "limitineds", "refuseread",    "refusewrite",
                                       "dcfcomponent", "cyclicread", "changedbyuser", "sharedlines",
                                       "managedbytsk", "nvstorage"};
/// Bytes behind the flags, in the order of their places.
constexpr const char *byteColumns[] = {"pdomapping", "implementation", "category",
                                       "writedefaulttoeds"};
constexpr int flagBits = 16;

/// Two numbers of 32 bits in one; the first stands in the upper half.
QString pair(const char *upper, const char *lower)
{
    return QStringLiteral("(ifnull(%1,0)<<32)|(ifnull(%2,0)&0xFFFFFFFF)")
        .arg(QLatin1String(upper), QLatin1String(lower));
}

enum Column {
    ColKey,
    ColPacked,
    ColSizeAndType,
    ColWizardAndSignal,
    ColTextIds, ///< description and denotation
    ColName,
    ColAccess,
    ColAllowed,
    ColDefault,
    ColCurrent,
    ColLow,
    ColUp,
    ColVarName,
    ColMetadata
};

/// Reads rows for `readSubIndexRow`. Each value that leaves the database costs, and there are
/// fifty thousand rows: flags and small numbers come packed into one, empty texts as nothing, and
/// others as their bytes, which are converted faster here.
QString selectSubIndices(quint8 line)
{
    static const QString columns = [] {
        QStringList packed;
        for (int i = 0; i < int(std::size(flagColumns)); ++i)
            packed.append(
                QStringLiteral("((%1 is true)<<%2)").arg(QLatin1String(flagColumns[i])).arg(i));
        for (int i = 0; i < int(std::size(byteColumns)); ++i)
            packed.append(QStringLiteral("((ifnull(%1,0)&255)<<%2)")
                              .arg(QLatin1String(byteColumns[i]))
                              .arg(flagBits + 8 * i));
        QStringList list = {QStringLiteral("(objectindex<<8)|subindex"),
                            packed.join(u'|'),
                            pair("size", "datatype"),
                            pair("wizardsource", "signalid"),
                            pair("description", "denotation"),
                            QStringLiteral("name"),
                            codedColumn("accesstype", 1, 6),
                            codedColumn("allowedaccesstypes", 0, 0)};
        for (const char *text : {"defaultvalue", "currentvalue", "lowlimit", "uplimit", "varname"})
            list.append(QStringLiteral("case when %1<>'' then cast(%1 as blob) end")
                            .arg(QLatin1String(text)));
        return list.join(u',') + QLatin1String(",metadata from ");
    }();
    return QLatin1String("select ") + columns + subTable(line);
}

} // namespace

ObjectDataBase::SUBINDEX_DATA_T ObjectDataBase::readSubIndexRow(const QSqlQuery &row)
{
    const auto text = [&](int column) { return textOfBytes(row.value(column).toByteArray()); };
    const auto packedNumber = [&](int column) { return quint64(row.value(column).toLongLong()); };
    const auto upper = [](quint64 pair) { return quint32(pair >> 32); };
    const quint64 packed = packedNumber(ColPacked);
    const quint64 sizeAndType = packedNumber(ColSizeAndType);
    const quint64 wizardAndSignal = packedNumber(ColWizardAndSignal);
    const quint64 textIds = packedNumber(ColTextIds);
    const auto flag = [&](int bit) { return (packed >> bit & 1) != 0; };
    const auto byte = [&](int place) { return quint8(packed >> (flagBits + 8 * place)); };
    SUBINDEX_DATA_T data;
    data.name = d->text(row.value(ColName));
    data.datatype = quint16(sizeAndType);
    data.accesstype = decoded(row.value(ColAccess));
    data.defaultvalue = text(ColDefault);
    data.currentvalue = text(ColCurrent);
    data.pdomapping = PDOMapping::fromUInt(byte(0));
    data.lowlimit = text(ColLow);
    data.uplimit = text(ColUp);
    data.size = upper(sizeAndType);
    data.defaultineds = flag(0);
    data.limitineds = flag(1);
    data.refuseread = flag(2);
    data.refusewrite = flag(3);
    data.dcfcomponent = flag(4);
    data.cyclicread = flag(5);
    data.changedbyuser = flag(6);
    data.sharedlines = flag(7);
    data.managedbytsk = flag(8);
    data.nvstorage = flag(9);
    data.allowedaccesstypes = decoded(row.value(ColAllowed));
    data.implementation = byte(1);
    data.category = byte(2);
    data.writedefaulttoeds = byte(3);
    data.description = d->strings.lookup(upper(textIds));
    data.varname = text(ColVarName);
    data.wizardsource = quint16(upper(wizardAndSignal));
    data.denotation = d->strings.lookup(quint32(textIds));
    data.signalid = quint32(wizardAndSignal);
    data.metadata = MetaDataBlob::fromValue(row.value(ColMetadata));
    return data;
}

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
                         [&](const QSqlQuery &row) {
                             data = readSubIndexRow(row);
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
        [&](const QSqlQuery &row) { subindices.append(quint8(row.value(0).toUInt())); });
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

QVariant ObjectDataBase::subIndexColumn(quint8 line, quint16 index, quint8 subindex,
                                        const char *column)
{
    return d->runner.value(QLatin1String("select ") + QLatin1String(column) +
                           QLatin1String(" from ") + subTable(line) + whereKey(index, subindex));
}

QString ObjectDataBase::getSubIndexName(quint8 line, quint16 index, quint8 subindex)
{
    if (const auto cached = d->objects.sub(line, index, subindex))
        return cached->name;
    return d->text(subIndexColumn(line, index, subindex, "name"));
}

QString ObjectDataBase::getSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex)
{
    if (const auto cached = d->objects.sub(line, index, subindex))
        return cached->defaultvalue;
    return subIndexColumn(line, index, subindex, "defaultvalue").toString();
}

quint16 ObjectDataBase::getSubIndexDataType(quint8 line, quint16 index, quint8 subindex)
{
    if (const auto cached = d->objects.sub(line, index, subindex))
        return cached->datatype;
    return quint16(subIndexColumn(line, index, subindex, "datatype").toUInt());
}

QList<ObjectDataBase::SubIndexKey> ObjectDataBase::selectKeys(const QString &statement)
{
    QList<SubIndexKey> keys;
    d->runner.forEachRow(statement, [&](const QSqlQuery &row) {
        keys.append({quint16(row.value(0).toUInt()), quint8(row.value(1).toUInt())});
    });
    return keys;
}

QList<ObjectDataBase::SubIndexKey>
ObjectDataBase::findSubIndices(quint8 line, const QString &column, const QVariant &value)
{
    return selectKeys(QLatin1String("select objectindex,subindex from ") + subTable(line) +
                      QLatin1String(" where ") + column +
                      columnLiteral("name,description,denotation", column, value) +
                      QLatin1String(" order by objectindex,subindex ASC"));
}

QList<ObjectDataBase::SubIndexKey> ObjectDataBase::getMappableSubIndices(quint8 line)
{
    return selectKeys(QLatin1String("select objectindex,subindex from ") + subTable(line) +
                      QLatin1String(" where pdomapping != 0 order by objectindex, subindex"));
}

QString ObjectDataBase::insertSubIndexHead(quint8 line)
{
    // Older files hold the columns in another order; only there they have to be named.
    const Schema::Table &table = Schema::table(QStringLiteral("SubObjects"));
    QString head = QLatin1String("insert or replace into ") + subTable(line);
    if (!d->hasOrderOfSchema(table, line))
        head += QLatin1String(" (") + Schema::columnList(table) + u')';
    return head + QLatin1String(" values");
}

void ObjectDataBase::appendSubIndexValues(QString &statement, quint16 index, quint8 subindex,
                                          const SUBINDEX_DATA_T &data)
{
    const qint64 description = d->strings.intern(data.description);
    const qint64 name = d->strings.intern(data.name);
    const qint64 denotation = d->strings.intern(data.denotation);
    statement += u'(';
    SqlText::ValueList values(statement);
    values.number(index);
    values.number(subindex);
    values.id(name);
    values.number(data.datatype);
    values.text(data.accesstype);
    values.text(data.defaultvalue);
    values.text(data.currentvalue);
    values.number(data.pdomapping.toUInt());
    values.text(data.lowlimit);
    values.text(data.uplimit);
    values.number(data.size);
    values.number(data.defaultineds);
    values.number(data.limitineds);
    values.number(data.refuseread);
    values.number(data.refusewrite);
    values.text(data.allowedaccesstypes);
    values.number(data.implementation);
    values.text(data.varname);
    values.id(description);
    values.number(data.category);
    values.number(data.writedefaulttoeds);
    values.number(data.cyclicread);
    values.number(data.dcfcomponent);
    values.number(data.changedbyuser);
    values.number(data.wizardsource);
    values.id(denotation);
    values.number(data.sharedlines);
    values.number(data.managedbytsk);
    values.number(data.signalid);
    values.number(data.nvstorage);
    values.number(0);
    statement += u')';
}

void ObjectDataBase::traceDeviceType(quint16 index, quint8 subindex, const SUBINDEX_DATA_T &data)
{
    if (index == 0x1000 && subindex == 1)
        qDebug() << "ODB:aSI 0x1000:1 = " << data.defaultvalue;
}

bool ObjectDataBase::writeSubMetaData(quint8 line, quint16 index, quint8 subindex,
                                      const MetaData &metadata)
{
    return d->runner.execBound(
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
    QString statement = insertSubIndexHead(line);
    appendSubIndexValues(statement, index, subindex, data);
    bool done = d->runner.exec(statement, Q_FUNC_INFO);
    if (!data.metadata.isEmpty())
        done &= writeSubMetaData(line, index, subindex, data.metadata);
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
            const qsizetype behind = writeBatch(entries, from, done);
            for (; from < behind; ++from) {
                const SubEntry &entry = entries.at(from);
                if (!entry.data.metadata.isEmpty())
                    done &= writeSubMetaData(entry.line, entry.index, entry.subindex,
                                             entry.data.metadata);
            }
        }
    });
    for (const quint8 line : std::as_const(lines))
        d->objects.dropWalk(line);
    return done && committed;
}

/// Writes neighbouring rows of one line with one statement; gives the place behind the last.
qsizetype ObjectDataBase::writeBatch(const QList<SubEntry> &entries, qsizetype from, bool &done)
{
    constexpr qsizetype mostRows = 100;
    constexpr qsizetype mostText = 200000;
    const quint8 line = entries.at(from).line;
    QString statement = insertSubIndexHead(line);
    qsizetype next = from;
    for (; next < entries.size() && entries.at(next).line == line && next - from < mostRows &&
           statement.size() < mostText;
         ++next) {
        const SubEntry &entry = entries.at(next);
        traceDeviceType(entry.index, entry.subindex, entry.data);
        if (next != from)
            statement += u',';
        appendSubIndexValues(statement, entry.index, entry.subindex, entry.data);
    }
    done &= d->runner.exec(statement, Q_FUNC_INFO);
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
    d->runner.exec(QLatin1String("update ") + subTable(line) + QLatin1String(" set name=") +
                       d->internedId(name) + QLatin1String(" where ((objectindex = ") +
                       SqlText::number(index) + QLatin1String(") and (subindex = ") +
                       SqlText::number(subindex) + QLatin1String("))"),
                   Q_FUNC_INFO);
    if (auto cached = d->objects.sub(line, index, subindex)) {
        cached->name = name;
        d->objects.replaceSub(line, index, subindex, *cached);
    }
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
    if (auto cached = d->objects.sub(line, index, subindex); done && cached) {
        cached->defaultvalue = value;
        d->objects.replaceSub(line, index, subindex, *cached);
    }
    return done;
}

bool ObjectDataBase::cacheAllSubs(quint8 line, quint16 index)
{
    // Nothing can have changed while a generator runs.
    if (d->generating && d->objects.hasWalk(line))
        return true;
    ObjectCache::Subs subs;
    ObjectCache::Walk walk;
    QString statement = selectSubIndices(line);
    if (index != 0)
        statement += QLatin1String(" where objectindex = ") + SqlText::number(index);
    bool done = false;
    d->runner.exclusive([&] {
        const QVariant count =
            index == 0 ? d->runner.value(QLatin1String("select count(*) from ") + subTable(line))
                       : QVariant();
        subs.reserve(count.toInt());
        done = d->runner.forEachRow(
            statement,
            [&](const QSqlQuery &row) {
                subs.insert(row.value(ColKey).toUInt(), readSubIndexRow(row));
            },
            Q_FUNC_INFO);
        if (index != 0)
            return;
        const QMap<quint16, INDEX_DATA_T> objects = readObjects(line);
        for (auto it = objects.cbegin(); it != objects.cend(); ++it)
            walk.insert(it.key(), {true, it.value(), {}});
    });
    if (!done) {
        d->objects.clear(line);
        return false;
    }
    if (index != 0) {
        d->objects.setIndex(line, index, subs);
        return true;
    }
    ObjectCache::WalkEntry *entry = nullptr;
    int current = -1;
    for (const quint32 key : subs.sortedKeys()) {
        if (current != int(key >> 8)) {
            current = int(key >> 8);
            entry = &walk[quint16(current)];
        }
        entry->subindices.append(quint8(key));
    }
    d->objects.setLine(line, std::move(subs), std::move(walk));
    return true;
}

bool ObjectDataBase::cacheSubIndexNames(quint8 line)
{
    return d->runner.forEachRow(
        QLatin1String("select denotation, name, objectindex, subindex from ") + subTable(line),
        [&](const QSqlQuery &row) {
            (void)d->text(row.value(0));
            (void)d->text(row.value(1));
        });
}
