// The end of a process that a test has forked.
#pragma once

#include <QtCore/QtGlobal>

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

/// After how many seconds a forked process that hangs is to end. Beside a tool it takes its time.
inline unsigned int forkedChildTime()
{
    return qEnvironmentVariableIsSet("ZYN_TEST_TOOL") ? 900 : 60;
}

/// Ends a forked process without its parent's clean-up; only where lines are counted it does that, as it writes counts.
[[noreturn]] inline void endForkedChild(int status)
{
#ifdef ZYN_COUNTS_LINES
    // What the parent has not printed yet is not the child's to print.
    ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
    std::exit(status);
#else
    ::_exit(status);
#endif
}
