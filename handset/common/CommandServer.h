// The server end of a command socket.
#pragma once

#include "handset/common/ServiceSocket.h"
#include "platform/posix/Acceptor_p.h"
#include "platform/posix/DirectoryWatch_p.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <functional>
#include <memory>
#include <vector>

namespace zyn::handset {

class CommandConnection;

/**
 * Listens on a command socket and serves its clients.
 *
 * Only processes of this user and of root are served. The commands of one connection are executed before those of a
 * connection opened later; a busy client does not starve the others. The socket is made again if something removes it,
 * as a cleaner of temporary files may.
 */
class CommandServer : public QObject
{
    Q_OBJECT

public:
    /// Creates the connection of an accepted client; the server owns it.
    using Factory = std::function<CommandConnection*(posix::UniqueFd socket)>;

    /// @param maxConnections  the number of open connections; further clients wait
    CommandServer(const QString& path, int maxConnections, Factory factory);
    /// Closes the server.
    ~CommandServer() override;

    /// Makes this process the owner of the socket, in place of one that died. False, which is logged, if another owner
    /// is alive.
    bool acquire() { return m_socket.acquire(); }
    /// Starts to serve clients; the socket must have been acquired. False on failure, which is logged.
    bool listen();

    /// Refuses new clients, executes what the connected ones have sent, and removes the socket.
    void close();

private:
    void startAccepting();
    bool acceptNext();
    void noteChanges();
    void checkPlace();
    void restoreSocket();
    bool watchPlace();
    void openAll(std::vector<posix::UniqueFd>& clients);
    void serveOpenConnections();
    CommandConnection* open(posix::UniqueFd socket);
    void remove(CommandConnection* connection);
    void resumeAccepting();

    const int m_maxConnections;
    const Factory m_factory;
    ServiceSocket m_socket;
    std::unique_ptr<posix::Acceptor> m_acceptor;
    posix::DirectoryWatch m_watch;
    std::unique_ptr<QSocketNotifier> m_changes; ///< none when watching is impossible
    QList<int> m_watchedFiles;
    QTimer m_placeCheck; ///< runs while the socket is lost, or its loss would go unnoticed
    /// In the order of their opening.
    QList<CommandConnection*> m_connections;
};

} // namespace zyn::handset
