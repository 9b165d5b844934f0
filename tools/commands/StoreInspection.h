// zynphone inspect: a whole store directory.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

class Console;

/// Tells what is wrong with the store directory that the argument names.
ExitCode verifyStore(const Invocation& invocation, Console& console);

/// Makes it sound, and tells what was done and what is left.
ExitCode repairStore(const Invocation& invocation, Console& console);

} // namespace zyn::tool
