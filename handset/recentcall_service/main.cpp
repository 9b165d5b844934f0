// zyn-recentcalld: keeps the log of recent calls and serves it on a socket.
#include "handset/common/Application.h"
#include "handset/common/CommandConnection.h"
#include "handset/common/CommandLine.h"
#include "handset/common/CommandServer.h"
#include "handset/common/Log.h"
#include "handset/recentcall_service/CallLog.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RecentCall_Msg.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "utility/PHONE_CommandSocket_p.h"

#include <chrono>
#include <cstdlib>
#include <iterator>
#include <optional>

using namespace Qt::StringLiterals;

namespace zyn::handset {

namespace rc = recentcall;

namespace {

using Data = std::span<const std::byte>;

constexpr int kDefaultTimeout = 10'000;

QString socketPath()
{
    return QLatin1String(rc::kSocketPath);
}

void announceMissedCalls()
{
    if (!RecentCall_Msg::send(RecentCall_Msg::RECENTCALL_MSG_MISSEDCALL_UPDATE_S))
        log(u"a change of the missed calls could not be announced"_s);
}

/// One client: executes its commands on the call log, and announces each change of the missed calls.
class ServiceConnection : public CommandConnection
{
public:
    ServiceConnection(posix::UniqueFd socket, CallLog& calls, std::chrono::milliseconds timeout)
        : CommandConnection(std::move(socket), sizeof(PHONE_ENG_RecentCall), timeout)
        , m_calls(calls)
    {}

protected:
    bool admits(const CommandFrameHeader& header) override;
    void execute(const CommandFrameHeader& header, Data data) override;

private:
    static const CommandRow<ServiceConnection> kCommands[6];

    void greet(Data data);
    void list(Data data);
    void add(Data data) { m_calls.add(toPlain<PHONE_ENG_RecentCall>(data)); }
    void remove(Data data) { send(m_calls.remove(toPlain<PHONE_ENG_RecentCall>(data))); }
    void removeAll(Data data) { send(m_calls.removeAll(toPlain<rc::Selection>(data))); }
    void markRead(Data data) { send(m_calls.markRead(toPlain<PHONE_ENG_RecentCall>(data))); }

    CallLog& m_calls;
    bool m_isGreeted = false;
};

const CommandRow<ServiceConnection> ServiceConnection::kCommands[] = {
    {kGreetingCommand, sizeof(int32_t), &ServiceConnection::greet},
    {rc::ListRecords, sizeof(rc::Selection), &ServiceConnection::list},
    {rc::AddRecord, sizeof(PHONE_ENG_RecentCall), &ServiceConnection::add},
    {rc::DeleteRecord, sizeof(PHONE_ENG_RecentCall), &ServiceConnection::remove},
    {rc::DeleteAll, sizeof(rc::Selection), &ServiceConnection::removeAll},
    {rc::MarkRead, sizeof(PHONE_ENG_RecentCall), &ServiceConnection::markRead},
};

bool ServiceConnection::admits(const CommandFrameHeader& header)
{
    const CommandRow<ServiceConnection>* command = rowFor(kCommands, header);
    if (!command) {
        refuse(u"sent an invalid command"_s);
        return false;
    }
    const bool isGreeting = command == std::begin(kCommands);
    if (isGreeting == m_isGreeted) {
        refuse(m_isGreeted ? u"sent a second greeting"_s : u"sent a command before its greeting"_s);
        return false;
    }
    return true;
}

void ServiceConnection::execute(const CommandFrameHeader& header, Data data)
{
    (this->*rowFor(kCommands, header)->execute)(data);
    if (m_calls.fetchMissedChange())
        announceMissedCalls();
}

void ServiceConnection::greet(Data data)
{
    m_isGreeted = toPlain<int32_t>(data) == 0;
    if (!m_isGreeted)
        refuse(u"sent an unknown greeting"_s);
}

void ServiceConnection::list(Data data)
{
    const auto records = m_calls.list(toPlain<rc::Selection>(data));
    send(records ? rc::Success : rc::Failure, records.value_or(QByteArray()));
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
