// zynphone settings: the recent-call settings, as the library reads them.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command settingsCommand();

} // namespace zyn::tool
