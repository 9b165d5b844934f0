// The handset's line and its calls.
#pragma once

#include "handset/phone_server/Call.h"
#include "handset/phone_server/CallLogUploader.h"
#include "handset/phone_server/Modem.h"
#include "handset/phone_server/PhoneStatus.h"

#include <QtCore/QObject>

#include <map>

namespace zyn::handset {

/**
 * Keeps the calls of a modem, from their first state to their last.
 *
 * Each change is reported with a status message. A finished call is sent to the recent-call service before its end is
 * reported; the line is then free, whether or not the service accepts the call.
 */
class PhoneLine : public QObject
{
    Q_OBJECT

public:
    using Calls = std::map<int, Call>;

    /// @param modem   carries the calls
    /// @param status  tells their changes; both live longer
    PhoneLine(Modem& modem, PhoneStatus& status);

    PhoneStatus& status() { return m_status; }
    Modem& modem() const { return m_modem; }

    /// Places a call and returns its id, above 0. Returns 0, which is logged, if the line is busy, the number is
    /// invalid or the modem cannot.
    int place(const Party& party, RC_CALL_TYPE_T type = RC_CALL_TYPE_VOICE, CallerId callerId = CallerId::AsSubscribed);
    /// Plays a call that comes; a busy line misses it. False if there is no radio, or the network is not played.
    bool ring(const Party& caller);

    /// @{ False if there is no call in a suitable state, or the modem cannot. What comes of it is told later.
    bool answer() { return apply(CallEvent::Answer); }
    bool hangUp() { return apply(CallEvent::HangUp); }
    bool miss() { return apply(CallEvent::Miss); }
    bool fail() { return apply(CallEvent::Fail); }
    bool hangUpAll();
    /// Does it to the call @p id.
    bool apply(int id, CallEvent event);
    /// @}

    /// The call that is talked on; else the one that is placed, the one that rings, or one that is held; else null.
    const Call* current() const;
    /// The id of that call, or 0.
    int currentId() const;
    /// The call @p id until its end has been reported; else null.
    const Call* call(int id) const;
    /// The calls that are not over, by their ids.
    const Calls& calls() const { return m_calls; }
    bool hasRadio() const { return m_modem.hasRadio(); }

    /// Whether a call is talked on.
    bool isConnected() const;
    /// The talk time of all calls since the last reset, in seconds.
    int totalSeconds() const { return m_totalSeconds; }
    void resetTotal() { m_totalSeconds = 0; }

    /// Ends the calls and refuses further ones. Returns when all calls are uploaded, or after the uploader's timeout.
    void close();

Q_SIGNALS:
    /// The call @p id has reached @p state, which has been reported.
    void callChanged(int id, CallState state);

private:
    QString obstacle(const Modem::Request& request) const;
    void begin(int id, CallStateMachine course, const Party& party, RC_CALL_TYPE_T type);
    bool apply(CallEvent event);
    void noteCame(int id, const Party& caller, CallState state);
    /// Makes @p change to the call @p id; what it leads to is reported.
    template<typename Change>
    void change(int id, const Change& make);
    void disconnectCalls();
    void missWhileBusy(const Party& caller);
    void report(int id, const Call& call);
    void reportEnd(int id);

    Modem& m_modem;
    PhoneStatus& m_status;
    Calls m_calls;
    int m_totalSeconds = 0;
    bool m_isClosed = false;
    CallLogUploader m_uploader;
};

} // namespace zyn::handset
