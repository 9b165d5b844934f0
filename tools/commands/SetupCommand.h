// zynphone prepend, radio and language: the set-up of calls and of the phone server.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command prependCommand();
Command radioCommand();
Command languageCommand();

} // namespace zyn::tool
