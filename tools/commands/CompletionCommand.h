// zynphone completion: completes command lines in a shell.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command completionCommand();

} // namespace zyn::tool
