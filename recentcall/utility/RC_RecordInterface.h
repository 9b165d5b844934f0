// Call records behind virtual accessors, as the library's interfaces use them.
#pragma once

#include "platform/ZynExport.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "recentcall/utility/RC_Types.h"

#include <QtCore/QDateTime>
#include <QtCore/QString>

#include <cstddef>
#include <cstdint>
#include <memory>

/**
 * A call record behind virtual accessors.
 *
 * The order of the virtual operations is part of the interface: applications are built against it. The meaning of each
 * is that of the field of the same name in PHONE_ENG_RecentCall.
 *
 * There is none for the caller's name: it takes a cast to reach it. Every item of RC_Interface::getRecordList() is an
 * RC_RecordInterfaceImpl, so a static_cast is safe there; for a record from elsewhere a dynamic_cast tells.
 *
 *     static_cast<const RC_RecordInterfaceImpl*>(call)->getData()->getDisplayName()
 */
class ZYN_EXPORT RC_RecordInterface
{
public:
    /// Puts the call into the list of @p category.
    virtual void setCategory(RC_CALL_CATEGORY_T category) = 0;
    /// The list that the call belongs to.
    virtual RC_CALL_CATEGORY_T getCategory() const = 0;
    /// Stores at most 41 characters of @p number as Latin-1; an empty one changes nothing.
    virtual void setPhoneNumber(const QString& number) = 0;
    /// The other party's number; empty when none was stored.
    virtual QString getPhoneNumber() const = 0;
    /// Stores when the call began; an invalid @p start is stored as 1970-01-01 00:00 UTC.
    virtual void setStartDateTime(const QDateTime& start) = 0;
    /// When the call began, in local time.
    virtual QDateTime getStartDateTime() const = 0;
    /// Stores how long the call took; @p duration is not interpreted. The programs of this tree store seconds.
    virtual void setDuration(int duration) = 0;
    /// How long the call took, as it was stored.
    virtual int getDuration() const = 0;
    /// Stores whether the call was completed.
    virtual void setCompletedStatus(bool completed) = 0;
    /// Whether the call was completed.
    virtual bool getCompletedStatus() const = 0;
    /// Whether the user has seen the call. There is no call to set it: see RC_Interface.
    virtual bool isRead() const = 0;
    /// The number by which the log knows the call once it has stored it; from 0 on.
    virtual int getUID() const = 0;
    /// The kind of the call.
    virtual RC_CALL_TYPE_T getCallType() const = 0;
    virtual ~RC_RecordInterface();

protected:
    /// @{ Only a record makes or copies this part of itself.
    RC_RecordInterface() = default;
    RC_RecordInterface(const RC_RecordInterface&) = default;
    RC_RecordInterface& operator=(const RC_RecordInterface&) = default;
    /// @}
};

/// Filled by push-to-talk callers and handed to RC_RecordInterfaceImpl::setPttAttribute().
struct RC_PttInfo_T
{
    int32_t reservedHead = 0;                            ///< not read
    int32_t extra2 = 0;                                  ///< not interpreted
    int32_t reservedMiddle[4] = {};                      ///< not read
    RC_CALL_CATEGORY_T category = RC_CALL_CATEGORY_NONE; ///< the list that the call belongs to
    bool completed = false;                              ///< whether the call was completed
    RC_PTT_ID_T idType{};                                ///< not interpreted
    int32_t extra1 = 0;                                  ///< not interpreted
    RC_PTT_PARTY_TYPE_T partyType{};                     ///< not interpreted
    QString sessionID;                                   ///< stored as UTF-8, at most 100 bytes
};

static_assert(offsetof(RC_PttInfo_T, reservedHead) == 0);
static_assert(offsetof(RC_PttInfo_T, extra2) == 4);
static_assert(offsetof(RC_PttInfo_T, reservedMiddle) == 8);
static_assert(offsetof(RC_PttInfo_T, category) == 24);
static_assert(offsetof(RC_PttInfo_T, completed) == 28);
static_assert(offsetof(RC_PttInfo_T, idType) == 32);
static_assert(offsetof(RC_PttInfo_T, extra1) == 36);
static_assert(offsetof(RC_PttInfo_T, partyType) == 40);
static_assert(offsetof(RC_PttInfo_T, sessionID) == (44 + alignof(QString) - 1) / alignof(QString) * alignof(QString));

/**
 * A call record that owns one PHONE_ENG_RecentCall.
 *
 * The push-to-talk operations act only on a record whose call type is RC_CALL_TYPE_PTT1 or _PTT2; set that first.
 */
class ZYN_EXPORT RC_RecordInterfaceImpl : public RC_RecordInterface
{
public:
    /// A blank record of a voice call.
    RC_RecordInterfaceImpl();
    /// A record of a voice call with the given number, start and duration.
    RC_RecordInterfaceImpl(const QString& number, const QDateTime& start, int duration);
    /// Takes ownership of @p record; a null one is replaced by a blank record.
    explicit RC_RecordInterfaceImpl(PHONE_ENG_RecentCall* record);
    RC_RecordInterfaceImpl(const RC_RecordInterfaceImpl&) = delete;
    RC_RecordInterfaceImpl& operator=(const RC_RecordInterfaceImpl&) = delete;

    void setCategory(RC_CALL_CATEGORY_T category) override;
    RC_CALL_CATEGORY_T getCategory() const override;
    void setPhoneNumber(const QString& number) override;
    QString getPhoneNumber() const override;
    void setStartDateTime(const QDateTime& start) override;
    QDateTime getStartDateTime() const override;
    void setDuration(int duration) override;
    int getDuration() const override;
    void setCompletedStatus(bool completed) override;
    bool getCompletedStatus() const override;
    bool isRead() const override;
    int getUID() const override;
    RC_CALL_TYPE_T getCallType() const override;
    ~RC_RecordInterfaceImpl() override;

    /// Whether the record has the mark for strict read.
    virtual bool getIsStrictRead() const;
    // The three setters work for push-to-talk calls only, so call setCallType() first.

    /// Stores the party type of a push-to-talk call.
    virtual void setPttPartyType(RC_PTT_PARTY_TYPE_T type);
    /// -1 for a call of any other type.
    virtual RC_PTT_PARTY_TYPE_T getPttPartyType() const;
    /// Stores the identity type of a push-to-talk call.
    virtual void setPttIDType(RC_PTT_ID_T type);
    /// 0 for a call of any other type.
    virtual RC_PTT_ID_T getPttIDType() const;
    /// Stores the session of a push-to-talk call as UTF-8, at most 100 bytes; an empty one changes nothing.
    virtual void setPttSessionID(const QString& session);
    /// The stored bytes read as Latin-1, so that only ASCII comes back as it was; a null text for a call of any other
    /// type.
    virtual QString getPttSessionID() const;

    /// The owned record; it stays owned.
    PHONE_ENG_RecentCall* getData() const { return m_record.get(); }
    /// Makes the call one of the kind @p type; the other fields stay.
    void setCallType(RC_CALL_TYPE_T type);
    /// Copies category, completed status and the push-to-talk fields from @p info.
    void setPttAttribute(const RC_PttInfo_T& info);

private:
    std::unique_ptr<PHONE_ENG_RecentCall> m_record;
};

static_assert(sizeof(RC_RecordInterfaceImpl) == 2 * sizeof(void*));
