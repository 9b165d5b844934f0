// Checks all files of a store directory, each for itself and with the others.
#pragma once

#include "tools/store/StoreFiles.h"
#include "tools/zynphone/Finding.h"

namespace zyn::tool {

/**
 * What is wrong with @p files, by file.
 *
 * Beside what the checks of single files find: uids that two lists have, favourites that have no file or can have none,
 * files of numbers that are no favourite's, files of a process that is gone, and files that are none of a store. A file
 * that is missing but for those of favourites is nothing wrong: it is made when it is needed.
 */
Findings checkStore(const StoreFiles& files);

/// The copies of contact files among @p files, which are nothing wrong.
Findings formerFiles(const StoreFiles& files);

/// Whether the process that made the file @p name, to rename it when it is whole, is gone.
bool isLeftover(const QString& name);

/// Why the lock file @p path, a regular file, can be nobody's any more; empty when it may be held.
QString lockProblem(const QString& path);

} // namespace zyn::tool
