// The settings that the phone applications share.
#pragma once

#include "platform/AM_Global.h"

namespace zyn {

/// The application whose settings file holds the recent-call, speed-dial and set-up groups.
inline constexpr auto kPhoneSettings = static_cast<AM_Global::Apps>(4);

} // namespace zyn
