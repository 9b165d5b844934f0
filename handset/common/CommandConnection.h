// One client of a command socket, as its server sees it.
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
 * One client: takes what it sends apart into commands, and sends it what it is answered.
 *
 * It never waits. A client that has not taken what it was sent is not listened to meanwhile, so that what is held for
 * it does not grow with what it asks. The connection ends when the client closes it, sends anything but a command, or
 * takes longer than its timeout for what it owes: to take what it is sent, to go on with a command that it has begun,
 * and, unless it may be silent, to begin the next one. Commands that a client sent before it closed are carried out,
 * whether or not it took its answers.
 */
class CommandConnection : public QObject
{
    Q_OBJECT

public:
    /// Carries out the commands that have come, but no more than a client usually sends: the others want their turn.
    void serve();

    /// Lets the client send no more, carries out all that it has sent, and ends.
    void finish();

Q_SIGNALS:
    /// The connection has ended.
    void finished();

protected:
    /// @param largestData  of any command, in bytes
    CommandConnection(posix::UniqueFd socket, size_t largestData, std::chrono::milliseconds timeout);

    /// Whether the client may send a command that begins with @p header now; refuses the client when not.
    virtual bool admits(const CommandFrameHeader& header) = 0;
    /// Carries out a command that was admitted, with all its data.
    virtual void carryOut(const CommandFrameHeader& header, std::span<const std::byte> data) = 0;

    /// Sends a command to the client, behind what it has not taken yet.
    void send(int32_t code, const QByteArray& data = {});
    /// From here on the client may be silent between its commands for as long as it likes.
    void allowSilence();
    /// Ends the connection; the log says that a client did what @p reason tells.
    void refuse(const QString& reason);
    /// Ends the connection.
    void end();

private:
    bool isListening() const { return m_socket.isValid() && m_unsent.isEmpty(); }
    bool isOwing() const { return !m_mayBeSilent || m_receivedSize > 0 || !m_unsent.isEmpty(); }
    void carryOutReceived();
    bool carryOutNext();
    void consume(size_t bytes);
    void sendUnsent();
    void resume();
    void watch();
    void watchAnew();
    void giveUpUnlessServed();

    posix::UniqueFd m_socket;
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
    /// Runs out when the client lets the server wait.
    QTimer m_timeout;
    std::vector<std::byte> m_received;
    size_t m_receivedSize = 0;
    QByteArray m_unsent;
    bool m_mayBeSilent = false;
    bool m_hasGoneOn = false; ///< whether the client did what it owed since this was last cleared
};

/// A command of @p Connection: the code and the exact length of its data tell it from the others.
template<typename Connection>
struct CommandRow
{
    int32_t code;
    size_t dataLength;
    void (Connection::*carryOut)(std::span<const std::byte> data);
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
