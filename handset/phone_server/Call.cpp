// One call: its state machine, its other party, and its duration.
#include "handset/phone_server/Call.h"

#include <algorithm>
#include <iterator>

namespace zyn::handset {
namespace {

using enum CallState;

struct Transition
{
    CallState from;
    CallEvent event;
    CallState to;
};

constexpr Transition kTransitions[] = {
    {Dialing, CallEvent::Proceed, Alerting},  {Dialing, CallEvent::HangUp, Ended},
    {Dialing, CallEvent::Fail, Failed},       {Alerting, CallEvent::Proceed, Connected},
    {Alerting, CallEvent::Answer, Connected}, {Alerting, CallEvent::HangUp, Ended},
    {Alerting, CallEvent::Fail, Failed},      {Ringing, CallEvent::Answer, Connected},
    {Ringing, CallEvent::HangUp, Ended},      {Ringing, CallEvent::Miss, Missed},
    {Connected, CallEvent::Proceed, Ended},   {Connected, CallEvent::HangUp, Ended},
};

} // namespace

bool CallStateMachine::apply(CallEvent event)
{
    const auto found = std::ranges::find_if(kTransitions, [&](const Transition& transition) {
        return transition.from == m_state && transition.event == event;
    });
    if (found == std::end(kTransitions))
        return false;
    m_state = found->to;
    m_wasConnected = m_wasConnected || m_state == Connected;
    return true;
}

RC_CALL_CATEGORY_T CallStateMachine::category() const
{
    if (m_isPlaced)
        return RC_CALL_CATEGORY_DIALED;
    return m_state == Missed ? RC_CALL_CATEGORY_MISSED : RC_CALL_CATEGORY_ANSWERED;
}

const char* nameOf(CallState state)
{
    constexpr const char* kNames[] = {"dialing", "alerting", "ringing", "connected", "ended", "missed", "failed"};
    static_assert(std::size(kNames) == static_cast<size_t>(Failed) + 1);
    return kNames[static_cast<size_t>(state)];
}

bool isDialable(const QString& number)
{
    constexpr qsizetype kLongest = sizeof(PHONE_ENG_RecentCall::phoneNumber) - 1;
    constexpr QLatin1String kCharacters("0123456789*#+pPwW,;");
    return !number.isEmpty() && number.size() <= kLongest
           && std::ranges::all_of(number, [&](QChar character) { return kCharacters.contains(character); });
}

Call::Call(CallStateMachine machine, Party party, RC_CALL_TYPE_T type)
    : m_machine(machine)
    , m_party(std::move(party))
    , m_type(type)
    , m_start(QDateTime::currentDateTime())
    , m_since(m_start)
{}

bool Call::apply(CallEvent event)
{
    if (!m_machine.apply(event))
        return false;
    m_since = QDateTime::currentDateTime();
    if (m_machine.state() == CallState::Connected)
        m_talk.start();
    else if (m_talk.isValid())
        m_talked = m_talk.elapsed();
    return true;
}

int Call::duration() const
{
    constexpr qint64 kSecond = 1000;
    return m_machine.wasConnected() ? std::max(1, static_cast<int>((m_talked + kSecond / 2) / kSecond)) : 0;
}

PHONE_ENG_RecentCall Call::record() const
{
    const RC_CALL_CATEGORY_T category = m_machine.category();
    PHONE_ENG_RecentCall record(m_party.number, m_start, duration(), category != RC_CALL_CATEGORY_MISSED);
    record.setDisplayName(m_party.name);
    record.category = category;
    record.callType = m_type;
    record.completed = m_machine.wasConnected() ? 1 : 0;
    return record;
}

} // namespace zyn::handset
