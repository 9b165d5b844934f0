// zynphone calls export: the log of recent calls as a file.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command exportRow();

} // namespace zyn::tool
