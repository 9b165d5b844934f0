// Messages of several connections, in the order in which they were sent.
#pragma once

#include "tools/recording/MessageText.h"

#include <QtCore/QTimer>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>

namespace zyn::tool {

/**
 * Holds messages back until those that were sent before have come too.
 *
 * Each sender's messages come in order, but those of one may be read before earlier ones of another. A message is
 * passed on when the window has passed since it was sent; one that comes later than that is passed on at once, and
 * marked. Of messages that came with no time the moment of their arrival counts.
 */
class MessageOrder
{
public:
    /// How long after it was sent a message is passed on.
    static constexpr std::chrono::milliseconds kWindow{50};
    /// The most that is held back: then the first are passed on early.
    static constexpr size_t kMostHeld = 10'000;
    static constexpr qsizetype kMostBytes = qsizetype{64} * 1024 * 1024;

    using Deliver = std::function<void(const ReceivedMessage& message)>;

    explicit MessageOrder(Deliver deliver);

    /// Takes over a message that was sent at @p sentAt, nanoseconds of CLOCK_MONOTONIC.
    void add(ReceivedMessage message, uint64_t sentAt);
    /// Passes on all that is held back.
    void flush();

private:
    void deliverDue();
    void deliverFirst();

    const Deliver m_deliver;
    std::multimap<uint64_t, ReceivedMessage> m_held; ///< by the times at which they were sent
    qsizetype m_heldBytes = 0;
    uint64_t m_last = 0; ///< when the last one that was passed on was sent
    QTimer m_timer;
};

} // namespace zyn::tool
