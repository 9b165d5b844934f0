// A copy of a store directory.
#pragma once

#include "tools/store/StoreFiles.h"

namespace zyn::tool {

/// Copies the regular files of @p files, but for the lock, into a new directory beside theirs, whose path is the
/// result: the name with the local time behind it. Throws, and leaves no copy, when one of them cannot be copied.
QString copyStore(const StoreFiles& files);

} // namespace zyn::tool
