// zynphone ptt: requests to start and end push-to-talk calls.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command pttCommand();

} // namespace zyn::tool
