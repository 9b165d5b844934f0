// What the properties of oFono's objects tell of the phone.
#include "handset/modem/OfonoFacts.h"

#include <QtDBus/QDBusArgument>

#include <iterator>

using namespace Qt::StringLiterals;

namespace zyn::handset::ofono {
namespace {

constexpr std::array<Word<Pin>, 5> kPins{{{QLatin1String("none"), Pin::NotRequired},
                                          {QLatin1String("pin"), Pin::Pin1},
                                          {QLatin1String("puk"), Pin::Puk1},
                                          {QLatin1String("pin2"), Pin::Pin2},
                                          {QLatin1String("puk2"), Pin::Puk2}}};

constexpr std::array<Word<Registration>, 6> kRegistrations{{{QLatin1String("unregistered"), Registration::None},
                                                            {QLatin1String("registered"), Registration::Registered},
                                                            {QLatin1String("roaming"), Registration::Registered},
                                                            {QLatin1String("searching"), Registration::Searching},
                                                            {QLatin1String("denied"), Registration::Denied},
                                                            {QLatin1String("unknown"), Registration::Unknown}}};

/// The states of the SIM card and its locks are told by two properties together.
void noteSim(PhoneFacts& facts, const QVariantMap& sim)
{
    const std::optional<bool> isPresent = busBool(sim.value(u"Present"_s));
    const QString required = busText(sim.value(u"PinRequired"_s));
    const bool tellsPin = isPresent.value_or(false) && !required.isEmpty();
    facts.pin = tellsPin ? meaning(kPins, required, Pin::Other) : Pin::Unknown;
    facts.sim = isPresent == false ? SimCard::None : simCardWith(facts.pin);
    facts.subsidyLock = subsidyLockWith(facts.pin);
}

/// How often the code that is asked for may still be wrong: `Retries` is a{sy}, by the codes' names.
std::optional<int> triesIn(const QVariantMap& sim)
{
    const auto argument = sim.value(u"Retries"_s).value<QDBusArgument>();
    if (argument.currentSignature() != u"a{sy}"_s)
        return std::nullopt;
    const auto tries = qdbus_cast<QMap<QString, uchar>>(argument);
    const auto found = tries.find(busText(sim.value(u"PinRequired"_s)));
    return found == tries.end() ? std::nullopt : std::optional(int{*found});
}

/// How a property becomes what is known: from it, and from the others of its interface. A property that is not there
/// has no value.
struct PropertyRow
{
    const QString& interface;
    const char* property;
    void (*note)(PhoneFacts& facts, const QVariant& value, const QVariantMap& all);
};

const PropertyRow kOfonoProperties[] = {
    {kSim, "Present", [](PhoneFacts& facts, const QVariant&, const QVariantMap& all) { noteSim(facts, all); }},
    {kSim, "PinRequired", [](PhoneFacts& facts, const QVariant&, const QVariantMap& all) { noteSim(facts, all); }},
    {kSim, "Retries",
     [](PhoneFacts& facts, const QVariant&, const QVariantMap& all) { facts.triesLeft = triesIn(all); }},
    {kSim, "SubscriberIdentity",
     [](PhoneFacts& facts, const QVariant& value, const QVariantMap&) { facts.imsi = busText(value); }},
    {kSim, "ServiceProviderName",
     [](PhoneFacts& facts, const QVariant& value, const QVariantMap&) { facts.providerName = busText(value); }},
    {kSim, "FixedDialing",
     [](PhoneFacts& facts, const QVariant& value, const QVariantMap&) { facts.hasFixedDialing = busBool(value); }},
    {kNetwork, "Status",
     [](PhoneFacts& facts, const QVariant& value, const QVariantMap&) {
         facts.registration = meaning(kRegistrations, busText(value), Registration::Unknown);
         facts.isRoaming = busText(value) == u"roaming"_s;
     }},
    {kNetwork, "Name",
     [](PhoneFacts& facts, const QVariant& value, const QVariantMap&) { facts.operatorName = busText(value); }},
    {kNetwork, "MobileCountryCode",
     [](PhoneFacts& facts, const QVariant&, const QVariantMap& all) {
         facts.networkId = busText(all.value(u"MobileCountryCode"_s)) + busText(all.value(u"MobileNetworkCode"_s));
     }},
    {kNetwork, "MobileNetworkCode",
     [](PhoneFacts& facts, const QVariant&, const QVariantMap& all) {
         facts.networkId = busText(all.value(u"MobileCountryCode"_s)) + busText(all.value(u"MobileNetworkCode"_s));
     }},
    {kNetwork, "Strength",
     [](PhoneFacts& facts, const QVariant& value, const QVariantMap&) {
         const std::optional<qint64> percent = busNumber(value);
         facts.strength = percent ? std::optional(static_cast<int>(*percent)) : std::nullopt;
     }},
    {kVoice, "EmergencyNumbers",
     [](PhoneFacts& facts, const QVariant& value, const QVariantMap&) { facts.emergencyNumbers = busTexts(value); }},
    {kData, "Attached",
     [](PhoneFacts& facts, const QVariant& value, const QVariantMap&) { facts.isDataAttached = busBool(value); }},
};

/// @{ What is no more when the registration is lost, or the card is taken out, and no signal tells so.
constexpr std::array kGoneUnregistered{"Strength", "MobileCountryCode", "MobileNetworkCode"};
constexpr std::array kGoneWithCard{"SubscriberIdentity", "ServiceProviderName", "Retries"};
/// @}

const PropertyRow* rowOf(const QString& interface, const QString& property)
{
    const auto* const row = std::ranges::find_if(kOfonoProperties, [&](const PropertyRow& known) {
        return interface == known.interface && property == QLatin1String(known.property);
    });
    return row == std::end(kOfonoProperties) ? nullptr : row;
}

template<size_t Count>
QStringList textsOf(const std::array<const char*, Count>& names)
{
    QStringList texts;
    for (const char* name : names)
        texts += QLatin1String(name);
    return texts;
}

} // namespace

bool isRead(const QString& interface, const QString& property)
{
    return rowOf(interface, property);
}

void noteProperty(PhoneFacts& facts, const QString& interface, const QString& property, const QVariantMap& all)
{
    if (const PropertyRow* const row = rowOf(interface, property))
        row->note(facts, all.value(property), all);
}

QStringList goneWith(const QString& interface, const QString& property, const QVariant& value)
{
    if (interface == kNetwork && property == u"Status"_s
        && meaning(kRegistrations, busText(value), Registration::Unknown) != Registration::Registered)
        return textsOf(kGoneUnregistered);
    return interface == kSim && property == u"Present"_s && busBool(value) == false ? textsOf(kGoneWithCard)
                                                                                    : QStringList();
}

} // namespace zyn::handset::ofono
