// The server end of a command socket.
#pragma once

#include "handset/common/ServiceSocket.h"
#include "platform/posix/Acceptor_p.h"

#include <QtCore/QFileSystemWatcher>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <functional>
#include <memory>

namespace zyn::handset {

class CommandConnection;

/**
 * Listens on a command socket and serves its clients.
 *
 * A socket that somebody removes, as whoever cleans a directory for temporary files may, is made again.
 *
 * Only this user's processes and root's are served. A request that was sent over one connection is carried out before
 * anything that comes over a connection opened later; of a client that sends many, the others wait for the first few.
 */
class CommandServer : public QObject
{
    Q_OBJECT

public:
    /// Makes the connection for a client that was accepted; the server owns it.
    using Factory = std::function<CommandConnection*(posix::UniqueFd socket)>;

    /// @param maxConnections  how many connections are open at a time; further clients wait for their turn
    CommandServer(const QString& path, int maxConnections, Factory factory);
    /// Closes the server.
    ~CommandServer() override;

    /// Makes this process the owner of the socket, in place of one that died; false, and told in the log, when another
    /// one lives.
    bool acquire() { return m_socket.acquire(); }
    /// Starts to serve clients, once the socket is acquired; false, and told in the log, when it cannot be had.
    bool listen();

    /// Ends: turns new clients away, carries out what the others have sent, and removes the socket.
    void close();

private:
    void startAccepting();
    bool acceptNext();
    void keepPlace();
    void watchPlace();
    void serveOlder();
    CommandConnection* open(posix::UniqueFd socket);
    void forget(CommandConnection* connection);
    void resumeAccepting();

    const int m_maxConnections;
    const Factory m_factory;
    ServiceSocket m_socket;
    std::unique_ptr<posix::Acceptor> m_acceptor;
    QFileSystemWatcher m_placeWatch;
    QTimer m_pathCheck; ///< for what a watch does not tell
    /// In the order in which they were opened.
    QList<CommandConnection*> m_connections;
};

} // namespace zyn::handset
