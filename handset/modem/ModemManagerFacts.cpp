// What the properties of ModemManager's objects tell of the phone.
#include "handset/modem/ModemManagerFacts.h"

#include <QtDBus/QDBusArgument>

#include <iterator>

using namespace Qt::StringLiterals;

namespace zyn::handset::modemmanager {
namespace {

/// @{ MMModemState, MMModemStateFailedReason, MMModemPowerState.
constexpr qint64 kStateFailed = -1;
constexpr qint64 kStateEnabled = 6;
constexpr qint64 kFailedNoSim = 2;
constexpr qint64 kPowerOn = 3;
/// @}

/// MMModemLock; what is above is the lock of a network, a provider or a phone.
constexpr std::array<Number<Pin>, 6> kLocks{
    {{0, Pin::Unknown}, {1, Pin::NotRequired}, {2, Pin::Pin1}, {3, Pin::Pin2}, {4, Pin::Puk1}, {5, Pin::Puk2}}};

/// MMModem3gppRegistrationState; the last are those of networks that take only text messages, or emergency calls, or
/// calls by another way.
constexpr std::array<Number<Registration>, 11> kRegistrations{{{0, Registration::None},
                                                               {1, Registration::Registered},
                                                               {2, Registration::Searching},
                                                               {3, Registration::Denied},
                                                               {4, Registration::Unknown},
                                                               {5, Registration::Registered},
                                                               {6, Registration::None},
                                                               {7, Registration::None},
                                                               {8, Registration::None},
                                                               {9, Registration::Registered},
                                                               {10, Registration::Registered}}};
constexpr std::array<qint64, 2> kRoamingStates{5, 10};

/// How often the code that is asked for may still be wrong: `UnlockRetries` is a{uu}, by the numbers of the locks.
std::optional<int> triesOf(const QVariantMap& modem)
{
    const auto argument = modem.value(u"UnlockRetries"_s).value<QDBusArgument>();
    const std::optional<qint64> lock = busNumber(modem.value(u"UnlockRequired"_s));
    if (argument.currentSignature() != u"a{uu}"_s || !lock)
        return std::nullopt;
    const auto tries = qdbus_cast<QMap<uint, uint>>(argument);
    const auto found = tries.find(static_cast<uint>(*lock));
    return found == tries.end() ? std::nullopt : std::optional(static_cast<int>(std::min(*found, 255U)));
}

void noteModem(PhoneFacts& facts, const QVariantMap& modem)
{
    const std::optional<qint64> state = busNumber(modem.value(u"State"_s));
    const bool hasFailed = state == kStateFailed;
    const bool lacksSim = hasFailed && busNumber(modem.value(u"StateFailedReason"_s)) == kFailedNoSim;
    facts.isPowered = busNumber(modem.value(u"PowerState"_s)) == kPowerOn;
    facts.isOnline = state.value_or(kStateFailed) >= kStateEnabled;
    facts.pin = lacksSim ? Pin::Unknown : meaning(kLocks, busNumber(modem.value(u"UnlockRequired"_s)), Pin::Other);
    facts.sim = lacksSim ? SimCard::None : simCardWith(facts.pin);
    facts.subsidyLock = subsidyLockWith(facts.pin);
    facts.triesLeft = triesOf(modem);
    const auto strength = modem.value(u"SignalQuality"_s).value<QDBusArgument>();
    facts.strength = std::nullopt;
    if (facts.isOnline && strength.currentSignature() == u"(ub)"_s) {
        uint percent = 0;
        bool isRecent = false;
        strength.beginStructure();
        strength >> percent >> isRecent;
        strength.endStructure();
        facts.strength = static_cast<int>(std::min(percent, 100U));
    }
}

void note3gpp(PhoneFacts& facts, const QVariantMap& network)
{
    const std::optional<qint64> state = busNumber(network.value(u"RegistrationState"_s));
    constexpr qint64 kAttached = 1;
    facts.registration = meaning(kRegistrations, state, Registration::Unknown);
    facts.isRoaming = state && std::ranges::find(kRoamingStates, *state) != kRoamingStates.end();
    facts.operatorName = busText(network.value(u"OperatorName"_s));
    facts.networkId = busText(network.value(u"OperatorCode"_s));
    const std::optional<qint64> data = busNumber(network.value(u"PacketServiceState"_s));
    facts.isDataAttached = data ? std::optional(*data == kAttached) : std::nullopt;
}

void noteSim(PhoneFacts& facts, const QVariantMap& sim)
{
    facts.imsi = busText(sim.value(u"Imsi"_s));
    facts.providerName = busText(sim.value(u"OperatorName"_s));
    facts.emergencyNumbers = busTexts(sim.value(u"EmergencyNumbers"_s));
}

/// How the properties of an interface become what is known. Without any, nothing is.
struct InterfaceRow
{
    const QString& interface;
    void (*note)(PhoneFacts& facts, const QVariantMap& properties);
};

const InterfaceRow kInterfaces[] = {
    {kModem, noteModem},
    {k3gpp, note3gpp},
    {kSim, noteSim},
    {kVoice, [](PhoneFacts& facts, const QVariantMap& /*voice*/) { facts.hasVoice = true; }},
};

/// The properties that these read: no others are kept.
constexpr std::array kKept{"State",
                           "StateFailedReason",
                           "PowerState",
                           "UnlockRequired",
                           "UnlockRetries",
                           "SignalQuality",
                           "Sim",
                           "RegistrationState",
                           "OperatorName",
                           "OperatorCode",
                           "PacketServiceState",
                           "Imsi",
                           "EmergencyNumbers"};

const InterfaceRow* rowOf(const QString& interface)
{
    const auto* const row =
        std::ranges::find_if(kInterfaces, [&](const InterfaceRow& known) { return interface == known.interface; });
    return row == std::end(kInterfaces) ? nullptr : row;
}

} // namespace

bool isRead(const QString& interface)
{
    return rowOf(interface);
}

QVariantMap readOf(const QVariantMap& properties)
{
    QVariantMap read;
    for (const char* name : kKept) {
        if (const auto property = properties.find(QLatin1String(name)); property != properties.end())
            read.insert(property.key(), property.value());
    }
    return read;
}

void noteInterface(PhoneFacts& facts, const QString& interface, const QVariantMap& properties)
{
    if (const InterfaceRow* const row = rowOf(interface))
        row->note(facts, properties);
}

} // namespace zyn::handset::modemmanager
