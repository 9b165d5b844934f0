// The stream of the logging library.
#include "platform/aplog.h"

FILE* libaplog_to_module_ptr = nullptr;
