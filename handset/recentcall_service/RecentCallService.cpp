// The server end of the recent-call socket.
#include "handset/recentcall_service/RecentCallService.h"

#include "handset/recentcall_service/Announcement.h"
#include "handset/recentcall_service/ServiceConnection.h"
#include "recentcall/utility/PHONE_RecentCall.h"

namespace zyn::handset {

RecentCallService::RecentCallService(std::chrono::milliseconds patience, int maxConnections)
    : m_server(socketPath(), maxConnections, [this, patience](zyn::posix::UniqueFd socket) {
        return new ServiceConnection(std::move(socket), *m_calls, patience);
    })
{}

QString RecentCallService::socketPath()
{
    return QLatin1String(zyn::recentcall::kSocketPath);
}

bool RecentCallService::listen()
{
    RecentCall_dataDir();
    if (!m_server.take())
        return false;
    // The files are this service's alone from here on; nobody is kept waiting while they are read.
    m_calls.emplace();
    if (!m_server.listen())
        return false;
    // Whoever has asked before got no answer, or one of a service that has died.
    announceMissedCalls();
    return true;
}

} // namespace zyn::handset
