// The stores' peer: SQLite, in a file of its own, with prepared statements and without waiting for the disk.
#pragma once

#include "bench/Bench.h"

namespace bench::sqlite {

inline constexpr char kName[] = "SQLite";

/// @{ Adds a record of @p size bytes to a table, which is emptied after @p often of them; lists @p count of them,
/// newest first. Null where SQLite is not installed.
Prepare add(int often, size_t size);
Prepare list(int count, size_t size);
/// @}

} // namespace bench::sqlite
