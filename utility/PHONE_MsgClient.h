// Turns the phone server's messages into signals.
#pragma once

#include "platform/TAPI.h"
#include "utility/PHONE_Msg.h"

#include <QtCore/QString>

/// The service provider's name with the flag that comes with it; both are passed on as they come.
struct SERVICE_PROVIDER_DATA_S
{
    UINT8 flag = 0; ///< 0 when the name is cleared
    QString name;   ///< the name
};

/// Which list of networks: 0 for one that came as PHONE_MSG_NETWORK_LIST_0_S, 1 for PHONE_MSG_NETWORK_LIST_1_S.
enum PHONE_UI_NETWORKLIST_TYPE_T : int {};

/**
 * Turns the status messages of the phone server into signals, and sends it requests.
 *
 * It listens from its construction to its destruction, and keeps nothing from one message to the next: a receiver that
 * connects late learns the state from later messages, typically the next snapshot. Signals are emitted from the event
 * loop of the thread that made the client, one message after another. A receiver may destroy the client; what is left
 * of its message is then not emitted.
 *
 * Of a payload that ends early, the fields that are not there whole are 0 and null texts. Each client, request and
 * message prints debug lines: see platform/QuietTrace.h.
 *
 * Every signal may be connected by pointer to member or by name, directly or queued, but for the two that hand out a
 * pointer: signalnetworkListGotten and signalImsiId.
 */
class ZYN_EXPORT PHONE_MsgClient : public PHONE_Msg
{
    Q_OBJECT

public:
    /// Listens on the phone channel as @p name, a label for debugging that may be null; @p parent deletes it.
    explicit PHONE_MsgClient(QObject* parent = nullptr, const char* name = nullptr);
    ~PHONE_MsgClient() override;

    /// Asks for the GPRS and CSD totals, answered by signalTotalDataBytes and signalTotalConnectedDuration; false when
    /// the request could not be sent.
    bool getTotalByteAndConnectedDuration();
    /// Resets the total duration of kind 0 when @p first, else that of kind 1; answered by signalResetTotalDurationRet.
    void resetTotalDuration(bool first);
    /// Tells the modem side the current language, whose answer is only logged.
    void setFearureDBCurrLang(int language);
    /// Switches the radio on or off, answered by signalSetRFModResult.
    void setRFMode(bool on);

    /// Decodes one message; called by the channel.
    void receive(const QCString& message, const QByteArray& data) override;

Q_SIGNALS:
    void signalPowerOnMode(TAPI_POWER_ON_MODE_E mode);       ///< what switched the handset on
    void signalPowerDown();                                  ///< the power key was pressed
    void signalSimCardStatus(TAPI_SIM_STATUS_E status);      ///< the state of the SIM card
    void signalPinStatus(TAPI_SECURITY_PIN_STATUS_E status); ///< the state of PIN 1
    void signalChargeStatus(TAPI_CHARGER_STATUS_E status);   ///< the state of the charger
    void signalBatteryStatus(TAPI_BATTERY_STATUS_E status);  ///< the state of the battery
    void signalBatteryCapacity(UINT8 capacity);              ///< the charge left, 0 to 255 as the server counts it
    void signalSubsidyStatus(TAPI_SECURITY_SUBSIDY_STATUS_E status); ///< the state of the subsidy lock
    /// The server's result of setRFMode was not 0.
    void signalSetRFModResult(bool success);
    void signalSignalQuality(TAPI_NETWORK_SIGNAL_E quality);      ///< the strength of the network signal
    void signalServiceAvailability(TAPI_BOOL_STATUS_E available); ///< whether the network gives service
    void signalRoamingState(TAPI_NETWORK_ROAM_E state);           ///< whether and how the handset roams
    void signalDisplayUMAIcon(UINT8 value);                       ///< the UMA icon to show
    /// The @p id of the network, only while registered.
    void signalNetid(QString id);
    void signalNetworkStatus(TAPI_NETWORK_STATUS_E status); ///< the state of the registration
    /// The @p id of the network; empty when not registered.
    void signalRegisted(QString id);
    /// The @p name of the operator; empty when not registered.
    void signalServiceName(QString name);
    /// The name and flag of the service @p provider; cleared when not registered.
    void signalSpnNameExtend(SERVICE_PROVIDER_DATA_S provider);
    /// The third, first and second text of the message.
    void signalServiceIdAndName(QString third, QString first, QString second);
    /// A @p list of networks has come; @p kind tells which. The record lives only while the signal is delivered: it is
    /// not for queued connections. It is the payload itself and is not to be written to; a payload shorter than the
    /// record comes as a copy filled up with zeros.
    void signalnetworkListGotten(PHONE_UI_NETWORKLIST_TYPE_T kind, TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S* list);
    void signalGprsActivated(bool activated);         ///< whether a GPRS context is active
    void signalGprsAttached(bool attached);           ///< whether the handset is attached to GPRS
    void signalGprsService(bool available);           ///< whether there is GPRS service
    void signalEgprsService(bool available);          ///< whether there is EGPRS service
    void signalEgprsTrans(bool transmitting);         ///< whether data goes over EGPRS
    void signalOpenGprsResult(TAPI_RESULT_E result);  ///< how opening GPRS went
    void signalCloseGprsResult(TAPI_RESULT_E result); ///< how closing GPRS went
    void signalLowBattery();                          ///< the battery is low
    /// The IMSI, as the telephony platform writes it. The bytes live only while the signal is delivered, so it is to be
    /// connected directly; and by pointer to member only: to a connection by name the array type would mean the
    /// pointer's own bytes.
    void signalImsiId(UINT8 imsi[TAPI_IMSI_LENGTH + 1]);
    /// The text telephone (TTY) feature has changed.
    void signalTTYFeatureChanged();
    /// The bytes of GPRS: @p total, @p sent and @p received; @p connected tells whether there is a connection now.
    void signalTotalDataBytes(bool connected, UINT32 total, UINT32 sent, UINT32 received);
    /// The bytes of one GPRS @p session, likewise.
    void signalSessionDataBytes(UINT8 session, bool connected, UINT32 total, UINT32 sent, UINT32 received);
    /// All seconds of CSD; @p connected tells whether there is a connection now.
    void signalTotalConnectedDuration(bool connected, UINT32 seconds);
    /// The seconds of the current CSD connection, likewise.
    void signalCurrentConnectedDuration(bool connected, UINT32 seconds);
    /// The answer to resetTotalDuration(@p first): whether that total was reset.
    void signalResetTotalDurationRet(bool first, bool success);
    void signalOperatorLogo(bool hidden);     ///< whether to hide the operator logo
    void signalCSDCallStatChanged();          ///< the state of the CSD call has changed
    void signalCallForwardStatChanged();      ///< call forwarding has changed
    void signalLineNumberStatChanged();       ///< the line in use has changed
    void signalVoiceCallStatChanged();        ///< the state of a voice call has changed
    void signalChargeComleted();              ///< the battery is full
    void signalLowBatteryStatusChanged();     ///< the low-battery state has changed
    void signalCallbarringStatusChanged();    ///< call barring has changed
    void signalWifiCampStatus();              ///< the Wi-Fi camp status has changed
    void signalWifiSignalBar();               ///< the Wi-Fi signal bar has changed
    void signalWifiConnectionInProgress();    ///< a Wi-Fi connection is being made
    void signalWifiProfileName(QString name); ///< the name of the Wi-Fi profile
    void signalSimCardChanged();              ///< the SIM card is another one
    void signalHomeZoneName(QString name);    ///< the name of the home zone
};
