// zynphone doctor: why nothing arrives.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command doctorCommand();

} // namespace zyn::tool
