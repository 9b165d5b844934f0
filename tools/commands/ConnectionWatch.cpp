// Tells when a connection that the library made is closed.
#include "tools/commands/ConnectionWatch.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

#include <optional>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace zyn::tool {
namespace {

constexpr int kNoSocket = -1;

/// The name of the socket that @p fd is connected to; empty when it is not connected to a named one.
QByteArray peerName(int fd)
{
    sockaddr_un peer = {};
    socklen_t length = sizeof peer;
    if (::getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &length) != 0 || peer.sun_family != AF_UNIX)
        return {};
    const QByteArray path(peer.sun_path, qsizetype(qstrnlen(peer.sun_path, sizeof peer.sun_path)));
    return path.mid(path.lastIndexOf('/') + 1);
}

int findConnection(const char* socketName)
{
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    for (const QString& entry : descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
        if (const int fd = entry.toInt(); peerName(fd) == socketName)
            return fd;
    }
    return kNoSocket;
}

/// The number of the open file behind @p fd.
std::optional<ino_t> inodeOf(int fd)
{
    struct stat status = {};
    return ::fstat(fd, &status) == 0 ? std::optional(status.st_ino) : std::nullopt;
}

} // namespace

ConnectionWatch::ConnectionWatch(const char* socketName)
    : m_socket(findConnection(socketName))
    , m_inode(inodeOf(m_socket).value_or(0))
{
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &m_context, [this] {
        if (isLost())
            QCoreApplication::quit();
    });
}

bool ConnectionWatch::isLost() const
{
    return inodeOf(m_socket) != m_inode;
}

} // namespace zyn::tool
