// The server end of the recent-call socket.
#pragma once

#include "handset/recentcall_service/CallLog.h"
#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>

#include <chrono>
#include <memory>
#include <optional>

class QSocketNotifier;
class ServiceConnection;

/**
 * Listens on the recent-call socket and serves its clients from one call log.
 *
 * Only this user's processes and root's are served. What a client has sent over one connection is carried out
 * before anything that comes over a connection opened later: a client that adds a call and asks for the list
 * finds it there.
 */
class RecentCallService : public QObject
{
    Q_OBJECT

public:
    /**
     * @param patience        how long a client may let the service wait for a command or with an answer
     * @param maxConnections  how many connections are open at a time; further clients wait for their turn
     */
    RecentCallService(std::chrono::milliseconds patience, int maxConnections);
    /// Closes the service.
    ~RecentCallService() override;

    /// The path of the socket.
    static QString socketPath();

    /// Starts to listen, in place of a service that died; false, and told in the log, when another one lives
    /// or the socket cannot be had.
    bool listen();

    /// Ends: turns new clients away, carries out what the others have sent, and removes the socket.
    void close();

private:
    bool takeSocket();
    void acceptNext();
    void serveOlder();
    ServiceConnection* open(zyn::posix::UniqueFd socket);
    void forget(ServiceConnection* connection);
    void pauseAccepting();
    void resumeAccepting();

    const std::chrono::milliseconds m_patience;
    const int m_maxConnections;
    zyn::posix::UniqueFd m_lock;
    zyn::posix::UniqueFd m_listener;
    std::optional<CallLog> m_calls;
    std::unique_ptr<QSocketNotifier> m_newClient;
    QTimer m_acceptPause;
    /// In the order in which they were opened.
    QList<ServiceConnection*> m_connections;
};
