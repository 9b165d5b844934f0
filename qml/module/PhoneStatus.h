// The states of the phone, as properties.
#pragma once

#include "utility/PHONE_MsgClient.h"

#include <QtCore/QObject>
#include <QtCore/QVariant>
#include <QtQml/qqmlregistration.h>

#include <cstdint>
#include <initializer_list>

namespace zyn::qml {

/**
 * Tells what the phone server's status messages tell.
 *
 *     Label {
 *         visible: PhoneStatus.heard
 *         text: PhoneStatus.networkStatus === PhoneStatus.Registered ? PhoneStatus.serviceName : qsTr("No network")
 *     }
 *
 * Nothing is known until it is told: numbers are -1 and texts undefined until then. A phone server that runs already
 * tells its states as soon as this object listens; there is no request for them. What has been told stays when the
 * server ends.
 *
 * Numbers are passed on as they come, and may be any: the enumerations have those that zyn-phoned tells, and another
 * telephony platform may have others. A change signal comes only when the value is another one than before.
 */
class PhoneStatus : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// Whether anything has been told yet.
    Q_PROPERTY(bool heard READ isHeard NOTIFY heardChanged FINAL)
    /// What switched the handset on, a number of the telephony platform.
    Q_PROPERTY(int powerOnMode READ powerOnMode NOTIFY powerOnModeChanged FINAL)
    /// The SIM card, one of SimCard.
    Q_PROPERTY(int simCard READ simCard NOTIFY simCardChanged FINAL)
    /// What the SIM card asks for, one of Pin.
    Q_PROPERTY(int pin READ pin NOTIFY pinChanged FINAL)
    /// The subsidy lock: 0 open, 1 locked, 2 not known, as zyn-phoned counts.
    Q_PROPERTY(int subsidyLock READ subsidyLock NOTIFY subsidyLockChanged FINAL)
    /// The charger, one of Charger.
    Q_PROPERTY(int charger READ charger NOTIFY chargerChanged FINAL)
    /// The battery, one of Battery.
    Q_PROPERTY(int batteryStatus READ batteryStatus NOTIFY batteryStatusChanged FINAL)
    /// The charge left, 0 to 255; the programs of this tree send percent.
    Q_PROPERTY(int batteryCapacity READ batteryCapacity NOTIFY batteryCapacityChanged FINAL)
    /// The strength of the network's signal, in bars as zyn-phoned counts: 0 unknown, 1 to 5.
    Q_PROPERTY(int signalQuality READ signalQuality NOTIFY signalQualityChanged FINAL)
    /// Whether the network gives service: Yes, No, or the platform's number.
    Q_PROPERTY(int service READ service NOTIFY serviceChanged FINAL)
    /// Whether the handset roams: 0 at home, 1 abroad, as zyn-phoned counts.
    Q_PROPERTY(int roaming READ roaming NOTIFY roamingChanged FINAL)
    /// The registration, one of Network.
    Q_PROPERTY(int networkStatus READ networkStatus NOTIFY networkStatusChanged FINAL)
    /// Whether the handset is attached to GPRS, one of Answer.
    Q_PROPERTY(int gprsAttached READ gprsAttached NOTIFY gprsAttachedChanged FINAL)
    /// Whether a GPRS context is active, one of Answer.
    Q_PROPERTY(int gprsActivated READ gprsActivated NOTIFY gprsActivatedChanged FINAL)
    /// Whether there is GPRS service, one of Answer.
    Q_PROPERTY(int gprsService READ gprsService NOTIFY gprsServiceChanged FINAL)
    /// Whether there is EGPRS service, one of Answer.
    Q_PROPERTY(int egprsService READ egprsService NOTIFY egprsServiceChanged FINAL)
    /// Whether data goes over EGPRS, one of Answer.
    Q_PROPERTY(int egprsTransmitting READ egprsTransmitting NOTIFY egprsTransmittingChanged FINAL)
    /// How opening GPRS went the last time, a number of the telephony platform.
    Q_PROPERTY(int openGprsResult READ openGprsResult NOTIFY openGprsResultChanged FINAL)
    /// How closing GPRS went the last time, likewise.
    Q_PROPERTY(int closeGprsResult READ closeGprsResult NOTIFY closeGprsResultChanged FINAL)
    /// The UMA icon to show, a number of the telephony platform.
    Q_PROPERTY(int umaIcon READ umaIcon NOTIFY umaIconChanged FINAL)
    /// Whether to hide the operator's logo, one of Answer.
    Q_PROPERTY(int operatorLogoHidden READ operatorLogoHidden NOTIFY operatorLogoHiddenChanged FINAL)
    /// What comes with providerName, a number of the telephony platform; 0 when the name is cleared.
    Q_PROPERTY(int providerFlag READ providerFlag NOTIFY providerFlagChanged FINAL)
    /// How long the current call takes, or took that has ended, in seconds, at most 2147483647.
    Q_PROPERTY(int currentDuration READ currentDuration NOTIFY currentDurationChanged FINAL)
    /// How long all calls took, likewise.
    Q_PROPERTY(int totalDuration READ totalDuration NOTIFY totalDurationChanged FINAL)
    /// Whether there is a data connection, one of Answer.
    Q_PROPERTY(int dataConnected READ dataConnected NOTIFY dataConnectedChanged FINAL)
    /// The network's id; empty when not registered.
    Q_PROPERTY(QVariant networkId READ networkId NOTIFY networkIdChanged FINAL)
    /// The operator's name; empty when not registered.
    Q_PROPERTY(QVariant serviceName READ serviceName NOTIFY serviceNameChanged FINAL)
    /// The service provider's name; empty when not registered.
    Q_PROPERTY(QVariant providerName READ providerName NOTIFY providerNameChanged FINAL)
    /// The home zone's name.
    Q_PROPERTY(QVariant homeZone READ homeZone NOTIFY homeZoneChanged FINAL)
    /// The name of the Wi-Fi profile.
    Q_PROPERTY(QVariant wifiProfile READ wifiProfile NOTIFY wifiProfileChanged FINAL)
    /// The SIM card's IMSI; as "hex:" and hexadecimal digits when it is no text.
    Q_PROPERTY(QVariant imsi READ imsi NOTIFY imsiChanged FINAL)
    /// The bytes that went over GPRS, in all.
    Q_PROPERTY(double totalBytes READ totalBytes NOTIFY totalBytesChanged FINAL)
    /// Those that were sent.
    Q_PROPERTY(double sentBytes READ sentBytes NOTIFY sentBytesChanged FINAL)
    /// Those that were received.
    Q_PROPERTY(double receivedBytes READ receivedBytes NOTIFY receivedBytesChanged FINAL)

public:
    /// An answer to a question of yes or no.
    enum Answer : int8_t { Unknown = -1, No = 0, Yes = 1 };
    Q_ENUM(Answer)

    /// States of the SIM card.
    enum SimCard : uint8_t {
        SimReady = 0,
        SimAbsent = 1,
        SimNotTold = 2, ///< the phone server does not know
        SimLocked = 3,  ///< by a PIN or another code
    };
    Q_ENUM(SimCard)

    /// What the SIM card asks for.
    enum Pin : uint8_t {
        PinNotRequired = 0,
        Pin1Required = 1,
        Puk1Required = 2,
        Pin2Required = 3,
        Puk2Required = 4,
        OtherPinRequired = 5, ///< the code of another lock
        PinNotTold = 6,       ///< the phone server does not know
    };
    Q_ENUM(Pin)

    /// States of the battery.
    enum Battery : uint8_t {
        BatteryNormal = 0,
        BatteryLow = 1,
        BatteryCritical = 2,
        BatteryNotTold = 3, ///< the phone server does not know
    };
    Q_ENUM(Battery)

    /// States of the charger.
    enum Charger : uint8_t {
        NotCharging = 0,
        Charging = 1,
        ChargedFull = 2,
        ChargerNotTold = 3, ///< the phone server does not know
    };
    Q_ENUM(Charger)

    /// States of the registration with the network.
    enum Network : uint8_t {
        NotRegistered = 0,
        Searching = 1,
        Denied = 2,
        NetworkNotTold = 3, ///< the phone server does not know
        Registered = 5,
    };
    Q_ENUM(Network)

    explicit PhoneStatus(QObject* parent = nullptr);

    /// Asks to switch the radio on or off, which radioSwitched() answers.
    Q_INVOKABLE void setRadio(bool isOn);
    /// Asks for the totals of bytes and of the duration; false when the request could not be sent.
    Q_INVOKABLE bool requestTotals();
    /// Asks to reset the first total duration, or the second, which durationReset() answers.
    Q_INVOKABLE void resetTotalDuration(bool first);
    /// Tells the modem's side the current @p language, a number of the telephony platform. Nothing answers.
    Q_INVOKABLE void setLanguage(int language);

    bool isHeard() const { return m_isHeard; }
    int powerOnMode() const { return m_powerOnMode; }
    int simCard() const { return m_simCard; }
    int pin() const { return m_pin; }
    int subsidyLock() const { return m_subsidyLock; }
    int charger() const { return m_charger; }
    int batteryStatus() const { return m_batteryStatus; }
    int batteryCapacity() const { return m_batteryCapacity; }
    int signalQuality() const { return m_signalQuality; }
    int service() const { return m_service; }
    int roaming() const { return m_roaming; }
    int networkStatus() const { return m_networkStatus; }
    int gprsAttached() const { return m_gprsAttached; }
    int gprsActivated() const { return m_gprsActivated; }
    int gprsService() const { return m_gprsService; }
    int egprsService() const { return m_egprsService; }
    int egprsTransmitting() const { return m_egprsTransmitting; }
    int openGprsResult() const { return m_openGprsResult; }
    int closeGprsResult() const { return m_closeGprsResult; }
    int umaIcon() const { return m_umaIcon; }
    int operatorLogoHidden() const { return m_operatorLogoHidden; }
    int providerFlag() const { return m_providerFlag; }
    int currentDuration() const { return m_currentDuration; }
    int totalDuration() const { return m_totalDuration; }
    int dataConnected() const { return m_dataConnected; }
    QVariant networkId() const { return m_networkId; }
    QVariant serviceName() const { return m_serviceName; }
    QVariant providerName() const { return m_providerName; }
    QVariant homeZone() const { return m_homeZone; }
    QVariant wifiProfile() const { return m_wifiProfile; }
    QVariant imsi() const { return m_imsi; }
    double totalBytes() const { return m_totalBytes; }
    double sentBytes() const { return m_sentBytes; }
    double receivedBytes() const { return m_receivedBytes; }

Q_SIGNALS:
    void heardChanged();
    void powerOnModeChanged();
    void simCardChanged();
    void pinChanged();
    void subsidyLockChanged();
    void chargerChanged();
    void batteryStatusChanged();
    void batteryCapacityChanged();
    void signalQualityChanged();
    void serviceChanged();
    void roamingChanged();
    void networkStatusChanged();
    void gprsAttachedChanged();
    void gprsActivatedChanged();
    void gprsServiceChanged();
    void egprsServiceChanged();
    void egprsTransmittingChanged();
    void openGprsResultChanged();
    void closeGprsResultChanged();
    void umaIconChanged();
    void operatorLogoHiddenChanged();
    void providerFlagChanged();
    void currentDurationChanged();
    void totalDurationChanged();
    void dataConnectedChanged();
    void networkIdChanged();
    void serviceNameChanged();
    void providerNameChanged();
    void homeZoneChanged();
    void wifiProfileChanged();
    void imsiChanged();
    void totalBytesChanged();
    void sentBytesChanged();
    void receivedBytesChanged();

    /// The power key was pressed.
    void powerKeyPressed();
    /// The battery is low.
    void batteryLow();
    /// Whether the battery is low has changed.
    void batteryLowStateChanged();
    /// The battery is full.
    void chargeCompleted();
    /// A voice call has begun, changed or ended; PhoneCalls tells which.
    void voiceCallChanged();
    /// @{ Something has changed, for which only the telephony platform can be asked.
    void csdCallChanged();
    void callForwardingChanged();
    void lineChanged();
    void callBarringChanged();
    void wifiCampStatusChanged();
    void wifiSignalBarChanged();
    void ttyChanged();
    /// @}
    /// A Wi-Fi connection is being made.
    void wifiConnecting();
    /// The SIM card is another one than before. The properties keep what was told until the new one's states are.
    void simCardReplaced();
    /// The answer to setRadio().
    void radioSwitched(bool success);
    /// The answer to resetTotalDuration().
    void durationReset(bool first, bool success);
    /// The bytes of one GPRS session.
    void sessionDataReceived(int session, bool connected, double total, double sent, double received);
    /// Networks have been found, in a list of @p kind 0 or 1: each has an `id` and a `name`.
    void networksReceived(int kind, const QVariantList& networks);
    /// The third, first and second text about the service; only the telephony platform knows which is which.
    void serviceDescribed(const QString& third, const QString& first, const QString& second);

private:
    void followNumbers();
    void followTexts();
    void followCounters();
    void followEvents();
    void tellNetworks(int kind, const TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S& list);
    void hear();
    using Change = void (PhoneStatus::*)();
    template<typename Value>
    Change set(Value PhoneStatus::*member, const Value& value, Change changed);
    void tell(std::initializer_list<Change> changes);
    template<typename Value>
    void assign(Value PhoneStatus::*member, const Value& value, Change changed);
    template<typename Argument>
    void follow(void (PHONE_MsgClient::*signal)(Argument), int PhoneStatus::*member, void (PhoneStatus::*changed)());
    void follow(void (PHONE_MsgClient::*signal)(QString), QVariant PhoneStatus::*member,
                void (PhoneStatus::*changed)());
    template<typename... Arguments>
    void pass(void (PHONE_MsgClient::*signal)(Arguments...), void (PhoneStatus::*passed)(Arguments...));

    PHONE_MsgClient m_client;
    bool m_isHeard = false;
    int m_powerOnMode = Unknown;
    int m_simCard = Unknown;
    int m_pin = Unknown;
    int m_subsidyLock = Unknown;
    int m_charger = Unknown;
    int m_batteryStatus = Unknown;
    int m_batteryCapacity = Unknown;
    int m_signalQuality = Unknown;
    int m_service = Unknown;
    int m_roaming = Unknown;
    int m_networkStatus = Unknown;
    int m_gprsAttached = Unknown;
    int m_gprsActivated = Unknown;
    int m_gprsService = Unknown;
    int m_egprsService = Unknown;
    int m_egprsTransmitting = Unknown;
    int m_openGprsResult = Unknown;
    int m_closeGprsResult = Unknown;
    int m_umaIcon = Unknown;
    int m_operatorLogoHidden = Unknown;
    int m_providerFlag = Unknown;
    int m_currentDuration = Unknown;
    int m_totalDuration = Unknown;
    int m_dataConnected = Unknown;
    QVariant m_networkId;
    QVariant m_serviceName;
    QVariant m_providerName;
    QVariant m_homeZone;
    QVariant m_wifiProfile;
    QVariant m_imsi;
    double m_totalBytes = Unknown;
    double m_sentBytes = Unknown;
    double m_receivedBytes = Unknown;
};

} // namespace zyn::qml
