// What the clients of the phone server have in common: a connection, and its replies as they come.
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
    return connectCommandSocket(voicecall::socketPath(), kReceiveBufferSize, kind);
}

VoiceCallConnection::~VoiceCallConnection()
{
    lose();
}

bool VoiceCallConnection::send(voicecall::Command command, std::span<const std::byte> data)
{
    if (sendCommand(m_socket.get(), command, data))
        return true;
    // Part of the frame may be out: the next one would be taken for its rest. What has come already is still
    // read.
    posix::shutDown(m_socket.get());
    return false;
}

void VoiceCallConnection::sayGoodbye()
{
    if (isOpen())
        send(voicecall::PHONE_VOICECALL_CMD_UNREGISTER);
}

std::unique_ptr<UTIL_CommandBody> VoiceCallConnection::readReply(int socket)
{
    // The number of a connection that is lost may be somebody else's by now.
    if (socket < 0 || socket != m_socket.get())
        return nullptr;
    std::unique_ptr<UTIL_CommandBody> reply(Socket_ReadCommand(socket));
    if (!reply)
        lose();
    else if (!voicecall::isReply(reply->commandId))
        reply.reset();
    return reply;
}

void VoiceCallConnection::lose()
{
    // The notifier goes first: it must not watch a number that is free for others.
    m_notifier.reset();
    m_socket.reset();
}

} // namespace zyn
