#include "projectfixture.h"

#include <QSqlDatabase>
#include <QSqlQuery>

namespace {

void addVariable(ObjectDataBase &store, quint16 index, const QString &name, quint16 type,
                 const QString &access, const QString &value, quint8 category)
{
    ObjectDataBase::INDEX_DATA_T object;
    object.name = name;
    object.datatype = type;
    object.category = category;
    store.addIndex(0, index, object);
    ObjectDataBase::SUBINDEX_DATA_T data;
    data.name = name;
    data.datatype = type;
    data.accesstype = access;
    data.defaultvalue = value;
    data.defaultineds = true;
    data.category = category;
    store.addSubIndex(0, index, 0, data);
}

void addPgn(ObjectDataBase &store)
{
    ObjectDataBase::PGN pgn;
    pgn.name = QStringLiteral("Engine Temperature 1");
    pgn.number = 65262;
    pgn.direction = ObjectDataBase::transmit;
    pgn.cycleTime = 1000;
    store.addPGN(0, pgn.number, pgn);
    ObjectDataBase::SPN spn;
    spn.name = QStringLiteral("Engine Coolant Temperature");
    spn.dataType = CAN::UNSIGNED8;
    spn.pgn = pgn.number;
    spn.direction = pgn.direction;
    spn.spn = 110;
    spn.varName = QStringLiteral("coolantTemperature");
    store.addSPN(0, pgn.number, pgn.direction, spn.spn, spn);
}

/// Runs one statement on a database file; the first value of its first row.
QString runOn(const QString &path, const QString &statement, bool *done = nullptr)
{
    const QString name = QStringLiteral("fixture");
    QString value;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(path);
        const bool opened = database.open();
        QSqlQuery query(database);
        const bool run = opened && query.exec(statement);
        if (done != nullptr)
            *done = run;
        if (run && query.next())
            value = query.value(0).toString();
    }
    QSqlDatabase::removeDatabase(name);
    return value;
}

} // namespace

namespace ProjectFixture {

bool save(const QString &path, const Options &options)
{
    const QString version = QCoreApplication::applicationVersion();
    if (!options.savedByVersion.isEmpty())
        QCoreApplication::setApplicationVersion(options.savedByVersion);
    ObjectDataBase store;
    if (!store.openDataBase(QStringLiteral(QUILLFORGE_BINARY_DIR "/bin/data/mt.data")))
        return false;
    store.setGeneralSetting(QStringLiteral("line0type"), QString::number(options.lineType));
    store.setGeneralSetting(QStringLiteral("co_node_id"), QStringLiteral("32"));
    store.setGeneralSetting(QStringLiteral("co_timer_interval"), QStringLiteral("10000"));
    addVariable(store, 0x2000, QStringLiteral("Speed"), CAN::UNSIGNED16, QStringLiteral("rw"),
                QStringLiteral("100"), CANopen::Optional);
    if (options.withPgn)
        addPgn(store);
    const bool saved = store.saveDatabase(path);
    QCoreApplication::setApplicationVersion(version);
    return saved;
}

QString generalSetting(const QString &path, const QString &key)
{
    return runOn(path,
                 QStringLiteral("select value from GeneralSettings where item = '%1'").arg(key));
}

bool tamper(const QString &path, const QString &key, const QString &value)
{
    bool done = false;
    runOn(
        path,
        QStringLiteral("update GeneralSettings set value = '%2' where item = '%1'").arg(key, value),
        &done);
    return done;
}

} // namespace ProjectFixture
