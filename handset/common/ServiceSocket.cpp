// The listening socket of a service, which one process at a time owns.
#include "handset/common/ServiceSocket.h"

#include "handset/common/Log.h"
#include "platform/posix/PathAt_p.h"
#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

constexpr mode_t kOwnUserOnly = 0600;
constexpr mode_t kOpenToAll = 0777;

QString lockPath(const QString& path)
{
    return path + ".lock"_L1;
}

/// Removes the socket of a dead owner, but no other kind of file.
void removeStaleSocket(const QByteArray& path)
{
    struct stat status = {};
    if (::lstat(path.constData(), &status) == 0 && S_ISSOCK(status.st_mode))
        ::unlink(path.constData());
}

/// Makes the directory of @p path, open to all users, if it is missing.
void makeDirectoryOf(const QString& path)
{
    const QByteArray directory = QFile::encodeName(QFileInfo(path).path());
    if (posix::makeDirectory(directory, kOpenToAll))
        posix::setDirectoryMode(directory, kOpenToAll);
}

QString userText(uid_t user)
{
    return QString::fromLocal8Bit(posix::userName(user));
}

/// Removes what a user other than root has put at @p path, if possible.
void replaceForeign(const QByteArray& path)
{
    const std::optional<uid_t> owner = posix::ownerOf(path);
    if (owner && posix::clearOfOthers(path))
        log(u"%1 was user %2's: replaced"_s.arg(QDir::cleanPath(QFile::decodeName(path)), userText(*owner)));
}

/// Removes what another user has put in the place of the directory of @p path. His directory is as good as any.
void clearDirectoryOf(const QString& path)
{
    const QString directory = QFileInfo(QDir::cleanPath(path)).path();
    if (!QFileInfo(directory).isSymLink() && QFileInfo(directory).isDir())
        return;
    replaceForeign(QFile::encodeName(directory));
    makeDirectoryOf(path);
}

/// Why the socket at @p path is not available.
QString reason(const QString& path, int error)
{
    const QString text = QString::fromLocal8Bit(std::strerror(error));
    for (const QString& name : {lockPath(path), path, QFileInfo(QDir::cleanPath(path)).path()}) {
        const bool isDirectory = name != path && name != lockPath(path);
        const std::optional<uid_t> owner = posix::ownerOf(QFile::encodeName(name));
        if (owner && !posix::isTrustedUser(*owner) && !(isDirectory && error == EWOULDBLOCK))
            return u"%1: %2 is user %3's, only that user or root can remove it"_s.arg(text, QDir::cleanPath(name),
                                                                                      userText(*owner));
    }
    return error == EWOULDBLOCK ? u"another service has it"_s : text;
}

} // namespace

ServiceSocket::ServiceSocket(const QString& path)
    : m_path(path)
{}

ServiceSocket::~ServiceSocket()
{
    release();
}

QStringList ServiceSocket::files() const
{
    return {m_path, lockPath(m_path)};
}

bool ServiceSocket::acquire()
{
    return report(claim());
}

bool ServiceSocket::listen()
{
    return report(open());
}

bool ServiceSocket::isInPlace() const
{
    return m_socketId && posix::fileId(QFile::encodeName(m_path)) == m_socketId && m_lock.isInPlace();
}

bool ServiceSocket::recreate()
{
    const bool isMade = restore();
    const QString path = QDir::cleanPath(m_path);
    if (isMade)
        log(u"%1 or its lock was removed: recreated"_s.arg(path));
    else if (!m_isLost)
        log(u"%1 or its lock was removed and cannot be made again: %2"_s.arg(path, reason(m_path, errno)));
    m_isLost = !isMade;
    return isMade;
}

bool ServiceSocket::restore()
{
    makeDirectoryOf(m_path);
    // If only the lock is gone, the socket stays.
    if (m_socketId && posix::fileId(QFile::encodeName(m_path)) == m_socketId)
        return lock();
    return claim() && open();
}

bool ServiceSocket::lock()
{
    const QByteArray path = QFile::encodeName(lockPath(m_path));
    replaceForeign(path);
    return m_lock.isInPlace() || m_lock.lock(path);
}

/// Makes this process the only one that may listen.
bool ServiceSocket::claim()
{
    clearDirectoryOf(m_path);
    if (!lock())
        return false;
    const QByteArray path = QFile::encodeName(m_path);
    replaceForeign(path);
    if (posix::isServedByTrusted(path)) {
        errno = EWOULDBLOCK;
        return false;
    }
    removeStaleSocket(path);
    return true;
}

bool ServiceSocket::open()
{
    const QByteArray path = QFile::encodeName(m_path);
    // The old listener stays if a new one cannot be made.
    posix::UniqueFd listener = posix::listenUnix(path, kOwnUserOnly);
    if (!listener.isValid())
        return false;
    m_listener = std::move(listener);
    // Nothing if somebody has taken the name in between: then the socket is not in place, and is made again.
    m_socketId = posix::ownSocketId(path);
    return true;
}

/// Logs a failure with errno's reason.
bool ServiceSocket::report(bool isDone) const
{
    if (!isDone)
        log(u"cannot listen on %1: %2"_s.arg(QDir::cleanPath(m_path), reason(m_path, errno)));
    return isDone;
}

posix::UniqueFd ServiceSocket::accept()
{
    posix::UniqueFd client = posix::acceptConnection(m_listener.get());
    while (client.isValid() && !posix::isPeerTrusted(client.get())) {
        log(u"a client of another user: connection closed"_s);
        client = posix::acceptConnection(m_listener.get());
    }
    return client;
}

void ServiceSocket::stopAccepting()
{
    if (!m_listener.isValid())
        return;
    const QByteArray path = QFile::encodeName(m_path);
    if (posix::fileId(path) == m_socketId)
        ::unlink(path.constData());
    ::shutdown(m_listener.get(), SHUT_RD);
}

void ServiceSocket::release()
{
    stopAccepting();
    m_listener.reset();
    m_socketId.reset();
    m_lock.unlock();
}

} // namespace zyn::handset
