#include "tests/support/projectfixture.h"

#include <QSqlDatabase>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

namespace {

void addPgn(ObjectDataBase &store)
{
    constexpr quint32 pgn = 65262;
    store.addPGN(
        0, pgn,
        {.name = u"Engine Temperature 1"_s, .number = pgn, .cycleTime = 1000, .direction = 85});
    store.addSPN(0, pgn, 85, 110,
                 {.name = u"Engine Coolant Temperature"_s,
                  .dataType = CAN::UNSIGNED8,
                  .pgn = pgn,
                  .direction = 85,
                  .spn = 110,
                  .varName = u"coolantTemperature"_s});
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
    store.setGeneralSetting(u"line0type"_s, QString::number(options.lineType));
    store.setGeneralSetting(u"co_node_id"_s, u"32"_s);
    store.setGeneralSetting(u"co_timer_interval"_s, u"10000"_s);
    store.addIndex(
        0, 0x2000,
        {.name = u"Speed"_s, .datatype = CAN::UNSIGNED16, .category = CANopen::Optional});
    store.addSubIndex(0, 0x2000, 0,
                      {.name = u"Speed"_s,
                       .datatype = CAN::UNSIGNED16,
                       .accesstype = u"rw"_s,
                       .defaultvalue = u"100"_s,
                       .defaultineds = true,
                       .category = CANopen::Optional});
    if (options.withPgn)
        addPgn(store);
    const bool saved = store.saveDatabase(path);
    QCoreApplication::setApplicationVersion(version);
    return saved;
}

QString generalSetting(const QString &path, const QString &key)
{
    return runOn(path, u"select value from GeneralSettings where item = '%1'"_s.arg(key));
}

QString runOn(const QString &path, const QString &statement)
{
    const QString name = u"fixture"_s;
    QString value;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        database.setDatabaseName(path);
        if (database.open()) {
            QSqlQuery query(statement, database);
            value = query.next() ? query.value(0).toString() : QString();
        }
    }
    QSqlDatabase::removeDatabase(name);
    return value;
}

} // namespace ProjectFixture
