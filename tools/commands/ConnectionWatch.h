// Tells when a connection that the library made is closed.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>

#include <sys/types.h>

namespace zyn::tool {

/**
 * Ends the event loop when the library has closed its connection to a server, of which it tells nobody.
 *
 * What may close it is read in the event loop, so it is looked at whenever the loop has nothing left to do.
 */
class ConnectionWatch
{
public:
    /// Watches the process's connection to a server whose socket is called @p socketName.
    explicit ConnectionWatch(const char* socketName);
    ConnectionWatch(const ConnectionWatch&) = delete;
    ConnectionWatch& operator=(const ConnectionWatch&) = delete;

    bool isLost() const;

private:
    QObject m_context;
    int m_socket;
    ino_t m_inode; ///< the number may be given to another descriptor
};

} // namespace zyn::tool
