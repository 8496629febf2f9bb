#include "benchmarks/benchmarksupport.h"

#include "benchmarks/syntheticproject.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QTemporaryDir>

namespace BenchmarkSupport {

namespace {

/// A benchmark on a file that is not there would measure nothing and look fast.
void require(bool done, const QString &what)
{
    if (!done)
        qFatal("benchmarks: %s", qUtf8Printable(what));
}

void rollBackSchema(const QString &path)
{
    const QString connection = QStringLiteral("rollback");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        database.setDatabaseName(path);
        require(database.open(), path);
        static const QStringList statements = {
            QStringLiteral("create table Former as select objectindex, subindex, name, datatype, "
                           "accesstype, defaultvalue, currentvalue, pdomapping, lowlimit, "
                           "uplimit, size, defaultineds, limitineds, refuseread, refusewrite, "
                           "allowedaccesstypes, implementation, varname, description, category "
                           "from SubObjects0"),
            QStringLiteral("drop table SubObjects0"),
            QStringLiteral("alter table Former rename to SubObjects0"),
            QStringLiteral("drop table if exists PGNs0"),
            QStringLiteral("drop table if exists SPNs0"),
            QStringLiteral("drop table if exists CANIDs0"),
            QStringLiteral("drop table if exists DataElements0"),
            QStringLiteral("drop table if exists UDSSettings0"),
            QStringLiteral("delete from MiscSettings where item = 'FileHash'"),
            QStringLiteral("update MiscSettings set value = '100' where item = 'DatabaseVersion'")};
        QSqlQuery query(database);
        for (const QString &statement : statements)
            require(query.exec(statement), statement + u' ' + query.lastError().text());
    }
    QSqlDatabase::removeDatabase(connection);
}

} // namespace

QString folder()
{
    static const QTemporaryDir folder;
    return folder.path();
}

QString projectFile(int count, const char *suffix)
{
    const QString path =
        QStringLiteral("%1/project%2.%3").arg(folder()).arg(count).arg(QLatin1String(suffix));
    if (!QFile::exists(path))
        require(SyntheticProject::write(path, count), path);
    return path;
}

QString oldSchemaFile(int count)
{
    const QString path = QStringLiteral("%1/old%2.vxmp").arg(folder()).arg(count);
    if (!QFile::exists(path)) {
        require(QFile::copy(projectFile(count, "vxmp"), path), path);
        rollBackSchema(path);
    }
    return path;
}

QString scratchFile(const char *suffix)
{
    static int number = 0;
    return QStringLiteral("%1/scratch%2.%3").arg(folder()).arg(++number).arg(QLatin1String(suffix));
}

} // namespace BenchmarkSupport
