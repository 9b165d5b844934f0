// The stream of the logging library.
#pragma once

#include "platform/ZynExport.h"

#include <cstdio>

/// Where the module's debug lines go; null, as it is until an application sets it, means standard output. The
/// application owns the stream and keeps it open while it stands here. What the library prints with printf() goes
/// elsewhere; platform/QuietTrace.h is for both.
extern "C" ZYN_EXPORT FILE* libaplog_to_module_ptr;
