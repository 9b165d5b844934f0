// zynphone status: the phone server's status messages by name.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command statusCommand();

} // namespace zyn::tool
