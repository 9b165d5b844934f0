// Checks the file that names the favourites.
#pragma once

#include "tools/zynphone/FileKind.h"

namespace zyn::tool {

bool isFavouritesFileName(const QString& name);
bool isFavouritesFileImage(const QByteArray& image);

/// Checks header, size and each place.
FileFindings checkFavouritesFile(const QString& name, const QByteArray& image);

inline constexpr FileKind kFavouritesFileKind{isFavouritesFileName, isFavouritesFileImage, checkFavouritesFile};

} // namespace zyn::tool
