// One client of the recent-call service.
#pragma once

#include "handset/recentcall_service/CallLog.h"
#include "platform/CommandFrame_p.h"
#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <array>
#include <chrono>
#include <cstddef>
#include <span>

/**
 * One client: turns what it sends into commands for the call log, and sends the answers.
 *
 * It never waits. A client whose answer is not taken yet is not listened to meanwhile, so that no more than
 * one answer and one command are ever held for it. The connection ends when the client closes it, sends
 * anything but a command, or takes longer than its patience for its next command or to take an answer.
 * Commands that a client sent before it closed are carried out, whether or not it took its answers.
 */
class ServiceConnection : public QObject
{
    Q_OBJECT

public:
    ServiceConnection(zyn::posix::UniqueFd socket, CallLog& calls, std::chrono::milliseconds patience,
                      QObject* parent);

    /// Carries out the commands that have come, but no more than a client usually sends: the others want
    /// their turn.
    void serve();

    /// Lets the client send no more, carries out all that it has sent, and ends.
    void finish();

Q_SIGNALS:
    /// The connection has ended.
    void finished();

private:
    struct Command;
    static const Command kCommands[];
    static constexpr size_t kLargestCommand = zyn::CommandFrameHeader::kSize + sizeof(PHONE_ENG_RecentCall);

    bool isListening() const { return m_socket.isValid() && m_answer.isEmpty(); }
    void carryOutReceived();
    bool carryOutNext();
    const Command* commandFor(std::span<const std::byte, zyn::CommandFrameHeader::kSize> header);
    void consume(size_t bytes);
    void answer(zyn::recentcall::Status status, const QByteArray& data = {});
    void sendAnswer();
    void goOn();
    void giveUpUnlessServed();
    void refuse(const QString& reason);
    void end();

    void greet(std::span<const std::byte> data);
    void list(std::span<const std::byte> data);
    void add(std::span<const std::byte> data);
    void remove(std::span<const std::byte> data);
    void removeAll(std::span<const std::byte> data);

    zyn::posix::UniqueFd m_socket;
    CallLog& m_calls;
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
    /// Runs out when the client lets the service wait.
    QTimer m_patience;
    std::array<std::byte, kLargestCommand> m_received;
    size_t m_receivedSize = 0;
    /// What is left to send of the last answer.
    QByteArray m_answer;
    bool m_isGreeted = false;
};
