// Turns the phone server's messages into signals.
#pragma once

#include "platform/TAPI.h"
#include "utility/PHONE_Msg.h"

#include <QtCore/QString>

/// The service provider's name with the flag that comes with it; both are passed on as they come.
struct SERVICE_PROVIDER_DATA_S
{
    UINT8 flag = 0; ///< 0 when the name is cleared
    QString name;
};

/// Which list of networks: 0 for one that came as PHONE_MSG_NETWORK_LIST_0_S, 1 for
/// PHONE_MSG_NETWORK_LIST_1_S.
enum PHONE_UI_NETWORKLIST_TYPE_T : int {};

/**
 * Turns the status messages of the phone server into signals, and sends it requests.
 *
 * It listens from its construction to its destruction, and keeps nothing from one message to the next: a
 * receiver that connects late learns the state from later messages, typically the next snapshot. Signals are
 * emitted from the event loop of the thread that made the client, one message after another. A receiver may
 * destroy the client; what is left of its message is then not emitted.
 *
 * Of a payload that ends early, the fields that are not there whole are 0 and null texts.
 *
 * Every signal may be connected by pointer to member or by name, directly or queued, but for the two that
 * hand out a pointer: signalnetworkListGotten and signalImsiId.
 */
class ZYN_EXPORT PHONE_MsgClient : public PHONE_Msg
{
    Q_OBJECT

public:
    explicit PHONE_MsgClient(QObject* parent = nullptr, const char* name = nullptr);
    ~PHONE_MsgClient() override;

    /// Asks for the GPRS and CSD totals, answered by signalTotalDataBytes and signalTotalConnectedDuration;
    /// false when the request could not be sent.
    bool getTotalByteAndConnectedDuration();
    /// Resets the total duration of kind 0 when @p first, else that of kind 1; answered by
    /// signalResetTotalDurationRet.
    void resetTotalDuration(bool first);
    /// Tells the modem side the current language, whose answer is only logged.
    void setFearureDBCurrLang(int language);
    /// Switches the radio on or off, answered by signalSetRFModResult.
    void setRFMode(bool on);

    /// Decodes one message; called by the channel.
    void receive(const QCString& message, const QByteArray& data) override;

Q_SIGNALS:
    void signalPowerOnMode(TAPI_POWER_ON_MODE_E mode);
    void signalPowerDown();
    void signalSimCardStatus(TAPI_SIM_STATUS_E status);
    void signalPinStatus(TAPI_SECURITY_PIN_STATUS_E status);
    void signalChargeStatus(TAPI_CHARGER_STATUS_E status);
    void signalBatteryStatus(TAPI_BATTERY_STATUS_E status);
    void signalBatteryCapacity(UINT8 capacity);
    void signalSubsidyStatus(TAPI_SECURITY_SUBSIDY_STATUS_E status);
    /// The server's result of setRFMode was not 0.
    void signalSetRFModResult(bool success);
    void signalSignalQuality(TAPI_NETWORK_SIGNAL_E quality);
    void signalServiceAvailability(TAPI_BOOL_STATUS_E available);
    void signalRoamingState(TAPI_NETWORK_ROAM_E state);
    void signalDisplayUMAIcon(UINT8 value);
    /// Only while registered.
    void signalNetid(QString id);
    void signalNetworkStatus(TAPI_NETWORK_STATUS_E status);
    /// Empty when not registered.
    void signalRegisted(QString id);
    /// Empty when not registered.
    void signalServiceName(QString name);
    /// Cleared when not registered.
    void signalSpnNameExtend(SERVICE_PROVIDER_DATA_S provider);
    /// The third, first and second text of the message.
    void signalServiceIdAndName(QString third, QString first, QString second);
    /// The record lives only while the signal is delivered: it is not for queued connections. It is the
    /// payload itself and is not to be written to; a payload shorter than the record comes as a copy filled
    /// up with zeros.
    void signalnetworkListGotten(PHONE_UI_NETWORKLIST_TYPE_T kind, TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S* list);
    void signalGprsActivated(bool activated);
    void signalGprsAttached(bool attached);
    void signalGprsService(bool available);
    void signalEgprsService(bool available);
    void signalEgprsTrans(bool transmitting);
    void signalOpenGprsResult(TAPI_RESULT_E result);
    void signalCloseGprsResult(TAPI_RESULT_E result);
    void signalLowBattery();
    /// The bytes live only while the signal is delivered, so it is to be connected directly; and by pointer
    /// to member only: to a connection by name the array type would mean the pointer's own bytes.
    void signalImsiId(UINT8 imsi[TAPI_IMSI_LENGTH + 1]);
    void signalTTYFeatureChanged();
    /// Of GPRS, in bytes.
    void signalTotalDataBytes(bool connected, UINT32 total, UINT32 sent, UINT32 received);
    /// Of one GPRS session, in bytes.
    void signalSessionDataBytes(UINT8 session, bool connected, UINT32 total, UINT32 sent, UINT32 received);
    /// Of CSD, in seconds.
    void signalTotalConnectedDuration(bool connected, UINT32 seconds);
    /// Of the current CSD connection, in seconds.
    void signalCurrentConnectedDuration(bool connected, UINT32 seconds);
    /// @p first tells of which kind, as resetTotalDuration() takes it.
    void signalResetTotalDurationRet(bool first, bool success);
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
};
