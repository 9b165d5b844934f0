// zynphone replay: the messages of a recording, sent again.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command replayCommand();

} // namespace zyn::tool
