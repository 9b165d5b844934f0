// Many announcements, one reaction.
#include "handset/recent_calls/Coalescing.h"

namespace zyn::handset {

Coalescing::Coalescing(const std::function<void()>& reaction)
{
    m_timer.setSingleShot(true);
    m_timer.callOnTimeout(this, reaction);
}

void Coalescing::trigger()
{
    if (!m_timer.isActive())
        m_timer.start(0);
}

} // namespace zyn::handset
