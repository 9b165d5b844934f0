// The enumerations of call records.
#pragma once

#include <cstdint>

/// The list that a call belongs to.
enum RC_CALL_CATEGORY_T : int32_t {
    RC_CALL_CATEGORY_NONE = 0,
    RC_CALL_CATEGORY_ANSWERED = 1,
    RC_CALL_CATEGORY_MISSED = 2,
    RC_CALL_CATEGORY_DIALED = 3,
    RC_CALL_CATEGORY_ALL = 4,   ///< the three lists together
    RC_CALL_CATEGORY_EXTRA = 5, ///< a view of the recent-call screens; no list is kept for it
};

/// The category type of the older interface.
using CALL_CATEGORY_T = RC_CALL_CATEGORY_T;

/// The kind of a call; any other value is stored and passed on unchanged.
enum RC_CALL_TYPE_T : int32_t {
    RC_CALL_TYPE_VOICE = 1,
    RC_CALL_TYPE_PTT1 = 3, ///< push-to-talk: the record's push-to-talk fields are valid
    RC_CALL_TYPE_PTT2 = 4, ///< push-to-talk: the record's push-to-talk fields are valid
};

/// Push-to-talk identity type; stored and returned without interpretation.
enum RC_PTT_ID_T : int32_t {};

/// Push-to-talk party type; stored and returned without interpretation.
enum RC_PTT_PARTY_TYPE_T : int32_t {};
