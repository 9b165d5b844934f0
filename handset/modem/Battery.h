// The battery and the charger, as UPower tells them.
#pragma once

#include "handset/modem/Bus.h"

#include <QtCore/QVariantMap>
#include <QtDBus/QDBusServiceWatcher>

#include <cstdint>

namespace zyn::handset {

class PhoneStatus;

/// The state of the battery, as it travels.
enum class BatteryState : int32_t {
    Normal = 0,
    Low = 1,
    Critical = 2,
    None = 3, ///< there is none, or nothing is known of it
};

/// The state of the charger, as it travels.
enum class Charger : int32_t {
    None = 0,
    Charging = 1,
    Full = 2, ///< it is there, and the battery is full
    Unknown = 3,
};

/// Tells the states of the battery of a phone, that is of all its batteries together, while UPower runs.
class Battery : public QObject
{
    Q_OBJECT

public:
    /// @param status  tells the states; both live longer
    Battery(Bus& bus, PhoneStatus& status);

private Q_SLOTS:
    void noteChange(const QDBusMessage& signal);

private:
    void follow();
    void ask();
    void forget();
    void note(const QVariantMap& properties);
    void tell();

    Bus& m_bus;
    PhoneStatus& m_status;
    QDBusServiceWatcher m_watcher;
    QVariantMap m_known;
    BatteryState m_state = BatteryState::None;
    Charger m_charger = Charger::Unknown;
};

} // namespace zyn::handset
