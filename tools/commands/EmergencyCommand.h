// zynphone emergency: what the library takes for an emergency number, and why.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command emergencyCommand();

} // namespace zyn::tool
