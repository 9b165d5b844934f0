// One client of the phone server's socket.
#pragma once

#include "handset/common/CommandConnection.h"
#include "handset/phone_server/PhoneLine.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"

#include <optional>

namespace zyn::handset {

/**
 * One client: registers, places calls, and receives their states.
 *
 * It may be idle once it has registered. Its calls survive its connection.
 */
class ClientConnection : public CommandConnection
{
    Q_OBJECT

public:
    ClientConnection(posix::UniqueFd socket, PhoneLine& line, std::chrono::milliseconds timeout);

protected:
    bool admits(const CommandFrameHeader& header) override;
    void execute(const CommandFrameHeader& header, std::span<const std::byte> data) override;

private:
    static const CommandRow<ClientConnection> kCommands[6];

    void registerClient(std::span<const std::byte> data);
    void unregisterClient(std::span<const std::byte> data);
    void makeSimCall(std::span<const std::byte> data);
    void makeJavaCall(std::span<const std::byte> data);
    void endCall(std::span<const std::byte> data);
    void dialExtension(std::span<const std::byte> data);

    void makeCall(voicecall::ClientKind kind, std::span<const std::byte> number);
    void reply(int id, CallState state);

    PhoneLine& m_line;
    std::optional<int32_t> m_kind; ///< unset until it registers
    int m_call = 0;                ///< the last call that it placed
};

} // namespace zyn::handset
