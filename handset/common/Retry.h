// Attempts that go on until one succeeds.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <chrono>
#include <functional>

namespace zyn::handset {

/**
 * Tries again what has failed, more and more rarely, until it succeeds.
 *
 * An attempt may hold up all else of the process, as it does that waits for a service: so the waits become longer.
 */
class Retry : public QObject
{
    Q_OBJECT

public:
    /// Makes @p attempt, which tells how it went, @p first after a failure, and each next time after twice as long, at
    /// most @p slowest.
    Retry(std::chrono::milliseconds first, std::chrono::milliseconds slowest, const std::function<void()>& attempt);

    /// For the end of every attempt, whoever made it.
    void note(bool hasSucceeded);

private:
    QTimer m_timer;
    const std::chrono::milliseconds m_first;
    const std::chrono::milliseconds m_slowest;
    std::chrono::milliseconds m_next;
};

} // namespace zyn::handset
