// Call records behind virtual accessors, as the library's interfaces use them.
#include "recentcall/utility/RC_RecordInterface.h"

namespace {

constexpr RC_PTT_PARTY_TYPE_T kNoPartyType{-1};
constexpr RC_PTT_ID_T kNoIdType{0};

} // namespace

RC_RecordInterface::~RC_RecordInterface() = default;

RC_RecordInterfaceImpl::RC_RecordInterfaceImpl()
    : RC_RecordInterfaceImpl(new PHONE_ENG_RecentCall)
{}

RC_RecordInterfaceImpl::RC_RecordInterfaceImpl(const QString& number, const QDateTime& start, int duration)
    : RC_RecordInterfaceImpl(new PHONE_ENG_RecentCall(number, start, duration))
{}

RC_RecordInterfaceImpl::RC_RecordInterfaceImpl(PHONE_ENG_RecentCall* record)
    : m_record(record ? record : new PHONE_ENG_RecentCall)
{}

RC_RecordInterfaceImpl::~RC_RecordInterfaceImpl() = default;

void RC_RecordInterfaceImpl::setCategory(RC_CALL_CATEGORY_T category)
{
    m_record->category = category;
}

RC_CALL_CATEGORY_T RC_RecordInterfaceImpl::getCategory() const
{
    return m_record->category;
}

void RC_RecordInterfaceImpl::setPhoneNumber(const QString& number)
{
    m_record->setPhoneNumber(number);
}

QString RC_RecordInterfaceImpl::getPhoneNumber() const
{
    return m_record->getPhoneNumber();
}

void RC_RecordInterfaceImpl::setStartDateTime(const QDateTime& start)
{
    m_record->setStartDateTime(start);
}

QDateTime RC_RecordInterfaceImpl::getStartDateTime() const
{
    return m_record->getStartDateTime();
}

void RC_RecordInterfaceImpl::setDuration(int duration)
{
    m_record->duration = duration;
}

int RC_RecordInterfaceImpl::getDuration() const
{
    return m_record->duration;
}

void RC_RecordInterfaceImpl::setCompletedStatus(bool completed)
{
    m_record->completed = completed ? 1 : 0;
}

bool RC_RecordInterfaceImpl::getCompletedStatus() const
{
    return m_record->completed != 0;
}

bool RC_RecordInterfaceImpl::isRead() const
{
    return (m_record->readFlags & PHONE_ENG_RecentCall::kRead) != 0;
}

int RC_RecordInterfaceImpl::getUID() const
{
    return m_record->uid;
}

RC_CALL_TYPE_T RC_RecordInterfaceImpl::getCallType() const
{
    return m_record->callType;
}

bool RC_RecordInterfaceImpl::getIsStrictRead() const
{
    return (m_record->readFlags & PHONE_ENG_RecentCall::kStrictRead) != 0;
}

void RC_RecordInterfaceImpl::setPttPartyType(RC_PTT_PARTY_TYPE_T type)
{
    if (m_record->isPtt())
        m_record->pttPartyType = type;
}

RC_PTT_PARTY_TYPE_T RC_RecordInterfaceImpl::getPttPartyType() const
{
    return m_record->isPtt() ? m_record->pttPartyType : kNoPartyType;
}

void RC_RecordInterfaceImpl::setPttIDType(RC_PTT_ID_T type)
{
    if (m_record->isPtt())
        m_record->pttIdType = type;
}

RC_PTT_ID_T RC_RecordInterfaceImpl::getPttIDType() const
{
    return m_record->isPtt() ? m_record->pttIdType : kNoIdType;
}

void RC_RecordInterfaceImpl::setPttSessionID(const QString& session)
{
    if (m_record->isPtt())
        m_record->setPttSessionID(session);
}

QString RC_RecordInterfaceImpl::getPttSessionID() const
{
    return m_record->isPtt() ? m_record->getPttSessionID() : QString();
}

void RC_RecordInterfaceImpl::setCallType(RC_CALL_TYPE_T type)
{
    m_record->callType = type;
}

void RC_RecordInterfaceImpl::setPttAttribute(const RC_PttInfo_T& info)
{
    if (!m_record->isPtt())
        return;
    m_record->pttIdType = info.idType;
    m_record->category = info.category;
    m_record->pttExtra1 = info.extra1;
    m_record->pttPartyType = info.partyType;
    m_record->setPttSessionID(info.sessionID);
    m_record->pttExtra2 = info.extra2;
    m_record->completed = info.completed ? 1 : 0;
}
