// The recent-call service's socket: its commands, and requests from the library's interfaces and the programs.
#include "recentcall/utility/RecentCall_Client_p.h"

#include "platform/CommandFrame_p.h"
#include "platform/Socket_Command.h"
#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "utility/PHONE_CommandSocket_p.h"

namespace zyn::recentcall {
namespace {

constexpr int kReceiveBufferSize = 10'240;
constexpr int32_t kGreeting = 0;

/// A command with the greeting before it: all that is sent on a connection.
QByteArray requestBytes(Command command, std::span<const std::byte> data)
{
    const auto length = static_cast<int32_t>(data.size());
    const auto greeting = CommandFrameHeader{kGreetingCommand, sizeof kGreeting}.encode();
    const auto header = CommandFrameHeader{command, length}.encode();
    QByteArray bytes;
    bytes.reserve(qsizetype{greeting.size() + sizeof kGreeting + header.size()} + length);
    bytes += bytesOf(greeting);
    bytes += bytesOf(kGreeting);
    bytes += bytesOf(header);
    return bytes.append(reinterpret_cast<const char*>(data.data()), length);
}

/// Greets the service and sends it a command, at once: the service reads both together.
bool sendRequest(const posix::UniqueFd& connection, Command command, std::span<const std::byte> data)
{
    const QByteArray request = requestBytes(command, data);
    const auto bytes = std::as_bytes(std::span(request.constData(), static_cast<size_t>(request.size())));
    return connection.isValid() && posix::sendAll(connection.get(), bytes, {}, posix::Clock::now() + kCommandTimeout);
}

/// Sends one command on a connection of its own and gives the status of its answer.
Status ask(Command command, std::span<const std::byte> data)
{
    return statusOf(request(connectToService(), command, data).get());
}

} // namespace

posix::UniqueFd connectToService()
{
    return connectCommandSocket(kSocketDirectory, kSocketName, kReceiveBufferSize);
}

QByteArray addRequest(const PHONE_ENG_RecentCall& record)
{
    return requestBytes(AddRecord, std::as_bytes(std::span(&record, 1)));
}

std::unique_ptr<UTIL_CommandBody> request(const posix::UniqueFd& connection, Command command,
                                          std::span<const std::byte> data)
{
    if (!sendRequest(connection, command, data))
        return nullptr;
    return std::unique_ptr<UTIL_CommandBody>(Socket_ReadCommand(connection.get()));
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

} // namespace zyn::recentcall

namespace rc = zyn::recentcall;

QString RecentCall_dataDir()
{
    return zyn::socketDirectory(rc::kSocketDirectory);
}

int PHONE_RecentCall_AddRecord(PHONE_ENG_RecentCall& record)
{
    const bool isSent = rc::sendRequest(rc::connectToService(), rc::AddRecord, std::as_bytes(std::span(&record, 1)));
    return isSent ? rc::Success : rc::Failure;
}

int PHONE_RecentCall_DeleteRecord(PHONE_ENG_RecentCall& record)
{
    return rc::ask(rc::DeleteRecord, std::as_bytes(std::span(&record, 1)));
}

int PHONE_RecentCall_DeleteAll(RC_CALL_CATEGORY_T category, RC_CALL_TYPE_T callType)
{
    const rc::Selection selection{category, callType};
    return rc::ask(rc::DeleteAll, std::as_bytes(std::span(&selection, 1)));
}
