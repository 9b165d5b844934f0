// What the telephony stacks have in common: calls that are objects of a service, and what keeps a call from being
// placed.
#pragma once

#include "handset/modem/Bus.h"
#include "handset/modem/PhoneFacts.h"
#include "handset/phone_server/Modem.h"

#include <QtCore/QSet>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <map>
#include <optional>

namespace zyn::handset {

class PhoneStatus;

/**
 * The modem of a service that is on the system bus, from when it is there to when it goes.
 *
 * It tells the status messages, and sees to it that each call is told to be over once, also when the service does not.
 */
class StackModem : public Modem
{
    Q_OBJECT

public:
    /// @param service  the name of the service on the bus
    /// @param stack    its name for people
    StackModem(Bus& bus, PhoneStatus& status, const QString& service, const QString& stack);

    /// The service is there: asks it for its modems, and follows what it tells.
    void start() override;
    /// The service has gone, and nothing is known any more. The modem may go on with its calls: they are over unless
    /// the service comes back in time, and still has them.
    void lose();
    /// The calls that wait for that are over.
    void giveUp();

    const QString& service() const { return m_service; }
    const PhoneFacts& facts() const { return m_facts; }

    QString obstacle(const Request& request) const override;
    /// One that is talked on, and one that is held.
    size_t callsAtOnce() const override { return 2; }
    void dial(int id, const Request& request) override;
    bool carryOut(int id, CallEvent event) override;
    void sendTone(int id, QChar key) override;
    bool hasRadio() const override { return m_facts.isOnline; }
    void unlock(const Codes& codes, const Result& then) override;
    QJsonObject describe() const override;
    void close() override;

protected:
    /// A call that is not over.
    struct Line
    {
        QString path; ///< its object; empty until the service has one for it
        QString number;
        bool isPlaced = false;
        bool isAsked = false;         ///< of one that is placed: the service may have it, and has not refused it
        bool isUnwanted = false;      ///< it is to be hung up
        bool isSuspended = false;     ///< the service that had it has gone
        bool isBeingAnswered = false; ///< the service was asked for it, and has yet to reply
        bool isBeingHungUp = false;   ///< the service was asked for it, and has had no time to tell that it is over
        CallState state = CallState::Dialing;
        std::optional<CallEnd> end = {}; ///< who ended it, when that is told before it is over
    };

    /// @{ What a stack does in its own way.
    /// Listens to what the service tells of all its objects, on a new connection.
    virtual void subscribe() = 0;
    virtual void askForModems() = 0;
    /// Keeps nothing of what the service told.
    virtual void forget() = 0;
    /// Asks the service to place the call @p id.
    virtual void askForCall(int id, const Request& request) = 0;
    virtual void askToAnswer(const Line& call, const Bus::Reply& then) = 0;
    virtual void askToHangUp(const Line& call, const Bus::Reply& then) = 0;
    virtual void askForTone(const Line& call, QChar key) = 0;
    /// Gives the modem @p codes, and calls @p then with the reply.
    virtual void askToUnlock(const Codes& codes, const Bus::Reply& then) = 0;
    /// Asks how many tries are left, and calls @p then when that is known.
    virtual void askForTries(const std::function<void()>& then) = 0;
    /// @}

    Bus& bus() { return m_bus; }

    /// Changes what is known; what comes of it is told.
    template<typename Change>
    void learn(const Change& change)
    {
        change(m_facts);
        noteFacts();
    }

    /// Hangs up the call @p path, which is over here. What the service tells of it is nobody's until it is gone there.
    void endUnknown(const QString& path);
    bool isUnknown(const QString& path) const { return m_unknown.contains(path); }
    /// The object @p path is gone: another call may have its path.
    void noteGone(const QString& path) { m_unknown.remove(path); }

    /// @{ What the service tells of calls. A path that has no call is ignored.
    /// The service is asked to place the call @p id; or has refused it, and will be asked again.
    void noteAsked(int id, bool isAsked);
    /// A call that was asked for has the object @p path. Hangs it up when that was asked for meanwhile.
    void noteObject(int id, const QString& path);
    /// The service has not placed the call @p id, and says why; or it has gone meanwhile, and may have placed it.
    void noteNotPlaced(int id, const QDBusMessage& reply);
    /// There is a call that nobody here has asked for: somebody calls, or the service has come back with it.
    void noteFound(const QString& path, const QString& number, const QString& name, CallState state);
    /// Whether a call with @p number waits for its service.
    bool isAwaited(const QString& number) const;
    /// The service has told its calls after it came back; those that it finds by asking the modem follow soon.
    void noteAllFound();
    /// Who calls is often known only after the call: the number, the name, or both.
    void noteCaller(const QString& path, const QString& number, const QString& name);
    void noteState(const QString& path, CallState state);
    void noteEnd(const QString& path, CallEnd end);
    /// It is over; ended by @p end unless noteEnd() has said so.
    void noteOver(const QString& path, CallEnd end);
    void noteOver(int id, CallEnd end);
    /// The modem that had the calls has gone for good: they are over.
    void noteAllOver();
    /// The modem that had the calls has gone, perhaps because the service goes: they are over unless that is so, and it
    /// comes back with them.
    void noteModemGone();
    /// @}

    bool hasCall(const QString& path) const { return idOf(path) != 0; }
    bool hasCalls() const { return !m_calls.empty(); }
    bool hasCallIn(CallState state) const;
    int idOf(const QString& path) const;
    const Line* call(int id) const;
    /// A placed call that the service was asked for, and that has no object yet, or 0.
    int unboundCall() const;
    /// Whether the call @p id was hung up before it had an object; asked once, when it has one.
    bool takeCancelled(int id) { return m_cancelled.erase(id) > 0; }

    /// How long the reply to a call that is placed may take. What begins after that is taken for somebody else's call.
    static constexpr std::chrono::seconds kDialPatience{120};

    /// Logs @p what has failed, and why.
    void logFailure(const QString& what, const QDBusMessage& reply);

private:
    void noteAnswered(int id, const QString& path, const QDBusMessage& reply);
    void hangUp(int id, int tries);
    void endUnknown(const QString& path, int tries);
    void abandon(const QString& number);
    void suspendCalls(std::chrono::seconds patience);
    int suspendedCall(const QString& number, CallState state) const;
    void noteFacts();
    void tell();

    Bus& m_bus;
    PhoneStatus& m_status;
    const QString m_service;
    const QString m_stack;
    PhoneFacts m_facts;
    std::map<int, Line> m_calls;
    std::map<int, QString> m_cancelled; ///< the numbers of those that were hung up before they had an object
    QStringList m_abandoned;            ///< the numbers of calls that are over here, and may not be for the service
    QSet<QString> m_unknown;            ///< the paths of calls that are over here, and not yet there
    QString m_failure;                  ///< the last one
    QString m_lastImsi;                 ///< of the card that is there, or was there last
    QTimer m_tell;                      ///< what changes at once is told once
    QTimer m_patience;                  ///< runs while calls wait for their service
    bool m_isSubscribed = false;
    bool m_wasOnline = false;
};

} // namespace zyn::handset
