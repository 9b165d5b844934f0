// What the telephony stacks tell of the phone: properties of any name, each with a value of any type.
#include "fuzz/Fuzz.h"

#include "handset/modem/ModemManagerFacts.h"
#include "handset/modem/OfonoFacts.h"
#include "handset/phone_server/PhoneStatus.h"

#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>

#include <algorithm>
#include <array>
#include <span>

using namespace Qt::StringLiterals;

namespace zyn::fuzz {
namespace {

namespace modemmanager = handset::modemmanager;
namespace ofono = handset::ofono;

using Interfaces = std::array<const QString*, 4>;

/// A telephony stack: what of it is read, and how its property becomes what is known.
struct Stack
{
    const Interfaces& interfaces;
    std::span<const char* const> properties;
    void (*note)(handset::PhoneFacts& facts, const QString& interface, const QString& property, QVariantMap& all);
};

constexpr Interfaces kModemManagerInterfaces{&modemmanager::kModem, &modemmanager::k3gpp, &modemmanager::kVoice,
                                             &modemmanager::kSim};

constexpr const char* kOfonoProperties[] = {"Present",
                                            "PinRequired",
                                            "SubscriberIdentity",
                                            "ServiceProviderName",
                                            "FixedDialing",
                                            "Status",
                                            "Name",
                                            "MobileCountryCode",
                                            "MobileNetworkCode",
                                            "Strength",
                                            "EmergencyNumbers",
                                            "Attached",
                                            "Retries"};
constexpr const char* kModemManagerProperties[] = {
    "State",         "StateFailedReason", "PowerState",   "UnlockRequired", "UnlockRetries",
    "SignalQuality", "RegistrationState", "OperatorName", "OperatorCode",   "PacketServiceState",
    "Imsi",          "EmergencyNumbers"};

void noteOfono(handset::PhoneFacts& facts, const QString& interface, const QString& property, QVariantMap& all)
{
    const QStringList gone = ofono::goneWith(interface, property, all.value(property));
    for (const QString& other : gone) {
        all.remove(other);
        ofono::noteProperty(facts, interface, other, all);
    }
    ofono::noteProperty(facts, interface, property, all);
}

void noteModemManager(handset::PhoneFacts& facts, const QString& interface, const QString& /*property*/,
                      QVariantMap& all)
{
    all = modemmanager::readOf(all);
    modemmanager::noteInterface(facts, interface, all);
}

constexpr Stack kStacks[] = {
    {ofono::kRead, kOfonoProperties, noteOfono},
    {kModemManagerInterfaces, kModemManagerProperties, noteModemManager},
};

QString textOf(Input& input)
{
    return QString::fromUtf8(input.text());
}

/// @{ A value of each type that properties have, or should not have.
using MakeValue = QVariant (*)(Input& input);
constexpr MakeValue kPlain[] = {
    [](Input&) { return QVariant(); },
    [](Input& input) { return QVariant(input.below(2) == 0); },
    [](Input& input) { return QVariant::fromValue(input.number<uchar>()); },
    [](Input& input) { return QVariant::fromValue(input.number<short>()); },
    [](Input& input) { return QVariant(input.number<int>()); },
    [](Input& input) { return QVariant(input.number<uint>()); },
    [](Input& input) { return QVariant(input.number<qlonglong>()); },
    [](Input& input) { return QVariant(input.number<qulonglong>()); },
    [](Input& input) { return QVariant(input.number<double>()); },
    [](Input& input) { return QVariant(input.text()); },
    [](Input& input) { return QVariant(textOf(input)); },
    [](Input& input) { return QVariant(textOf(input).split(u' ')); },
    [](Input& input) {
        return QVariant(QVariantMap{{textOf(input), textOf(input)}});
    },
    [](Input& input) { return QVariant::fromValue(QDBusObjectPath(textOf(input))); },
};
constexpr char kText = 10;
/// @}

QVariant valueOf(Input& input)
{
    const int kind = input.below(2 * int(std::size(kPlain)));
    const QVariant plain = kPlain[kind / 2](input);
    return kind % 2 == 0 ? plain : QVariant::fromValue(QDBusVariant(plain));
}

void requireText(const QString& text, qsizetype most = 128)
{
    require(text.size() <= most, "a text has a bound");
    require(std::ranges::all_of(text, [](QChar character) { return character.isPrint(); }), "a text is printable");
}

void readModem(Input& input)
{
    const Stack& stack = kStacks[input.below(int(std::size(kStacks)))];
    handset::PhoneFacts facts;
    std::array<QVariantMap, std::tuple_size_v<Interfaces>> known;
    handset::PhoneStatus status;
    while (!input.isAtEnd()) {
        const auto interface = size_t(input.below(int(known.size())));
        const auto property = size_t(input.below(int(stack.properties.size()) + 1));
        const QString name =
            property < stack.properties.size() ? QString(QLatin1String(stack.properties[property])) : textOf(input);
        known.at(interface)[name] = valueOf(input);
        stack.note(facts, *stack.interfaces.at(interface), name, known.at(interface));

        for (const QString& text : {facts.imsi, facts.operatorName, facts.providerName})
            requireText(text);
        requireText(facts.networkId, 2 * qsizetype{128});
        for (const QString& number : std::as_const(facts.emergencyNumbers))
            requireText(number);
        const int32_t bars = handset::barsOf(facts.strength);
        require(bars >= 0 && bars <= 5, "a signal has up to five bars");
        require(facts.sim == handset::SimCard::None || facts.sim == handset::simCardWith(facts.pin),
                "a card that is there has the state that its lock gives it");
        require(!handset::describeFacts(facts).isEmpty(), "what is known can be told to people");
    }
    handset::tellFacts(facts, status);
}

/// Every property of each stack, as a text, and as a number.
QList<QByteArray> modemSeeds()
{
    QList<QByteArray> seeds;
    for (size_t stack = 0; stack < std::size(kStacks); ++stack) {
        for (char interface = 0; interface < char(std::tuple_size_v<Interfaces>); ++interface) {
            QByteArray texts = seed({char(stack)});
            QByteArray numbers = texts;
            for (size_t property = 0; property < kStacks[stack].properties.size(); ++property) {
                texts += seed({interface, char(property), 2 * kText, 3, '2', '6', '2'});
                numbers += seed({interface, char(property), 4, 1});
            }
            seeds += {texts, numbers};
        }
    }
    return seeds;
}

constexpr std::array kModemTargets{
    Target{"modem_facts", "properties of the telephony stacks, of any type", readModem, modemSeeds},
};

} // namespace

std::span<const Target> modemTargets()
{
    return kModemTargets;
}

} // namespace zyn::fuzz
