// The five places for favourites, and their file.
#pragma once

#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"

#include <array>

namespace zyn {

using TopPalsDetails = std::array<TopPalNumberDetail, ActivityLog_ENG_RecordStore::kFavourites>;

/// The number in a place, as long as that is there; empty in a free one.
QLatin1String numberOf(const TopPalNumberDetail& place);

// These write what they do to standard output.

/**
 * Loads the places from the details file, which is made, along with its directory, when there is no valid one.
 *
 * They are taken as the file has them, but for a number that fills its field. What is no place's own number nor
 * TopPalNumberDetail::kFree keeps the place from being taken, and means nothing else.
 */
void initTopPalNumberDetails(TopPalsDetails& places);

/// Writes one place to the details file.
bool storeTopPalsDetailsInFile(const TopPalsDetails& places, int place);

} // namespace zyn
