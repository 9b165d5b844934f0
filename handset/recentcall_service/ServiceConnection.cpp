// One client of the recent-call service.
#include "handset/recentcall_service/ServiceConnection.h"

#include "handset/common/Log.h"
#include "platform/posix/UnixSocket_p.h"
#include "utility/PHONE_CommandSocket_p.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace posix = zyn::posix;
namespace rc = zyn::recentcall;
using zyn::CommandFrameHeader;

namespace {

/// A greeting and a command fit into two.
constexpr int kReadsPerTurn = 4;

template<typename Plain>
Plain toPlain(std::span<const std::byte> data)
{
    Plain plain;
    std::memcpy(static_cast<void*>(&plain), data.data(), sizeof plain);
    return plain;
}

} // namespace

/// A command: the code and the exact length of its data tell it from the others.
struct ServiceConnection::Command
{
    int32_t code;
    size_t dataLength;
    void (ServiceConnection::*carryOut)(std::span<const std::byte> data);
};

const ServiceConnection::Command ServiceConnection::kCommands[] = {
    {zyn::kGreetingCommand, sizeof(int32_t), &ServiceConnection::greet},
    {rc::ListRecords, sizeof(rc::Selection), &ServiceConnection::list},
    {rc::AddRecord, sizeof(PHONE_ENG_RecentCall), &ServiceConnection::add},
    {rc::DeleteRecord, sizeof(PHONE_ENG_RecentCall), &ServiceConnection::remove},
    {rc::DeleteAll, sizeof(rc::Selection), &ServiceConnection::removeAll},
};

ServiceConnection::ServiceConnection(posix::UniqueFd socket, CallLog& calls,
                                     std::chrono::milliseconds patience, QObject* parent)
    : QObject(parent)
    , m_socket(std::move(socket))
    , m_calls(calls)
    , m_readable(m_socket.get(), QSocketNotifier::Read)
    , m_writable(m_socket.get(), QSocketNotifier::Write)
{
    m_writable.setEnabled(false);
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    m_patience.start();
    connect(&m_readable, &QSocketNotifier::activated, this, &ServiceConnection::serve);
    connect(&m_writable, &QSocketNotifier::activated, this, &ServiceConnection::goOn);
    connect(&m_patience, &QTimer::timeout, this, &ServiceConnection::giveUpUnlessServed);
}

void ServiceConnection::serve()
{
    for (int read = 0; read < kReadsPerTurn && isListening(); ++read) {
        const ssize_t n = posix::receiveSome(m_socket.get(), std::span(m_received).subspan(m_receivedSize));
        if (n < 0)
            return;
        if (n == 0) {
            if (m_receivedSize > 0)
                refuse(QStringLiteral("closed in the middle of a command"));
            end();
            return;
        }
        m_receivedSize += static_cast<size_t>(n);
        carryOutReceived();
    }
}

void ServiceConnection::finish()
{
    ::shutdown(m_socket.get(), SHUT_RD);
    while (m_socket.isValid()) {
        m_answer.clear();
        carryOutReceived();
        serve();
    }
}

void ServiceConnection::carryOutReceived()
{
    while (isListening() && carryOutNext())
        m_patience.start();
}

/// Carries out the first command received; false when it is not whole yet, or was refused.
bool ServiceConnection::carryOutNext()
{
    if (m_receivedSize < CommandFrameHeader::kSize)
        return false;
    const auto received = std::span(m_received).first(m_receivedSize);
    const Command* command = commandFor(received.first<CommandFrameHeader::kSize>());
    if (!command)
        return false;
    const auto data = received.subspan(CommandFrameHeader::kSize);
    if (data.size() < command->dataLength)
        return false;
    (this->*command->carryOut)(data.first(command->dataLength));
    consume(CommandFrameHeader::kSize + command->dataLength);
    return m_socket.isValid();
}

/// The command that @p header begins; refuses the client when it begins none that may come now.
const ServiceConnection::Command*
ServiceConnection::commandFor(std::span<const std::byte, CommandFrameHeader::kSize> header)
{
    const auto decoded = CommandFrameHeader::decode(header);
    const auto found = std::find_if(std::begin(kCommands), std::end(kCommands), [&](const Command& command) {
        return decoded && decoded->code == command.code && size_t(decoded->dataLength) == command.dataLength;
    });
    if (found == std::end(kCommands)) {
        refuse(QStringLiteral("sent what is no command"));
        return nullptr;
    }
    const bool isGreeting = found == std::begin(kCommands);
    if (isGreeting == m_isGreeted) {
        refuse(m_isGreeted ? QStringLiteral("sent a second greeting")
                           : QStringLiteral("sent a command before its greeting"));
        return nullptr;
    }
    return found;
}

void ServiceConnection::consume(size_t bytes)
{
    std::copy(m_received.begin() + bytes, m_received.begin() + m_receivedSize, m_received.begin());
    m_receivedSize -= bytes;
}

void ServiceConnection::greet(std::span<const std::byte> data)
{
    m_isGreeted = toPlain<int32_t>(data) == 0;
    if (!m_isGreeted)
        refuse(QStringLiteral("sent a greeting of another kind"));
}

void ServiceConnection::list(std::span<const std::byte> data)
{
    const auto records = m_calls.list(toPlain<rc::Selection>(data));
    answer(records ? rc::Success : rc::Failure, records.value_or(QByteArray()));
}

void ServiceConnection::add(std::span<const std::byte> data)
{
    m_calls.add(toPlain<PHONE_ENG_RecentCall>(data));
}

void ServiceConnection::remove(std::span<const std::byte> data)
{
    answer(m_calls.remove(toPlain<PHONE_ENG_RecentCall>(data)));
}

void ServiceConnection::removeAll(std::span<const std::byte> data)
{
    answer(m_calls.removeAll(toPlain<rc::Selection>(data)));
}

void ServiceConnection::answer(rc::Status status, const QByteArray& data)
{
    const auto header = CommandFrameHeader{status, static_cast<int32_t>(data.size())}.encode();
    m_answer = QByteArray(reinterpret_cast<const char*>(header.data()), header.size()) + data;
    sendAnswer();
}

/// Sends as much as the client takes; the rest waits until it takes more.
void ServiceConnection::sendAnswer()
{
    while (!m_answer.isEmpty()) {
        const auto left = std::span(m_answer.constData(), static_cast<size_t>(m_answer.size()));
        std::array blocks{posix::toIovec(std::as_bytes(left))};
        const ssize_t n = posix::sendSome(m_socket.get(), blocks);
        if (n == 0)
            break;
        // A client that is gone may have sent more before it went: only its answer goes with it.
        if (n < 0)
            m_answer.clear();
        else
            m_answer.remove(0, n);
    }
    m_readable.setEnabled(m_answer.isEmpty());
    m_writable.setEnabled(!m_answer.isEmpty());
}

/// Goes on with the answer that waits, and behind it with the commands that do.
void ServiceConnection::goOn()
{
    sendAnswer();
    if (!isListening())
        return;
    m_patience.start();
    carryOutReceived();
}

/// What has come meanwhile counts, however late this process is to look.
void ServiceConnection::giveUpUnlessServed()
{
    if (!m_answer.isEmpty())
        goOn();
    serve();
    if (m_socket.isValid() && !m_patience.isActive())
        refuse(m_answer.isEmpty() ? QStringLiteral("sent no whole command in time")
                                  : QStringLiteral("did not take its answer in time"));
}

void ServiceConnection::refuse(const QString& reason)
{
    zyn::handset::log(QStringLiteral("a client %1: connection closed").arg(reason));
    end();
}

void ServiceConnection::end()
{
    if (!m_socket.isValid())
        return;
    m_readable.setEnabled(false);
    m_writable.setEnabled(false);
    m_patience.stop();
    m_socket.reset();
    Q_EMIT finished();
}
