// zynphone recents: the recent-call screens.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command recentsCommand();

} // namespace zyn::tool
