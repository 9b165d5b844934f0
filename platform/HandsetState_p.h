// The state file of the stand-in handset: a developer sets here what a real handset measures.
#pragma once

#include "platform/SETUP_SET_Manager.h"
#include "platform/SettingsCache_p.h"
#include "platform/SettingsFile_p.h"

#include <array>
#include <optional>

namespace zyn::handset {

/// One state: its key in the group kGroup, its name for people, and what it stands for. Each is a number, 0 when it is
/// not set.
struct State
{
    const char* key;
    const char* name;
    const char* meaning;
};

inline constexpr char kGroup[] = "Handset";

inline constexpr State kSimCard{"SimCardStatus", "sim-card",
                                "state of the SIM card; 0 and 3 allow the PIN control codes"};
inline constexpr State kKeypadLock{"KeypadLockStatus", "keypad-lock",
                                   "state of the keypad lock; 0 allows the code that shows the IMEI"};
inline constexpr State kPhoneSystem{"PhoneSystemStatus", "phone-system",
                                    "state of the phone system; 0 lets the telephony API be asked"};
inline constexpr State kFixedDialing{"FixedDialingStatus", "fixed-dialing",
                                     "what the telephony API tells of fixed dialing; 1 is enabled"};
inline constexpr State kFixedDialingError{"FixedDialingError", "fixed-dialing-error",
                                          "error of that question; 0 is success"};

inline constexpr std::array kStates{kSimCard, kKeypadLock, kPhoneSystem, kFixedDialing, kFixedDialingError};

/// The state file; it is in the format of SETUP_SET_Manager.
inline QString stateFile()
{
    return settingsPath("zyn_handset.cfg");
}

/// The state as it is now; nothing when it is not set.
inline std::optional<int> storedState(const State& state)
{
    const std::optional<QByteArray> stored =
        storedSetting(stateFile(), QLatin1String(kGroup), QLatin1String(state.key));
    return stored ? settingInt(*stored) : std::nullopt;
}

/// The state as it is now, as those are told who ask the platform for it.
inline int readState(const State& state)
{
    return storedState(state).value_or(0);
}

} // namespace zyn::handset
