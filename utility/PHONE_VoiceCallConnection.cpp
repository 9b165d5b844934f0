// The connection that each client of the phone server has.
#include "utility/PHONE_VoiceCallConnection_p.h"

#include "platform/Socket_Command.h"
#include "platform/posix/UnixSocket_p.h"
#include "utility/PHONE_CommandSocket_p.h"

namespace zyn {
namespace {

constexpr int kReceiveBufferSize = 1024;

} // namespace

posix::UniqueFd VoiceCallConnection::open(voicecall::ClientKind kind)
{
    static_assert(kGreetingCommand == voicecall::PHONE_VOICECALL_CMD_REGISTER);
    posix::UniqueFd socket =
        connectCommandSocket(voicecall::kSocketDirectory, voicecall::kSocketName, kReceiveBufferSize);
    const int32_t greeting = kind;
    if (!sendCommand(socket.get(), kGreetingCommand, std::as_bytes(std::span(&greeting, 1))))
        return {};
    return socket;
}

VoiceCallConnection::~VoiceCallConnection()
{
    close();
}

bool VoiceCallConnection::send(voicecall::Command command, std::span<const std::byte> data)
{
    if (sendCommand(m_socket.get(), command, data))
        return true;
    // Part of the frame may be out: the server would take the next one for its rest. Replies that have arrived can
    // still be read.
    posix::shutDown(m_socket.get());
    return false;
}

void VoiceCallConnection::unregister()
{
    if (isOpen())
        send(voicecall::PHONE_VOICECALL_CMD_UNREGISTER);
}

std::unique_ptr<UTIL_CommandBody> VoiceCallConnection::readReply(int socket)
{
    // A closed descriptor's number may already belong to somebody else.
    if (socket < 0 || socket != m_socket.get())
        return nullptr;
    std::unique_ptr<UTIL_CommandBody> reply(Socket_ReadCommand(socket));
    if (!reply)
        close();
    else if (!voicecall::isReply(reply->commandId))
        reply.reset();
    return reply;
}

void VoiceCallConnection::close()
{
    // The notifier first: it must not watch a number that others may get.
    m_notifier.reset();
    m_socket.reset();
}

} // namespace zyn
