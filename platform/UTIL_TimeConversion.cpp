// Conversion between date-times and the seconds that records store.
#include "platform/UTIL_TimeConversion.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace {

qint64 heldTo32Bits(qint64 seconds)
{
    return std::clamp<qint64>(seconds, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max());
}

} // namespace

long UTIL_TimeConversion::toUTC(const QDateTime& dateTime)
{
    return dateTime.isValid() ? static_cast<long>(heldTo32Bits(dateTime.toSecsSinceEpoch())) : 0;
}

QDateTime UTIL_TimeConversion::fromUTC(long seconds)
{
    return QDateTime::fromSecsSinceEpoch(heldTo32Bits(seconds));
}
