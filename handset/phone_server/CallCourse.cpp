// The course of one call: what state follows which event.
#include "handset/phone_server/CallCourse.h"

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
    {Dialing, CallEvent::Proceed, Alerting},   {Dialing, CallEvent::HangUp, Ended},
    {Alerting, CallEvent::Proceed, Connected}, {Alerting, CallEvent::Answer, Connected},
    {Alerting, CallEvent::HangUp, Ended},      {Ringing, CallEvent::Answer, Connected},
    {Ringing, CallEvent::HangUp, Ended},       {Ringing, CallEvent::Miss, Missed},
    {Connected, CallEvent::Proceed, Ended},    {Connected, CallEvent::HangUp, Ended},
};

} // namespace

bool CallCourse::take(CallEvent event)
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

RC_CALL_CATEGORY_T CallCourse::category() const
{
    if (m_isPlaced)
        return RC_CALL_CATEGORY_DIALED;
    return m_state == Missed ? RC_CALL_CATEGORY_MISSED : RC_CALL_CATEGORY_ANSWERED;
}

const char* nameOf(CallState state)
{
    constexpr const char* kNames[] = {"dialing", "alerting", "ringing", "connected", "ended", "missed"};
    static_assert(std::size(kNames) == static_cast<size_t>(Missed) + 1);
    return kNames[static_cast<size_t>(state)];
}

} // namespace zyn::handset
