// Who has sent a channel's message, and when.
#pragma once

#include <QtCore/QByteArray>

#include <cstdint>

class QCopChannel;

namespace zyn {

/// Who has sent a message, and when.
struct ChannelOrigin
{
    int64_t process = 0; ///< the process's number, as the kernel tells it here; else as it says itself. 0 when unknown
    QByteArray program;  ///< the name of its program, as it says itself: graphic ASCII. Empty when unknown
    uint64_t sentAt = 0; ///< nanoseconds of CLOCK_MONOTONIC, never later than now. 0 when unknown

    /// That of the message which @p channel is being given in receive(); unknown at any other time.
    static ChannelOrigin of(const QCopChannel& channel);
};

} // namespace zyn
