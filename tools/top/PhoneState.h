// The known state of the phone.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

#include <array>
#include <cstdint>

namespace zyn::tool {

enum class Item : uint8_t {
    LastMessage,
    Battery,
    BatteryStatus,
    Charger,
    PowerEvent,
    SimCard,
    Pin,
    SubsidyLock,
    Imsi,
    KeypadLock,
    PhoneSystem,
    Network,
    NetworkId,
    ServiceName,
    Provider,
    HomeZone,
    Signal,
    Service,
    Roaming,
    GprsAttached,
    GprsService,
    GprsActivated,
    EgprsService,
    EgprsTransmission,
    TotalBytes,
    SessionBytes,
    WifiProfile,
    WifiEvent,
    Uma,
    Call,
    Connection,
    ConnectionTotal,
    LastLogged,
    Missed,
    Favourite0, ///< the first of five
    Favourite4 = Favourite0 + 4,
    Count,
};

/// One text per item, unknown at first.
class PhoneState : public QObject
{
    Q_OBJECT

public:
    struct Value
    {
        QString text; ///< null if unknown; unescaped, so it may hold any characters
        bool isAlert = false;

        bool operator==(const Value&) const = default;
    };

    const Value& value(Item item) const { return m_values.at(static_cast<size_t>(item)); }
    /// An empty @p text becomes "none".
    void set(Item item, const QString& text, bool isAlert = false);
    /// Makes the item unknown.
    void remove(Item item);

Q_SIGNALS:
    /// A value has changed.
    void changed();

private:
    void assign(Item item, const Value& value);

    std::array<Value, static_cast<size_t>(Item::Count)> m_values;
};

} // namespace zyn::tool
