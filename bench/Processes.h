// What the kernel tells of a running process.
#pragma once

#include <QtCore/QtGlobal>

#include <sys/types.h>

namespace bench {

/// How often the threads of a process have been woken up.
qint64 wakeUps(pid_t process);

/// The memory that is the process's alone, in KiB.
qint64 privateMemory(pid_t process);

/// How long its threads have computed, in milliseconds.
double processorTime(pid_t process);

} // namespace bench
