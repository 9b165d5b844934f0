// The record of one call.
#pragma once

#include "platform/ZynExport.h"
#include "recentcall/utility/RC_Types.h"

#include <QtCore/QDateTime>
#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <cstddef>
#include <cstdint>
#include <type_traits>

/**
 * The record of one call: 228 bytes, stored in files and sent on sockets as they are in memory, little-endian.
 *
 * The offset and width of every field are asserted below. Reserved bytes are zero after init() and are carried
 * unchanged. The identity of a record is its uid: of two records the one with the greater uid is the newer, and the
 * lesser.
 */
class ZYN_EXPORT PHONE_ENG_RecentCall
{
public:
    char phoneNumber[42];             ///< Latin-1, at most 41 characters and a NUL
    char reserved42[2];               ///< not interpreted
    int32_t startTime;                ///< seconds since 1970 UTC
    int32_t duration;                 ///< as the caller supplies it, here seconds
    uint8_t readFlags;                ///< kRead, kStrictRead
    char reserved53[3];               ///< not interpreted
    int32_t uid;                      ///< given by the store when the record is added
    RC_CALL_CATEGORY_T category;      ///< the list that the call belongs to
    int8_t inUse;                     ///< not 0: the slot that holds the record contains a call
    char reserved65[3];               ///< not interpreted
    int32_t slot;                     ///< place of the record in its list's file, from 0; -1 when none was free
    int32_t reservedA;                ///< not interpreted
    int32_t reservedB;                ///< not interpreted
    RC_CALL_TYPE_T callType;          ///< the kind of the call
    int32_t pttExtra1;                ///< push-to-talk calls only
    uint8_t completed;                ///< whether the call was completed: 0 or 1
    char reserved89[3];               ///< not interpreted
    RC_PTT_ID_T pttIdType;            ///< push-to-talk calls only
    int32_t pttExtra2;                ///< push-to-talk calls only
    RC_PTT_PARTY_TYPE_T pttPartyType; ///< push-to-talk calls only
    char pttSessionId[101];           ///< push-to-talk calls only; UTF-8, at most 100 bytes and a NUL
    char reserved205[7];              ///< not interpreted
    char displayName[16];             ///< Latin-1, at most 15 characters and a NUL

    /// Bits of readFlags.
    static constexpr uint8_t kRead = 1;       ///< the user has seen the call
    static constexpr uint8_t kStrictRead = 2; ///< strict read; not interpreted

    /// A blank record, as after init().
    PHONE_ENG_RecentCall();
    /// A blank record with the given @p number, @p start and @p duration, each stored as its setter or field says.
    PHONE_ENG_RecentCall(const QString& number, const QDateTime& start, int duration);
    /// As above; readFlags is 1 when @p read, else 0.
    PHONE_ENG_RecentCall(const QString& number, const QDateTime& start, int duration, bool read);

    /// Clears all bytes, then sets the call type to RC_CALL_TYPE_VOICE.
    void init();

    /// @{ Store a text, cut at the field's width; an empty text leaves the field as it was.
    void setPhoneNumber(const QString& number);   ///< as Latin-1, at most 41 bytes
    void setDisplayName(const QString& name);     ///< as Latin-1, at most 15 bytes
    void setPttSessionID(const QString& session); ///< as UTF-8, at most 100 bytes, even inside a character
    /// @}

    /// @{ The bytes up to the first NUL, or the whole field when it has none, read as Latin-1.
    QString getPhoneNumber() const;
    QString getDisplayName() const;
    QString getPttSessionID() const;
    /// @}

    /// Sets startTime; times outside its 32 bits are held to the nearest that fits, an invalid one gives 0.
    void setStartDateTime(const QDateTime& start);
    /// The start in local time.
    QDateTime getStartDateTime() const;

    /// Whether the call is a push-to-talk call, so that the push-to-talk fields are valid.
    bool isPtt() const { return callType == RC_CALL_TYPE_PTT1 || callType == RC_CALL_TYPE_PTT2; }

    /// Whether both have the same uid.
    bool operator==(const PHONE_ENG_RecentCall& other) const { return uid == other.uid; }
    /// Whether this record is newer: its uid is greater.
    bool operator<(const PHONE_ENG_RecentCall& other) const { return uid > other.uid; }

    /// Prints nothing. Part of the interface.
    void print() const;
};

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "records are little-endian and are stored as they are");
static_assert(offsetof(PHONE_ENG_RecentCall, phoneNumber) == 0);
static_assert(offsetof(PHONE_ENG_RecentCall, reserved42) == 42);
static_assert(offsetof(PHONE_ENG_RecentCall, startTime) == 44);
static_assert(offsetof(PHONE_ENG_RecentCall, duration) == 48);
static_assert(offsetof(PHONE_ENG_RecentCall, readFlags) == 52);
static_assert(offsetof(PHONE_ENG_RecentCall, reserved53) == 53);
static_assert(offsetof(PHONE_ENG_RecentCall, uid) == 56);
static_assert(offsetof(PHONE_ENG_RecentCall, category) == 60);
static_assert(offsetof(PHONE_ENG_RecentCall, inUse) == 64);
static_assert(offsetof(PHONE_ENG_RecentCall, reserved65) == 65);
static_assert(offsetof(PHONE_ENG_RecentCall, slot) == 68);
static_assert(offsetof(PHONE_ENG_RecentCall, reservedA) == 72);
static_assert(offsetof(PHONE_ENG_RecentCall, reservedB) == 76);
static_assert(offsetof(PHONE_ENG_RecentCall, callType) == 80);
static_assert(offsetof(PHONE_ENG_RecentCall, pttExtra1) == 84);
static_assert(offsetof(PHONE_ENG_RecentCall, completed) == 88);
static_assert(offsetof(PHONE_ENG_RecentCall, reserved89) == 89);
static_assert(offsetof(PHONE_ENG_RecentCall, pttIdType) == 92);
static_assert(offsetof(PHONE_ENG_RecentCall, pttExtra2) == 96);
static_assert(offsetof(PHONE_ENG_RecentCall, pttPartyType) == 100);
static_assert(offsetof(PHONE_ENG_RecentCall, pttSessionId) == 104);
static_assert(offsetof(PHONE_ENG_RecentCall, reserved205) == 205);
static_assert(offsetof(PHONE_ENG_RecentCall, displayName) == 212);
static_assert(sizeof(PHONE_ENG_RecentCall) == 228 && alignof(PHONE_ENG_RecentCall) == 4);
static_assert(std::is_trivially_copyable_v<PHONE_ENG_RecentCall> && std::is_standard_layout_v<PHONE_ENG_RecentCall>);
