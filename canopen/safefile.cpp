#include "canopen/safefile.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstring>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#elif defined(Q_OS_WIN)
#include <io.h>
#endif

namespace SafeFile {

namespace {

struct SystemReason
{
    int error;
    const char *text;
};

constexpr SystemReason systemReasons[] = {
    {ENOENT, "the file does not exist"},
    {ENOTDIR, "a part of its path is no folder"},
    {EISDIR, "it is a folder"},
    {EACCES, "there is no permission for it"},
    {EPERM, "there is no permission for it"},
    {EROFS, "the disk is read-only"},
    {ENOSPC, "the disk is full"},
    {EFBIG, "the file would be too large for the disk"},
    {EIO, "the disk reported an error"},
    {EMFILE, "too many files are open"},
    {ENFILE, "too many files are open"},
    {ENAMETOOLONG, "its name is too long"},
    {ELOOP, "its links lead in a circle"},
    {ETXTBSY, "another program uses it"},
    {EBUSY, "another program uses it"},
#ifdef EDQUOT
    {EDQUOT, "the user's share of the disk is used up"},
#endif
};

QString folderText()
{
    return QStringLiteral("it is a folder");
}

QString strangeText()
{
    return QStringLiteral("it is no ordinary file but a device, a pipe or a socket");
}

#ifdef Q_OS_UNIX

/// Opens what a name leads to and only then looks at what that is, so that nothing can be put in
/// its place in between.
bool openOrdinary(QFile &file, QString &fault)
{
    // Otherwise the open of a pipe waits for a writer.
    const int handle = ::open(QFile::encodeName(file.fileName()).constData(),
                              O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (handle < 0) {
        // A socket can't be opened at all.
        const int error = errno;
        fault = kindFault(file.fileName());
        if (fault.isEmpty())
            fault = reason(error);
        return false;
    }
    struct stat state = {};
    const bool known = fstat(handle, &state) == 0;
    if (!known || !S_ISREG(state.st_mode)) {
        fault = known && S_ISDIR(state.st_mode) ? folderText() : strangeText();
        ::close(handle);
        return false;
    }
    if (file.open(handle, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return true;
    fault = reason(file);
    ::close(handle);
    return false;
}

#endif

} // namespace

QString kindFault(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir())
        return folderText();
    return info.exists() && !info.isFile() ? strangeText() : QString();
}

QString reason(int systemError)
{
    for (const SystemReason &entry : systemReasons) {
        if (entry.error == systemError)
            return QString::fromLatin1(entry.text);
    }
    return QStringLiteral("the system refuses it (error %1)").arg(systemError);
}

QString reason(const QFileDevice &file)
{
    qDebug() << file.fileName() << file.error() << file.errorString();
    // The error is a class of errors only; its text is the system's.
    for (const SystemReason &entry : systemReasons) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): only compared at once
        if (file.errorString() == QString::fromLocal8Bit(std::strerror(entry.error)))
            return QString::fromLatin1(entry.text);
    }
    switch (file.error()) {
    case QFileDevice::ResourceError:
        return reason(ENOSPC);
    case QFileDevice::PermissionsError:
        return reason(EACCES);
    case QFileDevice::ReadError:
        return QStringLiteral("the disk can't be read");
    case QFileDevice::OpenError:
        return QFileInfo::exists(file.fileName()) ? QStringLiteral("the system refuses it")
                                                  : reason(ENOENT);
    default:
        return QStringLiteral("the disk can't be written; it may be full");
    }
}

bool open(QFile &file, QString &fault)
{
#ifdef Q_OS_UNIX
    // What is part of the program has no handle.
    if (!file.fileName().startsWith(u':'))
        return openOrdinary(file, fault);
#endif
    fault = kindFault(file.fileName());
    if (fault.isEmpty() && !file.open(QIODevice::ReadOnly))
        fault = reason(file);
    return fault.isEmpty();
}

std::optional<QByteArray> read(const QString &path, qint64 most, QString &fault)
{
    QFile file(path);
    if (!open(file, fault))
        return {};
    constexpr qint64 bytesOfMegabyte = 1024 * 1024;
    const auto tooLarge = [&] {
        fault = most >= bytesOfMegabyte
                    ? QStringLiteral("it is larger than %1 MB").arg(most / bytesOfMegabyte)
                    : QStringLiteral("it is larger than %1 bytes").arg(most);
    };
    if (file.size() > most) {
        tooLarge();
        return {};
    }
    // Some files have no size, and others grow meanwhile.
    constexpr qint64 piece = bytesOfMegabyte;
    QByteArray content = file.read(file.size() + 1);
    while (!file.atEnd() && content.size() <= most && file.error() == QFileDevice::NoError) {
        const QByteArray more = file.read(std::min(piece, most + 1 - content.size()));
        if (more.isEmpty())
            break;
        content += more;
    }
    if (file.error() != QFileDevice::NoError) {
        fault = reason(file);
        return {};
    }
    if (content.size() > most) {
        tooLarge();
        return {};
    }
    return content;
}

bool synchronise(QFileDevice &file)
{
    if (!file.flush())
        return false;
#ifdef Q_OS_UNIX
    int result = 0;
    do {
        result = fsync(file.handle());
    } while (result != 0 && errno == EINTR);
    // Some network file systems have no such call and write through.
    return result == 0 || errno == EINVAL || errno == ENOTSUP;
#elif defined(Q_OS_WIN)
    return _commit(file.handle()) == 0;
#else
    return true;
#endif
}

bool synchroniseFolder([[maybe_unused]] const QString &folder)
{
#ifdef Q_OS_UNIX
    const int handle =
        ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // A folder may be closed to readers and open to who knows the names in it.
    if (handle < 0)
        return errno == EACCES;
    const bool done = fsync(handle) == 0 || errno == EINVAL || errno == ENOTSUP;
    ::close(handle);
    return done;
#else
    return true;
#endif
}

} // namespace SafeFile
