// Sends the messages of a recording with their original pauses.
#include "tools/recording/Replay.h"

#include "platform/QCopChannel.h"

#include <QtCore/QCoreApplication>

#include <algorithm>

namespace zyn::tool {
namespace {

/// Timers are limited to some weeks.
constexpr qint64 kLongestWait = qint64{60} * 60 * 1000;
/// The latest due time, in milliseconds: thousands of years.
constexpr double kFarthest = 1e15;

} // namespace

Replay::Replay(const Recording& recording, double speed)
    : m_messages(recording.messages())
    , m_speed(speed)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { sendWhenDue(); });
}

void Replay::run()
{
    if (isDone())
        return;
    m_sinceStart.start();
    waitForNext();
    QCoreApplication::exec();
    m_timer.stop();
}

qint64 Replay::remaining() const
{
    return m_messages.empty() ? 0 : std::max<qint64>(dueTime(m_messages.back()) - m_sinceStart.elapsed(), 0);
}

qint64 Replay::dueTime(const ReceivedMessage& message) const
{
    if (m_speed == kNoPauses)
        return 0;
    return static_cast<qint64>(
        std::min(static_cast<double>(m_messages.front().time.msecsTo(message.time)) / m_speed, kFarthest));
}

void Replay::waitForNext()
{
    const qint64 wait = dueTime(m_messages[m_next]) - m_sinceStart.elapsed();
    m_timer.start(static_cast<int>(std::clamp<qint64>(wait, 0, kLongestWait)));
}

void Replay::sendWhenDue()
{
    const ReceivedMessage& message = m_messages[m_next];
    if (m_sinceStart.elapsed() >= dueTime(message)) {
        m_isBroken = !QCopChannel::send(message.channel, message.name, message.payload);
        if (!m_isBroken)
            ++m_next;
    }
    if (isDone() || m_isBroken)
        QCoreApplication::quit();
    else
        waitForNext();
}

} // namespace zyn::tool
