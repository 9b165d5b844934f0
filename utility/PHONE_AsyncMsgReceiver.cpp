// The shared source of phone status in one process.
#include "utility/PHONE_AsyncMsgReceiver.h"

#include "utility/PHONE_SignalTypes_p.h"

#include <utility>

namespace {

using PhoneClient = PHONE_MsgClient;
using Relay = PHONE_AsyncMsgReceiver;

/// Not ended with the process: by then the channels may be gone.
PHONE_AsyncMsgReceiver* s_receiver = nullptr;

template<auto From, auto To>
void connectSignals(const PhoneClient* client, const Relay* relay)
{
    QObject::connect(client, From, relay, To);
}

using Route = void (*)(const PhoneClient* client, const Relay* relay);

constexpr Route kRoutes[] = {
    &connectSignals<&PhoneClient::signalSimCardStatus, &Relay::signalSimCardStatus>,
    &connectSignals<&PhoneClient::signalPinStatus, &Relay::signalPinStatus>,
    &connectSignals<&PhoneClient::signalChargeStatus, &Relay::signalChargeStatus>,
    &connectSignals<&PhoneClient::signalBatteryStatus, &Relay::signalBatteryStatus>,
    &connectSignals<&PhoneClient::signalBatteryCapacity, &Relay::signalBatteryCapacity>,
    &connectSignals<&PhoneClient::signalSetRFModResult, &Relay::signalSetRFModResult>,
    &connectSignals<&PhoneClient::signalSignalQuality, &Relay::signalSignalQuality>,
    &connectSignals<&PhoneClient::signalServiceAvailability, &Relay::signalServiceAvailability>,
    &connectSignals<&PhoneClient::signalRoamingState, &Relay::signalRoamingState>,
    &connectSignals<&PhoneClient::signalNetworkStatus, &Relay::signalNetworkStatus>,
    &connectSignals<&PhoneClient::signalRegisted, &Relay::signalRegisted>,
    &connectSignals<&PhoneClient::signalServiceName, &Relay::signalServiceName>,
    &connectSignals<&PhoneClient::signalSpnNameExtend, &Relay::signalSpnNameExtend>,
    &connectSignals<&PhoneClient::signalGprsActivated, &Relay::signalGprsActivated>,
    &connectSignals<&PhoneClient::signalGprsAttached, &Relay::signalGprsAttached>,
    &connectSignals<&PhoneClient::signalGprsService, &Relay::signalGprsService>,
    &connectSignals<&PhoneClient::signalEgprsService, &Relay::signalEgprsService>,
    &connectSignals<&PhoneClient::signalEgprsTrans, &Relay::signalEgprsTrans>,
    &connectSignals<&PhoneClient::signalOpenGprsResult, &Relay::signalOpenGprsResult>,
    &connectSignals<&PhoneClient::signalCloseGprsResult, &Relay::signalCloseGprsResult>,
    &connectSignals<&PhoneClient::signalLowBattery, &Relay::signalLowBattery>,
    &connectSignals<&PhoneClient::signalOperatorLogo, &Relay::signalOperatorLogo>,
    &connectSignals<&PhoneClient::signalCSDCallStatChanged, &Relay::signalCSDCallStatChanged>,
    &connectSignals<&PhoneClient::signalCallForwardStatChanged, &Relay::signalCallForwardStatChanged>,
    &connectSignals<&PhoneClient::signalLineNumberStatChanged, &Relay::signalLineNumberStatChanged>,
    &connectSignals<&PhoneClient::signalVoiceCallStatChanged, &Relay::signalVoiceCallStatChanged>,
    &connectSignals<&PhoneClient::signalChargeComleted, &Relay::signalChargeComleted>,
    &connectSignals<&PhoneClient::signalLowBatteryStatusChanged, &Relay::signalLowBatteryStatusChanged>,
    &connectSignals<&PhoneClient::signalCallbarringStatusChanged, &Relay::signalCallbarringStatusChanged>,
    &connectSignals<&PhoneClient::signalWifiCampStatus, &Relay::signalWifiCampStatus>,
    &connectSignals<&PhoneClient::signalWifiSignalBar, &Relay::signalWifiSignalBar>,
    &connectSignals<&PhoneClient::signalWifiConnectionInProgress, &Relay::signalWifiConnectionInProgress>,
    &connectSignals<&PhoneClient::signalWifiProfileName, &Relay::signalWifiProfileName>,
    &connectSignals<&PhoneClient::signalSimCardChanged, &Relay::signalSimCardChanged>,
    &connectSignals<&PhoneClient::signalHomeZoneName, &Relay::signalHomeZoneName>,
    &connectSignals<&PhoneClient::signalDisplayUMAIcon, &Relay::signalDisplayUMAIcon>,
};

} // namespace

PHONE_AsyncMsgReceiver* PHONE_AsyncMsgReceiver::instance()
{
    if (!s_receiver)
        s_receiver = new PHONE_AsyncMsgReceiver;
    return s_receiver;
}

void PHONE_AsyncMsgReceiver::destruction()
{
    delete std::exchange(s_receiver, nullptr);
}

PHONE_AsyncMsgReceiver::PHONE_AsyncMsgReceiver()
    : m_client(std::make_unique<PHONE_MsgClient>(this, nullptr))
{
    [[maybe_unused]] static const bool typesAreKnown = zyn::registerSignalTypes(staticMetaObject);
    for (const Route connectRoute : kRoutes)
        connectRoute(m_client.get(), this);
}

PHONE_AsyncMsgReceiver::~PHONE_AsyncMsgReceiver() = default;
