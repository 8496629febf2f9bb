#include "store/objectdatabase_p.h"

#include "store/databasetextconverter.h"
#include "store/schema.h"
#include "store/workingcopy.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QThread>

#include <cstdlib>

namespace {

std::atomic<int> instanceCount{0};
constexpr int cachePagesNew = 16384;

} // namespace

QString ObjectDataBase::State::newWorkingFile()
{
    const QString path = WorkingCopy::reserve();
    if (!path.isEmpty())
        workingFiles.append(path);
    return path;
}

void ObjectDataBase::State::runPragmas(int cachePages)
{
    const QString cacheSize = QStringLiteral("PRAGMA cache_size = %1").arg(cachePages);
    for (const QString &pragma :
         {QStringLiteral("PRAGMA page_size = 4096"), cacheSize,
          QStringLiteral("PRAGMA temp_store = MEMORY"), QStringLiteral("PRAGMA journal_mode = OFF"),
          QStringLiteral("PRAGMA locking_mode = EXCLUSIVE"),
          QStringLiteral("PRAGMA synchronous  = OFF")})
        runner.exec(pragma, Q_FUNC_INFO);
}

void ObjectDataBase::State::clearCaches()
{
    objects.clear();
    {
        const std::scoped_lock lock(orderMutex);
        intoClauses.clear();
    }
    signalCache.clear();
}

ObjectDataBase::ObjectDataBase(QObject *parent)
    : QObject(parent), d(std::make_unique<State>(QStringLiteral("db%1").arg(++instanceCount)))
{
    const QSqlError error = d->runner.database().lastError();
    if (!d->runner.database().isValid() || error.isValid()) {
        qDebug() << Q_FUNC_INFO;
        qDebug() << "Db drivers: " << QSqlDatabase::drivers();
        qDebug() << "Db last error: " << error.text();
    }
    // Names of working copies come from this generator.
    srand(uint(reinterpret_cast<quintptr>(QThread::currentThreadId())));
    d->runner.setWriteHandler([this] { emit databaseWriteExecuted(); });
}

ObjectDataBase::~ObjectDataBase()
{
    d->runner.waitForStatements();
    d->runner.close();
    for (const QString &file : d->workingFiles)
        QFile::remove(file);
}

/// A generator reads the project to its end; one that is blocked can't be filled.
bool ObjectDataBase::mayBeReplaced()
{
    if (!d->refusesWrites())
        return true;
    d->lastError =
        QStringLiteral("The project is in use; another one can't be opened or made now.");
    return false;
}

bool ObjectDataBase::createNewDataBase()
{
    if (!mayBeReplaced())
        return false;
    const QString path = d->newWorkingFile();
    if (!d->runner.open(path))
        qDebug() << "error sqlDbFile.open()" << d->runner.database().lastError().text();
    d->runPragmas(cachePagesNew);
    bool created = true;
    for (const Schema::Table &table : Schema::tables()) {
        if (table.scope != Schema::Scope::Project)
            continue;
        created = d->runner.exec(Schema::createStatement(table));
        if (!created) {
            qDebug() << "Create" << table.name << d->runner.lastError();
            break;
        }
    }
    d->projectPath.clear();
    d->externallyModified = false;
    d->clearCaches();
    d->strings.reset();
    const bool added = created && addNode(0, NODE_DATA_T());
    notify({.kind = ProjectReplaced});
    setMiscSetting(QStringLiteral("CreateToolVersion"), QCoreApplication::applicationVersion());
    setMiscSetting(QStringLiteral("CreateToolName"), QCoreApplication::applicationName());
    setMiscSetting(QStringLiteral("DatabaseVersion"), QString::number(schemaVersion));
    return added;
}

bool ObjectDataBase::openDataBase(const QString &path, bool)
{
    if (!mayBeReplaced())
        return false;
    d->lastError.clear();
    if (path.endsWith(QLatin1String("vxmt"), Qt::CaseInsensitive))
        return openText(path);
    if (path.isEmpty())
        return false;

    // What was open stays as it was if the new file turns out to be of no use.
    const QString formerFile = d->runner.fileName();
    const QString formerPath = d->projectPath;
    const bool formerFlag = d->externallyModified;
    if (openSql(path)) {
        notify({.kind = ProjectReplaced});
        return true;
    }
    d->projectPath = formerPath;
    d->externallyModified = formerFlag;
    d->clearCaches();
    if (!formerFile.isEmpty() && d->runner.open(formerFile)) {
        d->runPragmas(State::cachePagesOpen);
        d->strings.rebuild();
    }
    return false;
}

bool ObjectDataBase::openText(const QString &path)
{
    createNewDataBase();
    DatabaseTextConverter converter(*this, path);
    if (!converter.convertTextToSql()) {
        // Without its path a save can't put an empty project over a file that was not understood.
        d->lastError = converter.errorText();
        return true;
    }
    d->projectPath = path;
    checkExternalModification();
    adaptSignals(getLines());
    notify({.kind = ProjectReplaced});
    return true;
}

bool ObjectDataBase::openSql(const QString &path)
{
    const QString working = d->newWorkingFile();
    QString error;
    if (!WorkingCopy::copyFile(path, working, error)) {
        d->lastError = QLatin1String("Error detected: ") + path + QLatin1String(" to ") + working +
                       u' ' + error;
        return false;
    }
    d->projectPath = path;
    d->clearCaches();
    d->strings.reset();
    if (!d->runner.open(QDir::toNativeSeparators(working))) {
        d->lastError = path + QLatin1String(": ") + d->runner.database().lastError().text();
        return false;
    }
    int lines = 0;
    const bool read = d->runner.forEachRow(QStringLiteral("select nodeId from nodes"),
                                           [&](const ResultRow &) { ++lines; });
    if (lines == 0) {
        // A database of another purpose has no such table and gives no text.
        const QString text = d->runner.lastError();
        if (!read && !text.contains(QLatin1String("no such table")))
            d->lastError = path + QLatin1String(": ") + text;
        return false;
    }
    if (d->runner.value(QStringLiteral("PRAGMA quick_check(1)")).toString() !=
        QLatin1String("ok")) {
        d->lastError = path + QLatin1String(": the file is damaged and can't be read completely");
        return false;
    }
    checkExternalModification();
    d->runPragmas(State::cachePagesOpen);
    runSchemaSteps();
    if (!editionAllowed()) {
        d->lastError = QStringLiteral("File was not created with this tool.");
        emit wrongTool();
        return false;
    }
    runContentSteps();
    return true;
}

QString ObjectDataBase::projectPath() const
{
    return d->projectPath;
}

QString ObjectDataBase::lastErrorText() const
{
    return d->lastError;
}

bool ObjectDataBase::wasExternallyModified() const
{
    return d->externallyModified;
}

QStringList ObjectDataBase::workingFiles() const
{
    return d->workingFiles;
}

bool ObjectDataBase::executeSql(const QString &statement)
{
    constexpr int maximumColumns = 10;
    d->statementResults.clear();
    const bool done = d->runner.forEachRow(statement, [&](const ResultRow &row) {
        QString text;
        for (int column = 0; column < maximumColumns; ++column) {
            const QVariant value = row.value(column);
            if (!value.isValid())
                break;
            text += value.toString() + QLatin1String(" | ");
        }
        d->statementResults.append(text);
    });
    if (!done)
        d->statementResults.append(d->runner.lastError());
    return done;
}

QStringList ObjectDataBase::statementResults() const
{
    return d->statementResults;
}

void ObjectDataBase::setBlockUpdates(bool block)
{
    d->writesBlocked = block;
    setThreadBlock(block);
}

void ObjectDataBase::setThreadBlock(bool block)
{
    d->runner.setBlock(block);
    emit blockStateChanged(block);
}

bool ObjectDataBase::writesBlocked() const
{
    return d->refusesWrites();
}

void ObjectDataBase::setGenerating(bool generating)
{
    d->generating = generating;
    // A generator that was stopped leaves behind what it had read.
    if (!generating)
        d->signalCache.clear();
}

bool ObjectDataBase::isGenerating() const
{
    return d->generating;
}

void ObjectDataBase::setWriteSignals(bool on)
{
    d->runner.setWriteSignals(on);
}

void ObjectDataBase::clearSubCache(quint8 line)
{
    d->objects.clear(line);
}

void ObjectDataBase::clearSubCaches()
{
    d->objects.clear();
}

bool ObjectDataBase::isLineCached(quint8 line) const
{
    return d->objects.hasWalk(line);
}
