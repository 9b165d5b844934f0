// The fields of a call, all of them, as values that can be written down and read back.
#pragma once

#include "tools/interchange/StoredField.h"

namespace zyn::tool {

/// Every byte of a PHONE_ENG_RecentCall. The names are those of a list of calls where it has the field.
const RecordSchema& callSchema();

} // namespace zyn::tool
