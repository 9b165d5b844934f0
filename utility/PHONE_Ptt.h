// Requests to start and end push-to-talk calls.
#pragma once

#include "platform/ZynExport.h"

#include <QtCore/QString>

#include <cstdint>

/// @file
/// Both requests print debug lines: see platform/QuietTrace.h.

/// A push-to-talk call; the push-to-talk application gives the second list and the two values their meaning.
struct PTT_CALL_INFO_T
{
    QString firstList[25];   ///< the parties' numbers
    QString secondList[25];  ///< another text for each party, in the same order
    uint8_t count = 0;       ///< how many entries of each list are in use, 1 to 25
    int32_t firstValue = 0;  ///< passed on as it is
    int32_t secondValue = 0; ///< passed on as it is
};

/// Asks the push-to-talk application for a call. @return 0 and nothing is sent when the count is 0 or above 25; else 1,
/// whether anybody got the request or not
ZYN_EXPORT int PHONE_MakePttCall(PTT_CALL_INFO_T const& call);

/// Asks the push-to-talk application to end the call. @return 1, whether anybody got the request or not
ZYN_EXPORT int PHONE_DropPttCall();
