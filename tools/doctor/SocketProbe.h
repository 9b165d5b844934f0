// Who serves a socket.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <sys/types.h>

namespace zyn::posix {
class UniqueFd;
}

namespace zyn::tool {

/// What connecting to a socket has shown. The connection is closed again at once.
struct SocketProbe
{
    enum State {
        Served,
        Stopped, ///< the process that serves it is stopped
        Foreign, ///< served by another user's process, which the library does not talk to
        Busy,    ///< served, but too many connections wait to be accepted
        Dead,    ///< left behind by a process that serves it no more
        Missing,
        NoSocket, ///< something else has its name
        Failed,   ///< error tells why
    };

    State state = Missing;
    pid_t process = 0; ///< of Served, Stopped and Foreign; 0 where it is not known
    uid_t user = 0;    ///< of Foreign
    QString error = {};

    /// Of the socket at @p path.
    static SocketProbe at(const QByteArray& path);
    /// Of what a connection without waiting has given, errno included.
    static SocketProbe of(const posix::UniqueFd& connection);
};

/// Whether @p process is stopped, by a signal or a debugger.
bool isStopped(pid_t process);

/// "process 123 (zyn-phoned)", without a name when the process has gone.
QString processText(pid_t process);

} // namespace zyn::tool
