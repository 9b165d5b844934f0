// How long a command socket waits.
#pragma once

#include <chrono>

namespace zyn {

/// A peer that does nothing for this long, or a frame that takes longer, counts as gone.
inline constexpr std::chrono::milliseconds kCommandTimeout{5000};

} // namespace zyn
