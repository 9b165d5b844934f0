// The end of a process that a test has forked.
#pragma once

#ifdef ZYN_COUNTS_LINES
extern "C" { // which older ones of gcc's leave to others
#include <gcov.h>
}
#endif
#include <unistd.h>

/// Ends a forked process without its parent's clean-up. What it has run is counted where lines are.
[[noreturn]] inline void endForkedChild(int status)
{
#ifdef ZYN_COUNTS_LINES
    __gcov_dump();
#endif
    ::_exit(status);
}
