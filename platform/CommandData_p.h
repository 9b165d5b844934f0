// The data of a command record, bounded.
#pragma once

#include "platform/UTIL_CommandBody.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace zyn {

/// dataLength bytes, but never more than were allocated.
inline std::span<std::byte> commandData(const UTIL_CommandBody& command)
{
    const auto length = static_cast<size_t>(std::max(command.dataLength, 0));
    return std::as_writable_bytes(std::span(command.dataBuffer(), std::min(length, command.allocatedLength())));
}

} // namespace zyn
