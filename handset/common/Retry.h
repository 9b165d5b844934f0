// Repeats an operation until it succeeds.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <chrono>
#include <functional>

namespace zyn::handset {

/**
 * Repeats a failed operation until it succeeds, at growing intervals: an attempt may block the process, as one that
 * waits for a service does.
 */
class Retry : public QObject
{
    Q_OBJECT

public:
    /// Calls @p attempt @p first after a failure; the interval doubles with each failure, up to @p slowest. The attempt
    /// reports its outcome to note().
    Retry(std::chrono::milliseconds first, std::chrono::milliseconds slowest, const std::function<void()>& attempt);

    /// Reports the outcome of an attempt, whether this class or the program made it.
    void note(bool hasSucceeded);

private:
    QTimer m_timer;
    const std::chrono::milliseconds m_first;
    const std::chrono::milliseconds m_slowest;
    std::chrono::milliseconds m_next;
};

} // namespace zyn::handset
