// The right to change the activity log, for a verb that does.
#pragma once

#include "handset/favourites/Favourites.h"
#include "tools/zynphone/ExitCode.h"

namespace zyn::tool {

/// That right, for as long as it lives; a failure when another process has it.
class FavouritesOwnership
{
public:
    FavouritesOwnership()
    {
        if (!m_lock.lock())
            throw failure(m_lock.problem());
    }

private:
    handset::ActivityLogLock m_lock;
};

} // namespace zyn::tool
