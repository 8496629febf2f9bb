#include "store/projectfile.h"

#include "canopen/safefile.h"
#include "store/filelock.h"
#include "store/workingcopy.h"

#include <QDebug>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QStorageInfo>

#include <filesystem>
#include <system_error>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace ProjectFile {

namespace {

const QString stagedSuffix = QStringLiteral(".saving");

QString fault(const QString &path, const QString &reason)
{
    return path + QLatin1String(": ") + reason;
}

/// The file behind the links, which need not be there yet.
QString resolved(const QString &path)
{
    constexpr int mostLinks = 40;
    QString target = path;
    for (int i = 0; i < mostLinks && QFileInfo(target).isSymLink(); ++i)
        target = QFileInfo(target).symLinkTarget();
    return QFileInfo(target).absoluteFilePath();
}

/// The bits count as well, since for a privileged user everything looks writable.
bool isWritable(const QFileInfo &info)
{
    constexpr auto writeBits = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    return info.isWritable() && (info.permissions() & writeBits);
}

std::filesystem::path native(const QString &path)
{
    return QFileInfo(path).filesystemFilePath();
}

bool rename(const QString &from, const QString &to)
{
    std::error_code error;
    std::filesystem::rename(native(from), native(to), error);
    if (error)
        qDebug() << Q_FUNC_INFO << from << to << error.message().c_str();
    return !error;
}

/// The name of a file that is written beside another one, without its end.
QString stagedBegin(const QString &target)
{
    constexpr qsizetype longest = 60; // in any case short enough for a name
    return u'.' + QFileInfo(target).fileName().left(longest) + u'.';
}

/// A program that was killed while it saved leaves such a file.
void removeStaleFiles(const QString &target)
{
    const QString begin = stagedBegin(target);
    QDirIterator files(QFileInfo(target).absolutePath(),
                       QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    while (files.hasNext()) {
        const QString path = files.next();
        const QString name = files.fileName();
        if (name.startsWith(begin) && name.endsWith(stagedSuffix) &&
            FileLock::take(path, FileLock::Open::Existing))
            QFile::remove(path);
    }
}

/// A file beside the one that it is to replace; goes with the value unless it was put in place.
class Staged
{
public:
    explicit Staged(const QString &target) : m_target(target)
    {
        const QString begin = QFileInfo(target).absolutePath() + u'/' + stagedBegin(target);
        constexpr int attempts = 10;
        for (int i = 0; i < attempts && m_lock == nullptr; ++i) {
            m_path = begin + QString::number(QRandomGenerator::global()->generate()) + stagedSuffix;
            m_lock = FileLock::take(m_path, FileLock::Open::New);
        }
    }
    ~Staged()
    {
        if (m_lock != nullptr)
            QFile::remove(m_path);
    }
    Staged(const Staged &) = delete;
    Staged &operator=(const Staged &) = delete;

    [[nodiscard]] bool exists() const { return m_lock != nullptr; }

    bool fill(const QString &source, QString &reason)
    {
        if (!WorkingCopy::copyFile(source, m_path, reason))
            return false;
        takePermissions();
        QFile file(m_path);
        if (file.open(QIODevice::ReadWrite) && SafeFile::synchronise(file))
            return true;
        reason = SafeFile::reason(file);
        return false;
    }
    bool putInPlace()
    {
        if (!rename(m_path, m_target))
            return false;
        m_lock.reset();
        return true;
    }

private:
    void takePermissions() const
    {
#ifdef Q_OS_UNIX
        struct stat state = {};
        if (stat(QFile::encodeName(m_target).constData(), &state) != 0)
            return;
        const QByteArray path = QFile::encodeName(m_path);
        // Who may not give the file away keeps it. The change of owner takes some bits away.
        if (chown(path.constData(), state.st_uid, state.st_gid) != 0)
            qDebug() << Q_FUNC_INFO << m_target << "the owner can't be kept";
        constexpr mode_t permissionBits = 07777;
        if (chmod(path.constData(), state.st_mode & permissionBits) != 0)
            qDebug() << Q_FUNC_INFO << m_target << "the permissions can't be kept";
#else
        if (QFileInfo::exists(m_target))
            QFile::setPermissions(m_path, QFile::permissions(m_target));
#endif
    }

    QString m_target;
    QString m_path;
    std::unique_ptr<FileLock> m_lock;
};

/// Moves the former file to its backup, or gives it a second name where the system has such a
/// thing, so that the first is there at every moment.
class BackupFile
{
public:
    explicit BackupFile(const QString &target) : m_target(target), m_path(backupPath(target)) {}

    bool make()
    {
        std::error_code error;
        std::filesystem::remove(native(m_path), error);
        std::filesystem::create_hard_link(native(m_target), native(m_path), error);
        m_isLink = !error;
        m_isMade = m_isLink || rename(m_target, m_path);
        return m_isMade;
    }
    /// False if the former file has no other name than the backup's.
    bool takeBack()
    {
        if (!m_isMade)
            return true;
        return m_isLink ? QFile::remove(m_path) : rename(m_path, m_target);
    }

private:
    QString m_target;
    QString m_path;
    bool m_isLink = false;
    bool m_isMade = false;
};

/// Makes sure that a file can grow to a size, without a change of what it holds.
bool reserveRoom(QFile &file, qint64 size)
{
#ifdef Q_OS_LINUX
    const qint64 former = file.size();
    if (posix_fallocate(file.handle(), 0, size) == 0)
        return true;
    file.resize(former);
    return false;
#else
    constexpr qint64 margin = qint64(1) << 20;
    return QStorageInfo(QFileInfo(file).absolutePath()).bytesAvailable() >= size + margin;
#endif
}

bool writeAll(QFile &file, const QByteArray &content)
{
    return file.seek(0) && file.write(content) == content.size() && file.flush() &&
           file.resize(content.size()) && SafeFile::synchronise(file);
}

/// For a folder that takes no new files. What is written over is kept in memory meanwhile.
bool overwrite(const QString &target, const QString &source, QString &error)
{
    constexpr qint64 mostBytes = qint64(1) << 30;
    QString reason;
    const auto content = SafeFile::read(source, mostBytes, reason);
    const auto former = content ? SafeFile::read(target, mostBytes, reason) : std::nullopt;
    QFile file(target);
    if (!content || !former) {
        error = fault(target, reason);
        return false;
    }
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly)) {
        error = fault(target, SafeFile::reason(file));
        return false;
    }
    if (!reserveRoom(file, content->size())) {
        error = fault(target, QStringLiteral("its folder takes no backup, and the disk has no room "
                                             "for the project; the file is as it was"));
        return false;
    }
    if (writeAll(file, *content))
        return true;
    reason = SafeFile::reason(file);
    error = fault(target, writeAll(file, *former)
                              ? reason
                              : reason + QStringLiteral("; the file holds a part of the project "
                                                        "only, save it elsewhere"));
    return false;
}

/// Where a file can't be moved although its folder takes new ones, as one that is mounted by
/// itself.
bool overwriteWithBackup(const QString &target, const QString &source, QString &error)
{
    QString reason;
    const QString backup = backupPath(target);
    QFile::remove(backup);
    if (!WorkingCopy::copyFile(target, backup, reason)) {
        QFile::remove(backup);
        error = fault(backup, reason);
        return false;
    }
    return overwrite(target, source, error);
}

bool replaceWhole(Staged &staged, const QString &target, const QString &source, Backup backup,
                  QString &error)
{
    QString reason = backup == Backup::Make ? SafeFile::kindFault(backupPath(target)) : QString();
    if (!reason.isEmpty()) {
        error = fault(target, QStringLiteral("its backup can't be made: ") + reason);
        return false;
    }
    if (!staged.fill(source, reason)) {
        error = fault(target, reason);
        return false;
    }
    BackupFile former(target);
    const bool exists = QFileInfo::exists(target);
    if (exists && backup == Backup::Make && !former.make())
        return overwriteWithBackup(target, source, error);
    if (!staged.putInPlace()) {
        if (!former.takeBack()) {
            error =
                fault(target, QStringLiteral("the file can't be replaced; the former project is "
                                             "in ") +
                                  backupPath(target));
            return false;
        }
        if (exists)
            return overwrite(target, source, error);
        error = fault(target, QStringLiteral("the file can't be made"));
        return false;
    }
    if (!SafeFile::synchroniseFolder(QFileInfo(target).absolutePath())) {
        error = fault(target, QStringLiteral("the file is written, but the disk does not confirm "
                                             "it"));
        return false;
    }
    return true;
}

} // namespace

QString backupPath(const QString &path)
{
    return resolved(path) + QLatin1String(".bak");
}

QString targetFault(const QString &path)
{
    if (path.isEmpty())
        return QStringLiteral("no file name to save to");
    const QString target = resolved(path);
    if (const QString kind = SafeFile::kindFault(target); !kind.isEmpty())
        return fault(path, kind);
    const QFileInfo info(target);
    if (info.isSymLink())
        return fault(path, QStringLiteral("its links lead in a circle"));
    if (info.exists() && !isWritable(info))
        return fault(path, QStringLiteral("the file is read-only"));
    const QFileInfo folder(info.absolutePath());
    if (!folder.isDir())
        return fault(path, QStringLiteral("the folder does not exist"));
    if (!info.exists() && !isWritable(folder))
        return fault(path, QStringLiteral("the folder is read-only"));
    return {};
}

bool replace(const QString &path, const QString &source, Backup backup, QString &error)
{
    error = targetFault(path);
    if (!error.isEmpty())
        return false;
    const QString target = resolved(path);
    const bool takesFiles = isWritable(QFileInfo(QFileInfo(target).absolutePath()));
    if (takesFiles) {
        removeStaleFiles(target);
        Staged staged(target);
        if (staged.exists())
            return replaceWhole(staged, target, source, backup, error);
    }
    if (QFileInfo::exists(target))
        return overwrite(target, source, error);
    error = fault(target, QStringLiteral("no file can be made in the folder"));
    return false;
}

} // namespace ProjectFile
