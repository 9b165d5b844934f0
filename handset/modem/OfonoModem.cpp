// Telephony by oFono.
#include "handset/modem/OfonoModem.h"

#include "handset/common/Log.h"
#include "handset/modem/OfonoFacts.h"
#include "utility/PHONE_EmergencyCall.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusVariant>

#include <algorithm>
#include <array>
#include <iterator>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

const QString kManager = u"org.ofono.Manager"_s;
const QString kModem = u"org.ofono.Modem"_s;
const QString kVoiceCall = u"org.ofono.VoiceCall"_s;
const QString kChanged = u"PropertyChanged"_s;

constexpr std::array<ofono::Word<CallState>, 6> kCallStates{{{QLatin1String("dialing"), CallState::Dialing},
                                                             {QLatin1String("alerting"), CallState::Alerting},
                                                             {QLatin1String("incoming"), CallState::Ringing},
                                                             {QLatin1String("waiting"), CallState::Waiting},
                                                             {QLatin1String("active"), CallState::Connected},
                                                             {QLatin1String("held"), CallState::Held}}};
/// How often an emergency call is placed that a modem does not take which has just been switched on; how often any call
/// that oFono does not take as it is busy, for example with one that was hung up; and how long after the last time.
constexpr int kEmergencyTries = 20;
constexpr int kBusyTries = 20;
constexpr std::chrono::milliseconds kBetweenDials{500};

/// How often properties are read that are not told, and how long after the last time.
constexpr int kReadTries = 5;
constexpr std::chrono::seconds kBetweenReads{1};

/// Between two attempts to switch on a modem that cannot be.
constexpr std::chrono::seconds kBetweenSwitches{10};

const QString kDisconnected = u"disconnected"_s;
const QString kInProgress = u"org.ofono.Error.InProgress"_s;

constexpr std::array<ofono::Word<CallEnd>, 3> kReasons{{{QLatin1String("local"), CallEnd::Here},
                                                        {QLatin1String("remote"), CallEnd::There},
                                                        {QLatin1String("network"), CallEnd::Network}}};

QString hides(CallerId callerId)
{
    constexpr std::array kWords{"default", "enabled", "disabled"};
    return QLatin1String(kWords.at(static_cast<size_t>(callerId)));
}

/// An object and its properties, as oFono lists them.
struct OfonoObject
{
    QString path;
    QVariantMap properties;
};

/// The objects in a list of them; none when it is something else.
QList<OfonoObject> objectsIn(const QDBusMessage& reply)
{
    QList<OfonoObject> objects;
    if (!hasSignature(reply, "a(oa{sv})"))
        return objects;
    const auto list = reply.arguments().constFirst().value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        QDBusObjectPath path;
        QVariantMap properties;
        list.beginStructure();
        list >> path >> properties;
        list.endStructure();
        objects.append({path.path(), properties});
    }
    list.endArray();
    return objects;
}

} // namespace

OfonoModem::OfonoModem(Bus& bus, PhoneStatus& status)
    : StackModem(bus, status, QLatin1String(kServiceName), QLatin1String(kName))
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(kBetweenSwitches);
    connect(&m_retry, &QTimer::timeout, this, &OfonoModem::switchOn);
}

void OfonoModem::setRadio(bool isOn)
{
    m_isRadioWanted = isOn;
    if (m_modem.isEmpty()) {
        Q_EMIT radioSwitched(false);
        return;
    }
    bus().call(at(kModem), u"SetProperty"_s, {u"Online"_s, QVariant::fromValue(QDBusVariant(isOn))}, this,
               [this](const QDBusMessage& reply) {
                   const bool isFailure = !failureOf(reply).isEmpty();
                   if (isFailure)
                       logFailure(u"switching the radio"_s, reply);
                   Q_EMIT radioSwitched(!isFailure);
               });
}

void OfonoModem::askForCall(int id, const Request& request)
{
    if (facts().isOnline || !PHONE_IsEmergencyCall(request.number.toLatin1().data()))
        return askForCall(id, request, {0, kBusyTries});
    // Help is called with the radio off, too; it stays on afterwards, as help may call back.
    m_isRadioWanted = true;
    bus().call(at(kModem), u"SetProperty"_s, {u"Online"_s, QVariant::fromValue(QDBusVariant(true))}, this,
               [this, id, request](const QDBusMessage& reply) {
                   if (!failureOf(reply).isEmpty())
                       logFailure(u"switching the radio on for an emergency call"_s, reply);
                   askForCall(id, request, {kEmergencyTries, kBusyTries});
               });
}

/// Places the call, again while the modem is not ready, or busy, and there are @p tries left.
void OfonoModem::askForCall(int id, const Request& request, DialTries tries)
{
    const Line* const wanted = call(id);
    // It was hung up meanwhile.
    if (!wanted) {
        takeCancelled(id);
        return;
    }
    // The service has come back with it.
    if (!wanted->path.isEmpty())
        return;
    const auto noteReply = [this, id, request, tries](const QDBusMessage& reply) {
        m_asked.remove(id);
        if (hasSignature(reply, "o"))
            return noteDialed(id, busPath(reply.arguments().constFirst()));
        DialTries left = tries;
        int& count = reply.errorName() == kInProgress ? left.whileBusy : left.whileNotReady;
        // A service that has gone without a reply may have placed it.
        if (reply.errorName() != kNoReply && count-- > 0 && call(id)) {
            noteAsked(id, false);
            QTimer::singleShot(kBetweenDials, this, [this, id, request, left] { askForCall(id, request, left); });
            return;
        }
        noteNotPlaced(id, reply);
    };
    noteAsked(id, true);
    m_asked.insert(id);
    bus().call(at(ofono::kVoice), u"Dial"_s, {request.number, hides(request.callerId)}, this, noteReply, kDialPatience);
}

void OfonoModem::noteDialed(int id, const QString& path)
{
    // It was hung up meanwhile, or was over as nothing was heard of it.
    if (takeCancelled(id) || !call(id))
        endUnknown(path);
    else
        noteObject(id, path);
}

void OfonoModem::askToAnswer(const Line& call, const Bus::Reply& then)
{
    if (call.state == CallState::Waiting)
        bus().call(at(ofono::kVoice), u"HoldAndAnswer"_s, {}, this, then);
    else
        bus().call(callAt(call.path), u"Answer"_s, {}, this, then);
}

void OfonoModem::askToHangUp(const Line& call, const Bus::Reply& then)
{
    bus().call(callAt(call.path), u"Hangup"_s, {}, this, then);
}

void OfonoModem::askForTone(const Line& /*call*/, QChar key)
{
    bus().call(at(ofono::kVoice), u"SendTones"_s, {QString(key)}, this, [this](const QDBusMessage& reply) {
        if (!failureOf(reply).isEmpty())
            logFailure(u"the tone"_s, reply);
    });
}

void OfonoModem::askToUnlock(const Codes& codes, const Bus::Reply& then)
{
    if (codes.puk.isEmpty())
        bus().call(at(ofono::kSim), u"EnterPin"_s, {u"pin"_s, codes.pin}, this, then);
    else
        bus().call(at(ofono::kSim), u"ResetPin"_s, {u"puk"_s, codes.puk, codes.pin}, this, then);
}

void OfonoModem::askForTries(const std::function<void()>& then)
{
    askForProperties(ofono::kSim, then);
}

void OfonoModem::forget()
{
    m_modem.clear();
    m_interfaces.clear();
    m_known.clear();
    m_retry.stop();
}

BusAddress OfonoModem::at(const QString& interface) const
{
    return {service(), interface == kManager ? u"/"_s : m_modem, interface};
}

BusAddress OfonoModem::callAt(const QString& path) const
{
    return {service(), path, kVoiceCall};
}

/// Listens to all objects: which of them there are is not known yet, and what is not followed is left out later.
void OfonoModem::subscribe()
{
    const BusAddress manager{service(), u"/"_s, kManager};
    bus().listen(manager, u"ModemAdded"_s, this, SLOT(noteModemAdded(QDBusMessage)));
    bus().listen(manager, u"ModemRemoved"_s, this, SLOT(noteModemRemoved(QDBusMessage)));
    bus().listen({service(), {}, kModem}, kChanged, this, SLOT(noteChange(QDBusMessage)));
    for (const QString* interface : ofono::kRead)
        bus().listen({service(), {}, *interface}, kChanged, this, SLOT(noteChange(QDBusMessage)));
    bus().listen({service(), {}, ofono::kVoice}, u"CallAdded"_s, this, SLOT(noteCallAdded(QDBusMessage)));
    bus().listen({service(), {}, ofono::kVoice}, u"CallRemoved"_s, this, SLOT(noteCallRemoved(QDBusMessage)));
    bus().listen({service(), {}, kVoiceCall}, kChanged, this, SLOT(noteCallChange(QDBusMessage)));
    bus().listen({service(), {}, kVoiceCall}, u"DisconnectReason"_s, this, SLOT(noteCallReason(QDBusMessage)));
}

void OfonoModem::askForModems()
{
    bus().call(at(kManager), u"GetModems"_s, {}, this, [this](const QDBusMessage& reply) {
        if (!failureOf(reply).isEmpty())
            logFailure(u"asking for the modems"_s, reply);
        for (const OfonoObject& modem : objectsIn(reply))
            take(modem.path, modem.properties);
        if (m_modem.isEmpty())
            log(u"oFono has no modem yet: waiting for one"_s);
    });
}

/// Follows the modem @p path, unless another one is followed.
void OfonoModem::take(const QString& path, const QVariantMap& properties)
{
    if (path == m_modem)
        return;
    if (!m_modem.isEmpty()) {
        log(u"oFono has another modem, %1, which is not used"_s.arg(path));
        return;
    }
    m_modem = path;
    log(u"oFono has the modem %1"_s.arg(path));
    learn([](PhoneFacts& facts) { facts.hasModem = true; });
    for (auto property = properties.cbegin(); property != properties.cend(); ++property)
        noteModem(property.key(), property.value());
}

void OfonoModem::leave()
{
    log(u"oFono has lost the modem %1"_s.arg(m_modem));
    forget();
    noteModemGone();
    learn([](PhoneFacts& facts) { facts = {}; });
    askForModems();
}

void OfonoModem::noteModemAdded(const QDBusMessage& signal)
{
    if (hasSignature(signal, "oa{sv}"))
        take(busPath(signal.arguments().at(0)), busMap(signal.arguments().at(1)));
}

void OfonoModem::noteModemRemoved(const QDBusMessage& signal)
{
    if (hasSignature(signal, "o") && busPath(signal.arguments().constFirst()) == m_modem && !m_modem.isEmpty())
        leave();
}

void OfonoModem::noteChange(const QDBusMessage& signal)
{
    if (m_modem.isEmpty() || signal.path() != m_modem || !hasSignature(signal, "sv"))
        return;
    const QString property = busText(signal.arguments().at(0));
    if (signal.interface() == kModem)
        return noteModem(property, signal.arguments().at(1));
    note(signal.interface(), property, busValue(signal.arguments().at(1)));
    // No signal tells that a PIN is asked for no more.
    if (signal.interface() == ofono::kSim && (property == u"Present"_s || property == u"SubscriberIdentity"_s))
        askForProperties(ofono::kSim);
}

/// Switches on what is off: the modem's power, and then its radio.
void OfonoModem::switchOn()
{
    if (m_modem.isEmpty() || (facts().isPowered && (facts().isOnline || !m_isRadioWanted)))
        return;
    const QString property = facts().isPowered ? u"Online"_s : u"Powered"_s;
    bus().call(at(kModem), u"SetProperty"_s, {property, QVariant::fromValue(QDBusVariant(true))}, this,
               [this, property](const QDBusMessage& reply) {
                   if (failureOf(reply).isEmpty())
                       return;
                   logFailure(u"switching on the modem (%1)"_s.arg(property), reply);
                   m_retry.start();
               });
}

void OfonoModem::noteModem(const QString& property, const QVariant& value)
{
    if (property == u"Interfaces"_s) {
        noteInterfaces(busTexts(value));
    } else if (property == u"Powered"_s) {
        const bool isPowered = busBool(value).value_or(false);
        learn([&](PhoneFacts& facts) { facts.isPowered = isPowered; });
        switchOn();
    } else if (property == u"Online"_s) {
        const bool isOnline = busBool(value).value_or(false);
        learn([&](PhoneFacts& facts) { facts.isOnline = isOnline; });
    }
}

/// Reads what has come, and takes what has gone for unknown.
void OfonoModem::noteInterfaces(const QStringList& interfaces)
{
    const QStringList before = std::exchange(m_interfaces, interfaces);
    for (const QString* interface : ofono::kRead) {
        const bool had = before.contains(*interface);
        const bool has = interfaces.contains(*interface);
        if (has && !had)
            askForProperties(*interface);
        if (had && !has) {
            const QVariantMap known = m_known.take(*interface);
            for (auto property = known.cbegin(); property != known.cend(); ++property)
                note(*interface, property.key(), {});
            m_known.remove(*interface);
        }
    }
    const bool hasVoice = interfaces.contains(ofono::kVoice);
    const bool hadVoice = before.contains(ofono::kVoice);
    learn([&](PhoneFacts& facts) { facts.hasVoice = hasVoice; });
    if (hasVoice && !hadVoice)
        askForCalls();
    // A modem that goes in a call tells of no call that is over.
    if (hadVoice && !hasVoice)
        noteModemGone();
}

void OfonoModem::askForProperties(const QString& interface, const std::function<void()>& then)
{
    readProperties(interface, then, kReadTries);
}

/// Reads the properties of @p interface, again while it is there, does not tell them, and there are @p tries left: one
/// that comes and goes may be asked in between.
void OfonoModem::readProperties(const QString& interface, const std::function<void()>& then, int tries)
{
    const QString modem = m_modem;
    bus().call(at(interface), u"GetProperties"_s, {}, this, [=, this](const QDBusMessage& reply) {
        const bool isTold = hasSignature(reply, "a{sv}") && modem == m_modem;
        if (!isTold && tries > 1 && modem == m_modem && m_interfaces.contains(interface)) {
            QTimer::singleShot(kBetweenReads, this, [=, this] { readProperties(interface, then, tries - 1); });
            return;
        }
        if (isTold) {
            const QVariantMap properties = busMap(reply.arguments().constFirst());
            for (auto property = properties.cbegin(); property != properties.cend(); ++property)
                note(interface, property.key(), property.value());
        }
        if (then)
            then();
    });
}

void OfonoModem::note(const QString& interface, const QString& property, const QVariant& value)
{
    if (!ofono::isRead(interface, property))
        return;
    m_known[interface][property] = value;
    for (const QString& gone : ofono::goneWith(interface, property, value))
        note(interface, gone, {});
    learn([&](PhoneFacts& facts) { ofono::noteProperty(facts, interface, property, m_known[interface]); });
}

void OfonoModem::askForCalls()
{
    bus().call(at(ofono::kVoice), u"GetCalls"_s, {}, this, [this](const QDBusMessage& reply) {
        for (const OfonoObject& object : objectsIn(reply))
            addCall(object.path, object.properties);
        noteAllFound();
    });
}

void OfonoModem::noteCallAdded(const QDBusMessage& signal)
{
    if (signal.path() == m_modem && hasSignature(signal, "oa{sv}"))
        addCall(busPath(signal.arguments().at(0)), busMap(signal.arguments().at(1)));
}

/// A call that has come, or the object of one that was asked for: its signal may come before the reply, or behind it.
void OfonoModem::addCall(const QString& path, const QVariantMap& properties)
{
    if (path.isEmpty() || hasCall(path) || isUnknown(path))
        return;
    const QString word = busText(properties.value(u"State"_s));
    const CallState state = ofono::meaning(kCallStates, word, CallState::Ended);
    const bool isPlaced = state == CallState::Dialing || state == CallState::Alerting;
    // One is placed at a time: this may be one that was hung up meanwhile, as its reply will tell.
    const bool isAnyUnwanted = std::ranges::any_of(m_asked, [this](int id) { return !call(id); });
    if (state == CallState::Ended || (isPlaced && isAnyUnwanted))
        return;
    if (const int asked = isPlaced ? unboundCall() : 0) {
        noteObject(asked, path);
        noteCallState(path, word);
    } else {
        noteFound(path, busText(properties.value(u"LineIdentification"_s)), busText(properties.value(u"Name"_s)),
                  state);
    }
}

void OfonoModem::noteCallChange(const QDBusMessage& signal)
{
    if (!hasSignature(signal, "sv"))
        return;
    const QString property = busText(signal.arguments().at(0));
    const QString value = busText(signal.arguments().at(1));
    if (property == u"State"_s)
        noteCallState(signal.path(), value);
    else if (property == u"LineIdentification"_s)
        noteCaller(signal.path(), value, {});
    else if (property == u"Name"_s)
        noteCaller(signal.path(), {}, value);
}

void OfonoModem::noteCallState(const QString& path, const QString& state)
{
    if (state == kDisconnected)
        noteOver(path, CallEnd::Network);
    else if (const CallState reached = ofono::meaning(kCallStates, state, CallState::Ended);
             reached != CallState::Ended)
        noteState(path, reached);
}

void OfonoModem::noteCallReason(const QDBusMessage& signal)
{
    if (hasSignature(signal, "s"))
        noteEnd(signal.path(), ofono::meaning(kReasons, busText(signal.arguments().constFirst()), CallEnd::Network));
}

void OfonoModem::noteCallRemoved(const QDBusMessage& signal)
{
    if (!hasSignature(signal, "o"))
        return;
    const QString path = busPath(signal.arguments().constFirst());
    noteGone(path);
    noteOver(path, CallEnd::Network);
}

} // namespace zyn::handset
