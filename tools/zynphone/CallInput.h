// A new call, as a command line describes it.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "tools/zynphone/Command.h"

#include <vector>

namespace zyn::tool {

/// @{ What callFrom() reads.
std::vector<Argument> callArguments();
QList<QCommandLineOption> callOptions();
/// @}

/// The call that @p call describes. A text that its field does not hold whole is a usage error, never cut.
PHONE_ENG_RecentCall callFrom(const Invocation& call);

} // namespace zyn::tool
