// The battery and the charger, as UPower tells them.
#include "handset/modem/Battery.h"

#include "handset/phone_server/PhoneStatus.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

const QString kUPower = u"org.freedesktop.UPower"_s;
const QString kDevice = u"org.freedesktop.UPower.Device"_s;
const QString kUPowerProperties = u"org.freedesktop.DBus.Properties"_s;
const QString kDisplayDevice = u"/org/freedesktop/UPower/devices/DisplayDevice"_s;

/// A number of UPower's, and what it stands for here.
template<typename Value>
struct UPowerNumber
{
    qint64 number;
    Value value;
};

/// `State`: 1 charging, 2 discharging, 3 empty, 4 fully charged, 5 waiting to be charged, 6 to be discharged.
constexpr UPowerNumber<Charger> kStates[] = {{1, Charger::Charging}, {2, Charger::None},     {3, Charger::None},
                                             {4, Charger::Full},     {5, Charger::Charging}, {6, Charger::None}};

/// `WarningLevel`: 1 none, 3 low, 4 critical, 5 action.
constexpr UPowerNumber<BatteryState> kWarnings[] = {
    {1, BatteryState::Normal}, {3, BatteryState::Low}, {4, BatteryState::Critical}, {5, BatteryState::Critical}};

template<typename Value, size_t Count>
Value meaningOf(const UPowerNumber<Value> (&numbers)[Count], const QVariant& value, Value other)
{
    const std::optional<qint64> number = busNumber(value);
    const auto* const found = std::ranges::find_if(numbers, [&](const auto& known) { return number == known.number; });
    return found == std::end(numbers) ? other : found->value;
}

bool isLow(BatteryState state)
{
    return state == BatteryState::Low || state == BatteryState::Critical;
}

} // namespace

Battery::Battery(Bus& bus, PhoneStatus& status)
    : m_bus(bus)
    , m_status(status)
{
    m_watcher.addWatchedService(kUPower);
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    connect(&m_watcher, &QDBusServiceWatcher::serviceRegistered, this, &Battery::ask);
    connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, &Battery::forget);
    connect(&bus, &Bus::connected, this, &Battery::follow);
    connect(&bus, &Bus::lost, this, &Battery::forget);
}

void Battery::follow()
{
    m_watcher.setConnection(m_bus.connection());
    m_bus.listen({kUPower, kDisplayDevice, kUPowerProperties}, u"PropertiesChanged"_s, this,
                 SLOT(noteChange(QDBusMessage)));
    ask();
}

void Battery::ask()
{
    m_bus.call({kUPower, kDisplayDevice, kUPowerProperties}, u"GetAll"_s, {kDevice}, this,
               [this](const QDBusMessage& reply) {
                   if (hasSignature(reply, "a{sv}"))
                       note(busMap(reply.arguments().constFirst()));
               });
}

void Battery::forget()
{
    m_known.clear();
    tell();
}

void Battery::noteChange(const QDBusMessage& signal)
{
    if (hasSignature(signal, "sa{sv}as") && busText(signal.arguments().at(0)) == kDevice)
        note(busMap(signal.arguments().at(1)));
}

void Battery::note(const QVariantMap& properties)
{
    for (const char* name : {"IsPresent", "WarningLevel", "State", "Percentage"}) {
        if (const auto property = properties.find(QLatin1String(name)); property != properties.end())
            m_known.insert(property.key(), property.value());
    }
    tell();
}

void Battery::tell()
{
    using enum PHONE_Msg::PHONE_MSG_TYPE_T;
    constexpr double kWhole = 100;
    const bool isPresent = busBool(m_known.value(u"IsPresent"_s)).value_or(false);
    const BatteryState state =
        isPresent ? meaningOf(kWarnings, m_known.value(u"WarningLevel"_s), BatteryState::Normal) : BatteryState::None;
    const Charger charger =
        isPresent ? meaningOf(kStates, m_known.value(u"State"_s), Charger::Unknown) : Charger::Unknown;
    const auto percent = busReal(m_known.value(u"Percentage"_s));
    m_status.tell(PHONE_MSG_BATTERY_STATUS_S, std::vector<FieldValue>{static_cast<int>(state)});
    m_status.tell(PHONE_MSG_CHARGE_STATUS_S, std::vector<FieldValue>{static_cast<int>(charger)});
    if (isPresent && percent && std::isfinite(*percent))
        m_status.tell(PHONE_MSG_BATTERY_VALUE_CHANGE_S,
                      std::vector<FieldValue>{static_cast<int>(std::lround(std::clamp(*percent, 0.0, kWhole)))});
    const bool wasLow = isLow(std::exchange(m_state, state));
    if (isLow(state) != wasLow)
        m_status.report(PHONE_MSG_LOW_BATTERY_STATUS_CHANGED_S);
    if (isLow(state) && !wasLow)
        m_status.report(PHONE_MSG_LOW_BATTERY_S);
    if (std::exchange(m_charger, charger) == Charger::Charging && charger == Charger::Full)
        m_status.report(PHONE_MSG_CHARGE_COMPLETED_S);
}

} // namespace zyn::handset
