// Who serves a socket.
#include "tools/zynphone/SocketProbe.h"

#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QFile>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zyn::tool {

SocketProbe SocketProbe::at(const QByteArray& path)
{
    const posix::UniqueFd connection = posix::connectUnixAtOnce(path);
    const bool isForbidden = !connection.isValid() && errno == EACCES;
    SocketProbe probe = of(connection);
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0)
        return probe;
    if (!S_ISSOCK(status.st_mode))
        return {.state = NoSocket};
    if (isForbidden && status.st_uid != ::geteuid())
        return {.state = Foreign, .user = status.st_uid};
    return probe;
}

SocketProbe SocketProbe::of(const posix::UniqueFd& connection)
{
    const int error = errno;
    if (connection.isValid()) {
        const ucred peer = posix::peerOf(connection.get()).value_or(ucred{});
        if (!posix::isPeerTrusted(connection.get()))
            return {Foreign, peer.pid, peer.uid, {}};
        return {isStopped(peer.pid) ? Stopped : Served, peer.pid, peer.uid, {}};
    }
    switch (error) {
    case EAGAIN:
        return {.state = Busy};
    case ECONNREFUSED:
        return {.state = Dead};
    case ENOENT:
        return {.state = Missing};
    default:
        return {.state = Unreachable, .error = QString::fromLocal8Bit(std::strerror(error))};
    }
}

bool isStopped(pid_t process)
{
    QFile file(u"/proc/%1/stat"_s.arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    // Number, name in parentheses, which may hold any character, and state.
    const QByteArray fields = file.readAll();
    const QByteArray state = fields.mid(fields.lastIndexOf(") ") + 2, 1);
    return state == "T" || state == "t";
}

QString processText(pid_t process)
{
    QFile comm(u"/proc/%1/comm"_s.arg(process));
    const QString name = comm.open(QIODevice::ReadOnly) ? QString::fromUtf8(comm.readAll()).trimmed() : QString();
    return name.isEmpty() ? u"process %1"_s.arg(process) : u"process %1 (%2)"_s.arg(process).arg(name);
}

} // namespace zyn::tool
