#include "store/objectdatabase_p.h"

#include "store/databasetextconverter.h"
#include "store/projectfile.h"
#include "store/projectguard.h"
#include "store/schema.h"
#include "store/workingcopy.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QThread>

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

bool isReferenceDatabase(const QString &target)
{
    return QFileInfo(target).completeSuffix().toLower() == QLatin1String("data");
}

} // namespace

QString ObjectDataBase::contentHash()
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    bool read = false;
    d->runner.exclusive([&] {
        QStringList tables;
        read = d->runner.forEachRow(
            QStringLiteral("SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"),
            [&](const ResultRow &row) { tables.append(row.value(0).toString()); }, Q_FUNC_INFO);
        for (const QString &table : std::as_const(tables)) {
            hash.addData(table.toUtf8() + '\n');
            if (!addTableToHash(d->runner, table, hash)) {
                qDebug() << Q_FUNC_INFO << table << d->runner.lastError();
                read = false;
            }
        }
        read = read && !tables.isEmpty();
    });
    return read ? QString::fromLatin1(hash.result().toHex()) : QString();
}

/// False if the content can't be read.
bool ObjectDataBase::State::checkExternalModification()
{
    externallyModified = false;
    const QString stored = face.getMiscSetting(fileHashKey);
    if (stored.isEmpty())
        return true;
    const QString found = face.contentHash();
    if (found.isEmpty() || found == stored)
        return !found.isEmpty();
    externallyModified = true;
    const QString now = QDateTime::currentDateTime().toString(Qt::ISODate);
    const QString log = face.getMiscSetting(tamperLogKey);
    face.setMiscSetting(tamperLogKey, log.isEmpty() ? now : log + u';' + now);
    return true;
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

void ObjectDataBase::setBackupRule(BackupRule rule)
{
    d->backupRule = rule;
}

bool ObjectDataBase::State::refuseSave(const QString &target, const QString &reason)
{
    lastError = target + QLatin1String(": ") + reason;
    qDebug() << Q_FUNC_INFO << lastError;
    return false;
}

bool ObjectDataBase::State::mayBeSaved(const QString &target)
{
    // A bulk change of this thread would be saved half done; one of another thread is waited for.
    if (refusesWrites() || bulk.thread.load() == QThread::currentThreadId())
        return refuseSave(target, QStringLiteral("a running job uses the project"));
    if (face.isDamaged())
        return refuseSave(
            target,
            QStringLiteral("not saved, as the working copy that it would be made from can't "
                           "be trusted: %1 (\"%2\")")
                .arg(runner.damage(), QDir::toNativeSeparators(presentFile())));
    lastError = ProjectFile::targetFault(target);
    if (!lastError.isEmpty())
        qDebug() << Q_FUNC_INFO << lastError;
    return lastError.isEmpty();
}

bool ObjectDataBase::State::writeSaveKeys()
{
    return face.setMiscSetting(QStringLiteral("SaveToolType"),
                               QCoreApplication::applicationName()) &&
           face.setMiscSetting(QStringLiteral("SaveToolVersion"),
                               QCoreApplication::applicationVersion()) &&
           face.setMiscSetting(QStringLiteral("DatabaseVersion"), QString::number(schemaVersion));
}

bool ObjectDataBase::saveDatabaseAsSql(const QString &path)
{
    const QString target = path.isEmpty() ? d->projectPath : path;
    if (!d->mayBeSaved(target))
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
    const bool hasKeys = d->writeSaveKeys();
    const QString hash = contentHash();
    if (!hasKeys || hash.isEmpty() || !setMiscSetting(fileHashKey, hash))
        d->runner.noteDamage(d->runner.lastReason());
    return d->mayBeSaved(target) && d->writeProjectFile(target, hash);
}

bool ObjectDataBase::State::writeProjectFile(const QString &target, const QString &hash)
{
    using ProjectFile::Backup;
    const bool isAgain = backupRule == BackupRule::FirstSave && savedPath == target;
    QString error;
    QString fault;
    bool written = false;
    // No statement of another thread may change the working copy while it is read.
    runner.exclusive([&] {
        fault = ProjectGuard::fileFault(presentFile(), hash);
        written =
            fault.isEmpty() && ProjectFile::replace(target, presentFile(),
                                                    isAgain ? Backup::Leave : Backup::Make, error);
    });
    if (written) {
        projectPath = target;
        savedPath = target;
        return true;
    }
    if (!fault.isEmpty()) {
        runner.noteDamage(fault);
        return mayBeSaved(target);
    }
    lastError = error;
    qDebug() << "ERROR copy " << presentFile() << "to " << target << error;
    return false;
}

bool ObjectDataBase::State::writeText(const QString &path)
{
    DatabaseTextConverter writer(face, path);
    const bool written = writer.convertSqlToText();
    if (!written)
        lastError = writer.errorText();
    return written;
}

/// A text project holds less than the database, so its hash is the one of what a reader of the text
/// gets.
bool ObjectDataBase::State::textHash(const QString &trial, QString &hash)
{
    ObjectDataBase reader;
    if (!reader.createNewDataBase()) {
        lastError = reader.lastErrorText();
        return false;
    }
    DatabaseTextConverter trialReader(reader, trial);
    if (!trialReader.convertTextToSql()) {
        lastError = trialReader.errorText();
        return false;
    }
    hash = reader.contentHash();
    if (reader.isDamaged() || hash.isEmpty()) {
        lastError = reader.d->runner.damage();
        return false;
    }
    return true;
}

bool ObjectDataBase::saveDatabaseAsText(const QString &path)
{
    const QString target = path.isEmpty() ? d->projectPath : path;
    if (!d->mayBeSaved(target))
        return false;
    deleteNode(comparisonLine);
    deleteNode(stagingLine);
    bool hasKeys = d->writeSaveKeys();
    // The key must be there already, as it will be for the reader.
    if (getMiscSetting(fileHashKey).isEmpty())
        hasKeys = setMiscSetting(fileHashKey, QStringLiteral("0")) && hasKeys;
    if (!hasKeys)
        d->runner.noteDamage(d->runner.lastReason());
    if (!ProjectGuard::integrityFault(d->runner).isEmpty())
        d->runner.noteDamage(QStringLiteral("it is damaged"));
    if (!d->mayBeSaved(target))
        return false;
    const QString text = d->newWorkingFile();
    QString hash;
    bool written = false;
    if (text.isEmpty()) {
        d->lastError = WorkingCopy::noFolderText();
    } else if (d->writeText(text) && d->textHash(text, hash) && setMiscSetting(fileHashKey, hash) &&
               d->writeText(text)) {
        written = ProjectFile::replace(target, text, ProjectFile::Backup::Leave, d->lastError);
    }
    d->dropWorkingFile(text);
    if (written)
        d->projectPath = target;
    else if (!d->lastError.startsWith(target))
        return d->refuseSave(target, d->lastError);
    return written;
}
