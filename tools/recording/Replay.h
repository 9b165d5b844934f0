// Sends the messages of a recording with the pauses that they came with.
#pragma once

#include "tools/recording/Recording.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>

namespace zyn::tool {

/// Each message has its time after the first one, so that what one is late by does not delay the others.
class Replay
{
public:
    /// Speed at which there are no pauses.
    static constexpr double kNoPauses = 0;

    /// @p speed is how many times as fast the messages are sent as they came. @p recording must outlive it.
    Replay(const Recording& recording, double speed);

    /// Runs the event loop until all messages are sent, one cannot be, or something else ends the loop.
    void run();

    qsizetype count() const { return qsizetype(m_messages.size()); }
    qsizetype sent() const { return qsizetype(m_next); }
    bool isDone() const { return m_next == m_messages.size(); }
    /// Whether a message could not be sent to all who listen: the one after those sent.
    bool isBroken() const { return m_isBroken; }
    /// How many milliseconds are left until the last message is to be sent.
    qint64 remaining() const;

private:
    /// When a message is to be sent, in milliseconds after the start.
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
