// The handset's line, with at most one call.
#include "handset/phone_server/PhoneLine.h"

#include "handset/common/Log.h"

using namespace Qt::StringLiterals;

namespace zyn::handset {

PhoneLine::PhoneLine(CallPace pace, PhoneStatus& status)
    : m_pace(pace)
    , m_status(status)
{
    m_next.setSingleShot(true);
    m_next.setTimerType(Qt::PreciseTimer);
    connect(&m_next, &QTimer::timeout, this, [this] { apply(CallEvent::Proceed); });
}

int PhoneLine::place(const Party& party, RC_CALL_TYPE_T type)
{
    if (const char* reason = obstacle(party)) {
        log(u"cannot place a call: %1"_s.arg(QLatin1String(reason)));
        return 0;
    }
    begin(CallStateMachine::placed(), party, type);
    return m_id;
}

bool PhoneLine::ring(const Party& caller)
{
    if (!m_hasRadio || m_isClosed)
        return false;
    if (m_call)
        missWhileBusy(caller);
    else
        begin(CallStateMachine::incoming(), caller, RC_CALL_TYPE_VOICE);
    return true;
}

const Call* PhoneLine::current() const
{
    return m_call && !m_call->machine().isOver() ? &*m_call : nullptr;
}

void PhoneLine::setRadio(bool isOn)
{
    m_hasRadio = isOn;
    if (!isOn)
        disconnectCall();
}

void PhoneLine::close()
{
    m_isClosed = true;
    disconnectCall();
    m_uploader.finish();
}

/// Why @p party cannot be called now, or null.
const char* PhoneLine::obstacle(const Party& party) const
{
    if (!isDialable(party.number))
        return "the number is invalid";
    if (m_isClosed)
        return "the phone is shutting down";
    if (!m_hasRadio)
        return "the radio is off";
    return m_call ? "the line is busy" : nullptr;
}

void PhoneLine::begin(CallStateMachine course, const Party& party, RC_CALL_TYPE_T type)
{
    m_call.emplace(course, party, type);
    ++m_id;
    scheduleNext();
}

bool PhoneLine::apply(CallEvent event)
{
    if (!m_call || !m_call->apply(event))
        return false;
    scheduleNext();
    return true;
}

/// Ends the call, whatever its state.
void PhoneLine::disconnectCall()
{
    if (!miss())
        hangUp();
}

void PhoneLine::missWhileBusy(const Party& caller)
{
    Call call(CallStateMachine::incoming(), caller);
    call.apply(CallEvent::Miss);
    log(u"a call from %1 is missed: the line is busy"_s.arg(caller.number));
    m_uploader.add(call.record());
    m_status.report(PHONE_Msg::PHONE_MSG_VOICE_CALL_STAT_CHANGED_S);
}

/// Schedules what follows from the call's new state.
void PhoneLine::scheduleNext()
{
    const CallStateMachine& machine = m_call->machine();
    m_next.stop();
    if (machine.isOver()) {
        // First, because listeners look for the call in the log when its end is reported.
        m_uploader.add(m_call->record());
        reportEnd();
        return;
    }
    if (machine.isPlaced())
        m_next.start(machine.state() == CallState::Connected ? m_pace.talk : m_pace.step);
    reportChange();
}

void PhoneLine::reportChange()
{
    const CallState state = m_call->machine().state();
    log(u"call %1, %2: %3"_s.arg(m_id).arg(m_call->party().number, QLatin1String(nameOf(state))));
    if (state == CallState::Connected)
        m_status.report(PHONE_Msg::PHONE_MSG_CURRENT_CONNECTED_DURATION_S, {1, 0});
    m_status.report(PHONE_Msg::PHONE_MSG_VOICE_CALL_STAT_CHANGED_S);
    Q_EMIT callChanged(m_id, state);
}

void PhoneLine::reportEnd()
{
    if (m_call->machine().wasConnected()) {
        m_totalSeconds += m_call->duration();
        m_status.report(PHONE_Msg::PHONE_MSG_CURRENT_CONNECTED_DURATION_S, {0, m_call->duration()});
        m_status.report(PHONE_Msg::PHONE_MSG_TOTAL_CONNECTED_DURATION_S, {0, m_totalSeconds});
    }
    reportChange();
    m_call.reset();
}

} // namespace zyn::handset
