// zynphone calls import: calls from a file for the log.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command importRow();

} // namespace zyn::tool
