// zynphone speed-dial: the nine numbers of speed dial.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command speedDialCommand();

} // namespace zyn::tool
