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
 * Each signal is emitted when that of PHONE_MsgClient with the same name is, with the same arguments. To be used from
 * one thread, whose event loop it needs. Messages print debug lines: see platform/QuietTrace.h.
 */
class ZYN_EXPORT PHONE_AsyncMsgReceiver : public QObject
{
    Q_OBJECT

public:
    /// The process's relay, made at the first call and after destruction(). The library owns it.
    static PHONE_AsyncMsgReceiver* instance();
    /// Ends the process's relay, if there is one, for all its users; a receiver may call it while it is being served.
    static void destruction();

    /// A relay with a client of its own, which the process does not share.
    PHONE_AsyncMsgReceiver();
    ~PHONE_AsyncMsgReceiver() override;

Q_SIGNALS:
    void signalSimCardStatus(TAPI_SIM_STATUS_E status);           ///< the state of the SIM card
    void signalPinStatus(TAPI_SECURITY_PIN_STATUS_E status);      ///< the state of PIN 1
    void signalChargeStatus(TAPI_CHARGER_STATUS_E status);        ///< the state of the charger
    void signalBatteryStatus(TAPI_BATTERY_STATUS_E status);       ///< the state of the battery
    void signalBatteryCapacity(UINT8 capacity);                   ///< the charge left, 0 to 255 as the server counts it
    void signalSetRFModResult(bool success);                      ///< the result of switching the radio was not 0
    void signalSignalQuality(TAPI_NETWORK_SIGNAL_E quality);      ///< the strength of the network signal
    void signalServiceAvailability(TAPI_BOOL_STATUS_E available); ///< whether the network gives service
    void signalRoamingState(TAPI_NETWORK_ROAM_E state);           ///< whether and how the handset roams
    void signalNetworkStatus(TAPI_NETWORK_STATUS_E status);       ///< the state of the registration
    void signalRegisted(QString id);                              ///< the network; empty when not registered
    void signalServiceName(QString name);                         ///< the operator; empty when not registered
    void signalSpnNameExtend(PHONE_SERVICE_PROVIDER_DATA_S provider); ///< cleared when not registered
    void signalGprsActivated(bool activated);                         ///< whether a GPRS context is active
    void signalGprsAttached(bool attached);                           ///< whether the handset is attached to GPRS
    void signalGprsService(bool available);                           ///< whether there is GPRS service
    void signalEgprsService(bool available);                          ///< whether there is EGPRS service
    void signalEgprsTrans(bool transmitting);                         ///< whether data goes over EGPRS
    void signalOpenGprsResult(TAPI_RESULT_E result);                  ///< how opening GPRS went
    void signalCloseGprsResult(TAPI_RESULT_E result);                 ///< how closing GPRS went
    void signalLowBattery();                                          ///< the battery is low
    void signalOperatorLogo(bool hidden);                             ///< whether to hide the operator logo
    void signalCSDCallStatChanged();                                  ///< the state of the CSD call has changed
    void signalCallForwardStatChanged();                              ///< call forwarding has changed
    void signalLineNumberStatChanged();                               ///< the line in use has changed
    void signalVoiceCallStatChanged();                                ///< the state of a voice call has changed
    void signalChargeComleted();                                      ///< the battery is full
    void signalLowBatteryStatusChanged();                             ///< the low-battery state has changed
    void signalCallbarringStatusChanged();                            ///< call barring has changed
    void signalWifiCampStatus();                                      ///< the Wi-Fi camp status has changed
    void signalWifiSignalBar();                                       ///< the Wi-Fi signal bar has changed
    void signalWifiConnectionInProgress();                            ///< a Wi-Fi connection is being made
    void signalWifiProfileName(QString name);                         ///< the name of the Wi-Fi profile
    void signalSimCardChanged();                                      ///< the SIM card is another one
    void signalHomeZoneName(QString name);                            ///< the name of the home zone
    void signalDisplayUMAIcon(UINT8 value);                           ///< the UMA icon to show

private:
    std::unique_ptr<PHONE_MsgClient> m_client;
};
