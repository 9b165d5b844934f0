// Commands on a Unix-domain stream socket, and the record of one.
#include "platform/Socket_Command.h"

#include "platform/CommandFrame_p.h"
#include "platform/posix/UnixSocket_p.h"

#include <new>

using zyn::CommandFrameHeader;
using zyn::kCommandTimeout;
using zyn::posix::Clock;

UTIL_CommandBody::UTIL_CommandBody() = default;

UTIL_CommandBody::~UTIL_CommandBody() = default;

bool UTIL_CommandBody::AllocateDataBuffer()
{
    m_buffer.reset();
    m_allocated = 0;
    if (dataLength < 0 || dataLength > zyn::kCommandDataLimit)
        return false;
    m_buffer.reset(new (std::nothrow) char[static_cast<size_t>(dataLength)]());
    if (!m_buffer)
        return false;
    m_allocated = static_cast<size_t>(dataLength);
    return true;
}

int Socket_WriteCommand(int socket, UTIL_CommandBody* command)
{
    if (!command || command->dataLength < 0 || command->dataLength > zyn::kCommandDataLimit)
        return -1;
    const auto data = zyn::commandData(*command);
    if (data.size() != static_cast<size_t>(command->dataLength))
        return -1;
    const auto header = CommandFrameHeader{command->commandId, command->dataLength}.encode();
    return zyn::posix::sendAll(socket, header, data, Clock::now() + kCommandTimeout) ? 0 : -1;
}

UTIL_CommandBody* Socket_ReadCommand(int socket)
{
    if (!zyn::posix::waitUntilReadable(socket, Clock::now() + kCommandTimeout))
        return nullptr;
    const auto deadline = Clock::now() + kCommandTimeout;
    CommandFrameHeader::Bytes bytes;
    if (!zyn::posix::receiveAll(socket, bytes, deadline))
        return nullptr;
    const auto header = CommandFrameHeader::decode(bytes);
    if (!header)
        return nullptr;
    auto command = std::make_unique<UTIL_CommandBody>();
    command->commandId = header->code;
    command->dataLength = header->dataLength;
    if (!command->AllocateDataBuffer() || !zyn::posix::receiveAll(socket, zyn::commandData(*command), deadline))
        return nullptr;
    return command.release();
}
