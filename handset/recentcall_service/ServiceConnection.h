// One client of the recent-call service's socket.
#pragma once

#include "handset/common/CommandConnection.h"
#include "handset/recentcall_service/CallLog.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/store/StoreFile_p.h"

#include <chrono>
#include <cstddef>
#include <span>
#include <utility>

namespace zyn::handset {

/// Tells all listeners that the missed calls have changed; a failure is logged.
void announceMissedCalls();

/// One client: executes its commands on the call log, and announces each change of the missed calls.
class ServiceConnection : public CommandConnection
{
public:
    /// @param timeout  how long the client may take for a command or for reading a reply
    ServiceConnection(posix::UniqueFd socket, CallLog& calls, std::chrono::milliseconds timeout)
        : CommandConnection(std::move(socket), sizeof(PHONE_ENG_RecentCall), timeout)
        , m_calls(calls)
    {}

protected:
    bool admits(const CommandFrameHeader& header) override;
    void execute(const CommandFrameHeader& header, std::span<const std::byte> data) override;

private:
    static const CommandRow<ServiceConnection> kCommands[6];

    using Data = std::span<const std::byte>;

    void greet(Data data);
    void list(Data data);
    void add(Data data) { m_calls.add(toPlain<PHONE_ENG_RecentCall>(data)); }
    void remove(Data data) { send(m_calls.remove(toPlain<PHONE_ENG_RecentCall>(data))); }
    void removeAll(Data data) { send(m_calls.removeAll(toPlain<recentcall::Selection>(data))); }
    void markRead(Data data) { send(m_calls.markRead(toPlain<PHONE_ENG_RecentCall>(data))); }

    CallLog& m_calls;
    bool m_isGreeted = false;
};

} // namespace zyn::handset
