// One client of the recent-call service.
#pragma once

#include "handset/common/CommandConnection.h"
#include "handset/recentcall_service/CallLog.h"

namespace zyn::handset {

/// One client: turns what it sends into commands for the call log, and sends the answers. Every command that changes
/// the missed calls is announced to the handset.
class ServiceConnection : public CommandConnection
{
    Q_OBJECT

public:
    ServiceConnection(zyn::posix::UniqueFd socket, CallLog& calls, std::chrono::milliseconds patience);

protected:
    bool admits(const zyn::CommandFrameHeader& header) override;
    void carryOut(const zyn::CommandFrameHeader& header, std::span<const std::byte> data) override;

private:
    static const CommandRow<ServiceConnection> kCommands[6];

    void greet(std::span<const std::byte> data);
    void list(std::span<const std::byte> data);
    void add(std::span<const std::byte> data);
    void remove(std::span<const std::byte> data);
    void removeAll(std::span<const std::byte> data);
    void markRead(std::span<const std::byte> data);

    CallLog& m_calls;
    bool m_isGreeted = false;
};

} // namespace zyn::handset
