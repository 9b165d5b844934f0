// zynphone favourites export and import: the favourites and their entries as a file.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command favouritesExportRow();
Command favouritesImportRow();

} // namespace zyn::tool
