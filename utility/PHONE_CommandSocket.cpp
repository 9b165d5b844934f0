// The client's end of a command socket.
#include "utility/PHONE_CommandSocket_p.h"

#include "platform/CommandData_p.h"
#include "platform/CommandTimeout_p.h"
#include "platform/Socket_Command.h"
#include "platform/posix/UnixSocket_p.h"

#include <algorithm>

#include <sys/socket.h>

namespace zyn {
namespace {

/// Small buffers, and a close that waits for nothing; a kernel that refuses either changes no result.
void tune(int socket, int receiveBufferSize)
{
    const linger closeAtOnce = {1, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &zyn::kSendBufferSize, sizeof zyn::kSendBufferSize);
    ::setsockopt(socket, SOL_SOCKET, SO_RCVBUF, &receiveBufferSize, sizeof receiveBufferSize);
    ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &closeAtOnce, sizeof closeAtOnce);
}

} // namespace

posix::UniqueFd connectCommandSocket(const QString& path, int receiveBufferSize, int32_t greeting)
{
    posix::UniqueFd socket = posix::connectUnix(path.toLatin1(), kCommandTimeout);
    if (!socket.isValid())
        return {};
    // The directory is open to all: what answers there may be anybody's.
    if (!posix::isPeerTrusted(socket.get()))
        return {};
    tune(socket.get(), receiveBufferSize);
    if (!sendCommand(socket.get(), kGreetingCommand, std::as_bytes(std::span(&greeting, 1))))
        return {};
    return socket;
}

bool sendCommand(int socket, int32_t code, std::span<const std::byte> data)
{
    UTIL_CommandBody command;
    command.commandId = code;
    command.dataLength = static_cast<int32_t>(data.size());
    if (!data.empty()) {
        if (!command.AllocateDataBuffer())
            return false;
        std::copy(data.begin(), data.end(), commandData(command).begin());
    }
    return Socket_WriteCommand(socket, &command) >= 0;
}

} // namespace zyn
