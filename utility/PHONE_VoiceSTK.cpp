// Calls that the SIM card sets up, placed over a connection to the phone server.
#include "utility/PHONE_VoiceSTK.h"

#include "utility/PHONE_VoiceCallConnection_p.h"

using zyn::VoiceCallConnection;

PHONE_VoiceSTK* PHONE_VoiceSTK_Init()
{
    zyn::posix::UniqueFd socket = VoiceCallConnection::open(zyn::voicecall::SimToolkit);
    if (!socket.isValid())
        return nullptr;
    return zyn::required(new (std::nothrow) PHONE_VoiceSTK(socket.release(), -1), "PHONE_VoiceSTK");
}

void PHONE_VoiceSTK_DeInit(PHONE_VoiceSTK* client)
{
    if (!client)
        return;
    client->m_connection->unregister();
    delete client;
}

int PHONE_VOICESTK_MakeCall(PHONE_VoiceSTK* client, PHONE_VoiceSTK_PARAMETER* parameter)
{
    if (!client || !parameter)
        return -1;
    const auto data = std::as_bytes(std::span(parameter->bytes));
    return client->m_connection->send(zyn::voicecall::PHONE_VOICECALL_CMD_MAKE_CALL, data) ? 0 : -1;
}

PHONE_VoiceSTK::PHONE_VoiceSTK(int socket, int)
    : m_connection(zyn::required(new (std::nothrow) VoiceCallConnection(socket, this, &PHONE_VoiceSTK::ReadData),
                                 "PHONE_VoiceSTK"))
{}

PHONE_VoiceSTK::~PHONE_VoiceSTK() = default;

void PHONE_VoiceSTK::ReadData(int socket)
{
    const auto reply = m_connection->readReply(socket);
    if (!reply)
        return;
    char* const data = reply->dataLength > 0 ? reply->dataBuffer() : nullptr;
    Q_EMIT MessageReceived(reply->commandId, data); // whose receiver may have deleted this client
}
