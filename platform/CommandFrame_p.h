// The frame of a command on a socket: 8 bytes of header, then the data.
#pragma once

#include <QtCore/QtEndian>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace zyn {

/// The most data that one command carries, in bytes.
inline constexpr int32_t kCommandDataLimit = 1024 * 1024;

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

} // namespace zyn
