// The server end of the recent-call socket.
#pragma once

#include "handset/common/CommandServer.h"
#include "handset/recentcall_service/CallLog.h"

#include <QtCore/QString>

#include <chrono>
#include <optional>

namespace zyn::handset {

/**
 * Listens on the recent-call socket and serves its clients from one call log.
 *
 * A client that adds a call over one connection and asks for the list over the next finds it there.
 */
class RecentCallService
{
public:
    /**
     * @param patience        how long a client may let the service wait for a command or with an answer
     * @param maxConnections  how many connections are open at a time; further clients wait for their turn
     */
    RecentCallService(std::chrono::milliseconds patience, int maxConnections);

    /// The path of the socket.
    static QString socketPath();

    /// Starts to listen, in place of a service that died, and announces the missed calls that it has; false, and told
    /// in the log, when another one lives or the socket cannot be had.
    bool listen();

private:
    std::optional<CallLog> m_calls;
    CommandServer m_server;
};

} // namespace zyn::handset
