#include "store/objectdatabase_p.h"

#include "store/databasetextconverter.h"
#include "store/schema.h"
#include "store/workingcopy.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace {

const QString fileHashKey = QStringLiteral("FileHash");
const QString tamperLogKey = QStringLiteral("TamperLog");

QString identifier(QString name)
{
    return u'"' + name.replace(u'"', QLatin1String("\"\"")) + u'"';
}

/// The select list that gives a row's values, and how each of its fields enters the hash.
struct HashFields
{
    enum Form {
        Value,   ///< as its text form
        Joined,  ///< the text form of several values, with the "|" behind each
        MetaData ///< a blob, whose text form is not the database's
    };
    QStringList fields;
    QList<Form> forms;

    void append(const QString &field, Form form)
    {
        fields.append(field);
        forms.append(form);
    }
};

HashFields hashFields(const QStringList &columns, bool direct)
{
    constexpr int mostArguments = 100; // the database's limit is a little higher
    HashFields result;
    QStringList run;
    const auto closeRun = [&] {
        if (run.isEmpty())
            return;
        result.append(QStringLiteral("cast(printf('%1',%2) as blob)")
                          .arg(QStringLiteral("%s|").repeated(run.size()), run.join(u',')),
                      HashFields::Joined);
        run.clear();
    };
    for (const QString &column : columns) {
        if (column == QLatin1String("metadata")) {
            closeRun();
            result.append(column, HashFields::MetaData);
        } else if (direct) {
            result.append(identifier(column), HashFields::Value);
        } else {
            // Fetching each value by itself would take most of the time of an open.
            run.append(identifier(column));
            if (run.size() == mostArguments)
                closeRun();
        }
    }
    closeRun();
    return result;
}

void appendField(std::string &text, const ResultRow &row, int field, HashFields::Form form)
{
    switch (form) {
    case HashFields::Value:
        row.appendText(text, field);
        break;
    case HashFields::Joined:
        text += row.bytes(field).toByteArray().toStdString();
        return;
    case HashFields::MetaData:
        text += row.value(field).toString().toStdString();
        break;
    }
    text += '|';
}

bool addTableToHash(StatementRunner &runner, const QString &table, QCryptographicHash &hash)
{
    constexpr size_t portion = 1 << 14;
    QStringList columns;
    runner.forEachRow(QStringLiteral("SELECT name FROM pragma_table_info(%1) ORDER BY cid")
                          .arg(SqlText::quoted(table)),
                      [&](const ResultRow &row) { columns.append(row.value(0).toString()); });
    const HashFields select = hashFields(columns, runner.isDirect());
    const QString where = table == QLatin1String("MiscSettings")
                              ? QStringLiteral(" WHERE item NOT IN ('FileHash','TamperLog')")
                              : QString();
    const QString statement = QLatin1String("SELECT ") + select.fields.join(u',') +
                              QLatin1String(" FROM ") + identifier(table) + where +
                              QLatin1String(" ORDER BY rowid");
    std::string text;
    text.reserve(2 * portion);
    const bool done = runner.forEachRow(statement, [&](const ResultRow &row) {
        for (qsizetype i = 0; i < select.forms.size(); ++i)
            appendField(text, row, int(i), select.forms.at(i));
        text += '\n';
        if (text.size() < portion)
            return;
        hash.addData(text);
        text.clear();
    });
    hash.addData(text);
    return done;
}

/// Why a file can't be saved to; empty if it can. The permission bits count as well, since for
/// a privileged user every file looks writable.
QString targetFault(const QString &target)
{
    if (target.isEmpty())
        return QStringLiteral("no file name to save to");
    const QFileInfo info(target);
    if (info.isDir())
        return target + QLatin1String(": is a folder");
    // A device or a pipe would be replaced by the file.
    if (info.exists() && !info.isFile())
        return target + QLatin1String(": is no ordinary file");
    constexpr auto writeBits = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    if (info.exists() && (!info.isWritable() || !(info.permissions() & writeBits)))
        return target + QLatin1String(": the file is read-only");
    if (!QFileInfo(info.absolutePath()).isDir())
        return target + QLatin1String(": the folder does not exist");
    return {};
}

bool isReferenceDatabase(const QString &target)
{
    return QFileInfo(target).completeSuffix().toLower() == QLatin1String("data");
}

} // namespace

QString ObjectDataBase::contentHash()
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    d->runner.exclusive([&] {
        QStringList tables;
        d->runner.forEachRow(
            QStringLiteral("SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"),
            [&](const ResultRow &row) { tables.append(row.value(0).toString()); });
        for (const QString &table : tables) {
            hash.addData(table.toUtf8() + '\n');
            if (!addTableToHash(d->runner, table, hash))
                qDebug() << Q_FUNC_INFO << table << d->runner.lastError();
        }
    });
    return QString::fromLatin1(hash.result().toHex());
}

void ObjectDataBase::checkExternalModification()
{
    d->externallyModified = false;
    const QString stored = getMiscSetting(fileHashKey);
    if (stored.isEmpty() || contentHash() == stored)
        return;
    d->externallyModified = true;
    const QString now = QDateTime::currentDateTime().toString(Qt::ISODate);
    const QString log = getMiscSetting(tamperLogKey);
    setMiscSetting(tamperLogKey, log.isEmpty() ? now : log + u';' + now);
}

void ObjectDataBase::purgeStrings()
{
    QSet<qint64> unused;
    d->runner.forEachRow(QStringLiteral("select id from Strings"),
                         [&](const ResultRow &row) { unused.insert(row.integer(0)); });
    const QList<quint8> lines = getLines();
    const auto keepUsed = [&](const QString &table, const char *columns) {
        for (const QString &column : QString::fromLatin1(columns).split(u','))
            d->runner.forEachRow(QLatin1String("select distinct ") + column +
                                     QLatin1String(" from ") + table,
                                 [&](const ResultRow &row) { unused.remove(row.integer(0)); });
    };
    for (const Schema::Table &table : Schema::tables()) {
        if (*table.stringIds == '\0')
            continue;
        if (table.scope == Schema::Scope::Project) {
            keepUsed(QString::fromLatin1(table.name), table.stringIds);
            continue;
        }
        for (const quint8 line : lines)
            keepUsed(SqlText::lineTable(table.name, line), table.stringIds);
    }
    d->strings.remove(unused);
}

bool ObjectDataBase::saveDatabase(const QString &path)
{
    const QString target = path.isEmpty() ? d->projectPath : path;
    return target.endsWith(QLatin1String("vxmt"), Qt::CaseInsensitive) ? saveDatabaseAsText(target)
                                                                       : saveDatabaseAsSql(target);
}

bool ObjectDataBase::mayBeSaved(const QString &target)
{
    d->lastError = d->refusesWrites() ? target + QLatin1String(": a running job uses the project")
                                      : targetFault(target);
    if (d->lastError.isEmpty())
        return true;
    qDebug() << Q_FUNC_INFO << d->lastError;
    return false;
}

void ObjectDataBase::writeSaveKeys()
{
    setMiscSetting(QStringLiteral("SaveToolType"), QCoreApplication::applicationName());
    setMiscSetting(QStringLiteral("SaveToolVersion"), QCoreApplication::applicationVersion());
    setMiscSetting(QStringLiteral("DatabaseVersion"), QString::number(schemaVersion));
}

bool ObjectDataBase::saveDatabaseAsSql(const QString &path)
{
    const QString target = path.isEmpty() ? d->projectPath : path;
    if (!mayBeSaved(target))
        return false;
    deleteNode(comparisonLine);
    deleteNode(stagingLine);
    purgeStrings();
    if (isReferenceDatabase(target)) {
        d->runner.exec(
            QStringLiteral("update SubObjects0 set changedbyuser=0 where changedbyuser = 1"),
            Q_FUNC_INFO);
        d->runner.exec(
            QStringLiteral("update SubObjects0 set wizardsource=454 where changedbyuser = 0"),
            Q_FUNC_INFO);
        d->objects.clear(0);
    }
    writeSaveKeys();
    setMiscSetting(fileHashKey, contentHash());
    return writeProjectFile(target);
}

bool ObjectDataBase::writeProjectFile(const QString &target)
{
    const QString backup = target + QLatin1String(".bak");
    QFile::remove(backup);
    QFile::rename(target, backup);
    QString error;
    bool written = false;
    // No statement of another thread may change the working copy while it is read.
    d->runner.exclusive(
        [&] { written = WorkingCopy::copyFile(d->runner.fileName(), target, error); });
    if (written) {
        d->projectPath = target;
        return true;
    }
    qDebug() << "ERROR copy " << d->runner.fileName() << "to " << target << error;
    d->lastError = target + QLatin1String(": ") + error;
    // Half a project must not stay under the user's name; the last good one is put back beside
    // its backup as far as there is room.
    QFile::remove(target);
    if (QFile::exists(backup) && !QFile::copy(backup, target))
        QFile::remove(target);
    return false;
}

bool ObjectDataBase::saveDatabaseAsText(const QString &path)
{
    const QString target = path.isEmpty() ? d->projectPath : path;
    if (!mayBeSaved(target))
        return false;
    deleteNode(comparisonLine);
    deleteNode(stagingLine);
    writeSaveKeys();

    // A text project holds less than the database, so its hash is the one of what a reader of
    // the text gets. The key must be there already, as it will be for that reader.
    if (getMiscSetting(fileHashKey).isEmpty())
        setMiscSetting(fileHashKey, QStringLiteral("0"));
    const QString trial = d->newWorkingFile();
    DatabaseTextConverter trialWriter(*this, trial);
    ObjectDataBase reader;
    if (!trialWriter.convertSqlToText() || !reader.createNewDataBase()) {
        d->lastError = trialWriter.errorText();
        return false;
    }
    DatabaseTextConverter trialReader(reader, trial);
    if (!trialReader.convertTextToSql()) {
        d->lastError = trialReader.errorText();
        return false;
    }
    QFile::remove(trial);
    setMiscSetting(fileHashKey, reader.contentHash());

    DatabaseTextConverter writer(*this, target);
    if (!writer.convertSqlToText()) {
        d->lastError = writer.errorText();
        return false;
    }
    d->projectPath = target;
    return true;
}
