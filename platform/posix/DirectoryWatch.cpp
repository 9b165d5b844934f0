// Notices that directories and files have changed.
#include "platform/posix/DirectoryWatch_p.h"

#include "platform/posix/Directory_p.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>

#include <sys/inotify.h>

namespace zyn::posix {
namespace {

constexpr uint32_t kMoves = IN_MOVE_SELF | IN_DELETE_SELF;
constexpr uint32_t kArrivals = IN_CREATE | IN_MOVED_TO;
/// A file loses its name by a change of its link count; while it is in use, it is not deleted.
constexpr uint32_t kFileEvents = kMoves | IN_ATTRIB | IN_DONT_FOLLOW;

} // namespace

DirectoryWatch::DirectoryWatch()
    : m_fd([] { return UniqueFd(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)); })
{}

int DirectoryWatch::addWatch(const QByteArray& path, uint32_t events)
{
    return m_fd.isValid() ? ::inotify_add_watch(m_fd.get(), path.constData(), events) : kUnwatched;
}

/// False if there is no such directory. One that this user may not read counts as watched.
bool DirectoryWatch::addDirectory(const QByteArray& path, uint32_t kept)
{
    return addWatch(path, kMoves | IN_ONLYDIR | kept) != kUnwatched || (errno != ENOENT && errno != ENOTDIR);
}

void DirectoryWatch::addPath(const QByteArray& path)
{
    QByteArray reached("/");
    for (qsizetype end = path.indexOf('/', 1); reached != path; end = path.indexOf('/', end + 1)) {
        const QByteArray next = path.first(end < 0 ? path.size() : end);
        // What else is watched of the last one, such as names that come, is watched on without a gap.
        const uint32_t kept = next == path ? uint32_t{IN_MASK_ADD} : 0;
        if (!addDirectory(next, kept)) {
            addWatch(reached, kMoves | kArrivals | IN_ONLYDIR);
            if (!addDirectory(next, kept)) // it may have come in between
                return;
        }
        // A symbolic link on the way may come to lead elsewhere.
        addWatch(next, kMoves | IN_DONT_FOLLOW | IN_MASK_ADD);
        reached = next;
    }
}

int DirectoryWatch::addFile(int directory, const QByteArray& name)
{
    return addWatch(pathThrough(directory, name), kFileEvents);
}

void DirectoryWatch::remove(int id)
{
    if (id != kUnwatched && m_fd.isOwn())
        ::inotify_rm_watch(m_fd.get(), id);
}

bool DirectoryWatch::poll()
{
    alignas(inotify_event) std::array<std::byte, 4096> buffer;
    bool hasChanged = false;
    ssize_t size = 0;
    while (m_fd.isValid() && (size = retry([&] { return ::read(m_fd.get(), buffer.data(), buffer.size()); })) > 0) {
        for (size_t offset = 0; offset < static_cast<size_t>(size);) {
            inotify_event event = {};
            std::memcpy(&event, buffer.data() + offset, sizeof event);
            offset += sizeof event + event.len;
            // The end of a watch has a reason that is an event of its own.
            hasChanged = hasChanged || (event.mask & IN_IGNORED) == 0;
        }
    }
    return hasChanged;
}

} // namespace zyn::posix
