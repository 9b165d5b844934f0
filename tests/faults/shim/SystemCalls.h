// System calls that fail on request: every one that the libraries make, for the program that links this.
#pragma once

namespace faults::shim {

/// An error that is none: the call transfers a part of what was asked for.
inline constexpr int kShort = -1;

/// What is to go wrong once armed.
struct Fault
{
    int call = -1; ///< the number of the call, from 0; below 0 none fails
    int error = 0; ///< its errno, or kShort
    int later = 0; ///< the errno of all later calls of the same function, or kShort; 0 when they do their work
};

/// From now on the calls that the libraries, Qt and this program make are counted, and @p fault comes. For one thread
/// at a time.
void arm(const Fault& fault = {});
/// Calls are passed on again.
void disarm();
/// Whether a fault is to come, or has come.
bool isFaulty();

/// How many calls were counted since arm(), and the name of one of them.
int count();
const char* name(int call);

} // namespace faults::shim
