// The records of the activity log: an activity of a favourite, a call or a message, and a favourite's place.
#pragma once

#include "platform/ZynExport.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtCore/QString>

#include <cstddef>
#include <cstdint>
#include <type_traits>

/**
 * A call record with the fields of the activity log: 300 bytes, little-endian, on disk as in memory.
 *
 * | Offset | Size | Field            |
 * |--------|------|------------------|
 * | 0      | 228  | the call record  |
 * | 228    | 4    | topPalsAvlIndex  |
 * | 232    | 4    | topPalsAvlPos    |
 * | 236    | 4    | msgType          |
 * | 240    | 4    | msgInfo          |
 * | 244    | 41   | msgString        |
 * | 285    | 11   | reserved, 0      |
 * | 296    | 1    | flagA            |
 * | 297    | 1    | flagB            |
 * | 298    | 2    | padding, 0       |
 *
 * Every constructor clears what the table calls reserved and padding. Making one from another record writes a line to
 * standard output before and after: see platform/QuietTrace.h.
 */
class ZYN_EXPORT PHONE_ENG_ActivityLog : public PHONE_ENG_RecentCall
{
public:
    int32_t topPalsAvlIndex; ///< given by the store when the entry is added; -1 before
    int32_t topPalsAvlPos;   ///< place of the entry in its contact's file, from 0; -1 when it has none
    int32_t msgType;         ///< 0 for a call, anything else for a message
    int32_t msgInfo;         ///< 0 in a new record; not interpreted
    char msgString[41];      ///< Latin-1, at most 40 characters and a NUL
    char reserved285[11];    ///< 0
    uint8_t flagA;           ///< 0 in a new record; not interpreted
    uint8_t flagB;           ///< 0 in a new record; not interpreted
    char padding298[2];      ///< 0

    /// An empty slot's record: a blank call, index and place -1.
    PHONE_ENG_ActivityLog();
    /// The activity of the call @p value: no message, index and place -1.
    explicit PHONE_ENG_ActivityLog(const PHONE_ENG_RecentCall& value);
    /// A copy of every field of @p value.
    PHONE_ENG_ActivityLog(const PHONE_ENG_ActivityLog& value);
    /// Copies every field of @p value.
    PHONE_ENG_ActivityLog& operator=(const PHONE_ENG_ActivityLog& value) = default;
    ~PHONE_ENG_ActivityLog() = default;

    /// Clears the message fields and the two flags; the call, the index and the place stay.
    void init();

    /// The index that the store gave the entry; -1 before.
    int32_t getTopPalsAvlIndex() const { return topPalsAvlIndex; }

    /// The text of the message; empty for a call.
    QString getMsgString() const;
    /// Stores the first 40 characters of @p message as Latin-1; an empty text changes nothing.
    void setMsgString(const QString& message);
};

#pragma GCC diagnostic push
// The base class has data as well, so offsetof is "conditionally supported"; the compilers of the handset support it.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
static_assert(offsetof(PHONE_ENG_ActivityLog, topPalsAvlIndex) == 228);
static_assert(offsetof(PHONE_ENG_ActivityLog, topPalsAvlPos) == 232);
static_assert(offsetof(PHONE_ENG_ActivityLog, msgType) == 236);
static_assert(offsetof(PHONE_ENG_ActivityLog, msgInfo) == 240);
static_assert(offsetof(PHONE_ENG_ActivityLog, msgString) == 244);
static_assert(offsetof(PHONE_ENG_ActivityLog, reserved285) == 285);
static_assert(offsetof(PHONE_ENG_ActivityLog, flagA) == 296);
static_assert(offsetof(PHONE_ENG_ActivityLog, flagB) == 297);
static_assert(offsetof(PHONE_ENG_ActivityLog, padding298) == 298);
#pragma GCC diagnostic pop
static_assert(sizeof(PHONE_ENG_ActivityLog) == 300 && alignof(PHONE_ENG_ActivityLog) == 4);

/// One of the five places for a favourite: 24 bytes, little-endian, on disk as in memory.
struct TopPalNumberDetail
{
    int32_t nthFileItem = kFree; ///< the place's own number, 0 to 4; kFree when it holds no favourite
    char phoneNumber[18] = {};   ///< Latin-1, at most 17 characters, padded with NUL
    char padding[2] = {};        ///< 0 when written, ignored when read

    static constexpr int kPlaces = 5;    ///< how many places there are
    static constexpr int32_t kFree = -1; ///< nthFileItem of a place without a favourite
};
static_assert(offsetof(TopPalNumberDetail, nthFileItem) == 0);
static_assert(offsetof(TopPalNumberDetail, phoneNumber) == 4);
static_assert(offsetof(TopPalNumberDetail, padding) == 22);
static_assert(sizeof(TopPalNumberDetail) == 24 && std::is_trivially_copyable_v<TopPalNumberDetail>);
