// Conversion between date-times and the seconds that records store.
#pragma once

#include "platform/ZynExport.h"

#include <QtCore/QDateTime>

/// Conversion between a QDateTime and seconds since 1970-01-01 00:00 UTC, in the 32 bits that a record has for them.
class ZYN_EXPORT UTIL_TimeConversion
{
public:
    /// @p dateTime in seconds since 1970 UTC, held to -2147483648..2147483647; an invalid date-time gives 0.
    static long toUTC(const QDateTime& dateTime);

    /// The local date-time of @p seconds since 1970 UTC, first held to -2147483648..2147483647.
    static QDateTime fromUTC(long seconds);
};
