// What a telephony stack knows of the phone, in this tree's own words, and the status messages that tell it.
#include "handset/modem/PhoneFacts.h"

#include "handset/common/Log.h"
#include "handset/phone_server/PhoneStatus.h"
#include "platform/HandsetState_p.h"
#include "platform/TAPI.h"
#include "utility/PHONE_EmergencyList_p.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

using Type = PHONE_Msg::PHONE_MSG_TYPE_T;

/// These reach help in every GSM and 3GPP network, with and without a card: 3GPP TS 22.101, 10.1.1.
constexpr const char* kEmergencyNumbers[] = {"112", "911"};

/// The names of values for people; each is at its value.
constexpr std::array kSimCardNames{"ready", "none", "unknown", "locked"};
static_assert(kSimCardNames.size() == static_cast<size_t>(SimCard::Locked) + 1);
constexpr std::array kPinNames{"not asked for", "PIN", "PUK", "PIN2", "PUK2", "code of another lock", "unknown"};
static_assert(kPinNames.size() == static_cast<size_t>(Pin::Unknown) + 1);
constexpr std::array kRegistrationNames{"none", "searching", "denied", "unknown", "", "registered"};
static_assert(kRegistrationNames.size() == static_cast<size_t>(Registration::Registered) + 1);

template<size_t Count, typename Enum>
const char* nameIn(const std::array<const char*, Count>& names, Enum value)
{
    return names.at(static_cast<size_t>(value));
}

template<typename Enum>
FieldValue number(Enum value)
{
    return FieldValue(static_cast<int>(value));
}

bool isRegistered(const PhoneFacts& facts)
{
    return facts.registration == Registration::Registered;
}

bool hasData(const PhoneFacts& facts)
{
    return isRegistered(facts) && facts.isDataAttached.value_or(false);
}

/// @p text while the phone is registered; a null one travels in another way than an empty one.
FieldValue networkText(const PhoneFacts& facts, const QString& text)
{
    return FieldValue(isRegistered(facts) && !text.isEmpty() ? text : u""_s);
}

FieldValue imsiBlock(const PhoneFacts& facts)
{
    return FieldValue(facts.imsi.toLatin1().left(TAPI_IMSI_LENGTH).leftJustified(TAPI_IMSI_LENGTH + 1, '\0'));
}

using Values = std::vector<FieldValue>;

/// A state and how it is told.
struct StatusRow
{
    Type type;
    Values (*values)(const PhoneFacts& facts);
};

/// Clients clear the names when the registration is lost, so these are told behind it.
const StatusRow kStatusRows[] = {
    {Type::PHONE_MSG_SIM_CARD_STATUS_S, [](const PhoneFacts& facts) { return Values{number(facts.sim)}; }},
    {Type::PHONE_MSG_PIN1_STATUS_S, [](const PhoneFacts& facts) { return Values{number(facts.pin)}; }},
    {Type::PHONE_MSG_SUBSIDY_LOCK_STATUS_S, [](const PhoneFacts& facts) { return Values{number(facts.subsidyLock)}; }},
    {Type::PHONE_MSG_IMSI_S, [](const PhoneFacts& facts) { return Values{imsiBlock(facts)}; }},
    {Type::PHONE_MSG_SIGNAL_QUALITY_S, [](const PhoneFacts& facts) { return Values{number(barsOf(facts.strength))}; }},
    {Type::PHONE_MSG_SERVICE_AVAILABILITY_S,
     [](const PhoneFacts& facts) { return Values{number(isRegistered(facts))}; }},
    {Type::PHONE_MSG_ROAMING_STATE_S,
     [](const PhoneFacts& facts) { return Values{number(facts.isRoaming ? Roaming::Abroad : Roaming::Home)}; }},
    {Type::PHONE_MSG_NETWORK_STATUS_S,
     [](const PhoneFacts& facts) {
         return Values{number(facts.registration), networkText(facts, facts.networkId)};
     }},
    {Type::PHONE_MSG_SERVICE_NAME_S,
     [](const PhoneFacts& facts) { return Values{networkText(facts, facts.operatorName)}; }},
    {Type::PHONE_MSG_SPN_NAME_S,
     [](const PhoneFacts& facts) {
         const bool isShown = isRegistered(facts) && !facts.providerName.isEmpty();
         return Values{networkText(facts, facts.providerName), FieldValue(isShown ? 1 : 0)};
     }},
    {Type::PHONE_MSG_GPRS_ATTACHED_S, [](const PhoneFacts& facts) { return Values{number(hasData(facts))}; }},
    {Type::PHONE_MSG_GPRS_SERVICE_S, [](const PhoneFacts& facts) { return Values{number(hasData(facts))}; }},
};

/// The numbers of @p facts that a list can have, and those that reach help everywhere, each once.
QStringList emergencyList(const PhoneFacts& facts)
{
    QStringList numbers = facts.emergencyNumbers;
    for (const char* everywhere : kEmergencyNumbers)
        numbers += QLatin1String(everywhere);
    numbers.removeDuplicates();
    numbers.removeIf([](const QString& text) { return !emergency::recordOf(text); });
    return numbers;
}

void storeState(const State& state, int value)
{
    if (storedState(state) == value)
        return;
    SETUP_SET_Manager settings(stateFile(), true);
    if (!settings.setSettingInfo(QLatin1String(kGroup), QLatin1String(state.key), value) || !settings.flush())
        log(u"the state %1 could not be stored in %2"_s.arg(QLatin1String(state.name), stateFile()));
}

} // namespace

SimCard simCardWith(Pin pin)
{
    switch (pin) {
    case Pin::NotRequired:
    case Pin::Pin2:
    case Pin::Puk2:
        return SimCard::Ready;
    case Pin::Unknown:
        return SimCard::Unknown;
    default:
        return SimCard::Locked;
    }
}

SubsidyLock subsidyLockWith(Pin pin)
{
    if (pin == Pin::Unknown)
        return SubsidyLock::Unknown;
    return pin == Pin::Other ? SubsidyLock::Locked : SubsidyLock::Open;
}

int32_t barsOf(std::optional<int> percent)
{
    constexpr int kPercentPerBar = 20;
    return (std::clamp(percent.value_or(0), 0, 100) + kPercentPerBar - 1) / kPercentPerBar;
}

QJsonObject describeFacts(const PhoneFacts& facts)
{
    const auto orNull = [](const auto& value) { return value ? QJsonValue(*value) : QJsonValue(); };
    return {
        {u"present"_s, facts.hasModem},
        {u"powered"_s, facts.isPowered},
        {u"radio"_s, facts.isOnline},
        {u"voice"_s, facts.hasVoice},
        {u"sim"_s, QLatin1String(nameIn(kSimCardNames, facts.sim))},
        {u"pin"_s, QLatin1String(nameIn(kPinNames, facts.pin))},
        {u"tries-left"_s, orNull(facts.triesLeft)},
        {u"network"_s, QLatin1String(nameIn(kRegistrationNames, facts.registration))},
        {u"roaming"_s, facts.isRoaming},
        {u"network-id"_s, facts.networkId},
        {u"operator"_s, facts.operatorName},
        {u"provider"_s, facts.providerName},
        {u"strength"_s, orNull(facts.strength)},
    };
}

void tellFacts(const PhoneFacts& facts, PhoneStatus& status)
{
    for (const StatusRow& row : kStatusRows)
        status.tell(row.type, row.values(facts));
}

void storeFacts(const PhoneFacts& facts)
{
    storeState(kSimCard, static_cast<int>(facts.sim));
    storeState(kPhoneSystem, facts.isPowered ? 0 : 1);
    storeState(kFixedDialing, facts.hasFixedDialing.value_or(false) ? 1 : 0);
    // Without a modem nobody can be called, and the next one may have the same card.
    const QStringList numbers = emergencyList(facts);
    const QStringList listed = emergency::readList();
    const bool isDue = listed != numbers && (facts.hasModem || listed.isEmpty());
    if (isDue && !emergency::writeList(numbers))
        log(u"the emergency numbers could not be written to %1"_s.arg(QLatin1String(emergency::kListFile)));
}

} // namespace zyn::handset
