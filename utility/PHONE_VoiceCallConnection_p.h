// The connection that each client of the phone server has.
#pragma once

#include "platform/UTIL_CommandBody.h"
#include "platform/posix/UniqueFd_p.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>

#include <cstddef>
#include <memory>
#include <new>
#include <span>

namespace zyn {

/// Ends the process if there was no memory for an object that everything needs.
template<typename Object>
Object* required(Object* object, const char* name)
{
    if (!object)
        qFatal("ASSERT: no memory for %s", name);
    return object;
}

/// A connection to the phone server. It closes when something other than a reply arrives, and stays closed.
class VoiceCallConnection
{
public:
    /// Connects and registers; no descriptor on any failure.
    static posix::UniqueFd open(voicecall::ClientKind kind);

    /// Takes over @p socket, and has @p slot of @p client called whenever there is something to read.
    template<typename Client>
    VoiceCallConnection(int socket, Client* client, void (Client::*slot)(int))
        : m_socket(socket)
        , m_notifier(required(new (std::nothrow) QSocketNotifier(QSocketNotifier::Read), "QSocketNotifier"))
    {
        // The constructor would warn in a thread without an event loop, from which one may still send.
        m_notifier->setSocket(socket);
        m_notifier->setEnabled(true);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, client, slot);
    }
    ~VoiceCallConnection();
    VoiceCallConnection(const VoiceCallConnection&) = delete;
    VoiceCallConnection& operator=(const VoiceCallConnection&) = delete;

    bool isOpen() const { return m_socket.isValid(); }

    /// Sends one command; false when it could not be sent whole, after which nothing more will be.
    bool send(voicecall::Command command, std::span<const std::byte> data = {});

    /// Tells the server, if the connection is open, that the client leaves.
    void unregister();

    /// Reads one reply from @p socket, the connection's own; null when it is of no meaning to the client's user. May
    /// close the connection.
    std::unique_ptr<UTIL_CommandBody> readReply(int socket);

private:
    void close();

    posix::UniqueFd m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace zyn
