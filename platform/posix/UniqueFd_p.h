// A file descriptor that closes itself, and system calls that a signal may interrupt.
#pragma once

#include <cerrno>
#include <utility>

#include <unistd.h>

namespace zyn::posix {

/// Calls @p call again for as long as a signal interrupts it.
template<typename Call>
auto retry(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

/// Owns one descriptor, or none (-1).
class UniqueFd
{
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) noexcept
        : m_fd(fd)
    {}
    UniqueFd(UniqueFd&& other) noexcept
        : m_fd(other.release())
    {}
    UniqueFd& operator=(UniqueFd&& other) noexcept
    {
        reset(other.release());
        return *this;
    }
    ~UniqueFd() { reset(); }

    bool isValid() const noexcept { return m_fd >= 0; }
    int get() const noexcept { return m_fd; }
    /// Hands the descriptor to the caller.
    int release() noexcept { return std::exchange(m_fd, -1); }
    void reset(int fd = -1) noexcept
    {
        // Not repeated on EINTR: Linux has released the descriptor by then, and its number may be somebody else's.
        if (const int old = std::exchange(m_fd, fd); old >= 0)
            ::close(old);
    }

private:
    int m_fd = -1;
};

} // namespace zyn::posix
