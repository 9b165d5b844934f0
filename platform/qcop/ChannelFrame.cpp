// The frame in which a message travels to one listener.
#include "platform/qcop/ChannelFrame_p.h"

#include "platform/posix/UnixSocket_p.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>

#include <unistd.h>

namespace zyn {
namespace {

/// How much is read at once: it bounds what one listener does before others have their turn.
constexpr qsizetype kReadSize = qsizetype{16} * 1024;
/// The largest buffer that an idle connection keeps.
constexpr qsizetype kIdleBuffer = 4 * kReadSize;

/// The largest payload whose memory the next one takes over.
constexpr qsizetype kReusedSize = 128;

std::span<const std::byte> bytes(QByteArrayView view)
{
    return std::as_bytes(std::span(view.data(), static_cast<size_t>(view.size())));
}

/// A sender's process and, behind it, its program's name.
using ProcessField = quint64_le;

/// Nanoseconds of CLOCK_MONOTONIC, which all processes of the machine share.
uint64_t now()
{
    using std::chrono::nanoseconds;
    return static_cast<uint64_t>(nanoseconds(posix::Clock::now().time_since_epoch()).count());
}

/// Makes @p data a copy of @p bytes, in place where nobody has kept the one before. What is kept is no larger than it
/// must be, apart from a little.
void assign(QByteArray& data, QByteArrayView bytes)
{
    if (!data.isDetached() || data.capacity() < bytes.size() || data.capacity() > kReusedSize) {
        data = bytes.toByteArray();
        return;
    }
    data.resize(bytes.size());
    std::copy(bytes.begin(), bytes.end(), data.begin());
}

bool isGraphic(char c)
{
    return c > ' ' && c < 0x7F;
}

/// Whether the lengths add up to a message that may be sent. Their sum cannot overflow: each is 32 bits wide.
bool isMessageSize(uint64_t nameSize, uint64_t dataSize)
{
    return nameSize > 0 && nameSize + dataSize <= uint64_t{kMessageLimit};
}

bool isIntroductionSize(uint32_t nameSize, uint32_t dataSize)
{
    return nameSize == 0 && dataSize >= sizeof(ProcessField) && dataSize <= sizeof(ProcessField) + kProgramLimit;
}

} // namespace

QByteArray introductionFrame()
{
    QByteArray program = QByteArray(::program_invocation_short_name)
                             .first(std::min(qsizetype(std::strlen(::program_invocation_short_name)), kProgramLimit));
    std::ranges::replace_if(
        program, [](char c) { return !isGraphic(c); }, '?');
    const ProcessField process(static_cast<quint64>(::getpid()));
    const auto size = static_cast<uint32_t>(sizeof process + static_cast<size_t>(program.size()));
    const ChannelFrameHeader header{quint32_le(0), quint32_le(size), quint64_le(now())};
    return QByteArray(reinterpret_cast<const char*>(&header), sizeof header)
           + QByteArray(reinterpret_cast<const char*>(&process), sizeof process) + program;
}

ChannelFrame::ChannelFrame(QByteArrayView name, QByteArrayView data)
    : m_name(name)
    , m_data(data)
{
    const ChannelFrameHeader header{quint32_le(static_cast<uint32_t>(name.size())),
                                    quint32_le(static_cast<uint32_t>(data.size())), quint64_le(now())};
    std::memcpy(m_bytes.data(), &header, sizeof header);
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
    m_addedAt = now();
}

bool ChannelFrameReader::next(QByteArray& name, QByteArray& data)
{
    const QByteArrayView rest = QByteArrayView(m_buffer).sliced(m_offset, m_filled - m_offset);
    if (m_isBroken || rest.size() < ChannelFrame::kHeaderSize) {
        discardRead();
        return false;
    }
    ChannelFrameHeader header;
    std::memcpy(&header, rest.data(), sizeof header);
    m_isBroken = m_isIntroduced ? !isMessageSize(header.nameSize, header.dataSize)
                                : !isIntroductionSize(header.nameSize, header.dataSize);
    // A message's are far within a qsizetype of 32 bits too; others are not used.
    const auto nameSize = static_cast<qsizetype>(header.nameSize);
    const auto dataSize = static_cast<qsizetype>(header.dataSize);
    const QByteArrayView body = rest.sliced(ChannelFrame::kHeaderSize);
    if (m_isBroken || body.size() < nameSize + dataSize) {
        discardRead();
        return false;
    }
    if (!m_isIntroduced) {
        m_offset += ChannelFrame::kHeaderSize + dataSize;
        m_isIntroduced = introduce(body.first(dataSize));
        m_isBroken = !m_isIntroduced;
        return next(name, data);
    }
    if (const QByteArrayView newName = body.first(nameSize); m_lastName != newName) {
        m_isBroken = newName.contains('\0');
        m_lastName = newName.toByteArray();
    }
    name = m_lastName;
    assign(data, body.sliced(nameSize, dataSize));
    m_origin.sentAt = std::min<uint64_t>(header.sentAt, m_addedAt);
    m_offset += ChannelFrame::kHeaderSize + nameSize + dataSize;
    return !m_isBroken;
}

/// Takes over what a sender tells of itself; false when that is nothing that a sender tells.
bool ChannelFrameReader::introduce(QByteArrayView introduction)
{
    ProcessField process;
    std::memcpy(&process, introduction.data(), sizeof process);
    const QByteArrayView program = introduction.sliced(sizeof process);
    // Across PID namespaces the kernel cannot tell.
    if (m_origin.process == 0)
        m_origin.process = static_cast<int64_t>(process);
    m_origin.program = program.toByteArray();
    return m_origin.process > 0 && std::ranges::all_of(program, &isGraphic);
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
