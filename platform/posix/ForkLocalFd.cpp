// Descriptors that stay with the process that opened them when it forks.
#include "platform/posix/ForkLocalFd_p.h"

#include <algorithm>
#include <climits>
#include <mutex>
#include <set>

#include <fcntl.h>
#include <pthread.h>
#include <sys/resource.h>

namespace zyn::posix {
namespace {

struct Registry
{
    Registry();

    std::mutex mutex; ///< held across fork, so that the child finds the set whole
    std::set<int> descriptors;
    const zyn::posix::UniqueFd nothing; ///< kept open: a child might not be able to open it
    unsigned generation = 0;            ///< changes only in a child that has a single thread yet
};

/// Never destroyed: a process may fork, and close descriptors, until its very end.
Registry& registry()
{
    static Registry& theRegistry = *new Registry;
    return theRegistry;
}

void beforeFork()
{
    registry().mutex.lock();
}

void afterForkInParent()
{
    registry().mutex.unlock();
}

void afterForkInChild()
{
    ++registry().generation;
    // Replaced, not closed: their owners still hold the numbers, which must not come to mean something else.
    for (const int descriptor : registry().descriptors)
        ::dup3(registry().nothing.get(), descriptor, O_CLOEXEC);
    registry().mutex.unlock();
}

Registry::Registry()
    : nothing(::open("/dev/null", O_RDWR | O_CLOEXEC))
{
    ::pthread_atfork(&beforeFork, &afterForkInParent, &afterForkInChild);
}

} // namespace

unsigned forkGeneration()
{
    return registry().generation;
}

size_t descriptorLimit()
{
    rlimit limit = {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    return static_cast<size_t>(std::min<rlim_t>(limit.rlim_cur, INT_MAX));
}

ForkLocalFd::ForkLocalFd(const std::function<UniqueFd()>& open)
{
    const std::lock_guard lock(registry().mutex);
    m_fd = open();
    if (m_fd.isValid())
        registry().descriptors.insert(m_fd.get());
}

void ForkLocalFd::reset()
{
    const std::lock_guard lock(registry().mutex);
    registry().descriptors.erase(m_fd.get());
    m_fd.reset();
}

} // namespace zyn::posix
