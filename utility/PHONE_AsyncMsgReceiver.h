// The shared source of phone status in one process.
#pragma once

#include "platform/TAPI.h"
#include "platform/ZynExport.h"
#include "utility/PHONE_MsgClient.h"

#include <QtCore/QObject>
#include <QtCore/QString>

#include <memory>

/// The relay's name for SERVICE_PROVIDER_DATA_S. Receivers may connect to its signal by either name.
using PHONE_SERVICE_PROVIDER_DATA_S = SERVICE_PROVIDER_DATA_S;

/**
 * Passes on the phone status to any number of receivers, so that a process decodes each message once.
 *
 * Each signal is emitted when that of PHONE_MsgClient with the same name is, with the same arguments. To be
 * used from one thread, whose event loop it needs.
 */
class ZYN_EXPORT PHONE_AsyncMsgReceiver : public QObject
{
    Q_OBJECT

public:
    /// The process's relay, made at the first call and after destruction(). The library owns it.
    static PHONE_AsyncMsgReceiver* instance();
    /// Ends the process's relay, if there is one, for all its users; a receiver may call it while it is being
    /// served.
    static void destruction();

    PHONE_AsyncMsgReceiver();
    ~PHONE_AsyncMsgReceiver() override;

Q_SIGNALS:
    void signalSimCardStatus(TAPI_SIM_STATUS_E status);
    void signalPinStatus(TAPI_SECURITY_PIN_STATUS_E status);
    void signalChargeStatus(TAPI_CHARGER_STATUS_E status);
    void signalBatteryStatus(TAPI_BATTERY_STATUS_E status);
    void signalBatteryCapacity(UINT8 capacity);
    void signalSetRFModResult(bool success);
    void signalSignalQuality(TAPI_NETWORK_SIGNAL_E quality);
    void signalServiceAvailability(TAPI_BOOL_STATUS_E available);
    void signalRoamingState(TAPI_NETWORK_ROAM_E state);
    void signalNetworkStatus(TAPI_NETWORK_STATUS_E status);
    void signalRegisted(QString id);
    void signalServiceName(QString name);
    void signalSpnNameExtend(PHONE_SERVICE_PROVIDER_DATA_S provider);
    void signalGprsActivated(bool activated);
    void signalGprsAttached(bool attached);
    void signalGprsService(bool available);
    void signalEgprsService(bool available);
    void signalEgprsTrans(bool transmitting);
    void signalOpenGprsResult(TAPI_RESULT_E result);
    void signalCloseGprsResult(TAPI_RESULT_E result);
    void signalLowBattery();
    void signalOperatorLogo(bool hidden);
    void signalCSDCallStatChanged();
    void signalCallForwardStatChanged();
    void signalLineNumberStatChanged();
    void signalVoiceCallStatChanged();
    void signalChargeComleted();
    void signalLowBatteryStatusChanged();
    void signalCallbarringStatusChanged();
    void signalWifiCampStatus();
    void signalWifiSignalBar();
    void signalWifiConnectionInProgress();
    void signalWifiProfileName(QString name);
    void signalSimCardChanged();
    void signalHomeZoneName(QString name);
    void signalDisplayUMAIcon(UINT8 value);

private:
    std::unique_ptr<PHONE_MsgClient> m_client;
};
