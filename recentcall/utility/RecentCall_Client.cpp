// The recent-call service's socket: its commands, and requests from the library's interfaces and the programs.
#include "recentcall/utility/RecentCall_Client_p.h"

#include "platform/CommandFrame_p.h"
#include "platform/Socket_Command.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "utility/PHONE_CommandSocket_p.h"
#include "utility/PHONE_SocketDirectory_p.h"

namespace zyn::recentcall {
namespace {

constexpr int kReceiveBufferSize = 10'240;
constexpr int32_t kGreeting = 0;
constexpr int kInterfaceFailure = 3;

QByteArray frame(int32_t code, QByteArrayView data)
{
    const auto header = zyn::CommandFrameHeader{code, static_cast<int32_t>(data.size())}.encode();
    return QByteArray(reinterpret_cast<const char*>(header.data()), qsizetype{header.size()}).append(data);
}

} // namespace

posix::UniqueFd connectToService()
{
    const QString path = socketDirectory(kSocketDirectory) + QLatin1Char('/') + QLatin1String(kSocketName);
    return connectCommandSocket(path, kReceiveBufferSize, kGreeting);
}

QByteArray addRequest(const PHONE_ENG_RecentCall& record)
{
    return frame(kGreetingCommand, bytesOf(kGreeting)) + frame(AddRecord, bytesOf(record));
}

bool post(Command command, std::span<const std::byte> data)
{
    const posix::UniqueFd socket = connectToService();
    return socket.isValid() && sendCommand(socket.get(), command, data);
}

std::unique_ptr<UTIL_CommandBody> request(const posix::UniqueFd& connection, Command command,
                                          std::span<const std::byte> data)
{
    if (!connection.isValid() || !sendCommand(connection.get(), command, data))
        return nullptr;
    return std::unique_ptr<UTIL_CommandBody>(Socket_ReadCommand(connection.get()));
}

Status ask(Command command, std::span<const std::byte> data)
{
    return statusOf(request(connectToService(), command, data).get());
}

Status statusOf(const UTIL_CommandBody* answer)
{
    if (!answer || (answer->commandId != Success && answer->commandId != NoSuchRecord))
        return Failure;
    return static_cast<Status>(answer->commandId);
}

Status markRead(const PHONE_ENG_RecentCall& record)
{
    return ask(MarkRead, std::as_bytes(std::span(&record, 1)));
}

int interfaceResult(int result)
{
    return result == Success || result == NoSuchRecord ? result : kInterfaceFailure;
}

} // namespace zyn::recentcall
