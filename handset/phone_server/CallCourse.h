// The course of one call: what state follows which event.
#pragma once

#include "recentcall/utility/RC_Types.h"

#include <cstdint>

namespace zyn::handset {

enum class CallState : uint8_t {
    Dialing,   ///< placed; the network looks for the other party
    Alerting,  ///< the other party's telephone rings
    Ringing,   ///< somebody calls, and this telephone rings
    Connected, ///< the parties talk
    Ended,     ///< over, by whatever hung up
    Missed,    ///< over; nobody answered
};

enum class CallEvent : uint8_t {
    Proceed, ///< the network and the other party do what comes next
    Answer,
    HangUp, ///< by either side
    Miss,   ///< the caller gives up
};

/// Where a call stands. It knows nothing of numbers, time or messages.
class CallCourse
{
public:
    static CallCourse placed() { return CallCourse(CallState::Dialing); }
    static CallCourse incoming() { return CallCourse(CallState::Ringing); }

    CallState state() const { return m_state; }
    bool isPlaced() const { return m_isPlaced; }
    bool isOver() const { return m_state == CallState::Ended || m_state == CallState::Missed; }
    /// Whether the parties ever talked.
    bool wasConnected() const { return m_wasConnected; }
    /// The list that the call belongs to, once it is over; a call that was turned down counts as answered.
    RC_CALL_CATEGORY_T category() const;

    /// Goes where @p event leads; false, and it stays, when the event means nothing in its state.
    bool take(CallEvent event);

private:
    explicit CallCourse(CallState state)
        : m_state(state)
        , m_isPlaced(state == CallState::Dialing)
    {}

    CallState m_state;
    bool m_isPlaced;
    bool m_wasConnected = false;
};

/// The state's name for people.
const char* nameOf(CallState state);

} // namespace zyn::handset
