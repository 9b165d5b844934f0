// zynphone dial and hangup: requests to place and end voice calls.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command dialCommand();
Command hangupCommand();

} // namespace zyn::tool
