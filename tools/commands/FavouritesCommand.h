// zynphone favourites: the favourites and their activity log.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command favouritesCommand();

} // namespace zyn::tool
