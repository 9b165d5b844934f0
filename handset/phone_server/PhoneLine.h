// The handset's one line, and the call on it.
#pragma once

#include "handset/phone_server/Call.h"
#include "handset/phone_server/CallLogUploader.h"
#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <chrono>
#include <initializer_list>
#include <optional>

namespace zyn::handset {

/// Sends the status message @p message with @p payload to all listeners of the phone channel.
void reportStatus(const PhoneMessage& message, const QByteArray& payload);
/// Sends the status message of @p type with @p values for its fields.
void reportStatus(PHONE_Msg::PHONE_MSG_TYPE_T type, std::initializer_list<FieldValue> values = {});

/// How fast the world around the handset is.
struct CallPace
{
    std::chrono::milliseconds step; ///< from dialing to alerting, and from there to connected
    std::chrono::milliseconds talk; ///< until the other party of a placed call hangs up
};

/**
 * Walks one call at a time through its machine.
 *
 * Placed calls go on by themselves; incoming ones wait for an answer and then for somebody to hang up. Every change is
 * reported with a status message. The finished call is sent to the recent-call service before its end is reported; the
 * line is free then, whatever becomes of that.
 */
class PhoneLine : public QObject
{
    Q_OBJECT

public:
    explicit PhoneLine(CallPace pace);

    /// Places a call and gives its number, above 0; 0, told in the log, when the line is busy, the radio off, or the
    /// number none.
    int place(const Party& party, RC_CALL_TYPE_T type = RC_CALL_TYPE_VOICE);
    /// Somebody calls; a busy line misses the call. False when the radio is off.
    bool ring(const Party& caller);

    /// @{ False when there is no call that this means anything to.
    bool answer() { return apply(CallEvent::Answer); }
    bool hangUp() { return apply(CallEvent::HangUp); }
    bool miss() { return apply(CallEvent::Miss); }
    /// @}

    /// The call that is not over yet, or null.
    const Call* current() const;
    /// The number of the call on the line, or of the last one.
    int currentId() const { return m_id; }

    bool isConnected() const { return current() && current()->machine().state() == CallState::Connected; }
    /// How long the parties of all calls talked, in seconds, since this was last reset.
    int totalSeconds() const { return m_totalSeconds; }
    void resetTotal() { m_totalSeconds = 0; }

    /// Switches the radio; without it there are no calls.
    void setRadio(bool isOn);

    /// Ends the call on the line, and places and takes no other from here on; returns when all calls have been handed
    /// over, or the recent-call service has not taken them in time.
    void close();

Q_SIGNALS:
    /// The call of that number has come to @p state, which has been reported.
    void callChanged(int id, CallState state);

private:
    const char* obstacle(const Party& party) const;
    void begin(CallStateMachine course, const Party& party, RC_CALL_TYPE_T type);
    bool apply(CallEvent event);
    void cut();
    void missWhileBusy(const Party& caller);
    void scheduleNext();
    void reportChange();
    void reportEnd();

    const CallPace m_pace;
    std::optional<Call> m_call;
    int m_id = 0;
    int m_totalSeconds = 0;
    bool m_hasRadio = true;
    bool m_isClosed = false;
    QTimer m_next;
    CallLogUploader m_uploader;
};

} // namespace zyn::handset
