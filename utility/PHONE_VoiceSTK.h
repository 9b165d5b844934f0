// Calls that the SIM card sets up, placed over a connection to the phone server.
#pragma once

#include "platform/ZynExport.h"

#include <QtCore/QObject>

#include <cstdint>
#include <memory>

namespace zyn {
class VoiceCallConnection;
}

/// What a SIM card wants of a call: a block that goes from the SIM-toolkit application to the phone server as it is.
struct PHONE_VoiceSTK_PARAMETER
{
    uint8_t bytes[108]; ///< the block, which the library does not look into
};
static_assert(sizeof(PHONE_VoiceSTK_PARAMETER) == 108 && alignof(PHONE_VoiceSTK_PARAMETER) == 1);

class PHONE_VoiceSTK;

/**
 * Connects to the phone server, which must run as this user or as root, and registers.
 *
 * A server that takes nothing for 5 seconds counts as gone.
 *
 * @return a client that the caller ends with PHONE_VoiceSTK_DeInit(); null on any failure
 */
ZYN_EXPORT PHONE_VoiceSTK* PHONE_VoiceSTK_Init();

/// Unregisters from the server, if there is a connection, and deletes @p client, which may be null.
ZYN_EXPORT void PHONE_VoiceSTK_DeInit(PHONE_VoiceSTK* client);

/// Asks the server over the connection of @p client for the call that @p parameter describes; both stay the caller's.
/// @return 0 when the request was sent, else -1, as for a null pointer
ZYN_EXPORT int PHONE_VOICESTK_MakeCall(PHONE_VoiceSTK* client, PHONE_VoiceSTK_PARAMETER* parameter);

/**
 * A SIM-toolkit client of the phone server. Any number of them may exist.
 *
 * It reads the server's replies in the event loop of the thread that made it. A lost connection stays lost: every later
 * request fails. An invalid reply, or one whose rest does not follow within 5 seconds, loses the connection. A thread
 * without an event loop sends requests all the same and gets no replies; a server may end a connection on which a few
 * hundred replies wait.
 */
class ZYN_EXPORT PHONE_VoiceSTK : public QObject
{
    Q_OBJECT

public:
    /// @param socket  connected and registered; the client owns it. The second argument has no effect.
    PHONE_VoiceSTK(int socket, int);
    ~PHONE_VoiceSTK() override;

public Q_SLOTS:
    /// Reads one reply; called when @p socket, which is the client's, has something to read. A negative number, and any
    /// other than the client's, reads nothing. Waits up to 5 seconds for the rest of a reply.
    void ReadData(int socket);

Q_SIGNALS:
    /// The server's reply: its code, neither 0 nor 1, and its data, null when it has none. The data lives only while
    /// the signal is delivered: it is not for queued connections. A receiver may end the client.
    void MessageReceived(int code, char* data);

private:
    friend void PHONE_VoiceSTK_DeInit(PHONE_VoiceSTK* client);
    friend int PHONE_VOICESTK_MakeCall(PHONE_VoiceSTK* client, PHONE_VoiceSTK_PARAMETER* parameter);

    std::unique_ptr<zyn::VoiceCallConnection> m_connection;
};
