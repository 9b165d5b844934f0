// Checks the file that names the favourites.
#pragma once

#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "tools/store/FileKind.h"

namespace zyn::tool {

inline constexpr char kPlaceWord[] = "place";

/// How many whole places @p image holds.
int placeCount(const QByteArray& image);
/// The place @p place, 0 to placeCount() - 1, of @p image.
TopPalNumberDetail detailAt(const QByteArray& image, int place);

bool isFavouritesFileName(const QString& name);
bool isFavouritesFileImage(const QByteArray& image);

/// Checks header, size and each place.
FileFindings checkFavouritesFile(const QString& name, const QByteArray& image);

inline constexpr FileKind kFavouritesFileKind{isFavouritesFileName, isFavouritesFileImage, checkFavouritesFile};

} // namespace zyn::tool
