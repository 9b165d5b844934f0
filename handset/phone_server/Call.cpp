// One call: its state machine, its other party, and its duration.
#include "handset/phone_server/Call.h"

#include "handset/phone_server/PhoneControl.h"

#include <algorithm>
#include <array>
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
    {Waiting, CallEvent::Answer, Connected},  {Waiting, CallEvent::HangUp, Ended},
    {Waiting, CallEvent::Miss, Missed},       {Connected, CallEvent::Proceed, Ended},
    {Connected, CallEvent::HangUp, Ended},    {Held, CallEvent::HangUp, Ended},
};

const Transition* transitionFrom(CallState state, CallEvent event)
{
    const auto* const found = std::ranges::find_if(kTransitions, [&](const Transition& transition) {
        return transition.from == state && transition.event == event;
    });
    return found == std::end(kTransitions) ? nullptr : found;
}

/// Which calls come to a state.
enum class Direction : uint8_t { Placed, Incoming, Either };
constexpr std::array kDirections{Direction::Placed,   Direction::Placed,   Direction::Incoming,
                                 Direction::Incoming, Direction::Either,   Direction::Either,
                                 Direction::Either,   Direction::Incoming, Direction::Placed};
static_assert(kDirections.size() == static_cast<size_t>(Failed) + 1);

} // namespace

bool CallStateMachine::can(CallEvent event) const
{
    return transitionFrom(m_state, event);
}

bool CallStateMachine::apply(CallEvent event)
{
    const Transition* const transition = transitionFrom(m_state, event);
    return transition && reach(transition->to);
}

bool CallStateMachine::reach(CallState state)
{
    const Direction direction = kDirections.at(static_cast<size_t>(state));
    const bool isOfSuch = direction == Direction::Either || (direction == Direction::Placed) == m_isPlaced;
    // Who has talked neither rings again nor was missed.
    const bool isLate = m_wasConnected && direction != Direction::Either;
    const bool isBack = m_state == Alerting && state == Dialing;
    if (isOver() || state == m_state || !isOfSuch || isLate || isBack)
        return false;
    m_state = state;
    m_wasConnected = m_wasConnected || state == Connected || state == Held;
    return true;
}

CallState CallStateMachine::stateAfter(CallEnd end) const
{
    if (m_wasConnected || end == CallEnd::Here)
        return Ended;
    if (!m_isPlaced)
        return Missed;
    return end == CallEnd::Network ? Failed : Ended;
}

RC_CALL_CATEGORY_T CallStateMachine::category() const
{
    if (m_isPlaced)
        return RC_CALL_CATEGORY_DIALED;
    return m_state == Missed ? RC_CALL_CATEGORY_MISSED : RC_CALL_CATEGORY_ANSWERED;
}

const char* nameOf(CallState state)
{
    static_assert(std::size(phonecontrol::kCallStates) == static_cast<size_t>(Failed) + 1);
    return phonecontrol::kCallStates[static_cast<size_t>(state)];
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
{
    if (m_machine.wasConnected())
        m_talk.start();
}

bool Call::identify(const Party& party)
{
    const Party before = m_party;
    if (!party.number.isEmpty())
        m_party.number = party.number;
    if (!party.name.isEmpty())
        m_party.name = party.name;
    return m_party.number != before.number || m_party.name != before.name;
}

bool Call::apply(CallEvent event)
{
    return m_machine.apply(event) && noteState();
}

bool Call::reach(CallState state)
{
    return m_machine.reach(state) && noteState();
}

bool Call::noteState()
{
    m_since = QDateTime::currentDateTime();
    if (m_machine.wasConnected() && !m_talk.isValid())
        m_talk.start();
    else if (m_machine.isOver() && m_talk.isValid())
        m_talked = m_talk.elapsed();
    return true;
}

int Call::talkedSeconds() const
{
    constexpr qint64 kSecond = 1000;
    const qint64 talked = m_talk.isValid() && !m_machine.isOver() ? m_talk.elapsed() : m_talked;
    return static_cast<int>((talked + kSecond / 2) / kSecond);
}

int Call::duration() const
{
    return m_machine.wasConnected() ? std::max(1, talkedSeconds()) : 0;
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
