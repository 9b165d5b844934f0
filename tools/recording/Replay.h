// Sends the messages of a recording with their original pauses.
#pragma once

#include "tools/recording/Recording.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>

namespace zyn::tool {

/// Each message is due relative to the first one, so delays do not add up.
class Replay
{
public:
    /// The speed without pauses.
    static constexpr double kNoPauses = 0;

    /// @p speed multiplies the original pace. @p recording must outlive this object.
    Replay(const Recording& recording, double speed);

    /// Runs the event loop until all messages are sent, one fails, or something else ends the loop.
    void run();

    qsizetype count() const { return qsizetype(m_messages.size()); }
    qsizetype sent() const { return qsizetype(m_next); }
    bool isDone() const { return m_next == m_messages.size(); }
    /// Whether the message after those sent could not be sent to all listeners.
    bool isBroken() const { return m_isBroken; }
    /// The milliseconds left until the last message is due.
    qint64 remaining() const;

private:
    /// When a message is due, in milliseconds after the start.
    qint64 dueTime(const ReceivedMessage& message) const;
    void waitForNext();
    void sendWhenDue();

    const std::vector<ReceivedMessage>& m_messages;
    const double m_speed;
    size_t m_next = 0;
    bool m_isBroken = false;
    QTimer m_timer;
    QElapsedTimer m_sinceStart;
};

} // namespace zyn::tool
