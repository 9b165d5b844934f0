// A server's side of one client's connection to a command socket.
#include "handset/common/CommandConnection.h"

#include "handset/common/Log.h"
#include "platform/posix/UnixSocket_p.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

/// Room for a greeting and a command.
constexpr int kReadsPerTurn = 4;

} // namespace

CommandConnection::CommandConnection(posix::UniqueFd socket, size_t largestData, std::chrono::milliseconds timeout)
    : m_socket(std::move(socket))
    , m_readable(m_socket.get(), QSocketNotifier::Read)
    , m_writable(m_socket.get(), QSocketNotifier::Write)
    , m_received(CommandFrameHeader::kSize + largestData)
{
    m_writable.setEnabled(false);
    m_timeout.setSingleShot(true);
    m_timeout.setInterval(timeout);
    m_timeout.start();
    connect(&m_readable, &QSocketNotifier::activated, this, &CommandConnection::serve);
    connect(&m_writable, &QSocketNotifier::activated, this, &CommandConnection::resume);
    connect(&m_timeout, &QTimer::timeout, this, &CommandConnection::closeUnlessProgressed);
}

void CommandConnection::serve()
{
    for (int read = 0; read < kReadsPerTurn && isListening(); ++read) {
        const ssize_t n = posix::receiveSome(m_socket.get(), std::span(m_received).subspan(m_receivedSize));
        if (n < 0)
            return;
        if (n == 0) {
            if (m_receivedSize > 0)
                refuse(u"closed in the middle of a command"_s);
            close();
            return;
        }
        m_receivedSize += static_cast<size_t>(n);
        executeReceived();
        startTimeout();
    }
}

void CommandConnection::finish()
{
    ::shutdown(m_socket.get(), SHUT_RD);
    while (m_socket.isValid()) {
        m_unsent.clear();
        executeReceived();
        serve();
    }
}

void CommandConnection::executeReceived()
{
    while (isListening() && executeNext())
        restartTimeout();
}

/// Executes the first received command; false if it is incomplete or was refused.
bool CommandConnection::executeNext()
{
    const auto received = std::span<const std::byte>(m_received).first(m_receivedSize);
    if (received.size() < CommandFrameHeader::kSize)
        return false;
    const auto header = CommandFrameHeader::decode(received.first<CommandFrameHeader::kSize>());
    if (!header) {
        refuse(u"sent an invalid command"_s);
        return false;
    }
    if (!admits(*header))
        return false;
    const auto data = received.subspan(CommandFrameHeader::kSize);
    const auto length = static_cast<size_t>(header->dataLength);
    if (data.size() < length)
        return false;
    execute(*header, data.first(length));
    consume(CommandFrameHeader::kSize + length);
    return m_socket.isValid();
}

void CommandConnection::consume(size_t bytes)
{
    const auto rest = std::span(m_received).first(m_receivedSize).subspan(bytes);
    std::copy(rest.begin(), rest.end(), m_received.begin());
    m_receivedSize = rest.size();
}

void CommandConnection::send(int32_t code, const QByteArray& data)
{
    if (!m_socket.isValid())
        return;
    const auto header = CommandFrameHeader{code, static_cast<int32_t>(data.size())}.encode();
    m_unsent += QByteArray(reinterpret_cast<const char*>(header.data()), header.size()) + data;
    sendUnsent();
    startTimeout();
}

/// Sends as much as the client accepts and keeps the rest.
void CommandConnection::sendUnsent()
{
    while (!m_unsent.isEmpty()) {
        const auto left = std::span(m_unsent.constData(), static_cast<size_t>(m_unsent.size()));
        std::array blocks{posix::toIovec(std::as_bytes(left))};
        const ssize_t n = posix::sendSome(m_socket.get(), blocks);
        if (n == 0)
            break;
        // The client is gone. It may still have sent commands, so only the reply is dropped.
        if (n < 0)
            m_unsent.clear();
        else
            m_unsent.remove(0, n);
    }
    m_readable.setEnabled(m_unsent.isEmpty());
    m_writable.setEnabled(!m_unsent.isEmpty());
}

/// Sends what is left, then executes the commands received meanwhile.
void CommandConnection::resume()
{
    sendUnsent();
    if (!isListening())
        return;
    restartTimeout();
    executeReceived();
}

void CommandConnection::allowIdle()
{
    m_mayIdle = true;
}

/// Starts the timeout if the client has something to do.
void CommandConnection::startTimeout()
{
    if (m_socket.isValid() && mustProgress() && !m_timeout.isActive())
        m_timeout.start();
}

/// The client has made progress: its next step gets the whole timeout.
void CommandConnection::restartTimeout()
{
    m_hasProgressed = true;
    m_timeout.stop();
    startTimeout();
}

/// What has arrived meanwhile counts, even if this process looks late.
void CommandConnection::closeUnlessProgressed()
{
    m_hasProgressed = false;
    if (!m_unsent.isEmpty())
        resume();
    serve();
    if (m_socket.isValid() && mustProgress() && !m_hasProgressed)
        refuse(m_unsent.isEmpty() ? u"did not send a whole command in time"_s : u"did not read its reply in time"_s);
}

void CommandConnection::refuse(const QString& reason)
{
    log(u"a client %1: connection closed"_s.arg(reason));
    close();
}

void CommandConnection::close()
{
    if (!m_socket.isValid())
        return;
    m_readable.setEnabled(false);
    m_writable.setEnabled(false);
    m_timeout.stop();
    m_socket.reset();
    Q_EMIT finished();
}

} // namespace zyn::handset
