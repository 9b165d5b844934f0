// What the phone server and its clients have agreed on beyond the commands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace zyn::voicecall {

/// What the server tells a client of the call that it placed, each as the call comes to that state; without
/// data.
enum Reply : int32_t {
    CallDialing = 2,
    CallAlerting = 3, ///< the other party's telephone rings
    CallConnected = 4,
    CallEnded = 5,  ///< the last of a call, by whatever it ended
    CallFailed = 6, ///< no call was placed: the line is busy, the radio off, or the number none
};

/// A call that the SIM card sets up, as the 108 bytes of a PHONE_VoiceSTK_PARAMETER.
struct SimCall
{
    char number[42];      ///< Latin-1, at most 41 characters, then NULs
    uint8_t reserved[66]; ///< not read
};
static_assert(offsetof(SimCall, number) == 0);
static_assert(offsetof(SimCall, reserved) == 42);
static_assert(sizeof(SimCall) == 108 && std::is_trivially_copyable_v<SimCall>);

} // namespace zyn::voicecall
