// The server end of the recent-call socket.
//
// A QLocalServer would not do: it closes itself for good when accepting fails once, as it does when
// descriptors run out, and a QLocalSocket stops reading when an answer cannot be sent, and with that loses
// what the client had sent behind.
#include "handset/recentcall_service/RecentCallService.h"

#include "handset/common/Log.h"
#include "handset/recentcall_service/ServiceConnection.h"
#include "platform/posix/File_p.h"
#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/PHONE_RecentCall.h"

#include <QtCore/QFile>
#include <QtCore/QSocketNotifier>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>

namespace posix = zyn::posix;
using zyn::handset::log;
using namespace std::chrono_literals;

namespace {

constexpr mode_t kOwnUserOnly = 0600;
constexpr auto kAcceptPause = 100ms;

QString lockPath()
{
    return RecentCallService::socketPath() + QLatin1String(".lock");
}

/// Removes what a dead service left; anything but a socket stays.
void removeSocket(const QByteArray& path)
{
    struct stat status = {};
    if (::lstat(path.constData(), &status) == 0 && S_ISSOCK(status.st_mode))
        ::unlink(path.constData());
}

QString reason(int error)
{
    if (error == EWOULDBLOCK)
        return QStringLiteral("another service has it");
    return QString::fromLocal8Bit(std::strerror(error));
}

} // namespace

RecentCallService::RecentCallService(std::chrono::milliseconds patience, int maxConnections)
    : m_patience(patience)
    , m_maxConnections(maxConnections)
{
    m_acceptPause.setSingleShot(true);
    m_acceptPause.setInterval(kAcceptPause);
    connect(&m_acceptPause, &QTimer::timeout, this, &RecentCallService::resumeAccepting);
}

RecentCallService::~RecentCallService()
{
    close();
}

QString RecentCallService::socketPath()
{
    return QLatin1String(zyn::recentcall::kSocketDirectory) + QLatin1Char('/') +
           QLatin1String(zyn::recentcall::kSocketName);
}

bool RecentCallService::listen()
{
    if (!takeSocket()) {
        const int error = errno;
        log(QStringLiteral("cannot listen on %1: %2").arg(socketPath(), reason(error)));
        return false;
    }
    m_newClient = std::make_unique<QSocketNotifier>(m_listener.get(), QSocketNotifier::Read);
    connect(m_newClient.get(), &QSocketNotifier::activated, this, &RecentCallService::acceptNext);
    return true;
}

/// On failure errno tells why.
bool RecentCallService::takeSocket()
{
    RecentCall_dataDir();
    const QByteArray path = QFile::encodeName(socketPath());
    m_lock = posix::lockFile(QFile::encodeName(lockPath()));
    if (!m_lock.isValid())
        return false;
    if (posix::isServed(path)) {
        errno = EWOULDBLOCK;
        return false;
    }
    removeSocket(path);
    // The files are this service's alone from here on; nobody is kept waiting while they are read.
    m_calls.emplace();
    m_listener = posix::listenUnix(path, kOwnUserOnly);
    return m_listener.isValid();
}

void RecentCallService::close()
{
    m_newClient.reset();
    if (m_listener.isValid()) {
        QFile::remove(socketPath());
        // From here on connecting fails; what is connected already can still be accepted.
        ::shutdown(m_listener.get(), SHUT_RD);
        const auto connections = m_connections;
        for (ServiceConnection* connection : connections)
            connection->finish();
        for (auto socket = posix::acceptConnection(m_listener.get()); socket.isValid();
             socket = posix::acceptConnection(m_listener.get()))
            open(std::move(socket))->finish();
        m_listener.reset();
    }
    if (m_lock.isValid())
        QFile::remove(lockPath());
    m_lock.reset();
}

void RecentCallService::acceptNext()
{
    posix::UniqueFd socket = posix::acceptConnection(m_listener.get());
    if (!socket.isValid()) {
        if (errno != EAGAIN)
            pauseAccepting();
        return;
    }
    if (!posix::isPeerTrusted(socket.get())) {
        log(QStringLiteral("a client of another user: connection closed"));
        return;
    }
    serveOlder();
    open(std::move(socket))->serve();
    if (m_connections.size() >= m_maxConnections)
        m_newClient->setEnabled(false);
}

/// What came over the connections before a new one was accepted is carried out first.
void RecentCallService::serveOlder()
{
    const auto connections = m_connections;
    for (ServiceConnection* connection : connections)
        connection->serve();
}

ServiceConnection* RecentCallService::open(posix::UniqueFd socket)
{
    auto* connection = new ServiceConnection(std::move(socket), *m_calls, m_patience, this);
    m_connections.append(connection);
    connect(connection, &ServiceConnection::finished, this, [this, connection] { forget(connection); });
    return connection;
}

void RecentCallService::forget(ServiceConnection* connection)
{
    m_connections.removeOne(connection);
    connection->deleteLater();
    resumeAccepting();
}

/// The system is short of something; clients wait in the backlog meanwhile.
void RecentCallService::pauseAccepting()
{
    log(QStringLiteral("cannot accept a client now: %1").arg(reason(errno)));
    m_newClient->setEnabled(false);
    m_acceptPause.start();
}

void RecentCallService::resumeAccepting()
{
    if (m_newClient && m_connections.size() < m_maxConnections)
        m_newClient->setEnabled(true);
}
