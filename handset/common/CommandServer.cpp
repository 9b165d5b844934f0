// The server end of a command socket.
//
// QLocalServer does not fit: it closes for good when accepting fails once, as it does when descriptors run out. Nor
// does QLocalSocket: when a reply cannot be sent it stops reading, and drops what the client had sent.
#include "handset/common/CommandServer.h"

#include "handset/common/CommandConnection.h"
#include "handset/common/Log.h"

#include <QtCore/QFileInfo>

#include <cerrno>
#include <chrono>
#include <cstring>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zyn::handset {
namespace {

constexpr auto kPathCheckInterval = 5s;

} // namespace

CommandServer::CommandServer(const QString& path, int maxConnections, Factory factory)
    : m_maxConnections(maxConnections)
    , m_factory(std::move(factory))
    , m_socket(path)
{
    m_pathCheck.setTimerType(Qt::VeryCoarseTimer);
    m_pathCheck.setInterval(kPathCheckInterval);
    connect(&m_pathCheck, &QTimer::timeout, this, &CommandServer::restoreSocket);
    connect(&m_directoryWatch, &QFileSystemWatcher::directoryChanged, this, &CommandServer::restoreSocket);
}

CommandServer::~CommandServer()
{
    close();
}

bool CommandServer::listen()
{
    if (!m_socket.listen())
        return false;
    startAccepting();
    watchDirectory();
    m_pathCheck.start();
    return true;
}

void CommandServer::startAccepting()
{
    m_acceptor = std::make_unique<posix::Acceptor>(m_socket.descriptor(), [this] { return acceptNext(); });
}

/// Makes the socket again if it has been removed.
void CommandServer::restoreSocket()
{
    if (!m_socket.isListening() || m_socket.isInPlace())
        return;
    for (auto client = m_socket.accept(); client.isValid(); client = m_socket.accept()) {
        serveOpenConnections();
        open(std::move(client))->serve();
    }
    // Clients that cannot be accepted now would be lost with the old socket.
    if (errno == EAGAIN && m_socket.recreate()) {
        startAccepting();
        m_acceptor->setEnabled(m_connections.size() < m_maxConnections);
        watchDirectory();
    }
}

void CommandServer::watchDirectory()
{
    const QString directory = QFileInfo(m_socket.path()).path();
    m_directoryWatch.removePath(directory); // the path may lead to a new directory
    m_directoryWatch.addPath(directory);
}

void CommandServer::close()
{
    m_pathCheck.stop();
    m_acceptor.reset();
    if (m_socket.isListening()) {
        m_socket.stopAccepting();
        const auto connections = m_connections;
        for (CommandConnection* connection : connections)
            connection->finish();
        for (auto client = m_socket.accept(); client.isValid(); client = m_socket.accept())
            open(std::move(client))->finish();
    }
    m_socket.release();
}

/// False, with errno set, if there is none.
bool CommandServer::acceptNext()
{
    posix::UniqueFd client = m_socket.accept();
    if (!client.isValid()) {
        if (const int error = errno; error != EAGAIN) {
            log(u"cannot accept a client now: %1"_s.arg(QString::fromLocal8Bit(std::strerror(error))));
            errno = error;
        }
        return false;
    }
    serveOpenConnections();
    open(std::move(client))->serve();
    if (m_connections.size() >= m_maxConnections)
        m_acceptor->setEnabled(false);
    return true;
}

/// Executes what arrived on the open connections before a new one was accepted.
void CommandServer::serveOpenConnections()
{
    const auto connections = m_connections;
    for (CommandConnection* connection : connections)
        connection->serve();
}

CommandConnection* CommandServer::open(posix::UniqueFd socket)
{
    CommandConnection* connection = m_factory(std::move(socket));
    connection->setParent(this);
    m_connections.append(connection);
    connect(connection, &CommandConnection::finished, this, [this, connection] { remove(connection); });
    return connection;
}

void CommandServer::remove(CommandConnection* connection)
{
    m_connections.removeOne(connection);
    connection->deleteLater();
    resumeAccepting();
}

void CommandServer::resumeAccepting()
{
    if (m_acceptor && m_connections.size() < m_maxConnections)
        m_acceptor->setEnabled(true);
}

} // namespace zyn::handset
