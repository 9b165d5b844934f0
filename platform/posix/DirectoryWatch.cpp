// Tells whether directories have changed since somebody looked.
#include "platform/posix/DirectoryWatch_p.h"

#include "platform/posix/PrivateDirectory_p.h"
#include "platform/posix/Retry_p.h"

#include <array>
#include <cstddef>

#include <sys/inotify.h>

namespace {

constexpr uint32_t kEvents =
    IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF | IN_ONLYDIR;

int newWatch()
{
    return ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
}

} // namespace

namespace zyn::posix {

DirectoryWatch::DirectoryWatch()
    : m_fd(newWatch())
{}

void DirectoryWatch::restart()
{
    m_fd.reset(newWatch());
    ++m_changes;
}

void DirectoryWatch::add(int directory)
{
    // One directory that cannot be watched makes all counts worthless.
    if (m_fd.isValid() && ::inotify_add_watch(m_fd.get(), pathThrough(directory, ".").constData(), kEvents) < 0)
        m_fd.reset();
}

quint64 DirectoryWatch::changes()
{
    if (!m_fd.isValid())
        return ++m_changes;
    alignas(inotify_event) std::array<std::byte, 4096> events;
    while (retry([&] { return ::read(m_fd.get(), events.data(), events.size()); }) > 0)
        ++m_changes;
    return m_changes;
}

} // namespace zyn::posix
