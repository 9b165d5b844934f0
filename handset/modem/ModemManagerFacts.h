// What the properties of ModemManager's objects tell of the phone.
#pragma once

#include "handset/modem/Bus.h"
#include "handset/modem/PhoneFacts.h"

#include <QtCore/QString>
#include <QtCore/QVariantMap>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

namespace zyn::handset::modemmanager {

/// @{ The interfaces whose properties are read, of a modem, and of its SIM card.
inline const QString kModem = QStringLiteral("org.freedesktop.ModemManager1.Modem");
inline const QString k3gpp = QStringLiteral("org.freedesktop.ModemManager1.Modem.Modem3gpp");
inline const QString kVoice = QStringLiteral("org.freedesktop.ModemManager1.Modem.Voice");
inline const QString kSim = QStringLiteral("org.freedesktop.ModemManager1.Sim");
/// @}

/// A number of ModemManager's, and what it stands for here.
template<typename Value>
struct Number
{
    qint64 number;
    Value value;
};

template<typename Value, size_t Count>
Value meaning(const std::array<Number<Value>, Count>& numbers, std::optional<qint64> number, Value other)
{
    const auto found = std::ranges::find_if(numbers, [&](const auto& known) { return number == known.number; });
    return found == numbers.end() ? other : found->value;
}

/// Whether the properties of @p interface are read.
bool isRead(const QString& interface);

/// What is read of @p properties, those of any interface.
QVariantMap readOf(const QVariantMap& properties);

/// Takes over into @p facts what @p properties of @p interface tell, which is there.
void noteInterface(PhoneFacts& facts, const QString& interface, const QVariantMap& properties);

} // namespace zyn::handset::modemmanager
