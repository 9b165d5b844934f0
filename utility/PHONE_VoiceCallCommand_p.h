// The commands of the phone server's socket.
#pragma once

#include "utility/PHONE_SocketDirectory_p.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace zyn::voicecall {

/// The directory of the server's socket, the socket's name in it, and both together.
inline constexpr char kSocketDirectory[] = "/tmp/zynphonecom";
inline constexpr char kSocketName[] = "voicecall_interface";
inline constexpr char kSocketPath[] = "/tmp/zynphonecom/voicecall_interface";

/// Creates the directory of the server's socket, open to all users, and gives its path with a final slash.
inline QString PHONE_dataDir()
{
    return socketDirectory(kSocketDirectory);
}

/// The path of the server's socket, in a directory that exists as far as it can.
inline QString socketPath()
{
    return PHONE_dataDir() + QLatin1Char('/') + QLatin1String(kSocketName);
}

/// What a client asks of the server. The codes 0 and 1 are none of its replies.
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

/// Whether a reply's code is of any meaning to a client's user.
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

} // namespace zyn::voicecall
