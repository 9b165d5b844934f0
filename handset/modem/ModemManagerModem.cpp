// Telephony by ModemManager.
#include "handset/modem/ModemManagerModem.h"

#include "handset/common/Log.h"
#include "handset/modem/ModemManagerFacts.h"

#include <QtDBus/QDBusArgument>

#include <algorithm>
#include <array>
#include <iterator>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

const QString kManagerPath = u"/org/freedesktop/ModemManager1"_s;
const QString kObjectManager = u"org.freedesktop.DBus.ObjectManager"_s;
const QString kObjectProperties = u"org.freedesktop.DBus.Properties"_s;
const QString kMmCall = u"org.freedesktop.ModemManager1.Call"_s;

/// Between two attempts to enable a modem that cannot be.
constexpr std::chrono::seconds kBetweenAttempts{10};

/// Between two questions to a modem that has a call, or that was mute.
constexpr std::chrono::seconds kBetweenProbes{10};
/// The error of a modem that cannot be asked anything.
const QString kCannotAsk = u"org.freedesktop.ModemManager1.Error.Core.Connected"_s;

/// @{ Numbers of ModemManager's interfaces.
constexpr qint64 kStateDisabled = 3;
constexpr qint64 kCallRingingIn = 3;
constexpr qint64 kCallTerminated = 7;
constexpr qint64 kCallIncoming = 1;
/// @}

/// MMCallState but for the end.
constexpr std::array<modemmanager::Number<CallState>, 6> kMmCallStates{{{1, CallState::Dialing},
                                                                        {2, CallState::Alerting},
                                                                        {3, CallState::Ringing},
                                                                        {4, CallState::Connected},
                                                                        {5, CallState::Held},
                                                                        {6, CallState::Waiting}}};

/// MMCallStateReason of a call that is over: what the other party does has none.
constexpr std::array<modemmanager::Number<CallEnd>, 5> kMmReasons{
    {{0, CallEnd::There}, {4, CallEnd::Here}, {5, CallEnd::Network}, {6, CallEnd::Network}, {7, CallEnd::Network}}};

/// The interfaces in @p value, a{sa{sv}}; none when it is something else.
QMap<QString, QVariantMap> interfacesIn(const QVariant& value)
{
    const auto argument = value.value<QDBusArgument>();
    return argument.currentSignature() == u"a{sa{sv}}"_s ? qdbus_cast<QMap<QString, QVariantMap>>(argument)
                                                         : QMap<QString, QVariantMap>();
}

} // namespace

ModemManagerModem::ModemManagerModem(Bus& bus, PhoneStatus& status)
    : StackModem(bus, status, QLatin1String(kServiceName), QLatin1String(kName))
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(kBetweenAttempts);
    connect(&m_retry, &QTimer::timeout, this, &ModemManagerModem::enable);
    m_probe.setInterval(kBetweenProbes);
    connect(&m_probe, &QTimer::timeout, this, &ModemManagerModem::probe);
}

void ModemManagerModem::subscribe()
{
    const BusAddress manager{service(), kManagerPath, kObjectManager};
    bus().listen(manager, u"InterfacesAdded"_s, this, SLOT(noteAdded(QDBusMessage)));
    bus().listen(manager, u"InterfacesRemoved"_s, this, SLOT(noteRemoved(QDBusMessage)));
    bus().listen({service(), {}, kObjectProperties}, u"PropertiesChanged"_s, this, SLOT(noteChange(QDBusMessage)));
    bus().listen({service(), {}, modemmanager::kVoice}, u"CallAdded"_s, this, SLOT(noteCallAdded(QDBusMessage)));
    bus().listen({service(), {}, kMmCall}, u"StateChanged"_s, this, SLOT(noteCallState(QDBusMessage)));
}

void ModemManagerModem::setRadio(bool isOn)
{
    m_isRadioWanted = isOn;
    if (m_modem.isEmpty()) {
        Q_EMIT radioSwitched(false);
        return;
    }
    bus().call(at(modemmanager::kModem), u"Enable"_s, {isOn}, this, [this](const QDBusMessage& reply) {
        const bool isFailure = !failureOf(reply).isEmpty();
        if (isFailure)
            logFailure(u"switching the radio"_s, reply);
        Q_EMIT radioSwitched(!isFailure);
    });
}

void ModemManagerModem::askForCall(int id, const Request& request)
{
    // The interface has no choice of its own: these are the codes of 3GPP TS 22.030.
    constexpr std::array kCodes{"", "#31#", "*31#"};
    const QString number = QLatin1String(kCodes.at(static_cast<size_t>(request.callerId))) + request.number;
    noteAsked(id, true);
    bus().call(at(modemmanager::kVoice), u"CreateCall"_s, {QVariantMap{{u"number"_s, number}}}, this,
               [this, id](const QDBusMessage& reply) {
                   if (hasSignature(reply, "o")) {
                       startCall(id, busPath(reply.arguments().constFirst()));
                       return;
                   }
                   noteNotPlaced(id, reply);
               });
}

/// Has the call begin that was made, unless it was hung up meanwhile.
void ModemManagerModem::startCall(int id, const QString& path)
{
    const Line* const wanted = call(id);
    if (!wanted) {
        takeCancelled(id);
        deleteCall(path);
        return;
    }
    noteObject(id, path);
    m_probe.start();
    bus().call(
        callAt(path), u"Start"_s, {}, this,
        [this, id, path](const QDBusMessage& reply) {
            if (failureOf(reply).isEmpty())
                return;
            noteNotPlaced(id, reply);
            deleteCall(path);
        },
        kDialPatience);
}

void ModemManagerModem::askToAnswer(const Line& call, const Bus::Reply& then)
{
    if (call.state == CallState::Waiting)
        bus().call(at(modemmanager::kVoice), u"HoldAndAccept"_s, {}, this, then);
    else
        bus().call(callAt(call.path), u"Accept"_s, {}, this, then);
}

void ModemManagerModem::askToHangUp(const Line& call, const Bus::Reply& then)
{
    // Of two calls the service may forget the one that is held, while the network goes on with it: so that one is
    // taken back first, unless another one waits, which would be taken instead.
    if (call.state == CallState::Connected && hasCallIn(CallState::Held) && !hasCallIn(CallState::Waiting))
        bus().call(at(modemmanager::kVoice), u"HangupAndAccept"_s, {}, this, then);
    else
        bus().call(callAt(call.path), u"Hangup"_s, {}, this, then);
}

void ModemManagerModem::askForTone(const Line& call, QChar key)
{
    bus().call(callAt(call.path), u"SendDtmf"_s, {QString(key)}, this, failsWith(u"the tone"_s));
}

void ModemManagerModem::askToUnlock(const Codes& codes, const Bus::Reply& then)
{
    const BusAddress sim{service(), m_sim, modemmanager::kSim};
    if (codes.puk.isEmpty())
        bus().call(sim, u"SendPin"_s, {codes.pin}, this, then);
    else
        bus().call(sim, u"SendPuk"_s, {codes.puk, codes.pin}, this, then);
}

void ModemManagerModem::askForTries(const std::function<void()>& then)
{
    bus().call({service(), m_modem, kObjectProperties}, u"GetAll"_s, {modemmanager::kModem}, this,
               [this, then](const QDBusMessage& reply) {
                   if (hasSignature(reply, "a{sv}") && !m_modem.isEmpty())
                       note(modemmanager::kModem, busMap(reply.arguments().constFirst()));
                   then();
               });
}

Bus::Reply ModemManagerModem::failsWith(const QString& what)
{
    return [this, what](const QDBusMessage& reply) {
        if (!failureOf(reply).isEmpty())
            logFailure(what, reply);
    };
}

BusAddress ModemManagerModem::at(const QString& interface) const
{
    return {service(), m_modem, interface};
}

BusAddress ModemManagerModem::callAt(const QString& path) const
{
    return {service(), path, kMmCall};
}

void ModemManagerModem::askForModems()
{
    bus().call(
        {service(), kManagerPath, kObjectManager}, u"GetManagedObjects"_s, {}, this, [this](const QDBusMessage& reply) {
            if (!failureOf(reply).isEmpty())
                logFailure(u"asking for the modems"_s, reply);
            if (!hasSignature(reply, "a{oa{sa{sv}}}"))
                return;
            const auto objects =
                qdbus_cast<QMap<QDBusObjectPath, Interfaces>>(reply.arguments().constFirst().value<QDBusArgument>());
            for (auto object = objects.cbegin(); object != objects.cend(); ++object)
                take(object.key().path(), object.value());
            if (m_modem.isEmpty())
                log(u"ModemManager has no modem yet: waiting for one"_s);
        });
}

/// Follows the modem @p path, unless another one is followed; learns of @p interfaces when it is the one.
void ModemManagerModem::take(const QString& path, const Interfaces& interfaces)
{
    const bool isModem = interfaces.contains(modemmanager::kModem);
    if (m_modem.isEmpty() && isModem) {
        m_modem = path;
        log(u"ModemManager has the modem %1"_s.arg(path));
        learn([](PhoneFacts& facts) { facts.hasModem = true; });
    } else if (m_modem != path) {
        if (isModem)
            log(u"ModemManager has another modem, %1, which is not used"_s.arg(path));
        return;
    }
    for (auto interface = interfaces.cbegin(); interface != interfaces.cend(); ++interface)
        note(interface.key(), interface.value());
    if (interfaces.contains(modemmanager::kVoice))
        askForCalls();
}

void ModemManagerModem::forget()
{
    m_modem.clear();
    m_sim.clear();
    m_known.clear();
    m_retry.stop();
    m_probe.stop();
    m_isMute = false;
}

void ModemManagerModem::leave()
{
    log(u"ModemManager has lost the modem %1"_s.arg(m_modem));
    forget();
    noteAllOver();
    learn([](PhoneFacts& facts) { facts = {}; });
    askForModems();
}

void ModemManagerModem::noteAdded(const QDBusMessage& signal)
{
    if (hasSignature(signal, "oa{sa{sv}}"))
        take(busPath(signal.arguments().at(0)), interfacesIn(signal.arguments().at(1)));
}

void ModemManagerModem::noteRemoved(const QDBusMessage& signal)
{
    if (m_modem.isEmpty() || !hasSignature(signal, "oas") || busPath(signal.arguments().at(0)) != m_modem)
        return;
    const QStringList gone = busTexts(signal.arguments().at(1));
    if (gone.contains(modemmanager::kModem))
        return leave();
    for (const QString& interface : gone)
        dropInterface(interface);
}

/// What has gone is not known any more; with the interface for calls, its calls are over.
void ModemManagerModem::dropInterface(const QString& interface)
{
    if (!m_known.contains(interface))
        return;
    m_known.remove(interface);
    noteModem();
    if (interface == modemmanager::kVoice)
        noteAllOver();
}

void ModemManagerModem::noteChange(const QDBusMessage& signal)
{
    if (!hasSignature(signal, "sa{sv}as") || m_modem.isEmpty())
        return;
    const QString interface = busText(signal.arguments().at(0));
    const QVariantMap properties = busMap(signal.arguments().at(1));
    if (interface == kMmCall)
        return noteCaller(signal.path(), busText(properties.value(u"Number"_s)), {});
    const bool isOfSim = interface == modemmanager::kSim && signal.path() == m_sim;
    const bool isOfModem = interface != modemmanager::kSim && signal.path() == m_modem;
    if (isOfSim || isOfModem)
        note(interface, properties);
}

void ModemManagerModem::note(const QString& interface, const QVariantMap& properties)
{
    if (!modemmanager::isRead(interface))
        return;
    QVariantMap& all = m_known[interface];
    all.insert(modemmanager::readOf(properties));
    noteModem();
    if (interface != modemmanager::kModem)
        return;
    readSim(busPath(all.value(u"Sim"_s)));
    if (busNumber(all.value(u"State"_s)) == kStateDisabled && properties.contains(u"State"_s))
        enable();
}

void ModemManagerModem::readSim(const QString& path)
{
    if (path == m_sim)
        return;
    m_sim = path;
    m_known.remove(modemmanager::kSim);
    noteModem();
    if (path.isEmpty())
        return;
    bus().call({service(), path, kObjectProperties}, u"GetAll"_s, {modemmanager::kSim}, this,
               [this, path](const QDBusMessage& reply) {
                   if (hasSignature(reply, "a{sv}") && path == m_sim)
                       note(modemmanager::kSim, busMap(reply.arguments().constFirst()));
               });
}

void ModemManagerModem::enable()
{
    if (m_modem.isEmpty() || facts().isOnline || !m_isRadioWanted)
        return;
    bus().call(at(modemmanager::kModem), u"Enable"_s, {true}, this, [this](const QDBusMessage& reply) {
        if (failureOf(reply).isEmpty())
            return;
        logFailure(u"enabling the modem"_s, reply);
        m_retry.start();
    });
}

void ModemManagerModem::askForCalls()
{
    bus().call(at(modemmanager::kVoice), u"ListCalls"_s, {}, this, [this](const QDBusMessage& reply) {
        if (!hasSignature(reply, "ao"))
            return;
        const auto paths = qdbus_cast<QList<QDBusObjectPath>>(reply.arguments().constFirst().value<QDBusArgument>());
        for (const QDBusObjectPath& path : paths)
            askForCallProperties(path.path(), Found::Before);
        // Replies come in the order of the requests: behind those on the calls.
        bus().call(at(modemmanager::kVoice), u"ListCalls"_s, {}, this,
                   [this](const QDBusMessage& /*reply*/) { noteAllFound(); });
    });
}

void ModemManagerModem::noteCallAdded(const QDBusMessage& signal)
{
    if (signal.path() == m_modem && !m_modem.isEmpty() && hasSignature(signal, "o"))
        askForCallProperties(busPath(signal.arguments().constFirst()), Found::New);
}

void ModemManagerModem::askForCallProperties(const QString& path, Found found)
{
    if (path.isEmpty())
        return;
    bus().call({service(), path, kObjectProperties}, u"GetAll"_s, {kMmCall}, this,
               [this, path, found](const QDBusMessage& reply) {
                   if (hasSignature(reply, "a{sv}"))
                       addCall(path, busMap(reply.arguments().constFirst()), found);
               });
}

/// A call that has come, perhaps one that is over by now, or one that was there before. Those that were asked for have
/// their objects already.
void ModemManagerModem::addCall(const QString& path, const QVariantMap& properties, Found found)
{
    const bool isIncoming = busNumber(properties.value(u"Direction"_s)) == kCallIncoming;
    const qint64 state = busNumber(properties.value(u"State"_s)).value_or(0);
    const QString number = busText(properties.value(u"Number"_s));
    if (hasCall(path))
        return;
    // Who was here before has logged it.
    if (found == Found::Before && state == kCallTerminated && !isAwaited(number)) {
        deleteCall(path);
        return;
    }
    const CallState seen =
        modemmanager::meaning(kMmCallStates, state, isIncoming ? CallState::Ringing : CallState::Ended);
    if (seen == CallState::Ended)
        return;
    noteFound(path, number, {}, seen);
    noteState(path, state, busNumber(properties.value(u"StateReason"_s)).value_or(0));
    m_probe.start();
}

void ModemManagerModem::noteCallState(const QDBusMessage& signal)
{
    if (!hasSignature(signal, "iiu"))
        return;
    noteState(signal.path(), busNumber(signal.arguments().at(1)).value_or(0),
              busNumber(signal.arguments().at(2)).value_or(0));
}

void ModemManagerModem::noteState(const QString& path, qint64 state, qint64 reason)
{
    if (isUnknown(path) && state == kCallTerminated) {
        noteGone(path);
        deleteCall(path);
    }
    if (!hasCall(path))
        return;
    if (state != kCallTerminated) {
        const CallState reached = modemmanager::meaning(kMmCallStates, state, CallState::Ended);
        if (reached != CallState::Ended)
            StackModem::noteState(path, reached);
        return;
    }
    noteOver(path, modemmanager::meaning(kMmReasons, reason, CallEnd::There));
    deleteCall(path);
}

/// No signal tells that a modem can no more be talked to, while the service has it: so it is asked, as long as it has a
/// call, and then until it answers again.
void ModemManagerModem::probe()
{
    if (!m_isMute && !hasCalls())
        return m_probe.stop();
    bus().call(at(modemmanager::kVoice), u"CallWaitingQuery"_s, {}, this, [this](const QDBusMessage& reply) {
        const bool isMute = reply.errorName() == kCannotAsk;
        if (m_modem.isEmpty() || isMute == m_isMute)
            return;
        m_isMute = isMute;
        if (isMute) {
            logFailure(u"asking the modem"_s, reply);
            noteAllOver();
        }
        noteModem();
    });
}

/// Learns what is known of the modem; nothing of one that is mute.
void ModemManagerModem::noteModem()
{
    learn([this](PhoneFacts& facts) {
        facts = {};
        facts.hasModem = true;
        if (m_isMute)
            return;
        for (auto known = m_known.cbegin(); known != m_known.cend(); ++known)
            modemmanager::noteInterface(facts, known.key(), known.value());
    });
}

/// A finished call stays until it is deleted.
void ModemManagerModem::deleteCall(const QString& path)
{
    const auto isGone = [](const QDBusMessage& /*reply*/) {};
    if (!path.isEmpty() && !m_modem.isEmpty())
        bus().call(at(modemmanager::kVoice), u"DeleteCall"_s, {QVariant::fromValue(QDBusObjectPath(path))}, this,
                   isGone);
}

} // namespace zyn::handset
