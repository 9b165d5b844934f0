// The library's debug lines.
#include "utility/PHONE_Log_p.h"

#include "platform/aplog.h"

#include <cstdarg>

void PHONE_Log(int level, const char* format, ...)
{
    if (level >= kSilentLogLevel)
        return;
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(libaplog_to_module_ptr ? libaplog_to_module_ptr : stdout, format, arguments);
    va_end(arguments);
}

void zyn::logEntry(int level, const char* source, const char* function, int line)
{
    PHONE_Log(level, "%s,%s,%d \n", source, function, line);
}
