#include "store/projectguard.h"

#include "store/sqltext.h"
#include "store/statementrunner.h"

#include <QDebug>
#include <QHash>
#include <QSqlDatabase>
#include <QUrl>

#include <atomic>

namespace ProjectGuard {

namespace {

constexpr int mostTables = 4096; ///< indexes included; 256 lines have half of that
constexpr int mostLines = 256;

/// A name from a file that may hold anything.
QString shortened(QString name)
{
    constexpr qsizetype longest = 40;
    return u'"' + name.left(longest).simplified() + u'"';
}

/// The first value of a statement that finds what should not be there; empty if there is none.
/// What can't be read counts as damage.
QString found(StatementRunner &runner, const QString &statement, QString &fault)
{
    QString name;
    const bool done = runner.forEachRow(
        statement, [&](const ResultRow &row) { name = row.value(0).toString(); }, Q_FUNC_INFO);
    if (!done && fault.isEmpty())
        fault = runner.lastReason();
    return name;
}

QString longTextFault(StatementRunner &runner)
{
    const qint64 size = runner.value(QStringLiteral("PRAGMA page_count")).toLongLong() *
                        runner.value(QStringLiteral("PRAGMA page_size")).toLongLong();
    if (size <= DirectAccess::mostBytesOfValue)
        return {}; // there is no room for a longer text
    QString fault;
    QHash<QString, QStringList> conditions;
    const bool read = runner.forEachRow(
        QStringLiteral("select m.name, x.name from sqlite_master m, pragma_table_info(m.name) x "
                       "where m.type = 'table'"),
        [&](const ResultRow &row) {
            QString column = row.value(1).toString();
            column.replace(u'"', QLatin1String("\"\""));
            conditions[row.value(0).toString()].append(
                QStringLiteral("length(cast(\"%1\" as blob)) > %2")
                    .arg(column)
                    .arg(DirectAccess::mostBytesOfValue));
        });
    if (!read)
        return runner.lastReason();
    for (auto it = conditions.cbegin(); it != conditions.cend(); ++it) {
        QString table = it.key();
        table.replace(u'"', QLatin1String("\"\""));
        const QString hit =
            found(runner,
                  QLatin1String("select 1 from \"") + table + QLatin1String("\" where ") +
                      it.value().join(QLatin1String(" or ")) + QLatin1String(" limit 1"),
                  fault);
        if (!fault.isEmpty())
            return fault;
        if (!hit.isEmpty())
            return QStringLiteral("the table %1 holds a text of more than %2 MB")
                .arg(shortened(it.key()))
                .arg(DirectAccess::mostBytesOfValue / 1024 / 1024);
    }
    return {};
}

} // namespace

QString damagedText()
{
    return QStringLiteral("the file is damaged and can't be read completely");
}

QString structureFault(StatementRunner &runner)
{
    QString fault;
    const QString tables =
        found(runner, QStringLiteral("select count(*) from sqlite_master"), fault);
    if (tables.toLongLong() > mostTables)
        return QStringLiteral("the file has %1 tables and indexes, and no project has more than %2")
            .arg(tables)
            .arg(mostTables);
    const QString program =
        found(runner,
              QStringLiteral(
                  "select name from sqlite_master where type in ('view', 'trigger') or sql like "
                  "'create virtual%' limit 1"),
              fault);
    if (!program.isEmpty())
        return QStringLiteral("the file holds a view, a trigger or a virtual table (%1), which a "
                              "project never has")
            .arg(shortened(program));
    const QString computed =
        found(runner,
              QStringLiteral("select m.name from sqlite_master m, pragma_table_xinfo(m.name) x "
                             "where m.type = 'table' and x.hidden <> 0 limit 1"),
              fault);
    if (!computed.isEmpty())
        return QStringLiteral("the table %1 has a computed column, which a project never has")
            .arg(shortened(computed));
    return fault;
}

QString contentFault(StatementRunner &runner)
{
    QString fault;
    const QString stray = found(
        runner,
        QStringLiteral("select ifnull(nodeId, 'NULL') from nodes where not ifnull(typeof(nodeId) = "
                       "'integer' and nodeId between 0 and %1, 0) limit 1")
            .arg(mostLines - 1),
        fault);
    if (!stray.isEmpty())
        return QStringLiteral("it has a line %1, and lines are numbered from 0 to %2")
            .arg(shortened(stray))
            .arg(mostLines - 1);
    const QString count = found(runner, QStringLiteral("select count(*) from nodes"), fault);
    if (count.toLongLong() > mostLines)
        return QStringLiteral("it has %1 lines, and no project has more than %2")
            .arg(count)
            .arg(mostLines);
    return fault.isEmpty() ? longTextFault(runner) : fault;
}

QString integrityFault(StatementRunner &runner)
{
    bool intact = false;
    bool first = true;
    const bool done = runner.forEachRow(
        QStringLiteral("PRAGMA integrity_check"),
        [&](const ResultRow &row) {
            const QString line = row.value(0).toString();
            intact = first && line == QLatin1String("ok");
            first = false;
            if (!intact)
                qDebug().noquote() << "integrity_check:" << line;
        },
        Q_FUNC_INFO);
    return done && intact ? QString() : damagedText();
}

QString fileFault(const QString &path, const QString &contentHash)
{
    static std::atomic<int> checks{0};
    StatementRunner runner(QStringLiteral("check%1").arg(++checks));
    // The store's own connection holds the file for itself; this one reads past that.
    runner.database().setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_OPEN_URI"));
    const QString address = QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
    if (!runner.open(address + QLatin1String("?immutable=1")))
        return QStringLiteral("it can't be read");
    if (!integrityFault(runner).isEmpty())
        return QStringLiteral("it is damaged");
    const QVariant hash =
        runner.value(QStringLiteral("select value from MiscSettings where item = 'FileHash'"));
    return hash.toString() == contentHash ? QString()
                                          : QStringLiteral("it does not hold all of the project");
}

} // namespace ProjectGuard
