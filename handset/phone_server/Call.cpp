// One call: its parties, its course, and how long they talked.
#include "handset/phone_server/Call.h"

#include <algorithm>

namespace zyn::handset {

bool isDialable(const QString& number)
{
    constexpr qsizetype kLongest = sizeof(PHONE_ENG_RecentCall::phoneNumber) - 1;
    constexpr QLatin1String kCharacters("0123456789*#+pPwW,;");
    return !number.isEmpty() && number.size() <= kLongest
           && std::ranges::all_of(number, [&](QChar character) { return kCharacters.contains(character); });
}

Call::Call(CallCourse course, Party party, RC_CALL_TYPE_T type)
    : m_course(course)
    , m_party(std::move(party))
    , m_type(type)
    , m_start(QDateTime::currentDateTime())
{}

bool Call::take(CallEvent event)
{
    if (!m_course.take(event))
        return false;
    if (m_course.state() == CallState::Connected)
        m_talk.start();
    else if (m_talk.isValid())
        m_talked = m_talk.elapsed();
    return true;
}

int Call::duration() const
{
    constexpr qint64 kSecond = 1000;
    return m_course.wasConnected() ? std::max(1, static_cast<int>((m_talked + kSecond / 2) / kSecond)) : 0;
}

PHONE_ENG_RecentCall Call::record() const
{
    const RC_CALL_CATEGORY_T category = m_course.category();
    PHONE_ENG_RecentCall record(m_party.number, m_start, duration(), category != RC_CALL_CATEGORY_MISSED);
    record.setDisplayName(m_party.name);
    record.category = category;
    record.callType = m_type;
    record.completed = m_course.wasConnected() ? 1 : 0;
    return record;
}

} // namespace zyn::handset
