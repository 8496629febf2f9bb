#include "store/objectdatabase_p.h"

#include "store/workingcopy.h"

#include <QDir>
#include <QFile>

bool ObjectDataBase::takeSnapshot(const QString &path)
{
    QFile::remove(path);
    setThreadBlock(true);
    bool done = false;
    if (!d->runner.waitForStatements()) {
        d->lastError =
            QStringLiteral("snapshot aborted, queries of other threads did not finish in time");
    } else {
        done = d->runner.exec(QLatin1String("VACUUM INTO ") + SqlText::quoted(path), Q_FUNC_INFO);
        if (!done)
            d->lastError = d->runner.lastError();
    }
    setThreadBlock(false);
    return done;
}

bool ObjectDataBase::restoreSnapshot(const QString &path)
{
    if (!QFile::exists(path)) {
        d->lastError = QStringLiteral("snapshot '%1' does not exist").arg(path);
        return false;
    }
    setThreadBlock(true);
    d->runner.waitForStatements();
    const QString formerFile = d->runner.fileName();
    QString file = d->newWorkingFile();
    QString error;
    // The snapshot stays on the undo stack, so the store works on a copy of it.
    const bool copied = !file.isEmpty() && WorkingCopy::copyFile(path, file, error);
    if (!copied) {
        d->lastError = QStringLiteral("could not copy snapshot '%1'").arg(path);
        file = formerFile;
    }
    const bool opened = d->runner.open(QDir::toNativeSeparators(file));
    if (opened) {
        d->runPragmas(State::cachePagesOpen);
        d->clearCaches();
        d->strings.rebuild();
    }
    setThreadBlock(false);
    if (opened)
        notify({.kind = ProjectReplaced});
    return copied && opened;
}
