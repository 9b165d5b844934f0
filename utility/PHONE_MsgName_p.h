// The names of numbered messages: a channel's prefix and the type in decimal.
#pragma once

#include "platform/QCString.h"

#include <optional>
#include <string_view>

namespace zyn {

/// @{ The phone channel: its name, the prefix of its message names, and how many types it has.
inline constexpr char kPhoneChannel[] = "/ZYN/phone";
inline constexpr std::string_view kPhonePrefix = "PHONE_MSG_";
inline constexpr unsigned kPhoneTypes = 55;
/// @}

/// The name of the message of @p type, or an empty one, not null, when there are not as many types.
QCString messageName(std::string_view prefix, unsigned type, unsigned types);

/// The type, below @p types, whose name is @p name to the byte: the number has no sign, blank or leading
/// zero.
std::optional<unsigned> messageType(std::string_view prefix, const QCString& name, unsigned types);

} // namespace zyn
