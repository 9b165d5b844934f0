// Repeats an operation until it succeeds.
#include "handset/common/Retry.h"

#include <algorithm>

namespace zyn::handset {

Retry::Retry(std::chrono::milliseconds first, std::chrono::milliseconds slowest, const std::function<void()>& attempt)
    : m_first(first)
    , m_slowest(slowest)
    , m_next(first)
{
    m_timer.setSingleShot(true);
    m_timer.callOnTimeout(this, attempt);
}

void Retry::note(bool hasSucceeded)
{
    if (hasSucceeded) {
        m_timer.stop();
        m_next = m_first;
        return;
    }
    m_timer.start(m_next);
    m_next = std::min(2 * m_next, m_slowest);
}

} // namespace zyn::handset
