// Checks all files of a store, each by itself and against the others.
#pragma once

#include "tools/store/StoreFiles.h"
#include "tools/zynphone/Finding.h"

namespace zyn::tool {

/**
 * The faults of @p files, by file.
 *
 * Beyond the checks of single files: uids in two lists, favourites without a file or whose number cannot name one,
 * files of numbers that are not favourites, files of a dead process, and files that do not belong in a store. A missing
 * file is no fault unless it is a favourite's: it is created on demand.
 */
Findings checkStore(const StoreFiles& files);

/// The copies of contact files among @p files, which are no fault.
Findings formerFiles(const StoreFiles& files);

/// Whether the process that was writing the temporary file @p name is dead.
bool isLeftover(const QString& name);

/// Why nobody can hold the lock file @p path, a regular file; empty if somebody may.
QString lockProblem(const QString& path);

} // namespace zyn::tool
