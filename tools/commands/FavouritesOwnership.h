// The right to change the activity log, for a verb that does.
#pragma once

#include "handset/favourites/ActivityLogLock.h"
#include "tools/zynphone/ExitCode.h"

namespace zyn::tool {

/// That right, for as long as it lives; a failure when another process has it.
class FavouritesOwnership
{
public:
    FavouritesOwnership()
    {
        if (!m_lock.take())
            throw failure(m_lock.problem());
    }

private:
    favourites::ActivityLogLock m_lock;
};

} // namespace zyn::tool
