// The states of the phone, from the signals of the phone channel's client.
#include "qml/module/PhoneStatus.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <span>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::qml {
namespace {

using Networks = TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S;

/// Seconds as a property has them.
int seconds(UINT32 count)
{
    return static_cast<int>(std::min<UINT32>(count, std::numeric_limits<int>::max()));
}

/// The text in @p field, which ends at a NUL or with the field.
template<size_t size>
QString fieldText(const char (&field)[size])
{
    return QString::fromLatin1(field, std::find(std::begin(field), std::end(field), '\0') - std::begin(field));
}

/// An IMSI is digits and then zeros; anything else is shown as it is.
QString imsiText(const UINT8* imsi)
{
    const QByteArray bytes(reinterpret_cast<const char*>(imsi), TAPI_IMSI_LENGTH + 1);
    const auto end = std::ranges::find_if(bytes, [](char character) { return character <= ' ' || character > '~'; });
    const bool isText = std::all_of(end, bytes.end(), [](char character) { return character == '\0'; });
    return isText ? QString::fromLatin1(bytes.constData(), end - bytes.begin())
                  : u"hex:"_s + QString::fromLatin1(bytes.toHex());
}

} // namespace

PhoneStatus::PhoneStatus(QObject* parent)
    : QObject(parent)
    , m_client(nullptr, "PhoneStatus")
{
    followNumbers();
    followTexts();
    followCounters();
    followEvents();
}

void PhoneStatus::setRadio(bool isOn)
{
    m_client.setRFMode(isOn);
}

bool PhoneStatus::requestTotals()
{
    return m_client.getTotalByteAndConnectedDuration();
}

void PhoneStatus::resetTotalDuration(bool first)
{
    m_client.resetTotalDuration(first);
}

void PhoneStatus::setLanguage(int language)
{
    m_client.setFearureDBCurrLang(language);
}

void PhoneStatus::followNumbers()
{
    using Client = PHONE_MsgClient;
    using Status = PhoneStatus;
    follow(&Client::signalPowerOnMode, &Status::m_powerOnMode, &Status::powerOnModeChanged);
    follow(&Client::signalSimCardStatus, &Status::m_simCard, &Status::simCardChanged);
    follow(&Client::signalPinStatus, &Status::m_pin, &Status::pinChanged);
    follow(&Client::signalSubsidyStatus, &Status::m_subsidyLock, &Status::subsidyLockChanged);
    follow(&Client::signalChargeStatus, &Status::m_charger, &Status::chargerChanged);
    follow(&Client::signalBatteryStatus, &Status::m_batteryStatus, &Status::batteryStatusChanged);
    follow(&Client::signalBatteryCapacity, &Status::m_batteryCapacity, &Status::batteryCapacityChanged);
    follow(&Client::signalSignalQuality, &Status::m_signalQuality, &Status::signalQualityChanged);
    follow(&Client::signalServiceAvailability, &Status::m_service, &Status::serviceChanged);
    follow(&Client::signalRoamingState, &Status::m_roaming, &Status::roamingChanged);
    follow(&Client::signalNetworkStatus, &Status::m_networkStatus, &Status::networkStatusChanged);
    follow(&Client::signalGprsAttached, &Status::m_gprsAttached, &Status::gprsAttachedChanged);
    follow(&Client::signalGprsActivated, &Status::m_gprsActivated, &Status::gprsActivatedChanged);
    follow(&Client::signalGprsService, &Status::m_gprsService, &Status::gprsServiceChanged);
    follow(&Client::signalEgprsService, &Status::m_egprsService, &Status::egprsServiceChanged);
    follow(&Client::signalEgprsTrans, &Status::m_egprsTransmitting, &Status::egprsTransmittingChanged);
    follow(&Client::signalOpenGprsResult, &Status::m_openGprsResult, &Status::openGprsResultChanged);
    follow(&Client::signalCloseGprsResult, &Status::m_closeGprsResult, &Status::closeGprsResultChanged);
    follow(&Client::signalDisplayUMAIcon, &Status::m_umaIcon, &Status::umaIconChanged);
    follow(&Client::signalOperatorLogo, &Status::m_operatorLogoHidden, &Status::operatorLogoHiddenChanged);
}

void PhoneStatus::followTexts()
{
    using Client = PHONE_MsgClient;
    using Status = PhoneStatus;
    follow(&Client::signalRegisted, &Status::m_networkId, &Status::networkIdChanged);
    follow(&Client::signalServiceName, &Status::m_serviceName, &Status::serviceNameChanged);
    follow(&Client::signalHomeZoneName, &Status::m_homeZone, &Status::homeZoneChanged);
    follow(&Client::signalWifiProfileName, &Status::m_wifiProfile, &Status::wifiProfileChanged);
    connect(&m_client, &Client::signalSpnNameExtend, this, [this](const SERVICE_PROVIDER_DATA_S& provider) {
        tell({set<QVariant>(&Status::m_providerName, provider.name, &Status::providerNameChanged),
              set<int>(&Status::m_providerFlag, provider.flag, &Status::providerFlagChanged)});
    });
    connect(&m_client, &Client::signalImsiId, this,
            [this](const UINT8* imsi) { assign<QVariant>(&Status::m_imsi, imsiText(imsi), &Status::imsiChanged); });
}

void PhoneStatus::followCounters()
{
    using Client = PHONE_MsgClient;
    using Status = PhoneStatus;
    connect(&m_client, &Client::signalTotalDataBytes, this,
            [this](bool connected, UINT32 total, UINT32 sent, UINT32 received) {
                tell({set<int>(&Status::m_dataConnected, connected, &Status::dataConnectedChanged),
                      set<double>(&Status::m_totalBytes, total, &Status::totalBytesChanged),
                      set<double>(&Status::m_sentBytes, sent, &Status::sentBytesChanged),
                      set<double>(&Status::m_receivedBytes, received, &Status::receivedBytesChanged)});
            });
    connect(&m_client, &Client::signalSessionDataBytes, this,
            [this](UINT8 session, bool connected, UINT32 total, UINT32 sent, UINT32 received) {
                hear();
                Q_EMIT sessionDataReceived(session, connected, total, sent, received);
            });
    connect(&m_client, &Client::signalCurrentConnectedDuration, this, [this](bool, UINT32 count) {
        assign(&Status::m_currentDuration, seconds(count), &Status::currentDurationChanged);
    });
    connect(&m_client, &Client::signalTotalConnectedDuration, this, [this](bool, UINT32 count) {
        assign(&Status::m_totalDuration, seconds(count), &Status::totalDurationChanged);
    });
}

void PhoneStatus::followEvents()
{
    using Client = PHONE_MsgClient;
    using Status = PhoneStatus;
    pass(&Client::signalPowerDown, &Status::powerKeyPressed);
    pass(&Client::signalLowBattery, &Status::batteryLow);
    pass(&Client::signalLowBatteryStatusChanged, &Status::batteryLowStateChanged);
    pass(&Client::signalChargeComleted, &Status::chargeCompleted);
    pass(&Client::signalVoiceCallStatChanged, &Status::voiceCallChanged);
    pass(&Client::signalCSDCallStatChanged, &Status::csdCallChanged);
    pass(&Client::signalCallForwardStatChanged, &Status::callForwardingChanged);
    pass(&Client::signalLineNumberStatChanged, &Status::lineChanged);
    pass(&Client::signalCallbarringStatusChanged, &Status::callBarringChanged);
    pass(&Client::signalWifiCampStatus, &Status::wifiCampStatusChanged);
    pass(&Client::signalWifiSignalBar, &Status::wifiSignalBarChanged);
    pass(&Client::signalWifiConnectionInProgress, &Status::wifiConnecting);
    pass(&Client::signalTTYFeatureChanged, &Status::ttyChanged);
    pass(&Client::signalSimCardChanged, &Status::simCardReplaced);
    pass(&Client::signalSetRFModResult, &Status::radioSwitched);
    pass(&Client::signalResetTotalDurationRet, &Status::durationReset);
    connect(&m_client, &Client::signalServiceIdAndName, this,
            [this](const QString& third, const QString& first, const QString& second) {
                hear();
                Q_EMIT serviceDescribed(third, first, second);
            });
    connect(&m_client, &Client::signalnetworkListGotten, this,
            [this](PHONE_UI_NETWORKLIST_TYPE_T kind, const Networks* list) { tellNetworks(kind, *list); });
}

void PhoneStatus::tellNetworks(int kind, const Networks& list)
{
    const int count = std::clamp(list.count, 0, static_cast<int>(std::size(list.entries)));
    QVariantList networks;
    for (const TAPI_NETWORK_PREFERED_ENTRY_S& entry : std::span(list.entries).first(static_cast<size_t>(count)))
        networks += QVariantMap{{u"id"_s, fieldText(entry.id)}, {u"name"_s, fieldText(entry.name)}};
    hear();
    Q_EMIT networksReceived(kind, networks);
}

void PhoneStatus::hear()
{
    if (!std::exchange(m_isHeard, true))
        Q_EMIT heardChanged();
}

/// Sets what a message tells; the signal of that, if it is another than before.
template<typename Value>
PhoneStatus::Change PhoneStatus::set(Value PhoneStatus::*member, const Value& value, Change changed)
{
    return std::exchange(this->*member, value) != value ? changed : nullptr;
}

/// Tells of the @p changes of one message, all of which are set, so that nobody sees the half of it.
void PhoneStatus::tell(std::initializer_list<Change> changes)
{
    hear();
    for (const Change changed : changes) {
        if (changed)
            Q_EMIT(this->*changed)();
    }
}

template<typename Value>
void PhoneStatus::assign(Value PhoneStatus::*member, const Value& value, Change changed)
{
    tell({set(member, value, changed)});
}

template<typename Argument>
void PhoneStatus::follow(void (PHONE_MsgClient::*signal)(Argument), int PhoneStatus::*member,
                         void (PhoneStatus::*changed)())
{
    connect(&m_client, signal, this, [this, member, changed](Argument value) { assign(member, int{value}, changed); });
}

void PhoneStatus::follow(void (PHONE_MsgClient::*signal)(QString), QVariant PhoneStatus::*member,
                         void (PhoneStatus::*changed)())
{
    connect(&m_client, signal, this,
            [this, member, changed](const QString& text) { assign<QVariant>(member, text, changed); });
}

template<typename... Arguments>
void PhoneStatus::pass(void (PHONE_MsgClient::*signal)(Arguments...), void (PhoneStatus::*passed)(Arguments...))
{
    connect(&m_client, signal, this, [this, passed](Arguments... values) {
        hear();
        Q_EMIT(this->*passed)(values...);
    });
}

} // namespace zyn::qml
