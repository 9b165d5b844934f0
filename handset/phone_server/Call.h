// One call: its state machine, its other party, and its duration.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "recentcall/utility/RC_Types.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QString>

#include <cstdint>

namespace zyn::handset {

enum class CallState : uint8_t {
    Dialing,   ///< placed; the network looks for the other party
    Alerting,  ///< the other party's telephone rings
    Ringing,   ///< somebody calls, and this telephone rings
    Waiting,   ///< somebody calls while there is another call
    Connected, ///< the parties talk
    Held,      ///< the other party waits, perhaps while there is another call
    Ended,     ///< over; either side has hung up
    Missed,    ///< over; nobody answered
    Failed,    ///< over; the network did not put it through
};

enum class CallEvent : uint8_t {
    Proceed, ///< the network or the other party takes the next step
    Answer,
    HangUp, ///< by either side
    Miss,   ///< the caller gives up
    Fail,   ///< the network gives up
};

/// Who ended a call.
enum class CallEnd : uint8_t {
    Here,    ///< the user of this telephone
    There,   ///< the other party
    Network, ///< the network, which did not put it through, or lost it
};

/// The state of a call, free of numbers, time and messages.
class CallStateMachine
{
public:
    static CallStateMachine placed() { return CallStateMachine(CallState::Dialing); }
    static CallStateMachine incoming() { return foundIn(CallState::Ringing); }
    /// That of a call which is first seen in @p state. One that is talked on counts as incoming: who called is not
    /// known.
    static CallStateMachine foundIn(CallState state) { return CallStateMachine(state); }

    CallState state() const { return m_state; }
    bool isPlaced() const { return m_isPlaced; }
    bool isOver() const { return m_state >= CallState::Ended; }
    /// Whether the parties have ever talked.
    bool wasConnected() const { return m_wasConnected; }
    /// The list that a finished call belongs to; a rejected call counts as answered.
    RC_CALL_CATEGORY_T category() const;

    /// Whether @p event applies in this state.
    bool can(CallEvent event) const;
    /// Applies @p event; false, without a change, if it does not apply in this state.
    bool apply(CallEvent event);
    /// Comes to @p state, perhaps past others; false, without a change, if no such call comes there from here.
    bool reach(CallState state);
    /// The state of a call that ends now.
    CallState stateAfter(CallEnd end) const;

private:
    explicit CallStateMachine(CallState state)
        : m_state(state)
        , m_isPlaced(state == CallState::Dialing || state == CallState::Alerting)
        , m_wasConnected(state == CallState::Connected || state == CallState::Held)
    {}

    CallState m_state;
    bool m_isPlaced;
    bool m_wasConnected;
};

/// The state's name in the log.
const char* nameOf(CallState state);

/// The other party of a call.
struct Party
{
    QString number;
    QString name = {}; ///< empty if unknown
};

/// Whether @p number can be dialed: 1 to 41 digits, `*`, `#`, `+`, pauses and waits.
bool isDialable(const QString& number);

/// A call that begins now.
class Call
{
public:
    Call(CallStateMachine machine, Party party, RC_CALL_TYPE_T type = RC_CALL_TYPE_VOICE);

    const CallStateMachine& machine() const { return m_machine; }
    const Party& party() const { return m_party; }
    /// Takes over what is not empty of @p party; false if nothing is new.
    bool identify(const Party& party);
    /// When it came to its state.
    const QDateTime& since() const { return m_since; }
    bool isPtt() const { return m_type == RC_CALL_TYPE_PTT1; }

    /// @{ As those of CallStateMachine.
    bool apply(CallEvent event);
    bool reach(CallState state);
    /// @}
    /// Ends it; false if it is over.
    bool end(CallEnd end) { return reach(m_machine.stateAfter(end)); }

    /// How long the parties have talked until now, or until the end, in whole seconds.
    int talkedSeconds() const;
    /// The same of a call that is over, at least 1; 0 if they never did.
    int duration() const;
    /// The record of a finished call.
    PHONE_ENG_RecentCall record() const;

private:
    bool noteState();

    CallStateMachine m_machine;
    Party m_party;
    RC_CALL_TYPE_T m_type;
    QDateTime m_start;
    QDateTime m_since;
    QElapsedTimer m_talk;
    qint64 m_talked = 0; ///< in milliseconds, of a call that is over
};

} // namespace zyn::handset
