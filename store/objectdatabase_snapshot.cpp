#include "store/objectdatabase_p.h"

#include "store/workingcopy.h"

#include <QFile>

#include <mutex>

bool ObjectDataBase::takeSnapshot(const QString &path)
{
    // It would take the place of a good one.
    if (isDamaged()) {
        d->lastError = QLatin1String("the working copy can't be trusted: ") + d->runner.damage();
        return false;
    }
    // Half a bulk change is no state to go back to.
    const std::scoped_lock noBulkChange(d->bulk.mutex);
    if (d->bulk.depth > 0) {
        d->lastError = QStringLiteral("snapshot aborted, a change is being made");
        return false;
    }
    QFile::remove(path);
    setThreadBlock(true);
    bool done = false;
    if (!d->runner.waitForStatements()) {
        d->lastError =
            QStringLiteral("snapshot aborted, queries of other threads did not finish in time");
    } else {
        done = d->runner.exec(QLatin1String("VACUUM INTO ") + SqlText::quoted(path), Q_FUNC_INFO);
        if (!done)
            d->lastError = QStringLiteral("no copy of the project can be made in \"%1\": %2")
                               .arg(path, d->runner.lastReason());
    }
    setThreadBlock(false);
    return done;
}

/// Another try for a store whose working copy is of no use, and in the way.
QString ObjectDataBase::State::copyInPlaceOfDamaged(const QString &snapshot, QString &error)
{
    if (runner.damage().isEmpty())
        return {};
    const QString damaged = presentFile();
    runner.close();
    dropWorkingFile(damaged);
    const QString file = WorkingCopy::reserveCopy(snapshot, error);
    if (file.isEmpty())
        runner.noteDamage(error);
    return file;
}

bool ObjectDataBase::restoreSnapshot(const QString &path)
{
    const std::scoped_lock noBulkChange(d->bulk.mutex);
    if (d->bulk.depth > 0) {
        d->lastError =
            QStringLiteral("a change is being made, so snapshot '%1' can't be restored").arg(path);
        return false;
    }
    if (!QFile::exists(path)) {
        d->lastError = QStringLiteral("snapshot '%1' does not exist").arg(path);
        return false;
    }
    setThreadBlock(true);
    d->runner.waitForStatements();
    const State::Former former = d->present();
    QString error;
    // The snapshot stays on the undo stack, so the store works on a copy of it.
    QString file = WorkingCopy::reserveCopy(path, error);
    if (file.isEmpty())
        file = d->copyInPlaceOfDamaged(path, error);
    bool restored = false;
    if (file.isEmpty()) {
        qDebug() << Q_FUNC_INFO << path << error;
        d->lastError = QStringLiteral("could not copy snapshot '%1'").arg(path);
    } else {
        d->workingFiles.append(file);
        restored = d->openWorkingFile(file);
        if (restored) {
            d->runPragmas(State::cachePagesOpen);
            d->strings.rebuild();
            d->dropWorkingFile(former.file);
        } else {
            d->lastError = QStringLiteral("could not open snapshot '%1'").arg(path);
            d->goBackTo(former);
        }
    }
    setThreadBlock(false);
    if (restored)
        notify({.kind = ProjectReplaced});
    return restored;
}
