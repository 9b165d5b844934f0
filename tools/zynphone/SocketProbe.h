// Who serves a socket.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <sys/types.h>

namespace zyn::posix {
class UniqueFd;
}

namespace zyn::tool {

/// The result of a test connection, which is closed at once.
struct SocketProbe
{
    enum State {
        Served,
        Stopped, ///< the serving process is stopped
        Foreign, ///< served by another user's process, which the library rejects
        Busy,    ///< served, but its queue of connections is full
        Dead,    ///< left behind by a dead process
        Missing,
        NoSocket,    ///< another kind of file
        Unreachable, ///< see error
    };

    State state = Missing;
    pid_t process = 0; ///< of Served, Stopped and Foreign; 0 if unknown
    uid_t user = 0;    ///< of Foreign
    QString error = {};

    /// Of the socket at @p path.
    static SocketProbe at(const QByteArray& path);
    /// Of what a connection without waiting has given, errno included.
    static SocketProbe of(const posix::UniqueFd& connection);
};

/// Whether @p process is stopped, by a signal or a debugger.
bool isStopped(pid_t process);

/// "process 123 (zyn-phoned)", without the name if the process has ended.
QString processText(pid_t process);

} // namespace zyn::tool
