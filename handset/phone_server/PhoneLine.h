// The handset's line, with at most one call.
#pragma once

#include "handset/phone_server/Call.h"
#include "handset/phone_server/CallLogUploader.h"
#include "handset/phone_server/PhoneStatus.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <chrono>
#include <optional>

namespace zyn::handset {

/// The delays of the simulated network.
struct CallPace
{
    std::chrono::milliseconds step; ///< from dialing to alerting, and from there to connected
    std::chrono::milliseconds talk; ///< until the other party of a placed call hangs up
};

/**
 * Drives one call at a time through its state machine.
 *
 * Placed calls proceed by themselves; incoming calls wait for an answer and then for a hang-up. Each change is reported
 * with a status message. A finished call is sent to the recent-call service before its end is reported; the line is
 * then free, whether or not the service accepts the call.
 */
class PhoneLine : public QObject
{
    Q_OBJECT

public:
    /// @param status  tells the changes of its calls, and lives longer
    PhoneLine(CallPace pace, PhoneStatus& status);

    PhoneStatus& status() { return m_status; }

    /// Places a call and returns its id, above 0. Returns 0, which is logged, if the line is busy, the radio is off or
    /// the number is invalid.
    int place(const Party& party, RC_CALL_TYPE_T type = RC_CALL_TYPE_VOICE);
    /// An incoming call; a busy line misses it. False if the radio is off.
    bool ring(const Party& caller);

    /// @{ False if there is no call in a suitable state.
    bool answer() { return apply(CallEvent::Answer); }
    bool hangUp() { return apply(CallEvent::HangUp); }
    bool miss() { return apply(CallEvent::Miss); }
    bool fail() { return apply(CallEvent::Fail); }
    /// @}

    /// The call in progress, or null.
    const Call* current() const;
    /// The same, or the call whose end is being reported.
    const Call* latest() const { return m_call ? &*m_call : nullptr; }
    bool hasRadio() const { return m_hasRadio; }
    /// The id of the current call, or of the last one.
    int currentId() const { return m_id; }

    bool isConnected() const { return current() && current()->machine().state() == CallState::Connected; }
    /// The talk time of all calls since the last reset, in seconds.
    int totalSeconds() const { return m_totalSeconds; }
    void resetTotal() { m_totalSeconds = 0; }

    /// Switches the radio; without it there are no calls.
    void setRadio(bool isOn);

    /// Ends the call and refuses further ones. Returns when all calls are uploaded, or after the uploader's timeout.
    void close();

Q_SIGNALS:
    /// The call @p id has reached @p state, which has been reported.
    void callChanged(int id, CallState state);

private:
    const char* obstacle(const Party& party) const;
    void begin(CallStateMachine course, const Party& party, RC_CALL_TYPE_T type);
    bool apply(CallEvent event);
    void disconnectCall();
    void missWhileBusy(const Party& caller);
    void scheduleNext();
    void reportChange();
    void reportEnd();

    const CallPace m_pace;
    PhoneStatus& m_status;
    std::optional<Call> m_call;
    int m_id = 0;
    int m_totalSeconds = 0;
    bool m_hasRadio = true;
    bool m_isClosed = false;
    QTimer m_next;
    CallLogUploader m_uploader;
};

} // namespace zyn::handset
