// The server end of a command socket.
//
// A QLocalServer would not do: it closes itself for good when accepting fails once, as it does when descriptors run
// out, and a QLocalSocket stops reading when an answer cannot be sent, and with that loses what the client had sent
// behind.
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

constexpr auto kPlaceCheck = 5s;

} // namespace

CommandServer::CommandServer(const QString& path, int maxConnections, Factory factory)
    : m_maxConnections(maxConnections)
    , m_factory(std::move(factory))
    , m_socket(path)
{
    m_pathCheck.setTimerType(Qt::VeryCoarseTimer);
    m_pathCheck.setInterval(kPlaceCheck);
    connect(&m_pathCheck, &QTimer::timeout, this, &CommandServer::keepPlace);
    connect(&m_placeWatch, &QFileSystemWatcher::directoryChanged, this, &CommandServer::keepPlace);
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
    watchPlace();
    m_pathCheck.start();
    return true;
}

void CommandServer::startAccepting()
{
    m_acceptor = std::make_unique<posix::Acceptor>(m_socket.descriptor(), [this] { return acceptNext(); });
}

/// Makes the socket again when it is gone.
void CommandServer::keepPlace()
{
    if (!m_socket.isListening() || m_socket.isInPlace())
        return;
    for (auto client = m_socket.accept(); client.isValid(); client = m_socket.accept()) {
        serveOlder();
        open(std::move(client))->serve();
    }
    // Those that cannot be accepted now would be lost with the old socket.
    if (errno == EAGAIN && m_socket.makeAgain()) {
        startAccepting();
        m_acceptor->setEnabled(m_connections.size() < m_maxConnections);
        watchPlace();
    }
}

void CommandServer::watchPlace()
{
    const QString directory = QFileInfo(m_socket.path()).path();
    m_placeWatch.removePath(directory); // which may be another one by that name
    m_placeWatch.addPath(directory);
}

void CommandServer::close()
{
    m_pathCheck.stop();
    m_acceptor.reset();
    if (m_socket.isListening()) {
        m_socket.turnAway();
        const auto connections = m_connections;
        for (CommandConnection* connection : connections)
            connection->finish();
        for (auto client = m_socket.accept(); client.isValid(); client = m_socket.accept())
            open(std::move(client))->finish();
    }
    m_socket.release();
}

/// False, and errno tells why, when there is none.
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
    serveOlder();
    open(std::move(client))->serve();
    if (m_connections.size() >= m_maxConnections)
        m_acceptor->setEnabled(false);
    return true;
}

/// What came over the connections before a new one was accepted is carried out first.
void CommandServer::serveOlder()
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
    connect(connection, &CommandConnection::finished, this, [this, connection] { forget(connection); });
    return connection;
}

void CommandServer::forget(CommandConnection* connection)
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
