// Command sockets: the directories in which services keep them, and the client's end.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QString>

#include <cstddef>
#include <cstdint>
#include <span>

namespace zyn {

/// Creates @p directory open to all users, whatever the umask, and gives its path with a final slash. Failures are left
/// to whoever connects. A symbolic link of that name is not followed when the mode is set.
QString socketDirectory(const char* directory);

/// The command that opens every connection; its data is one number.
inline constexpr int32_t kGreetingCommand = 0;
/// The send buffer of a command socket, in bytes, as it is asked of the kernel.
inline constexpr int kSendBufferSize = 1024;

/// Connects to the service @p name in @p directory, whose server must run as this user or as root. Makes the directory,
/// as socketDirectory() does, when there is no way to the service.
/// @param receiveBufferSize  the receive buffer in bytes, as it is asked of the kernel
posix::UniqueFd connectCommandSocket(const char* directory, const char* name, int receiveBufferSize);

/// Sends one command; false when it could not be sent whole.
bool sendCommand(int socket, int32_t code, std::span<const std::byte> data = {});

} // namespace zyn
