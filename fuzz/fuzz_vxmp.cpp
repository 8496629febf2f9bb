#include "fuzz/fuzzsupport.h"

#include "store/databasetextconverter.h"

#include <QList>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <algorithm>

/// A database file in the hands of others. The input is a recipe, a step a line, for damage to a
/// project with a bit of everything:
///   cell TABLE COLUMN ROW VALUE   puts a value of any type into a row
///   drop TABLE [COLUMN]           takes a table or a column away
///   copy TABLE                    doubles the rows
///   bytes OFFSET HEX              writes bytes into the file
///   cut SIZE                      shortens the file
namespace {

constexpr qsizetype mostSteps = 50;

QByteArray &original()
{
    static QByteArray bytes;
    return bytes;
}

/// What the text form can tell of a project, and raw CAN beside it.
void fill(ObjectDataBase &store)
{
    (void)store.openDataBase(QStringLiteral(FUZZ_CORPUS "/vxmt/small.vxmt"));
    store.addCANID(1, 0x100, {.name = QStringLiteral("raw"), .direction = store.receive});
    store.addDataElement(1, 0x100, store.receive, 1, {.name = QStringLiteral("bit")});
}

/// Names come from the recipe, so they must be what a statement can take.
bool isName(const QByteArray &text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_';
    });
}

QVariant valueOf(const QByteArray &text)
{
    if (text.isEmpty() || text == "null")
        return {};
    bool isNumber = false;
    if (const qlonglong number = text.toLongLong(&isNumber, 0); isNumber)
        return number;
    if (const double number = text.toDouble(&isNumber); isNumber)
        return number;
    return text.startsWith('x') ? QVariant(QByteArray::fromHex(text.mid(1)))
                                : QVariant(QString::fromUtf8(text));
}

void changeTable(QSqlDatabase &database, const QList<QByteArray> &step)
{
    if (!isName(step.value(1)))
        return;
    const QString table = QString::fromLatin1(step.at(1));
    const QString column = isName(step.value(2)) ? QString::fromLatin1(step.at(2)) : QString();
    QSqlQuery query(database);
    if (step.constFirst() == "cell" && !column.isEmpty()) {
        query.prepare(QStringLiteral("update %1 set %2 = :value where rowid in "
                                     "(select rowid from %1 limit 1 offset %3)")
                          .arg(table, column)
                          .arg(step.value(3).toUShort()));
        query.bindValue(QStringLiteral(":value"), valueOf(step.value(4)));
        query.exec();
    } else if (step.constFirst() == "drop") {
        query.exec(column.isEmpty()
                       ? QStringLiteral("drop table %1").arg(table)
                       : QStringLiteral("alter table %1 drop column %2").arg(table, column));
    } else if (step.constFirst() == "copy") {
        query.exec(QStringLiteral("insert into %1 select * from %1 limit 100").arg(table));
    }
}

void changeBytes(QFile &file, const QList<QByteArray> &step)
{
    const qint64 place = step.value(1).toUInt(nullptr, 0) % (original().size() + 1);
    if (step.constFirst() == "cut")
        file.resize(place);
    else if (step.constFirst() == "bytes" && file.seek(place))
        file.write(QByteArray::fromHex(step.value(2)));
}

bool isChangeOfBytes(const QList<QByteArray> &step)
{
    return step.constFirst() == "cut" || step.constFirst() == "bytes";
}

void applySteps(const QString &path, const QList<QList<QByteArray>> &steps)
{
    {
        QSqlDatabase database =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("recipe"));
        database.setDatabaseName(path);
        database.open();
        QSqlQuery(database).exec(QStringLiteral("PRAGMA journal_mode = OFF"));
        for (const QList<QByteArray> &step : steps) {
            if (!isChangeOfBytes(step))
                changeTable(database, step);
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("recipe"));
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite))
        return;
    for (const QList<QByteArray> &step : steps) {
        if (isChangeOfBytes(step))
            changeBytes(file, step);
    }
}

void walkMessages(ObjectDataBase &store, quint8 line)
{
    for (const quint8 direction : {ObjectDataBase::transmit, ObjectDataBase::receive}) {
        const QList<quint32> groups = store.getPGNList(line, direction);
        for (const quint32 group : groups) {
            ObjectDataBase::PGN data;
            (void)store.getPGN(line, group, direction, data);
            (void)store.getSPNList(line, group, direction);
        }
        const QList<quint32> ids = store.getCANIDList(line, direction);
        for (const quint32 id : ids) {
            ObjectDataBase::CANID data;
            (void)store.getCANID(line, id, direction, data);
            (void)store.getDataElementList(line, id, direction);
        }
    }
}

/// What forms and generators read.
void walk(ObjectDataBase &store)
{
    const QList<quint8> lines = store.getLines();
    for (const quint8 line : lines) {
        const QList<quint16> indices = store.getIndices(line);
        for (const quint16 index : indices) {
            ObjectDataBase::INDEX_DATA_T object;
            (void)store.getIndexData(line, index, object);
            const QList<quint8> subindices = store.getSubIndices(line, index);
            for (const quint8 subindex : subindices) {
                ObjectDataBase::SUBINDEX_DATA_T entry;
                (void)store.getSubIndexData(line, index, subindex, entry);
            }
        }
        (void)store.getUDSServices(line);
        (void)store.getAllMetaData(line);
        walkMessages(store, line);
    }
    (void)store.getGeneralSettingKeys();
    (void)store.contentHash();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    FuzzSupport::prepare();
    ObjectDataBase store;
    fill(store);
    const QString path = FuzzSupport::file(nullptr, 0, "vxmp");
    store.saveDatabaseAsSql(path);
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        original() = file.readAll();
    if (original().isEmpty())
        __builtin_trap();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const QByteArray recipe(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QList<QByteArray> lines = recipe.split('\n').mid(0, mostSteps);
    QList<QList<QByteArray>> steps;
    for (const QByteArray &line : lines)
        steps.append(line.split(' '));

    const QString path =
        FuzzSupport::file(reinterpret_cast<const uint8_t *>(original().constData()),
                          static_cast<std::size_t>(original().size()), "vxmp");
    applySteps(path, steps);
    ObjectDataBase store;
    if (store.openDataBase(path)) {
        walk(store);
        DatabaseTextConverter(store, path + QStringLiteral(".vxmt")).convertSqlToText();
    }
    return 0;
}
