// Messages of several connections, in the order in which they were sent.
#include "tools/recording/MessageOrder.h"

#include <utility>

namespace zyn::tool {
namespace {

using std::chrono::nanoseconds;

/// On the clock that tells when messages were sent.
uint64_t now()
{
    return static_cast<uint64_t>(nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count());
}

constexpr auto kWindowLength = static_cast<uint64_t>(nanoseconds(MessageOrder::kWindow).count());

} // namespace

MessageOrder::MessageOrder(Deliver deliver)
    : m_deliver(std::move(deliver))
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.callOnTimeout([this] { deliverDue(); });
}

void MessageOrder::add(ReceivedMessage message, uint64_t sentAt)
{
    message.isLate = sentAt < m_last;
    if (message.isLate)
        return m_deliver(message);
    m_heldBytes += message.payload.size();
    m_held.emplace(sentAt, std::move(message));
    while (m_held.size() > kMostHeld || m_heldBytes > kMostBytes)
        deliverFirst();
    if (!m_timer.isActive())
        deliverDue();
}

void MessageOrder::flush()
{
    while (!m_held.empty())
        deliverFirst();
}

void MessageOrder::deliverDue()
{
    const uint64_t time = now();
    while (!m_held.empty() && m_held.begin()->first + kWindowLength <= time)
        deliverFirst();
    if (m_held.empty())
        return;
    const nanoseconds wait(static_cast<int64_t>(m_held.begin()->first + kWindowLength - time));
    m_timer.start(std::chrono::ceil<std::chrono::milliseconds>(wait));
}

void MessageOrder::deliverFirst()
{
    const auto first = m_held.extract(m_held.begin());
    m_last = first.key();
    m_heldBytes -= first.mapped().payload.size();
    m_deliver(first.mapped());
}

} // namespace zyn::tool
