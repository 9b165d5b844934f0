// zyn-recentcalld: keeps the log of recent calls and serves it on a socket.
#include "handset/common/Application.h"
#include "handset/common/CommandLine.h"
#include "handset/common/CommandServer.h"
#include "handset/recentcall_service/CallLog.h"
#include "handset/recentcall_service/ServiceConnection.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RecentCall_Client_p.h"

#include <chrono>
#include <cstdlib>
#include <optional>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

constexpr int kDefaultTimeout = 10'000;

QString socketPath()
{
    return QLatin1String(recentcall::kSocketPath);
}

/// Serves all clients from one call log, so that a call added over one connection is in the list read over the next.
class RecentCallService
{
public:
    /**
     * @param timeout         how long a client may take for a command or for reading a reply
     * @param maxConnections  the number of clients served at a time; further ones wait
     */
    RecentCallService(std::chrono::milliseconds timeout, int maxConnections)
        : m_server(socketPath(), maxConnections, [this, timeout](posix::UniqueFd socket) {
            return new ServiceConnection(std::move(socket), *m_calls, timeout);
        })
    {}

    /// Starts to listen, in place of a service that died, and announces the missed calls. False, which is logged, if
    /// another service is alive or the socket cannot be made.
    bool listen()
    {
        RecentCall_dataDir();
        if (!m_server.acquire())
            return false;
        // This service now owns the files; clients connect only after they have been read.
        m_calls.emplace();
        if (!m_server.listen())
            return false;
        // Clients that asked earlier got no reply, or one from a service that died.
        announceMissedCalls();
        return true;
    }

private:
    std::optional<CallLog> m_calls;
    CommandServer m_server;
};

} // namespace
} // namespace zyn::handset

namespace handset = zyn::handset;

int main(int argc, char** argv)
{
    const handset::Application application(argc, argv, u"zyn-recentcalld"_s);

    const QString timeout = u"patience"_s;
    handset::CommandLine commandLine(
        u"Keeps the log of recent calls and answers its socket,\n%1.\n"
        "Ends on SIGTERM and SIGINT. Messages go to standard error."_s.arg(handset::socketPath()));
    commandLine.addTime(timeout,
                        u"Drop a client that sends no whole command, or does not take its "
                        "answer, for this many milliseconds (%1)."_s,
                        handset::kDefaultTimeout);
    if (!commandLine.parse())
        return handset::kUsageError;
    handset::RecentCallService service(commandLine.time(timeout), handset::raiseClientLimit());
    if (!service.listen())
        return EXIT_FAILURE;
    commandLine.announce(handset::socketPath());
    return handset::Application::exec();
}
