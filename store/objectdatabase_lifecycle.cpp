#include "store/objectdatabase_p.h"

#include "canopen/safefile.h"
#include "store/databasetextconverter.h"
#include "store/projectfile.h"
#include "store/projectguard.h"
#include "store/schema.h"
#include "store/workingcopy.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QSignalBlocker>
#include <QSqlError>

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

void ObjectDataBase::State::dropWorkingFile(const QString &path)
{
    workingFiles.removeAll(path);
    WorkingCopy::remove(path);
}

QString ObjectDataBase::State::presentFile() const
{
    return QDir::fromNativeSeparators(runner.fileName());
}

bool ObjectDataBase::State::openWorkingFile(const QString &path)
{
    clearCaches();
    strings.reset();
    return runner.open(QDir::toNativeSeparators(path));
}

ObjectDataBase::State::Former ObjectDataBase::State::present() const
{
    return {presentFile(), projectPath, runner.damage(), externallyModified};
}

void ObjectDataBase::State::goBackTo(const Former &former)
{
    projectPath = former.path;
    externallyModified = former.externallyModified;
    const QString failed = presentFile();
    if (failed == former.file)
        return;
    runner.close();
    dropWorkingFile(failed);
    if (former.file.isEmpty() || !openWorkingFile(former.file))
        return;
    runPragmas(cachePagesOpen);
    strings.rebuild();
    if (!former.damage.isEmpty())
        runner.noteDamage(former.damage);
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
    pgns.clear();
    canIds.clear();
}

ObjectDataBase::ObjectDataBase(QObject *parent)
    : QObject(parent),
      d(std::make_unique<State>(*this, QStringLiteral("db%1").arg(++instanceCount)))
{
    const QSqlError error = d->runner.database().lastError();
    if (!d->runner.database().isValid() || error.isValid()) {
        qDebug() << Q_FUNC_INFO;
        qDebug() << "Db drivers: " << QSqlDatabase::drivers();
        qDebug() << "Db last error: " << error.text();
    }
    d->runner.setWriteHandler([this] { d->tellWrite(); });
}

ObjectDataBase::~ObjectDataBase()
{
    d->runner.waitForStatements();
    d->runner.close();
    for (const QString &file : std::as_const(d->workingFiles))
        WorkingCopy::remove(file);
}

/// The tables of a new project and its line 0, in a new working copy.
bool ObjectDataBase::State::makeEmptyProject()
{
    const QString path = newWorkingFile();
    if (path.isEmpty()) {
        lastError = WorkingCopy::noFolderText();
        return false;
    }
    bool created = openWorkingFile(path);
    if (!created)
        qDebug() << "error sqlDbFile.open()" << runner.lastError();
    runPragmas(cachePagesNew);
    for (const Schema::Table &table : Schema::tables()) {
        if (!created)
            break;
        if (table.scope != Schema::Scope::Project)
            continue;
        created = runner.exec(Schema::createStatement(table));
        if (!created)
            qDebug() << "Create" << table.name << runner.lastError();
    }
    projectPath.clear();
    externallyModified = false;
    if (created && face.addNode(0, NODE_DATA_T()) && !face.isDamaged())
        return true;
    lastError = QStringLiteral("no new project can be made in \"%1\": %2")
                    .arg(QDir::toNativeSeparators(path), runner.lastReason());
    return false;
}

/// A generator reads the project to its end; one that is blocked can't be filled.
bool ObjectDataBase::State::mayBeReplaced()
{
    if (!refusesWrites() && bulk.thread.load() == nullptr)
        return true;
    lastError = QStringLiteral("The project is in use; another one can't be opened or made now.");
    return false;
}

bool ObjectDataBase::createNewDataBase()
{
    if (!d->mayBeReplaced())
        return false;
    d->lastError.clear();
    const State::Former former = d->present();
    if (!d->makeEmptyProject()) {
        d->goBackTo(former);
        return false;
    }
    d->savedPath.clear();
    notify({.kind = ProjectReplaced});
    d->noteCreator();
    return true;
}

void ObjectDataBase::State::noteCreator()
{
    face.setMiscSetting(QStringLiteral("CreateToolVersion"),
                        QCoreApplication::applicationVersion());
    face.setMiscSetting(QStringLiteral("CreateToolName"), QCoreApplication::applicationName());
    face.setMiscSetting(QStringLiteral("DatabaseVersion"), QString::number(schemaVersion));
}

bool ObjectDataBase::openDataBase(const QString &path, bool)
{
    if (!d->mayBeReplaced())
        return false;
    d->lastError.clear();
    if (path.isEmpty())
        return false;
    // What was open stays as it was if the new file turns out to be of no use.
    const State::Former former = d->present();
    State::Opened opened = State::Opened::No;
    {
        // Forms hear of the whole, or of nothing.
        const QSignalBlocker silence(this);
        opened = path.endsWith(QLatin1String("vxmt"), Qt::CaseInsensitive) ? d->openText(path)
                                                                           : d->openSql(path);
    }
    if (opened == State::Opened::Yes) {
        d->savedPath.clear();
        notify({.kind = ProjectReplaced});
        return true;
    }
    d->goBackTo(former);
    if (opened == State::Opened::WrongTool)
        emit wrongTool();
    else
        d->nameBackup(path);
    return false;
}

/// Whoever can't open a file wants to know of the one before it.
void ObjectDataBase::State::nameBackup(const QString &path)
{
    const QString backup = ProjectFile::backupPath(path);
    if (!QFileInfo(backup).isFile())
        return;
    if (lastError.isEmpty())
        lastError = path + QLatin1String(": it is no project");
    lastError += QLatin1String("; the version before it is in ") + backup;
}

ObjectDataBase::State::Opened ObjectDataBase::State::openText(const QString &path)
{
    if (!makeEmptyProject())
        return Opened::No;
    noteCreator();
    DatabaseTextConverter converter(face, path);
    if (!converter.convertTextToSql()) {
        lastError = converter.errorText();
        return Opened::No;
    }
    projectPath = path;
    if (checkExternalModification()) {
        adaptSignals(face.getLines());
        if (!face.isDamaged())
            return Opened::Yes;
    }
    lastError =
        QStringLiteral("%1: no working copy can be made: %2").arg(path, runner.lastReason());
    return Opened::No;
}

/// Copies the file and lets nothing pass that is no project, or that could do harm.
bool ObjectDataBase::State::openWorkingCopyOf(const QString &path)
{
    const auto fail = [&](const QString &reason) {
        lastError = path + QLatin1String(": ") + reason;
        return false;
    };
    if (QFileInfo(path).size() > ProjectGuard::mostBytesOfFile)
        return fail(QStringLiteral("the file is too large for a project"));
    const QString folder = WorkingCopy::folder();
    if (folder.isEmpty())
        return fail(WorkingCopy::noFolderText());
    QString error;
    const QString working = WorkingCopy::reserveCopy(path, error);
    if (working.isEmpty()) {
        lastError = QLatin1String("Error detected: ") + path + QLatin1String(" to ") +
                    QDir::toNativeSeparators(folder) + QLatin1String(": ") + error;
        return false;
    }
    workingFiles.append(working);
    projectPath = path;
    if (!openWorkingFile(working))
        return fail(runner.lastReason());
    if (const QString fault = ProjectGuard::structureFault(runner); !fault.isEmpty())
        return fail(fault);
    const QString lines = QStringLiteral("select nodeId from nodes limit 1");
    if (!runner.hasRow(lines)) {
        // A database of another purpose has no such table and gives no text.
        const bool isForeign =
            runner.exec(lines) || runner.lastError().contains(QLatin1String("no such table"));
        return isForeign ? false : fail(runner.lastReason());
    }
    for (const auto check : {ProjectGuard::contentFault, ProjectGuard::integrityFault}) {
        if (const QString fault = check(runner); !fault.isEmpty())
            return fail(fault);
    }
    return true;
}

ObjectDataBase::State::Opened ObjectDataBase::State::openSql(const QString &path)
{
    if (!openWorkingCopyOf(path))
        return Opened::No;
    if (!checkExternalModification()) {
        lastError = path + QLatin1String(": ") + ProjectGuard::damagedText();
        return Opened::No;
    }
    runPragmas(State::cachePagesOpen);
    runSchemaSteps();
    if (!editionAllowed()) {
        lastError = QStringLiteral("File was not created with this tool.");
        return Opened::WrongTool;
    }
    runContentSteps();
    if (!face.isDamaged())
        return Opened::Yes;
    lastError = QStringLiteral("%1: the working copy can't be brought up to date: %2")
                    .arg(path, runner.damage());
    return Opened::No;
}

QString ObjectDataBase::projectPath() const
{
    return d->projectPath;
}

QString ObjectDataBase::lastErrorText() const
{
    return d->lastError;
}

bool ObjectDataBase::isDamaged() const
{
    return !d->runner.damage().isEmpty();
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
    d->pgns.dropUnpinned();
    d->canIds.dropUnpinned();
    return done;
}

int ObjectDataBase::rowCount(const QString &table)
{
    QString name = table;
    name.replace(u'"', QLatin1String("\"\""));
    return d->runner.value(QLatin1String("select count(*) from \"") + name + u'"').toInt();
}

void ObjectDataBase::notify(const ChangeSet &change)
{
    d->notify(change);
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

void ObjectDataBase::endSilence()
{
    blockSignals(false);
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
        d->pgns.clear();
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
