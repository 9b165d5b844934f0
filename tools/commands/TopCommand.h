// zynphone top: the phone's state as it changes.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command topCommand();

} // namespace zyn::tool
