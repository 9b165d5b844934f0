// Tells whether directories have changed since somebody looked.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QtGlobal>

namespace zyn::posix {

/**
 * Counts changes in directories: names that come by being renamed, that go, and changed permissions.
 *
 * The kernel queues an event before the system call that causes it returns: whatever has been renamed into
 * place is in the very next count. (A directory's time stamps cannot promise that: two changes in one tick
 * look like one.)
 */
class DirectoryWatch
{
public:
    DirectoryWatch();

    /// Counts the changes in @p directory from now on. Doing so again costs nothing more.
    void add(int directory);
    /// Forgets all directories, which counts as a change.
    void restart();
    /// A number that differs from the one before when anything may have changed: always, when watching is
    /// impossible.
    quint64 changes();

private:
    UniqueFd m_fd;
    quint64 m_changes = 1;
};

} // namespace zyn::posix
