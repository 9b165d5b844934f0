// The server end of a command socket.
//
// QLocalServer does not fit: it closes for good when accepting fails once, as it does when descriptors run out. Nor
// does QLocalSocket: when a reply cannot be sent it stops reading, and drops what the client had sent.
#include "handset/common/CommandServer.h"

#include "handset/common/CommandConnection.h"
#include "handset/common/Log.h"
#include "platform/posix/PathAt_p.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zyn::handset {
namespace {

constexpr auto kPlaceCheckInterval = 5s;

/// How many clients that wait are accepted at once, so that the open connections are looked at once for all of them.
constexpr size_t kAcceptedAtOnce = 16;

} // namespace

CommandServer::CommandServer(const QString& path, int maxConnections, Factory factory)
    : m_maxConnections(maxConnections)
    , m_factory(std::move(factory))
    , m_socket(path)
{
    m_placeCheck.setTimerType(Qt::VeryCoarseTimer);
    m_placeCheck.setInterval(kPlaceCheckInterval);
    connect(&m_placeCheck, &QTimer::timeout, this, &CommandServer::checkPlace);
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
    if (m_watch.fd() >= 0) {
        m_changes = std::make_unique<QSocketNotifier>(m_watch.fd(), QSocketNotifier::Read);
        connect(m_changes.get(), &QSocketNotifier::activated, this, &CommandServer::noteChanges);
    }
    checkPlace();
    return true;
}

void CommandServer::startAccepting()
{
    m_acceptor = std::make_unique<posix::Acceptor>(m_socket.descriptor(), [this] { return acceptNext(); });
}

void CommandServer::noteChanges()
{
    if (m_watch.poll())
        checkPlace();
}

/// Makes the socket again if it has been removed, and looks again later if that failed or could not be noticed.
void CommandServer::checkPlace()
{
    if (!m_socket.isListening())
        return;
    restoreSocket();
    // Only what happens from now on is noticed, so the watch comes before the look.
    if (watchPlace() && m_socket.isInPlace())
        m_placeCheck.stop();
    else
        m_placeCheck.start();
}

void CommandServer::restoreSocket()
{
    if (m_socket.isInPlace())
        return;
    for (auto client = m_socket.accept(); client.isValid(); client = m_socket.accept()) {
        serveOpenConnections();
        open(std::move(client))->serve();
    }
    // Clients that cannot be accepted now would be lost with the old socket.
    if (errno == EAGAIN && m_socket.recreate()) {
        startAccepting();
        m_acceptor->setEnabled(m_connections.size() < m_maxConnections);
    }
}

/// Watches the socket's directory, the socket and its lock, whosever they are; false if one is missing or cannot be
/// watched.
bool CommandServer::watchPlace()
{
    for (const int id : std::exchange(m_watchedFiles, {}))
        m_watch.remove(id);
    for (const QString& file : m_socket.files()) {
        m_watch.addPath(QFile::encodeName(QFileInfo(QDir::cleanPath(file)).path()));
        const auto place = posix::resolve(QFile::encodeName(file), posix::LastLink::Keep);
        m_watchedFiles.append(place ? m_watch.addFile(place->directory.get(), place->name)
                                    : posix::DirectoryWatch::kUnwatched);
    }
    return !m_watchedFiles.contains(posix::DirectoryWatch::kUnwatched);
}

void CommandServer::close()
{
    m_placeCheck.stop();
    m_changes.reset();
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
    std::vector<posix::UniqueFd> clients;
    const auto mayAccept = [&] {
        return clients.size() < kAcceptedAtOnce && m_connections.size() + qsizetype(clients.size()) < m_maxConnections;
    };
    do {
        clients.push_back(std::move(client));
        client = mayAccept() ? m_socket.accept() : posix::UniqueFd();
    } while (client.isValid());
    openAll(clients);
    if (m_connections.size() >= m_maxConnections)
        m_acceptor->setEnabled(false);
    return true;
}

/// Opens the connections of clients that came one after the other.
void CommandServer::openAll(std::vector<posix::UniqueFd>& clients)
{
    serveOpenConnections();
    // A connection that closes is deleted later.
    std::vector<CommandConnection*> opened;
    for (posix::UniqueFd& client : clients) {
        for (CommandConnection* earlier : opened)
            earlier->serve();
        opened.push_back(open(std::move(client)));
        opened.back()->serve();
    }
}

/// Executes what arrived on the open connections before new ones were accepted.
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
