// Notices that directories and files have changed.
#pragma once

#include "platform/posix/ForkLocalFd_p.h"

#include <QtCore/QByteArray>

#include <cstdint>
#include <unordered_map>

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
    /// What add() gives for what cannot be watched. It may have changed at any time.
    static constexpr int kUnwatched = -1;

    DirectoryWatch();

    /// Watches the open @p directory from now on: names that come and go, and permissions, also those of what is in it.
    /// hasChanged() reports what happens to it alone.
    int add(int directory);
    /// The same; what happens to it counts as a change of everything.
    void addShared(int directory);
    /// Watches where the absolute @p path leads: that the directories on the way stay where they are, or that the first
    /// one that is missing comes. A change counts as one of everything.
    void addPath(const QByteArray& path);
    /// Watches the file @p name in the open @p directory: that it keeps its name.
    int addFile(int directory, const QByteArray& name);
    void remove(int id);

    /// Notes what has happened; whether anything has.
    bool poll();
    /// The present moment, as far as poll() has noted.
    quint64 now() const { return m_now; }
    /// Whether what @p id watches may have changed after @p moment.
    bool hasChanged(int id, quint64 moment) const;
    /// Whether everything may have changed after @p moment: always, when watching is impossible.
    bool haveAllChanged(quint64 moment) const { return !m_fd.isValid() || m_allChanged > moment; }

    /// Becomes readable when something happens; -1 when watching is impossible.
    int fd() const { return m_fd.get(); }
    /// False for a copy in a forked child, which notices nothing.
    bool isOwn() const { return m_fd.isOwn(); }

private:
    int addWatch(const QByteArray& path, uint32_t events);
    /// @p kept is IN_MASK_ADD where what is watched of it already stays watched.
    bool addDirectory(const QByteArray& path, uint32_t kept);

    ForkLocalFd m_fd;
    quint64 m_now = 1;
    quint64 m_allChanged = 1;
    std::unordered_map<int, quint64> m_changed; ///< when what has an id of its own has changed last
};

} // namespace zyn::posix
