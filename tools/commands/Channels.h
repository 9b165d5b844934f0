// The library's channels by their names.
#pragma once

#include "recentcall/utility/RecentCall_Messages_p.h"

#include <QtCore/QStringList>

namespace zyn::tool {

inline QStringList channelNames()
{
    QStringList names;
    for (const char* const channel : kChannels)
        names += QString::fromUtf8(channel);
    return names;
}

} // namespace zyn::tool
