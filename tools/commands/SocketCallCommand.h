// zynphone java and stk: calls placed over a connection to the phone server.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command javaCommand();
Command stkCommand();

} // namespace zyn::tool
