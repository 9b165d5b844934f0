// What carries the calls of the handset: a network that is played on a desk, or a telephony stack with a modem.
#pragma once

#include "handset/phone_server/Call.h"

#include <QtCore/QJsonObject>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <cstddef>
#include <cstdint>
#include <functional>

namespace zyn::handset {

/// Whether the other party sees the own number: the values of +CLIR in 3GPP TS 27.007.
enum class CallerId : uint8_t {
    AsSubscribed, ///< as the network has it for this subscriber
    Hidden,
    Shown,
};

/// The choice in a request: what is none is AsSubscribed.
constexpr CallerId callerIdFrom(int clir)
{
    return clir == 1 ? CallerId::Hidden : clir == 2 ? CallerId::Shown : CallerId::AsSubscribed;
}

/**
 * Carries out what the line asks for, and tells what becomes of its calls.
 *
 * Nothing here waits: a request returns at once, and what it leads to is told by a signal, perhaps before it returns.
 * Every call that has come, or was dialed, is told to be over exactly once, whatever happens to the modem.
 */
class Modem : public QObject
{
    Q_OBJECT

public:
    /// What a call needs to be placed.
    struct Request
    {
        QString number;
        RC_CALL_TYPE_T type = RC_CALL_TYPE_VOICE;
        CallerId callerId = CallerId::AsSubscribed;
    };

    /// Why @p request cannot be carried out now, for people; empty if it can.
    virtual QString obstacle(const Request& request) const = 0;

    /// How many calls there can be at a time, of which one is talked on.
    virtual size_t callsAtOnce() const = 0;

    /// Places the call @p id, which newCall() has given.
    virtual void dial(int id, const Request& request) = 0;

    /// Has @p event happen to the call @p id, to which it applies; false if that is nothing that this modem can do.
    virtual bool carryOut(int id, CallEvent event) = 0;

    /// Sends @p key, a digit, `*` or `#`, to the other party of the connected call @p id.
    virtual void sendTone(int id, QChar key) = 0;

    /// Switches the radio; answered by radioSwitched().
    virtual void setRadio(bool isOn) = 0;
    virtual bool hasRadio() const = 0;

    /// What the lock of the SIM card is opened with.
    struct Codes
    {
        QString pin;
        QString puk = {}; ///< where one is asked for: the PIN is then a new one
    };
    /// Called once; with why it has failed, for people, or with nothing.
    using Result = std::function<void(const QString& failure)>;
    /// Opens the lock of the SIM card with @p codes.
    virtual void unlock(const Codes& codes, const Result& then) = 0;

    /// What is known of it, for people and for those who look for a fault. Its field "modem" says whose it is, and
    /// "obstacle" why no call can be placed now.
    virtual QJsonObject describe() const = 0;

    /// Whether it takes what the user's language is.
    virtual bool takesLanguage() const { return false; }

    /// Whether somebody plays the network: who calls, and who does not answer.
    virtual bool isPlayed() const { return false; }

    /// Ends all calls, when nobody will hear more of them.
    virtual void close() {}

    /// Goes to work, when somebody listens.
    virtual void start() {}

    /// The id of a new call, above 0. Each call of a process has another one.
    static int newCall() { return ++s_lastCall; }

Q_SIGNALS:
    /// Somebody calls: the new call @p id, Ringing or Waiting. Or there is a call that was made before this program
    /// began, in whatever state it is.
    void came(int id, const Party& caller, CallState state);
    /// It is known now who is at the other end of the call @p id; what is empty of @p party is not.
    void identified(int id, const Party& party);
    /// @p event has happened to the call @p id.
    void happened(int id, CallEvent event);
    /// The call @p id is in @p state, which is none of a call that is over. States between may have gone by unseen.
    void reached(int id, CallState state);
    /// The call @p id is over.
    void ended(int id, CallEnd end);
    /// The radio was to be switched.
    void radioSwitched(bool isDone);
    /// There is no radio any more, or there is one again.
    void radioChanged(bool isOn);

private:
    inline static int s_lastCall = 0;
};

} // namespace zyn::handset
