// The shared source of phone status in one process.
#include "utility/PHONE_AsyncMsgReceiver.h"

#include "utility/PHONE_SignalTypes_p.h"

#include <utility>

namespace {

using Client = PHONE_MsgClient;
using Relay = PHONE_AsyncMsgReceiver;

/// Not ended with the process: by then the channels may be gone.
PHONE_AsyncMsgReceiver* s_instance = nullptr;

template<auto From, auto To>
void connectSignals(const Client* client, const Relay* relay)
{
    QObject::connect(client, From, relay, To);
}

using Route = void (*)(const Client* client, const Relay* relay);

constexpr Route kRoutes[] = {
    &connectSignals<&Client::signalSimCardStatus, &Relay::signalSimCardStatus>,
    &connectSignals<&Client::signalPinStatus, &Relay::signalPinStatus>,
    &connectSignals<&Client::signalChargeStatus, &Relay::signalChargeStatus>,
    &connectSignals<&Client::signalBatteryStatus, &Relay::signalBatteryStatus>,
    &connectSignals<&Client::signalBatteryCapacity, &Relay::signalBatteryCapacity>,
    &connectSignals<&Client::signalSetRFModResult, &Relay::signalSetRFModResult>,
    &connectSignals<&Client::signalSignalQuality, &Relay::signalSignalQuality>,
    &connectSignals<&Client::signalServiceAvailability, &Relay::signalServiceAvailability>,
    &connectSignals<&Client::signalRoamingState, &Relay::signalRoamingState>,
    &connectSignals<&Client::signalNetworkStatus, &Relay::signalNetworkStatus>,
    &connectSignals<&Client::signalRegisted, &Relay::signalRegisted>,
    &connectSignals<&Client::signalServiceName, &Relay::signalServiceName>,
    &connectSignals<&Client::signalSpnNameExtend, &Relay::signalSpnNameExtend>,
    &connectSignals<&Client::signalGprsActivated, &Relay::signalGprsActivated>,
    &connectSignals<&Client::signalGprsAttached, &Relay::signalGprsAttached>,
    &connectSignals<&Client::signalGprsService, &Relay::signalGprsService>,
    &connectSignals<&Client::signalEgprsService, &Relay::signalEgprsService>,
    &connectSignals<&Client::signalEgprsTrans, &Relay::signalEgprsTrans>,
    &connectSignals<&Client::signalOpenGprsResult, &Relay::signalOpenGprsResult>,
    &connectSignals<&Client::signalCloseGprsResult, &Relay::signalCloseGprsResult>,
    &connectSignals<&Client::signalLowBattery, &Relay::signalLowBattery>,
    &connectSignals<&Client::signalOperatorLogo, &Relay::signalOperatorLogo>,
    &connectSignals<&Client::signalCSDCallStatChanged, &Relay::signalCSDCallStatChanged>,
    &connectSignals<&Client::signalCallForwardStatChanged, &Relay::signalCallForwardStatChanged>,
    &connectSignals<&Client::signalLineNumberStatChanged, &Relay::signalLineNumberStatChanged>,
    &connectSignals<&Client::signalVoiceCallStatChanged, &Relay::signalVoiceCallStatChanged>,
    &connectSignals<&Client::signalChargeComleted, &Relay::signalChargeComleted>,
    &connectSignals<&Client::signalLowBatteryStatusChanged, &Relay::signalLowBatteryStatusChanged>,
    &connectSignals<&Client::signalCallbarringStatusChanged, &Relay::signalCallbarringStatusChanged>,
    &connectSignals<&Client::signalWifiCampStatus, &Relay::signalWifiCampStatus>,
    &connectSignals<&Client::signalWifiSignalBar, &Relay::signalWifiSignalBar>,
    &connectSignals<&Client::signalWifiConnectionInProgress, &Relay::signalWifiConnectionInProgress>,
    &connectSignals<&Client::signalWifiProfileName, &Relay::signalWifiProfileName>,
    &connectSignals<&Client::signalSimCardChanged, &Relay::signalSimCardChanged>,
    &connectSignals<&Client::signalHomeZoneName, &Relay::signalHomeZoneName>,
    &connectSignals<&Client::signalDisplayUMAIcon, &Relay::signalDisplayUMAIcon>,
};

} // namespace

PHONE_AsyncMsgReceiver* PHONE_AsyncMsgReceiver::instance()
{
    if (!s_instance)
        s_instance = new PHONE_AsyncMsgReceiver;
    return s_instance;
}

void PHONE_AsyncMsgReceiver::destruction()
{
    delete std::exchange(s_instance, nullptr);
}

PHONE_AsyncMsgReceiver::PHONE_AsyncMsgReceiver()
    : m_client(std::make_unique<PHONE_MsgClient>(this, nullptr))
{
    [[maybe_unused]] static const bool typesAreKnown = zyn::registerSignalTypes(staticMetaObject);
    for (const Route connectRoute : kRoutes)
        connectRoute(m_client.get(), this);
}

PHONE_AsyncMsgReceiver::~PHONE_AsyncMsgReceiver() = default;
