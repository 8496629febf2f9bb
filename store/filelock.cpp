#include "store/filelock.h"

#include <QFile>

#include <cerrno>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

std::unique_ptr<FileLock> FileLock::take(const QString &path, Open open)
{
#ifdef Q_OS_UNIX
    constexpr mode_t permissions = 0666; // less the user's mask
    const int flags = open == Open::New ? O_CREAT | O_EXCL : O_NONBLOCK | O_NOCTTY;
    const int handle =
        ::open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC | flags, permissions);
    if (handle < 0)
        return nullptr;
    // Unlike the locks of the database, these belong to the handle: whoever else in this process
    // opens and closes the file takes nothing away.
    const bool locked = flock(handle, LOCK_EX | LOCK_NB) == 0;
    // Some network file systems have no locks. There a new file can be used all the same, and
    // nobody can tell that an old one is free.
    const bool isUsable = locked || (open == Open::New && errno != EWOULDBLOCK);
    if (!isUsable) {
        ::close(handle);
        return nullptr;
    }
    return std::unique_ptr<FileLock>(new FileLock(handle));
#else
    QFile file(path);
    const auto mode = open == Open::New ? QIODevice::WriteOnly | QIODevice::NewOnly
                                        : QIODevice::ReadWrite | QIODevice::ExistingOnly;
    return file.open(mode) ? std::unique_ptr<FileLock>(new FileLock(-1)) : nullptr;
#endif
}

FileLock::~FileLock()
{
#ifdef Q_OS_UNIX
    ::close(m_handle);
#endif
}
