// Descriptors that stay with the process that opened them when it forks.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <cstddef>
#include <functional>

namespace zyn::posix {

/// Counts the forks between the process that first asked and this one: differs in a child from what its parent saw.
unsigned forkGeneration();

/// How many descriptors this process may have open.
size_t descriptorLimit();

/**
 * Owns one descriptor that a forked child does not share: the child finds /dev/null under its number (where there is a
 * /dev/null when the process first asks).
 *
 * Closing on exec does not help a child that never calls it, and a child's copy would keep a socket alive, and its
 * peers waiting, after the process that serves it has died.
 */
class ForkLocalFd
{
public:
    /// Owns what @p open returns. No thread forks in between; open must neither fork nor own such a descriptor itself.
    explicit ForkLocalFd(const std::function<UniqueFd()>& open);
    ForkLocalFd(ForkLocalFd&&) = default;
    ForkLocalFd& operator=(ForkLocalFd&&) = delete;
    ~ForkLocalFd() { reset(); }

    bool isValid() const noexcept { return m_fd.isValid(); }
    /// Whether this process opened it; false for an object that a fork has copied.
    bool isOwn() const { return m_generation == forkGeneration(); }
    int get() const noexcept { return m_fd.get(); }
    void reset();

private:
    UniqueFd m_fd;
    unsigned m_generation = forkGeneration();
};

} // namespace zyn::posix
