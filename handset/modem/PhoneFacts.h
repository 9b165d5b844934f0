// What a telephony stack knows of the phone, in this tree's own words, and the status messages that tell it.
#pragma once

#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstdint>
#include <optional>

namespace zyn::handset {

class PhoneStatus;

/// The state of the SIM card, as it travels. With 0 and 3 the PIN control codes are allowed.
enum class SimCard : int32_t {
    Ready = 0,
    None = 1,
    Unknown = 2, ///< there is no modem, or it does not tell
    Locked = 3,  ///< a PIN or PUK is asked for
};

/// What the SIM card asks for, as it travels.
enum class Pin : int32_t {
    NotRequired = 0,
    Pin1 = 1,
    Puk1 = 2,
    Pin2 = 3,
    Puk2 = 4,
    Other = 5, ///< the code of another lock, as that of the network the phone was sold by
    Unknown = 6,
};

/// Whether the phone is bound to one network or card, as it travels.
enum class SubsidyLock : int32_t { Open = 0, Locked = 1, Unknown = 2 };

/// The state of a card that is there and asks for @p pin. Without PIN 2 it can be used all the same.
SimCard simCardWith(Pin pin);
/// Whether that is the code of a lock to a network.
SubsidyLock subsidyLockWith(Pin pin);

/// The state of the registration, as it travels. 5 is the one that has a network's id.
enum class Registration : int32_t {
    None = 0,
    Searching = 1,
    Denied = 2,
    Unknown = 3,
    Registered = 5,
};

/// Whether the phone roams, as it travels.
enum class Roaming : int32_t { Home = 0, Abroad = 1 };

/// Signal quality travels as bars, 0 to 5: 0 when there is no signal, or nothing is known of it.
int32_t barsOf(std::optional<int> percent);

/// What is known. What is not known has the value that it has here.
struct PhoneFacts
{
    bool hasModem = false;
    bool isPowered = false;
    bool isOnline = false; ///< the radio is on
    bool hasVoice = false; ///< calls can be asked for
    SimCard sim = SimCard::Unknown;
    Pin pin = Pin::Unknown;
    SubsidyLock subsidyLock = SubsidyLock::Unknown;
    std::optional<int> triesLeft; ///< of the code that is asked for
    QString imsi;
    Registration registration = Registration::Unknown;
    bool isRoaming = false;
    QString networkId;
    QString operatorName;
    QString providerName;
    std::optional<int> strength; ///< of the signal, in percent
    std::optional<bool> isDataAttached;
    std::optional<bool> hasFixedDialing;
    QStringList emergencyNumbers;
};

/// @p facts for people and for those who look for a fault, an object with a field for each.
QJsonObject describeFacts(const PhoneFacts& facts);

/// Tells the states in @p facts that were told otherwise before, or not at all.
void tellFacts(const PhoneFacts& facts, PhoneStatus& status);

/// Stores in @p facts what the library asks the platform for: the states of the SIM card, of the phone system and of
/// fixed dialing, and the list of emergency numbers. Writes only what is not there already; failures are logged.
void storeFacts(const PhoneFacts& facts);

} // namespace zyn::handset
