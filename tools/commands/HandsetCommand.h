// zynphone handset: the states of the stand-in handset.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command handsetCommand();

} // namespace zyn::tool
