// zynphone calls: the log of recent calls.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command callsCommand();

} // namespace zyn::tool
