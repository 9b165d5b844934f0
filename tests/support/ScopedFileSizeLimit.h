// Plays a disk that is full, without a disk that is.
#pragma once

#include <csignal>

#include <sys/resource.h>

/// While it lives, no file of this process grows or is written beyond @p bytes: such a write fails.
class ScopedFileSizeLimit
{
public:
    explicit ScopedFileSizeLimit(rlim_t bytes)
        : m_oldHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_old);
        const rlimit limit = {bytes, m_old.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ScopedFileSizeLimit(const ScopedFileSizeLimit&) = delete;
    ScopedFileSizeLimit& operator=(const ScopedFileSizeLimit&) = delete;
    ~ScopedFileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_old);
        std::signal(SIGXFSZ, m_oldHandler);
    }

private:
    rlimit m_old = {};
    void (*m_oldHandler)(int);
};
