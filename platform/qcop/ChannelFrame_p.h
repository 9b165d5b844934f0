// The frame in which a message travels to one listener.
//
//     byte 0          length N of the message's name, 1 or more, 32 bits, least significant byte first
//     byte 4          length P of the payload, 32 bits
//     byte 8          when it was sent, in nanoseconds of CLOCK_MONOTONIC, 64 bits
//     byte 16         the name, N bytes, none of them 0
//     byte 16 + N     the payload, P bytes
//
// N + P is at most 16 MiB. Before its first message a sender introduces itself on each connection, in a frame without a
// name:
//
//     byte 0          0, 32 bits
//     byte 4          length P of what follows the time, from 8 to 72, 32 bits
//     byte 8          when the sender connected, as above
//     byte 16         the sender's process, 64 bits
//     byte 24         the name of its program, P - 8 bytes of graphic ASCII
//
// Frames follow each other without anything between them; the listener answers nothing. The channel is not named: each
// listener has a socket of its own, in the channel's directory.
#pragma once

#include "platform/qcop/ChannelOrigin_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QtEndian>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include <sys/types.h>

namespace zyn {

/// The most bytes that a message's name and payload have together.
inline constexpr qsizetype kMessageLimit = qsizetype{16} * 1024 * 1024;

/// The first bytes of a frame. Numbers are stored least significant byte first.
struct ChannelFrameHeader
{
    quint32_le nameSize;
    quint32_le dataSize;
    quint64_le sentAt;
};
static_assert(sizeof(ChannelFrameHeader) == 16);
static_assert(offsetof(ChannelFrameHeader, dataSize) == 4 && offsetof(ChannelFrameHeader, sentAt) == 8);

/// The longest name of a program that a sender tells.
inline constexpr qsizetype kProgramLimit = 64;

/// What a sender writes on a connection before its first message: which program of which process it is.
QByteArray introductionFrame();

/// A message on its way out, sent when this is made. It refers to the name and the payload, which must outlive it.
class ChannelFrame
{
public:
    static constexpr qsizetype kHeaderSize = sizeof(ChannelFrameHeader);

    ChannelFrame(QByteArrayView name, QByteArrayView data);

    /// Whether a listener would accept it.
    bool isValid() const;
    qsizetype size() const { return kHeaderSize + m_name.size() + m_data.size(); }
    /// Sends the frame's bytes over @p fd, as posix::sendSome() does.
    ssize_t sendTo(int fd) const;
    /// Appends the frame's bytes, without the first @p skipped, to @p queue.
    void appendTo(QByteArray& queue, qsizetype skipped = 0) const;

private:
    /// The largest frame that is put together once for all listeners.
    static constexpr qsizetype kWholeSize = 512;

    bool isWhole() const { return size() <= kWholeSize; }
    std::array<QByteArrayView, 3> blocks() const
    {
        return {QByteArrayView(m_bytes).first(kHeaderSize), m_name, m_data};
    }

    QByteArrayView m_name;
    QByteArrayView m_data;
    std::array<char, kWholeSize> m_bytes; ///< the header, and the rest when it is whole
};

/// Finds the messages in a connection's bytes, in whatever pieces they come. Holds no more than has arrived.
class ChannelFrameReader
{
public:
    /// Reads what @p process sends, its number as the kernel knows it; 0 when the kernel does not, and the sender's own
    /// word counts.
    explicit ChannelFrameReader(int64_t process)
        : m_origin{process, {}, 0}
    {}

    /// Room for the connection's next bytes; call add() with the number of bytes put there.
    std::span<std::byte> room();
    void add(qsizetype size);

    /// Removes the next message; false when none is complete. The payload's memory is used again if nobody shares it.
    bool next(QByteArray& name, QByteArray& data);
    /// Who has sent the message last removed, and when.
    const ChannelOrigin& origin() const { return m_origin; }
    /// Whether bytes are left, of a message that is complete or not.
    bool hasMore() const { return m_offset < m_filled; }
    /// Whether the bytes are not a valid frame. No message follows then.
    bool isBroken() const { return m_isBroken; }

private:
    bool introduce(QByteArrayView introduction);
    void discardRead();

    QByteArray m_buffer;
    qsizetype m_offset = 0; ///< what has been read of the buffer
    qsizetype m_filled = 0; ///< what has been added; the rest is room
    QByteArray m_lastName;  ///< shared by messages of the same name in a row
    ChannelOrigin m_origin;
    uint64_t m_addedAt = 0; ///< when the last bytes came: none of their messages was sent later
    bool m_isIntroduced = false;
    bool m_isBroken = false;
};

} // namespace zyn
