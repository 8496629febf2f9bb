#pragma once

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#endif

/// While it lives no file of this process grows beyond a size: what a full disk looks like to
/// whoever writes. Does nothing where the system has no such limit (`isSupported`).
class FileSizeLimit
{
public:
    explicit FileSizeLimit([[maybe_unused]] unsigned bytes)
    {
#ifdef Q_OS_UNIX
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_former);
        rlimit limit = m_former;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
#endif
    }
    ~FileSizeLimit()
    {
#ifdef Q_OS_UNIX
        setrlimit(RLIMIT_FSIZE, &m_former);
        std::signal(SIGXFSZ, SIG_DFL);
#endif
    }
    Q_DISABLE_COPY(FileSizeLimit)

    static constexpr bool isSupported()
    {
#ifdef Q_OS_UNIX
        return true;
#else
        return false;
#endif
    }

private:
#ifdef Q_OS_UNIX
    rlimit m_former{};
#endif
};
