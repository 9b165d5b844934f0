// Notices that directories and files have changed.
#pragma once

#include "platform/posix/ForkLocalFd_p.h"

#include <QtCore/QByteArray>

#include <cstdint>

namespace zyn::posix {

/**
 * Notices changes of directories and of what has a name in them.
 *
 * The kernel queues an event before the system call that causes it returns: whatever has been done is in the very next
 * poll(). (A directory's time stamps cannot promise that: two changes in one tick look like one.) What is mounted over
 * a directory goes unnoticed.
 */
class DirectoryWatch
{
public:
    /// What addFile() gives for what cannot be watched.
    static constexpr int kUnwatched = -1;

    DirectoryWatch();

    /// Watches where the absolute @p path leads: that the directories on the way stay where they are, or that the first
    /// one that is missing comes.
    void addPath(const QByteArray& path);
    /// Watches the file @p name in the open @p directory: that it keeps its name.
    int addFile(int directory, const QByteArray& name);
    void remove(int id);

    /// Whether anything has happened since the last time.
    bool poll();

    /// Becomes readable when something happens; -1 when watching is impossible.
    int fd() const { return m_fd.get(); }
    /// False for a copy in a forked child, which notices nothing.
    bool isOwn() const { return m_fd.isOwn(); }

private:
    int addWatch(const QByteArray& path, uint32_t events);
    /// @p kept is IN_MASK_ADD where what is watched of it already stays watched.
    bool addDirectory(const QByteArray& path, uint32_t kept);

    ForkLocalFd m_fd;
};

} // namespace zyn::posix
