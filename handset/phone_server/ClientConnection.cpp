// One client of the phone server's socket.
#include "handset/phone_server/ClientConnection.h"

#include "handset/common/Log.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <iterator>

using namespace Qt::StringLiterals;
using namespace zyn::voicecall;

namespace zyn::handset {
namespace {

/// The reply for each state; 0 for states that no client's call reaches.
constexpr std::array<int32_t, 9> kReplies = {CallDialing, CallAlerting, 0, 0,         CallConnected,
                                             0,           CallEnded,    0, CallFailed};
static_assert(kReplies[static_cast<size_t>(CallState::Connected)] == CallConnected);
static_assert(kReplies[static_cast<size_t>(CallState::Failed)] == CallFailed);

constexpr size_t kLargestData = std::max(sizeof(SimCall), sizeof(JavaCall));

} // namespace

const CommandRow<ClientConnection> ClientConnection::kCommands[] = {
    {PHONE_VOICECALL_CMD_REGISTER, sizeof(int32_t), &ClientConnection::registerClient},
    {PHONE_VOICECALL_CMD_UNREGISTER, 0, &ClientConnection::unregisterClient},
    {PHONE_VOICECALL_CMD_MAKE_CALL, sizeof(SimCall), &ClientConnection::makeSimCall},
    {PHONE_VOICECALL_CMD_MAKE_CALL, sizeof(JavaCall), &ClientConnection::makeJavaCall},
    {PHONE_VOICECALL_CMD_END_CALL, 0, &ClientConnection::endCall},
    {PHONE_VOICECALL_CMD_DIAL_EXTENSION, 1, &ClientConnection::dialExtension},
};

ClientConnection::ClientConnection(posix::UniqueFd socket, PhoneLine& line, std::chrono::milliseconds timeout)
    : CommandConnection(std::move(socket), kLargestData, timeout)
    , m_line(line)
{
    connect(&line, &PhoneLine::callChanged, this, &ClientConnection::reply);
}

bool ClientConnection::admits(const CommandFrameHeader& header)
{
    const CommandRow<ClientConnection>* command = rowFor(kCommands, header);
    if (!command) {
        refuse(u"sent an invalid command"_s);
        return false;
    }
    const bool isRegistration = command == std::begin(kCommands);
    if (isRegistration == m_kind.has_value()) {
        refuse(m_kind ? u"registered a second time"_s : u"sent a command before it registered"_s);
        return false;
    }
    return true;
}

void ClientConnection::execute(const CommandFrameHeader& header, std::span<const std::byte> data)
{
    (this->*rowFor(kCommands, header)->execute)(data);
}

void ClientConnection::registerClient(std::span<const std::byte> data)
{
    const auto kind = qFromLittleEndian<int32_t>(data.data());
    if (kind != SimToolkit && kind != Java) {
        refuse(u"registered as an unknown kind"_s);
        return;
    }
    m_kind = kind;
    allowIdle();
}

void ClientConnection::unregisterClient(std::span<const std::byte> /*data*/)
{
    close();
}

void ClientConnection::makeSimCall(std::span<const std::byte> data)
{
    makeCall(SimToolkit, data.subspan(offsetof(SimCall, number), sizeof(SimCall::number)));
}

void ClientConnection::makeJavaCall(std::span<const std::byte> data)
{
    makeCall(Java, data.subspan(offsetof(JavaCall, number), sizeof(JavaCall::number)));
}

/// Places a call to @p number, which ends at its first NUL.
void ClientConnection::makeCall(ClientKind kind, std::span<const std::byte> number)
{
    if (m_kind != kind) {
        refuse(u"sent the call of a client of another kind"_s);
        return;
    }
    const auto end = std::ranges::find(number, std::byte(0));
    const QByteArrayView text(number.data(), end - number.begin());
    const int placed = m_line.place({QString::fromLatin1(text)});
    if (placed != 0)
        m_call = placed;
    send(placed != 0 ? CallDialing : CallFailed);
}

void ClientConnection::endCall(std::span<const std::byte> /*data*/)
{
    m_line.apply(m_call, CallEvent::HangUp);
}

void ClientConnection::dialExtension(std::span<const std::byte> data)
{
    const QString key(QLatin1Char(static_cast<char>(data[0])));
    const Call* const call = m_line.call(m_call);
    if (call && call->machine().state() == CallState::Connected && isDialable(key)) {
        log(u"call %1: extension %2"_s.arg(m_call).arg(key));
        m_line.modem().sendTone(m_call, key.front());
    } else {
        log(u"an extension without a connected call or a valid key: ignored"_s);
    }
}

void ClientConnection::reply(int id, CallState state)
{
    const int32_t code = kReplies.at(static_cast<size_t>(state));
    if (id == m_call && code != 0)
        send(code);
}

} // namespace zyn::handset
