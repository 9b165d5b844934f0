// zynphone missed: the unread missed calls.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command missedCommand();

} // namespace zyn::tool
