#include "store/workingcopy.h"

#include "canopen/safefile.h"
#include "store/filelock.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QMutex>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QStorageInfo>

#include <algorithm>
#include <limits>
#include <mutex>

namespace WorkingCopy {

namespace {

constexpr qint64 chunkSize = 1 << 20;
constexpr int attempts = 1000;
constexpr int daysKept = 7;
const QString filePattern = QStringLiteral("vxedatatemp_*");
const QString folderPattern = QStringLiteral("undo_*");
const QString lockName = QStringLiteral("/.inuse");

/// What this process has reserved, by path.
struct Reserved
{
    QMutex mutex;
    QHash<QString, std::shared_ptr<FileLock>> locks;

    bool take(const QString &path, const QString &lockPath)
    {
        std::shared_ptr<FileLock> lock = FileLock::take(lockPath, FileLock::Open::New);
        if (lock == nullptr)
            return false;
        const QMutexLocker locker(&mutex);
        locks.insert(path, std::move(lock));
        return true;
    }
    void release(const QString &path)
    {
        const QMutexLocker locker(&mutex);
        locks.remove(path);
    }
};

/// Never destroyed: a store that lives until the end of the process still releases its files.
Reserved &reserved()
{
    static auto *const instance = new Reserved;
    return *instance;
}

QString reserveIn(const QString &folder)
{
    if (isInMissingHome(folder) || !QDir().mkpath(folder))
        return {};
    const auto number = [] {
        return QString::number(
            QRandomGenerator::global()->bounded(std::numeric_limits<int>::max()));
    };
    for (int i = 0; i < attempts; ++i) {
        const QString path = folder + QStringLiteral("/vxedatatemp_%1_%2").arg(number(), number());
        // Made at once, so that another process can't take the name in between.
        if (reserved().take(path, path)) {
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
            return path;
        }
        if (!QFileInfo::exists(path))
            return {};
    }
    return {};
}

/// Where private files may lie, those with room for so much and some work first.
QStringList foldersFor(qint64 size)
{
    constexpr qint64 roomToWork = qint64(4) << 20;
    QStringList result = folders();
    std::stable_partition(result.begin(), result.end(), [&](const QString &folder) {
        // One that isn't there yet will be on the disk of what is.
        QFileInfo present(folder);
        while (!present.exists() && !present.isRoot())
            present.setFile(present.absolutePath());
        return QStorageInfo(present.absoluteFilePath()).bytesAvailable() >= size + roomToWork;
    });
    return result;
}

/// The lock is what counts; the age only leaves a user the time to look for what was lost.
bool isAbandoned(const QString &lockPath, const QFileInfo &info)
{
    if (info.lastModified() > QDateTime::currentDateTime().addDays(-daysKept))
        return false;
    return !QFileInfo::exists(lockPath) ||
           FileLock::take(lockPath, FileLock::Open::Existing) != nullptr;
}

void deleteAbandonedIn(const QDir &folder)
{
    // A link could lead to anything; its target is none of ours.
    const QFileInfoList files = folder.entryInfoList({filePattern}, QDir::Files | QDir::NoSymLinks);
    for (const QFileInfo &file : files) {
        if (isAbandoned(file.absoluteFilePath(), file))
            QFile::remove(file.absoluteFilePath());
    }
    const QFileInfoList folders =
        folder.entryInfoList({folderPattern}, QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    for (const QFileInfo &entry : folders) {
        if (isAbandoned(entry.absoluteFilePath() + lockName, entry))
            QDir(entry.absoluteFilePath()).removeRecursively();
    }
}

void deleteAbandonedOnce()
{
    static std::once_flag once;
    std::call_once(once, deleteAbandoned);
}

} // namespace

bool isInMissingHome(const QString &folder)
{
    const QString home = QDir::homePath();
#ifdef Q_OS_UNIX
    // Without a name for the home the hidden folders of one would lie in the root.
    if (qEnvironmentVariableIsEmpty("HOME"))
        return folder.startsWith(QLatin1String("/."));
#endif
    return folder.startsWith(home + u'/') && !QFileInfo(home).isDir();
}

QStringList folders()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    const QString temporary = QDir::tempPath();
    // A folder that isn't there has no path for Qt.
    return {data, temporary.isEmpty() ? qEnvironmentVariable("TMPDIR") : temporary};
}

QString folder()
{
    const QStringList candidates = folders();
    for (const QString &candidate : candidates) {
        if (!isInMissingHome(candidate) && QDir().mkpath(candidate) &&
            QFileInfo(candidate).isWritable())
            return candidate;
    }
    return {};
}

QString noFolderText()
{
    QStringList names;
    const QStringList candidates = folders();
    for (const QString &candidate : candidates)
        names.append(u'"' + QDir::toNativeSeparators(candidate) + u'"');
    return QStringLiteral("no working copy can be made, as neither the user's data folder nor the "
                          "folder for temporary files can be written (%1)")
        .arg(names.join(QStringLiteral(", ")));
}

QString reserve()
{
    deleteAbandonedOnce();
    const QStringList candidates = foldersFor(0);
    for (const QString &candidate : candidates) {
        if (const QString path = reserveIn(candidate); !path.isEmpty())
            return path;
    }
    return {};
}

QString reserveCopy(const QString &source, QString &error)
{
    deleteAbandonedOnce();
    error = noFolderText();
    const QStringList candidates = foldersFor(QFileInfo(source).size());
    for (const QString &candidate : candidates) {
        const QString path = reserveIn(candidate);
        if (path.isEmpty())
            continue;
        if (copyFile(source, path, error))
            return path;
        remove(path);
    }
    return {};
}

void remove(const QString &path)
{
    if (path.isEmpty())
        return;
    // A database of another journal mode has files beside it.
    for (const char *suffix : {"", "-journal", "-wal", "-shm"})
        QFile::remove(path + QLatin1String(suffix));
    reserved().release(path);
}

QString reserveFolder(const QString &name)
{
    const QString parent = folder();
    for (int i = 0; i < attempts && !parent.isEmpty(); ++i) {
        const QString path =
            parent + u'/' + name + (i == 0 ? QString() : QStringLiteral("_%1").arg(i));
        if (QDir(path).exists()) {
            // Another process can have the same number, in a container or on another machine.
            if (QFileInfo::exists(path + lockName) &&
                !FileLock::take(path + lockName, FileLock::Open::Existing))
                continue;
            QDir(path).removeRecursively();
        }
        if (QDir().mkpath(path) && reserved().take(path, path + lockName))
            return path;
    }
    return {};
}

void removeFolder(const QString &path)
{
    if (!path.isEmpty())
        QDir(path).removeRecursively();
    reserved().release(path);
}

void deleteAbandoned()
{
    const QStringList candidates = folders();
    for (const QString &candidate : candidates)
        deleteAbandonedIn(QDir(candidate));
}

bool copyFile(const QString &source, const QString &target, QString &error)
{
    QFile from(source);
    if (!SafeFile::open(from, error))
        return false;
    QFile to(target);
    if (!to.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        error = SafeFile::reason(to);
        return false;
    }
    while (!from.atEnd()) {
        const QByteArray chunk = from.read(chunkSize);
        if (chunk.isEmpty())
            break;
        // A short write leaves no reason behind; room on the disk is the usual one.
        if (to.write(chunk) != chunk.size()) {
            error = QStringLiteral("it can't be written completely; the disk may be full");
            qDebug() << Q_FUNC_INFO << target << to.errorString();
            return false;
        }
    }
    if (from.error() != QFile::NoError) {
        error = SafeFile::reason(from);
        return false;
    }
    if (!to.flush()) {
        error = SafeFile::reason(to);
        return false;
    }
    to.close();
    to.setPermissions(to.permissions() | QFile::WriteOwner | QFile::WriteUser);
    return true;
}

} // namespace WorkingCopy
