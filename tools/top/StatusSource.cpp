// What the phone server tells of the phone's state.
#include "tools/top/StatusSource.h"

#include "handset/common/Text.h"
#include "tools/top/StateText.h"
#include "tools/zynphone/BlockText.h"
#include "utility/message/Message_p.h"

#include <type_traits>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr int kRegistered = 5; // of TAPI_NETWORK_STATUS_E

template<typename Argument>
QString textOf(const Argument& argument)
{
    if constexpr (std::is_same_v<Argument, QString>)
        return argument;
    else if constexpr (std::is_same_v<Argument, bool>)
        return yesNo(argument);
    else
        return QString::number(argument);
}

QString talkText(UINT32 seconds)
{
    return zyn::handset::durationText(static_cast<int>(seconds));
}

QString bytesText(bool connected, UINT32 total, UINT32 sent, UINT32 received)
{
    return u"%1, %2 sent, %3 received%4"_s.arg(total).arg(sent).arg(received).arg(connected ? ", connected"_L1 : ""_L1);
}

QString nameOf(const QCString& message)
{
    const auto form = zyn::messageForm(zyn::kPhoneChannel, message);
    return form && form->enumerator ? QString::fromLatin1(form->enumerator) : QString::fromUtf8(message);
}

} // namespace

StatusSource::StatusSource(PhoneState& state)
    : m_state(state)
{
    follow(&PHONE_MsgClient::signalBatteryCapacity, Item::Battery);
    follow(&PHONE_MsgClient::signalBatteryStatus, Item::BatteryStatus);
    follow(&PHONE_MsgClient::signalChargeStatus, Item::Charger);
    follow(&PHONE_MsgClient::signalSimCardStatus, Item::SimCard);
    follow(&PHONE_MsgClient::signalPinStatus, Item::Pin);
    follow(&PHONE_MsgClient::signalSubsidyStatus, Item::SubsidyLock);
    follow(&PHONE_MsgClient::signalRegisted, Item::NetworkId);
    follow(&PHONE_MsgClient::signalServiceName, Item::ServiceName);
    follow(&PHONE_MsgClient::signalHomeZoneName, Item::HomeZone);
    follow(&PHONE_MsgClient::signalSignalQuality, Item::Signal);
    follow(&PHONE_MsgClient::signalServiceAvailability, Item::Service);
    follow(&PHONE_MsgClient::signalRoamingState, Item::Roaming);
    follow(&PHONE_MsgClient::signalGprsAttached, Item::GprsAttached);
    follow(&PHONE_MsgClient::signalGprsService, Item::GprsService);
    follow(&PHONE_MsgClient::signalGprsActivated, Item::GprsActivated);
    follow(&PHONE_MsgClient::signalEgprsService, Item::EgprsService);
    follow(&PHONE_MsgClient::signalEgprsTrans, Item::EgprsTransmission);
    follow(&PHONE_MsgClient::signalWifiProfileName, Item::WifiProfile);
    follow(&PHONE_MsgClient::signalDisplayUMAIcon, Item::Uma);
    followEvent(&PHONE_MsgClient::signalLowBattery, Item::PowerEvent, "low battery", true);
    followEvent(&PHONE_MsgClient::signalLowBatteryStatusChanged, Item::PowerEvent, "low battery changed");
    followEvent(&PHONE_MsgClient::signalChargeComleted, Item::PowerEvent, "charge completed");
    followEvent(&PHONE_MsgClient::signalPowerDown, Item::PowerEvent, "power key");
    followEvent(&PHONE_MsgClient::signalWifiCampStatus, Item::WifiEvent, "camp status");
    followEvent(&PHONE_MsgClient::signalWifiSignalBar, Item::WifiEvent, "signal bar");
    followEvent(&PHONE_MsgClient::signalWifiConnectionInProgress, Item::WifiEvent, "connecting");
    followNames();
    followCounters();
}

void StatusSource::receive(const QCString& message, const QByteArray& data)
{
    m_state.set(Item::LastMessage, now() + u' ' + nameOf(message));
    PHONE_MsgClient::receive(message, data);
}

template<typename Argument>
void StatusSource::follow(void (PHONE_MsgClient::*signal)(Argument), Item item)
{
    connect(this, signal, this, [this, item](Argument argument) { m_state.set(item, textOf(argument)); });
}

void StatusSource::followEvent(void (PHONE_MsgClient::*signal)(), Item item, const char* event, bool isAlert)
{
    connect(this, signal, this,
            [this, item, event, isAlert] { m_state.set(item, QLatin1String(event) + u' ' + now(), isAlert); });
}

void StatusSource::followNames()
{
    connect(this, &PHONE_MsgClient::signalNetworkStatus, this, [this](TAPI_NETWORK_STATUS_E status) {
        const bool isRegistered = status == kRegistered;
        m_state.set(Item::Network, QString::number(status) + (isRegistered ? ", registered"_L1 : ", not registered"_L1),
                    !isRegistered);
    });
    connect(this, &PHONE_MsgClient::signalSpnNameExtend, this, [this](const SERVICE_PROVIDER_DATA_S& provider) {
        m_state.set(Item::Provider, provider.name.isEmpty()
                                        ? QString()
                                        : u"%1 (%2)"_s.arg(provider.name, QString::number(provider.flag)));
    });
    connect(this, &PHONE_MsgClient::signalImsiId, this, [this](const UINT8* imsi) {
        m_state.set(Item::Imsi, blockText(QByteArray(reinterpret_cast<const char*>(imsi), TAPI_IMSI_LENGTH + 1)));
    });
}

void StatusSource::followCounters()
{
    connect(this, &PHONE_MsgClient::signalTotalDataBytes, this,
            [this](bool connected, UINT32 total, UINT32 sent, UINT32 received) {
                m_state.set(Item::TotalBytes, bytesText(connected, total, sent, received));
            });
    connect(this, &PHONE_MsgClient::signalSessionDataBytes, this,
            [this](UINT8 session, bool connected, UINT32 total, UINT32 sent, UINT32 received) {
                m_state.set(Item::SessionBytes, u"%1: "_s.arg(session) + bytesText(connected, total, sent, received));
            });
    connect(this, &PHONE_MsgClient::signalCurrentConnectedDuration, this, [this](bool connected, UINT32 seconds) {
        m_state.set(Item::Connection, connected ? u"yes, for %1"_s.arg(talkText(seconds))
                                                : u"no, the last for %1"_s.arg(talkText(seconds)));
    });
    connect(this, &PHONE_MsgClient::signalTotalConnectedDuration, this,
            [this](bool, UINT32 seconds) { m_state.set(Item::ConnectionTotal, talkText(seconds)); });
}

} // namespace zyn::tool
