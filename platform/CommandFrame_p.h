// The frame of a command on a socket, 8 bytes of header and then the data, and how long a socket waits for one.
#pragma once

#include "platform/UTIL_CommandBody.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace zyn {

/// The most data that one command carries, in bytes.
inline constexpr int32_t kCommandDataLimit = 1024 * 1024;

/// A peer that does nothing for this long, or a frame that takes longer, counts as gone.
inline constexpr std::chrono::milliseconds kCommandTimeout{5000};

/**
 * The header of a command frame.
 *
 * | Offset | Size | Content                                                |
 * |--------|------|--------------------------------------------------------|
 * | 0      | 4    | command code, signed, little-endian                    |
 * | 4      | 4    | length of the data behind it in bytes, signed, little-endian, 0 to 1048576 |
 */
struct CommandFrameHeader
{
    static constexpr size_t kSize = 8;
    using Bytes = std::array<std::byte, kSize>;

    int32_t code = 0;
    int32_t dataLength = 0;

    Bytes encode() const
    {
        Bytes bytes;
        qToLittleEndian(code, bytes.data());
        qToLittleEndian(dataLength, bytes.data() + 4);
        return bytes;
    }

    /// The header in @p bytes; nothing when its length is negative or above kCommandDataLimit.
    static std::optional<CommandFrameHeader> decode(std::span<const std::byte, kSize> bytes)
    {
        const CommandFrameHeader header{qFromLittleEndian<int32_t>(bytes.data()),
                                        qFromLittleEndian<int32_t>(bytes.data() + 4)};
        if (header.dataLength < 0 || header.dataLength > kCommandDataLimit)
            return std::nullopt;
        return header;
    }
};

/// The data of a command record: dataLength bytes, but never more than were allocated.
inline std::span<std::byte> commandData(const UTIL_CommandBody& command)
{
    const auto length = static_cast<size_t>(std::max(command.dataLength, 0));
    return std::as_writable_bytes(std::span(command.dataBuffer(), std::min(length, command.allocatedLength())));
}

} // namespace zyn
