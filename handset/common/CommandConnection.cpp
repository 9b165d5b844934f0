// A server's side of one client's connection to a command socket.
#include "handset/common/CommandConnection.h"

#include "handset/common/Log.h"
#include "platform/posix/UnixSocket_p.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

/// The headers and the data of a greeting and of a command.
constexpr int kReadsPerTurn = 4;

} // namespace

CommandConnection::CommandConnection(posix::UniqueFd socket, size_t largestData, std::chrono::milliseconds timeout)
    : m_socket(std::move(socket))
    , m_readable(m_socket.get(), QSocketNotifier::Read)
    , m_writable(m_socket.get(), QSocketNotifier::Write)
    , m_largestData(largestData)
    , m_command(CommandFrameHeader::kSize)
{
    m_writable.setEnabled(false);
    m_timeout.setSingleShot(true);
    m_timeout.setInterval(timeout);
    m_timeout.start();
    connect(&m_readable, &QSocketNotifier::activated, this, &CommandConnection::serve);
    connect(&m_writable, &QSocketNotifier::activated, this, &CommandConnection::resume);
    connect(&m_timeout, &QTimer::timeout, this, &CommandConnection::closeUnlessProgressed);
}

/// Reads no further than the current command, so that what has arrived behind it waits in the socket for the next turn.
void CommandConnection::serve()
{
    for (int read = 0; read < kReadsPerTurn && isListening(); ++read) {
        const ssize_t n = posix::receiveSome(m_socket.get(), std::span(m_command).subspan(m_receivedSize));
        if (n < 0)
            return;
        if (n == 0) {
            if (m_receivedSize > 0)
                refuse(u"closed in the middle of a command"_s);
            close();
            return;
        }
        m_receivedSize += static_cast<size_t>(n);
        if (m_receivedSize == m_command.size())
            goOn();
        startTimeout();
    }
}

void CommandConnection::finish()
{
    ::shutdown(m_socket.get(), SHUT_RD);
    while (m_socket.isValid()) {
        m_unsent.clear();
        serve();
    }
}

/// Makes room for the data of the command whose header has come, or executes the command if it is whole.
void CommandConnection::goOn()
{
    constexpr size_t kHeader = CommandFrameHeader::kSize;
    const auto header = CommandFrameHeader::decode(std::span(std::as_const(m_command)).first<kHeader>());
    if (m_receivedSize == kHeader) {
        if (!header || static_cast<size_t>(header->dataLength) > m_largestData) {
            refuse(u"sent an invalid command"_s);
            return;
        }
        if (!admits(*header))
            return;
        m_command.resize(kHeader + static_cast<size_t>(header->dataLength));
    }
    if (m_receivedSize < m_command.size())
        return;
    execute(*header, std::span(std::as_const(m_command)).subspan(kHeader));
    m_command.resize(kHeader);
    m_receivedSize = 0;
    restartTimeout();
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

/// Sends as much as the client accepts and keeps the rest. A client that is gone may still have sent commands, so only
/// the reply is dropped.
void CommandConnection::sendUnsent()
{
    posix::sendUnsent(m_socket.get(), m_unsent);
    m_readable.setEnabled(m_unsent.isEmpty());
    m_writable.setEnabled(!m_unsent.isEmpty());
}

/// Sends what is left.
void CommandConnection::resume()
{
    sendUnsent();
    if (isListening())
        restartTimeout();
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
