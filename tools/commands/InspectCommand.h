// zynphone inspect: what a file of the store holds, and whether it is sound.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command inspectCommand();

} // namespace zyn::tool
