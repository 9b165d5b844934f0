// Command sockets: the directories in which services keep them, and the client's end.
#include "utility/PHONE_CommandSocket_p.h"

#include "platform/CommandFrame_p.h"
#include "platform/Socket_Command.h"
#include "platform/posix/PathAt_p.h"
#include "platform/posix/UnixSocket_p.h"

#include <algorithm>
#include <cerrno>

namespace zyn {

QString socketDirectory(const char* directory)
{
    constexpr mode_t kOpenToAll = 0777;
    posix::makeDirectory(directory, kOpenToAll);
    posix::setDirectoryMode(directory, kOpenToAll);
    return QLatin1String(directory) + QLatin1Char('/');
}

posix::UniqueFd connectCommandSocket(const char* directory, const char* name, int receiveBufferSize)
{
    const QByteArray path = QByteArray(directory) + "//" + name;
    posix::UniqueFd socket = posix::connectUnix(path, kCommandTimeout);
    if (!socket.isValid()) {
        const bool isBarred = errno == EACCES;
        socketDirectory(directory);
        if (isBarred)
            socket = posix::connectUnix(path, kCommandTimeout);
    }
    // The directory is open to all: any user may listen there.
    if (!socket.isValid() || !posix::isPeerTrusted(socket.get()))
        return {};
    posix::setBufferSizes(socket.get(), kSendBufferSize, receiveBufferSize);
    posix::dropOnClose(socket.get());
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
