// One client of the phone server's control socket.
#pragma once

#include "handset/common/CommandConnection.h"
#include "handset/phone_server/PhoneLine.h"

namespace zyn::handset {

/// One client: says what happens, and asks for the calls of the line. One that follows the calls may be idle.
class ControlConnection : public CommandConnection
{
    Q_OBJECT

public:
    ControlConnection(posix::UniqueFd socket, PhoneLine& line, std::chrono::milliseconds timeout);

protected:
    bool admits(const CommandFrameHeader& header) override;
    void execute(const CommandFrameHeader& header, std::span<const std::byte> data) override;

private:
    void say(std::span<const std::byte> data);
    void unlock(std::span<const std::byte> data);
    void listCalls();
    void followCalls();
    void tellChange(int id);

    PhoneLine& m_line;
    bool m_follows = false;
};

} // namespace zyn::handset
