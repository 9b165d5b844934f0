// The listening socket of a service, of which one process at a time is the owner.
#include "handset/common/ServiceSocket.h"

#include "handset/common/Log.h"
#include "platform/posix/File_p.h"
#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>

namespace {

constexpr mode_t kOwnUserOnly = 0600;

QString lockPath(const QString& path)
{
    return path + QLatin1String(".lock");
}

/// Removes what a dead owner left; anything but a socket stays.
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

namespace zyn::handset {

ServiceSocket::ServiceSocket(const QString& path)
    : m_path(path)
{}

ServiceSocket::~ServiceSocket()
{
    release();
}

bool ServiceSocket::take()
{
    const QByteArray path = QFile::encodeName(m_path);
    m_lock = posix::lockFile(QFile::encodeName(lockPath(m_path)));
    if (!m_lock.isValid())
        return tell(false);
    if (posix::isServed(path)) {
        errno = EWOULDBLOCK;
        return tell(false);
    }
    removeSocket(path);
    return true;
}

bool ServiceSocket::listen()
{
    m_listener = posix::listenUnix(QFile::encodeName(m_path), kOwnUserOnly);
    return tell(m_listener.isValid());
}

/// What is not done is told, with errno's reason.
bool ServiceSocket::tell(bool isDone) const
{
    if (!isDone)
        log(QStringLiteral("cannot listen on %1: %2").arg(QDir::cleanPath(m_path), reason(errno)));
    return isDone;
}

posix::UniqueFd ServiceSocket::accept()
{
    posix::UniqueFd client = posix::acceptConnection(m_listener.get());
    while (client.isValid() && !posix::isPeerTrusted(client.get())) {
        log(QStringLiteral("a client of another user: connection closed"));
        client = posix::acceptConnection(m_listener.get());
    }
    return client;
}

void ServiceSocket::turnAway()
{
    if (!m_listener.isValid())
        return;
    QFile::remove(m_path);
    ::shutdown(m_listener.get(), SHUT_RD);
}

void ServiceSocket::release()
{
    turnAway();
    m_listener.reset();
    if (m_lock.isValid())
        QFile::remove(lockPath(m_path));
    m_lock.reset();
}

} // namespace zyn::handset
