// The public operations of the library that the campaign of failing system calls goes through.
#pragma once

#include <QtCore/QByteArray>

#include <map>
#include <span>

namespace faults {

/// Where the operations keep their files, and where those of the services are. Both are in the private /tmp.
inline constexpr char kPlace[] = "/tmp/calls";
inline constexpr char kServicePlace[] = "/tmp/calls-service";

/// What there is: the contents of each file, or what a service or a listener has.
using State = std::map<QByteArray, QByteArray>;

/// What an operation that failed may leave behind, apart from what was there before.
enum class Left {
    Nothing,
    Whole,    ///< all that it was to do: only its last step, or its answer, failed
    EachFile, ///< each file as it was or as it was to become
    Slots,    ///< the same of each slot of a file; one may be torn, as slots are written in place
    Lines,    ///< the same of each line of a file
};

/// A row of the table. What it does is counted while the shim is armed.
struct Operation
{
    const char* name;
    void (*prepare)();
    QByteArray (*run)(); ///< its result as a text
    const char* failure; ///< the result that is documented for a failure
    Left left;
    State (*state)();            ///< the same for the same contents
    bool isSilent = false;       ///< the result tells nothing of whether all was done
    bool writesFiles = false;    ///< for the disk that is full
    State (*before)() = nullptr; ///< what there was, where to look would change it; what there must be after a failure
};

std::span<const Operation> operations();

/// Once for a process that runs them: the environment that they need.
void enterPlace();
/// Between two operations: lets go of what the last one left for the next call of it.
void leaveOperation();

} // namespace faults
