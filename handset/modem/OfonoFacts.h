// What the properties of oFono's objects tell of the phone.
#pragma once

#include "handset/modem/Bus.h"
#include "handset/modem/PhoneFacts.h"

#include <QtCore/QLatin1String>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

#include <algorithm>
#include <array>
#include <cstddef>

namespace zyn::handset::ofono {

/// @{ The interfaces of a modem whose properties are read.
inline const QString kSim = QStringLiteral("org.ofono.SimManager");
inline const QString kNetwork = QStringLiteral("org.ofono.NetworkRegistration");
inline const QString kVoice = QStringLiteral("org.ofono.VoiceCallManager");
inline const QString kData = QStringLiteral("org.ofono.ConnectionManager");
/// @}
inline const std::array kRead{&kSim, &kNetwork, &kVoice, &kData};

/// A word of oFono's, and what it stands for here.
template<typename Value>
struct Word
{
    QLatin1String word;
    Value value;
};

template<typename Value, size_t Count>
Value meaning(const std::array<Word<Value>, Count>& words, const QString& word, Value other)
{
    const auto found = std::ranges::find_if(words, [&](const auto& known) { return word == known.word; });
    return found == words.end() ? other : found->value;
}

/// Whether anything is read of @p property of @p interface.
bool isRead(const QString& interface, const QString& property);

/// Takes over into @p facts what @p property of @p interface tells, which has changed; @p all has it and those of the
/// interface that are read. A property that is not there has no value.
void noteProperty(PhoneFacts& facts, const QString& interface, const QString& property, const QVariantMap& all);

/// What is no more when @p property of @p interface has @p value, and no signal tells so.
QStringList goneWith(const QString& interface, const QString& property, const QVariant& value);

} // namespace zyn::handset::ofono
