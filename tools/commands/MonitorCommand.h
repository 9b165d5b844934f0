// zynphone monitor: the messages of the channels as they come.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command monitorCommand();

} // namespace zyn::tool
