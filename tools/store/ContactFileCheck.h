// Checks the file of a favourite's calls and messages.
#pragma once

#include "tools/store/FileKind.h"

namespace zyn::tool {

/// Whether the name is one that a telephone number gives.
bool isContactFileName(const QString& name);
/// Whether header and size fit, and most slots know their place: the size alone may be that of a record file.
bool isContactFileImage(const QByteArray& image);

/**
 * Checks header, size and every slot.
 *
 * The size must be that of as many slots as the settings of this handset say, else the library takes the file for
 * missing. The entries' number must be the file's name, where that is a number.
 */
FileFindings checkContactFile(const QString& name, const QByteArray& image);

inline constexpr FileKind kContactFileKind{isContactFileName, isContactFileImage, checkContactFile};

} // namespace zyn::tool
