// The frame in which a message travels to one listener.
#include "platform/qcop/ChannelFrame_p.h"

#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QtEndian>

#include <algorithm>

namespace zyn {
namespace {

/// How much is read at once: it bounds what one listener does before others have their turn.
constexpr qsizetype kReadSize = qsizetype{16} * 1024;
/// The largest buffer that an idle connection keeps.
constexpr qsizetype kIdleBuffer = 4 * kReadSize;

std::span<const std::byte> bytes(QByteArrayView view)
{
    return std::as_bytes(std::span(view.data(), static_cast<size_t>(view.size())));
}

/// Whether the lengths add up to a message that may be sent. Their sum cannot overflow: each is 32 bits wide.
bool isMessageSize(uint64_t nameSize, uint64_t dataSize)
{
    return nameSize > 0 && nameSize + dataSize <= uint64_t{kMessageLimit};
}

} // namespace

ChannelFrame::ChannelFrame(QByteArrayView name, QByteArrayView data)
    : m_name(name)
    , m_data(data)
{
    qToLittleEndian(static_cast<uint32_t>(name.size()), m_bytes.data());
    qToLittleEndian(static_cast<uint32_t>(data.size()), m_bytes.data() + sizeof(uint32_t));
    if (isWhole())
        std::copy(data.begin(), data.end(), std::copy(name.begin(), name.end(), m_bytes.begin() + kHeaderSize));
}

bool ChannelFrame::isValid() const
{
    return isMessageSize(static_cast<uint64_t>(m_name.size()), static_cast<uint64_t>(m_data.size()));
}

ssize_t ChannelFrame::sendTo(int fd) const
{
    if (isWhole())
        return posix::sendSome(fd, bytes(QByteArrayView(m_bytes).first(size())));
    std::array<iovec, 3> parts = {};
    std::ranges::transform(blocks(), parts.begin(), [](QByteArrayView block) { return posix::toIovec(bytes(block)); });
    return posix::sendSome(fd, parts);
}

void ChannelFrame::appendTo(QByteArray& queue, qsizetype skipped) const
{
    if (isWhole()) {
        queue.append(QByteArrayView(m_bytes).first(size()).sliced(skipped));
        return;
    }
    for (const QByteArrayView block : blocks()) {
        const qsizetype here = std::min(skipped, block.size());
        queue.append(block.sliced(here));
        skipped -= here;
    }
}

std::span<std::byte> ChannelFrameReader::room()
{
    if (m_buffer.size() < m_filled + kReadSize)
        m_buffer.resize(m_filled + kReadSize);
    return std::as_writable_bytes(std::span(m_buffer.data() + m_filled, size_t{kReadSize}));
}

void ChannelFrameReader::add(qsizetype size)
{
    m_filled += size;
}

bool ChannelFrameReader::next(QByteArray& name, QByteArray& data)
{
    const QByteArrayView rest = QByteArrayView(m_buffer).sliced(m_offset, m_filled - m_offset);
    if (m_isBroken || rest.size() < ChannelFrame::kHeaderSize) {
        discardRead();
        return false;
    }
    const auto nameLength = qFromLittleEndian<uint32_t>(rest.data());
    const auto dataLength = qFromLittleEndian<uint32_t>(rest.data() + sizeof(uint32_t));
    m_isBroken = !isMessageSize(nameLength, dataLength);
    // A message's are far within a qsizetype of 32 bits too; others are not used.
    const auto nameSize = static_cast<qsizetype>(nameLength);
    const auto dataSize = static_cast<qsizetype>(dataLength);
    const QByteArrayView body = rest.sliced(ChannelFrame::kHeaderSize);
    if (m_isBroken || body.size() < nameSize + dataSize) {
        discardRead();
        return false;
    }
    if (const QByteArrayView newName = body.first(nameSize); m_lastName != newName) {
        m_isBroken = newName.contains('\0');
        m_lastName = newName.toByteArray();
    }
    name = m_lastName;
    data = body.sliced(nameSize, dataSize).toByteArray();
    m_offset += ChannelFrame::kHeaderSize + nameSize + dataSize;
    return !m_isBroken;
}

void ChannelFrameReader::discardRead()
{
    if (m_offset == m_filled && m_buffer.size() > kIdleBuffer)
        m_buffer = QByteArray();
    else if (m_offset > 0)
        std::copy(m_buffer.cbegin() + m_offset, m_buffer.cbegin() + m_filled, m_buffer.begin());
    m_filled -= m_offset;
    m_offset = 0;
}

} // namespace zyn
