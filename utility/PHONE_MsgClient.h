// Turns the phone server's messages into signals.
#pragma once

#include "platform/TAPI.h"
#include "utility/PHONE_Msg.h"

#include <QtCore/QString>

/// The service provider's name with the flag that comes with it; both are passed on as they come.
struct SERVICE_PROVIDER_DATA_S
{
    UINT8 flag = 0; ///< 0 when the name is cleared; else the telephony platform's number
    QString name;   ///< the name
};

/// Which list of networks: 0 for one that came as PHONE_MSG_NETWORK_LIST_0_S, 1 for PHONE_MSG_NETWORK_LIST_1_S. Only
/// the telephony platform knows what sets them apart.
enum PHONE_UI_NETWORKLIST_TYPE_T : int {};

/**
 * Turns the status messages of the phone server into signals, and sends it requests.
 *
 * It listens from its construction to its destruction, and keeps nothing from one message to the next: a receiver that
 * connects late learns the state from later messages, typically the next snapshot. There is no request for one. Signals
 * are emitted from the event loop of the thread that made the client, one message after another. A receiver may destroy
 * the client; what is left of its message is then not emitted.
 *
 * It does not tell the number, the name or the state of a voice call; see signalVoiceCallStatChanged().
 *
 * Below, "a platform number" is one that the handset's telephony platform gives its meaning: it is passed on as it
 * comes, and nothing here knows more. "A hint" says that something has changed and not to what: the receiver asks where
 * its description says. docs/messages.md has the values and the hints as tables.
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
    /// Tells the modem side the current @p language, a platform number. The answer is only logged.
    void setFearureDBCurrLang(int language);
    /// Switches the radio on or off, answered by signalSetRFModResult.
    void setRFMode(bool on);

    /// Decodes one message; called by the channel.
    void receive(const QCString& message, const QByteArray& data) override;

Q_SIGNALS:
    /// What switched the handset on, a platform number.
    void signalPowerOnMode(TAPI_POWER_ON_MODE_E mode);
    /// The power key was pressed.
    void signalPowerDown();
    /// The state of the SIM card, a platform number. With 0 and 3 the PIN control codes are allowed.
    void signalSimCardStatus(TAPI_SIM_STATUS_E status);
    /// The state of PIN 1, a platform number.
    void signalPinStatus(TAPI_SECURITY_PIN_STATUS_E status);
    /// The state of the charger, a platform number; signalChargeComleted() tells that the battery is full.
    void signalChargeStatus(TAPI_CHARGER_STATUS_E status);
    /// The state of the battery, a platform number.
    void signalBatteryStatus(TAPI_BATTERY_STATUS_E status);
    /// The charge left, 0 to 255 as the server counts it; the programs of this tree send and show percent.
    void signalBatteryCapacity(UINT8 capacity);
    /// The state of the subsidy lock, a platform number.
    void signalSubsidyStatus(TAPI_SECURITY_SUBSIDY_STATUS_E status);
    /// The answer to setRFMode(): whether the server's result was not 0.
    void signalSetRFModResult(bool success);
    /// The strength of the network signal, a platform number on a scale of the platform's own.
    void signalSignalQuality(TAPI_NETWORK_SIGNAL_E quality);
    /// Whether the network gives service: 1 yes, 0 no.
    void signalServiceAvailability(TAPI_BOOL_STATUS_E available);
    /// Whether and how the handset roams, a platform number.
    void signalRoamingState(TAPI_NETWORK_ROAM_E state);
    /// The UMA icon to show, a platform number.
    void signalDisplayUMAIcon(UINT8 value);
    /// The @p id of the network as the server writes it, only while registered.
    void signalNetid(QString id);
    /// The state of the registration: 5 is registered. Why the handset is not registered with any other is a platform
    /// number.
    void signalNetworkStatus(TAPI_NETWORK_STATUS_E status);
    /// The @p id of the network; empty when not registered.
    void signalRegisted(QString id);
    /// The @p name of the operator; empty when not registered.
    void signalServiceName(QString name);
    /// The name and flag of the service @p provider; cleared when not registered.
    void signalSpnNameExtend(SERVICE_PROVIDER_DATA_S provider);
    /// The third, first and second text of the message: an id and names of the service. Only the telephony platform
    /// knows which is which.
    void signalServiceIdAndName(QString third, QString first, QString second);
    /// A @p list of networks has come; @p kind tells which. The record lives only while the signal is delivered: it is
    /// not for queued connections. It is the payload itself and is not to be written to; a payload shorter than the
    /// record comes as a copy filled up with zeros.
    void signalnetworkListGotten(PHONE_UI_NETWORKLIST_TYPE_T kind, TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S* list);
    void signalGprsActivated(bool activated); ///< whether a GPRS context is active
    void signalGprsAttached(bool attached);   ///< whether the handset is attached to GPRS
    void signalGprsService(bool available);   ///< whether there is GPRS service
    void signalEgprsService(bool available);  ///< whether there is EGPRS service
    void signalEgprsTrans(bool transmitting); ///< whether data goes over EGPRS
    /// How opening GPRS went, a platform number.
    void signalOpenGprsResult(TAPI_RESULT_E result);
    /// How closing GPRS went, a platform number.
    void signalCloseGprsResult(TAPI_RESULT_E result);
    /// The battery is low. How low it is, and when it no longer is, other signals tell.
    void signalLowBattery();
    /// The IMSI, as the telephony platform writes it. The bytes live only while the signal is delivered, so it is to be
    /// connected directly; and by pointer to member only: to a connection by name the array type would mean the
    /// pointer's own bytes.
    void signalImsiId(UINT8 imsi[TAPI_IMSI_LENGTH + 1]);
    /// A hint: the text telephone (TTY) feature has changed. Ask the telephony platform for it.
    void signalTTYFeatureChanged();
    /// The data that went over GPRS, in bytes: @p total, @p sent and @p received; @p connected tells whether there is a
    /// connection now.
    void signalTotalDataBytes(bool connected, UINT32 total, UINT32 sent, UINT32 received);
    /// The bytes of one GPRS @p session, likewise. The session is a platform number.
    void signalSessionDataBytes(UINT8 session, bool connected, UINT32 total, UINT32 sent, UINT32 received);
    /// How long circuit-switched (CSD) connections took in all, in seconds; @p connected tells whether there is one.
    void signalTotalConnectedDuration(bool connected, UINT32 seconds);
    /// How long the current CSD connection takes, or took that has ended, in seconds. `zyn-phoned` sends it for voice
    /// calls, too, when they are connected and when they end.
    void signalCurrentConnectedDuration(bool connected, UINT32 seconds);
    /// The answer to resetTotalDuration(@p first): whether that total was reset.
    void signalResetTotalDurationRet(bool first, bool success);
    /// Whether to hide the operator logo.
    void signalOperatorLogo(bool hidden);
    /// A hint: the state of the CSD call has changed. Ask the telephony platform for it.
    void signalCSDCallStatChanged();
    /// A hint: call forwarding has changed. Ask the telephony platform for it.
    void signalCallForwardStatChanged();
    /// A hint: the line in use has changed. Ask the telephony platform for it.
    void signalLineNumberStatChanged();
    /**
     * A hint: a voice call has begun, has changed its state or is over. Ask for the calls that there are now.
     *
     * No signal tells which call it is, its number, its name or its state. On a handset the telephony platform's own
     * interface tells them, which is no part of this library; on a desk `zynphone phone calls` shows them. The library
     * knows a call in three places:
     * - who places a call with PHONE_VoiceSTK or PHONE_VoiceJava.h gets the states of that call as replies;
     * - PHONE_VoiceCallReceiver gets the number of each call that is asked for, not what becomes of it;
     * - RC_Interface::getRecordList() has a call once it is over.
     */
    void signalVoiceCallStatChanged();
    /// The battery is full.
    void signalChargeComleted();
    /// A hint: whether the battery is low has changed. signalLowBattery() tells that it is; for the rest ask the
    /// platform.
    void signalLowBatteryStatusChanged();
    /// A hint: call barring has changed. Ask the telephony platform for it.
    void signalCallbarringStatusChanged();
    /// A hint: the Wi-Fi camp status has changed. Ask the platform for it.
    void signalWifiCampStatus();
    /// A hint: the Wi-Fi signal bar has changed. Ask the platform for it.
    void signalWifiSignalBar();
    /// A Wi-Fi connection is being made. signalWifiProfileName() may tell to what.
    void signalWifiConnectionInProgress();
    /// The @p name of the Wi-Fi profile.
    void signalWifiProfileName(QString name);
    /// A hint: the SIM card is another one than before. What was told of the old one no longer holds; ask
    /// UTIL_GetSimCardStatus() for the state of the new one.
    void signalSimCardChanged();
    /// The @p name of the home zone.
    void signalHomeZoneName(QString name);
};
