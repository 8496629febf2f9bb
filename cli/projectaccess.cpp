#include "cli/projectaccess.h"

#include "canopen/safefile.h"
#include "generation/generatormainhandler.h"
#include "store/objectdatabase.h"
#include "store/projectfile.h"

#include <QDir>
#include <QFileInfo>

namespace ProjectAccess {

namespace {

/// What the store says of a project of another edition.
const QString wrongEdition = QStringLiteral("File was not created with this tool.");

/// What can be told of a file without opening it as a project.
QString fileFault(const QFileInfo &file)
{
    if (!file.exists()) {
        // A program that was killed while it saved can leave a backup only.
        const QString backup = ProjectFile::backupPath(file.filePath());
        const QString missing = QStringLiteral("the file does not exist");
        return QFileInfo(backup).isFile()
                   ? missing + QLatin1String("; the version before it is in ") + backup
                   : missing;
    }
    if (const QString fault = SafeFile::kindFault(file.filePath()); !fault.isEmpty())
        return fault;
    return file.isReadable() ? QString() : QStringLiteral("the file can't be read");
}

QString sentence(const QString &path, QString reason)
{
    // The sentence names the file already.
    const QString prefix = QFileInfo(path).absoluteFilePath() + QLatin1String(": ");
    if (reason.startsWith(prefix))
        reason.remove(0, prefix.size());
    if (reason == wrongEdition)
        reason = QStringLiteral("it belongs to another edition. ") + wrongEdition;
    return QStringLiteral("the project \"%1\" can't be opened: %2")
        .arg(QDir::toNativeSeparators(path), reason.simplified());
}

/// Why the store holds no project after an open; empty if it holds one.
QString storeFault(ObjectDataBase &store, bool opened)
{
    const QString error = store.lastErrorText();
    if (!error.isEmpty())
        return error;
    return opened ? QString() : QStringLiteral("the file is not a project");
}

} // namespace

QString open(ObjectDataBase &store, const QString &path)
{
    const QFileInfo file(path);
    QString fault = fileFault(file);
    if (fault.isEmpty()) {
        const bool opened = store.openDataBase(file.absoluteFilePath());
        fault = storeFault(store, opened);
    }
    return fault.isEmpty() ? QString() : sentence(path, fault);
}

QString open(GeneratorMainHandler &handler, const QString &path)
{
    QString fault = fileFault(QFileInfo(path));
    if (fault.isEmpty()) {
        const bool opened = handler.openProject(path);
        fault = storeFault(*handler.store(), opened);
        if (fault.isEmpty())
            fault = handler.openErrorText();
    }
    return fault.isEmpty() ? QString() : sentence(path, fault);
}

} // namespace ProjectAccess
