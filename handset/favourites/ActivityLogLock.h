// The right to change the activity log.
#pragma once

#include "platform/posix/FileLock_p.h"

#include <QtCore/QString>

namespace zyn::favourites {

/**
 * The right to change the favourites and their activity log, which one process at a time has: a lock file in the store
 * directory. It ends with the object, and with the process, however that ends.
 */
class ActivityLogLock
{
public:
    ActivityLogLock();
    /// Of the store in @p directory, which exists.
    explicit ActivityLogLock(const QString& directory);

    /// Takes the lock; false when another process has it or the file cannot be made, as something else has its name.
    bool take();

    /// Why take() gave false, with the process that has the lock.
    QString problem() const;

private:
    const QString m_path;
    posix::FileLock m_lock;
    bool m_isOwned = false; ///< by another process, when it was last tried
};

} // namespace zyn::favourites
