// zynphone calls seed: made-up calls for the log.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command seedRow();

} // namespace zyn::tool
