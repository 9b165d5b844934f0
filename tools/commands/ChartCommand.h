// zynphone chart: a recording as a picture.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command chartCommand();

} // namespace zyn::tool
