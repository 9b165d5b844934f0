// A server's side of one client's connection to a command socket.
#pragma once

#include "platform/CommandFrame_p.h"
#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <chrono>
#include <cstddef>
#include <span>
#include <vector>

namespace zyn::handset {

/**
 * Splits what one client sends into commands, and sends it the replies.
 *
 * Never blocks. While replies are unsent, nothing is read, so a client cannot make the server hold ever more of them.
 * The connection closes when the client closes it, sends an invalid command, or exceeds the timeout: for accepting
 * replies, for completing a command, and, unless it may be idle, for beginning the next one. Commands sent before the
 * client closed are executed, whether or not it read the replies.
 */
class CommandConnection : public QObject
{
    Q_OBJECT

public:
    /// Executes received commands, but no more than a client usually sends, so that other clients get their turn.
    void serve();

    /// Stops reading, executes all that the client has sent, and closes.
    void finish();

Q_SIGNALS:
    /// The connection is closed.
    void finished();

protected:
    /// @param largestData  of any command, in bytes
    CommandConnection(posix::UniqueFd socket, size_t largestData, std::chrono::milliseconds timeout);

    /// Whether the client may send the command of @p header now; refuses the client if not.
    virtual bool admits(const CommandFrameHeader& header) = 0;
    /// Executes an admitted command.
    virtual void execute(const CommandFrameHeader& header, std::span<const std::byte> data) = 0;

    /// Sends a command to the client, behind what is still unsent.
    void send(int32_t code, const QByteArray& data = {});
    /// From now on the client may be idle between commands.
    void allowIdle();
    /// Closes the connection and logs why, as "a client <reason>".
    void refuse(const QString& reason);
    /// Ends the connection.
    void close();

private:
    bool isListening() const { return m_socket.isValid() && m_unsent.isEmpty(); }
    bool mustProgress() const { return !m_mayIdle || m_receivedSize > 0 || !m_unsent.isEmpty(); }
    void goOn();
    void sendUnsent();
    void resume();
    void startTimeout();
    void restartTimeout();
    void closeUnlessProgressed();

    posix::UniqueFd m_socket;
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
    /// Runs while the client has to make progress.
    QTimer m_timeout;
    const size_t m_largestData;
    std::vector<std::byte> m_command; ///< the current one: its header, and its data once that has come
    size_t m_receivedSize = 0;        ///< of m_command
    QByteArray m_unsent;
    bool m_mayIdle = false;
    bool m_hasProgressed = false; ///< the client has made progress since this was last cleared
};

/// A command of @p Connection, known by its code and the exact length of its data.
template<typename Connection>
struct CommandRow
{
    int32_t code;
    size_t dataLength;
    void (Connection::*execute)(std::span<const std::byte> data);
};

/// The row of @p rows for @p header, or null.
template<typename Connection, size_t N>
const CommandRow<Connection>* rowFor(const CommandRow<Connection> (&rows)[N], const CommandFrameHeader& header)
{
    for (const CommandRow<Connection>& row : rows) {
        if (row.code == header.code && row.dataLength == static_cast<size_t>(header.dataLength))
            return &row;
    }
    return nullptr;
}

} // namespace zyn::handset
