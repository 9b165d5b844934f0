// System calls that a signal may interrupt.
#pragma once

#include <cerrno>

namespace zyn::posix {

/// Calls @p call again for as long as a signal interrupts it.
template<typename Call>
auto retry(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

} // namespace zyn::posix
