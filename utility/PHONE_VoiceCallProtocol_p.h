// The phone server's socket: where it is, the commands of its clients and the replies of the server.
#pragma once

#include "utility/PHONE_CommandSocket_p.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace zyn::voicecall {

/// The directory of the server's socket, the socket's name in it, and both together.
inline constexpr char kSocketDirectory[] = "/tmp/zynphonecom";
inline constexpr char kSocketName[] = "voicecall_interface";
inline constexpr char kSocketPath[] = "/tmp/zynphonecom/voicecall_interface";

/// The path of the server's socket, in a directory that exists as far as it can.
inline QString socketPath()
{
    return socketDirectory(kSocketDirectory) + QLatin1Char('/') + QLatin1String(kSocketName);
}

/// What a client asks of the server. None of its replies has the codes 0 and 1.
enum Command : int32_t {
    PHONE_VOICECALL_CMD_REGISTER = 0,       ///< data: ClientKind
    PHONE_VOICECALL_CMD_UNREGISTER = 1,     ///< no data
    PHONE_VOICECALL_CMD_MAKE_CALL = 2,      ///< data: PHONE_VoiceSTK_PARAMETER or JavaCall, as the client's kind is
    PHONE_VOICECALL_CMD_END_CALL = 3,       ///< no data
    PHONE_VOICECALL_CMD_DIAL_EXTENSION = 4, ///< data: the character, 1 byte
};

enum ClientKind : int32_t {
    SimToolkit = 0,
    Java = 1,
};

/// Whether a reply's code means anything to the user of a client.
constexpr bool isReply(int32_t code)
{
    return code != PHONE_VOICECALL_CMD_REGISTER && code != PHONE_VOICECALL_CMD_UNREGISTER;
}

/// A call of the Java runtime, as it travels.
struct JavaCall
{
    int32_t value;   ///< passed on as it is
    char number[42]; ///< Latin-1, at most 41 characters, then NULs
    uint8_t reserved[2];
};
static_assert(offsetof(JavaCall, value) == 0);
static_assert(offsetof(JavaCall, number) == 4);
static_assert(offsetof(JavaCall, reserved) == 46);
static_assert(sizeof(JavaCall) == 48 && std::is_trivially_copyable_v<JavaCall>);

/// What the server tells a client of the call that it placed, each as the call comes to that state; without data.
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
