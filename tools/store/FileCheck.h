// Checks the files of a store, each by itself: record files, contacts' files, the favourites' file.
#pragma once

#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/RC_Types.h"
#include "tools/store/Finding.h"

namespace zyn::tool {

/// The name of the file of @p list.
QString recordFile(RC_CALL_CATEGORY_T list);
/// The list whose file has the name @p name; RC_CALL_CATEGORY_NONE for any other.
RC_CALL_CATEGORY_T listOfFile(const QString& name);

bool isRecordFileName(const QString& name);
bool isRecordFileImage(const QByteArray& image);

/**
 * Checks header, size and every slot in use.
 *
 * The list that the calls must belong to is that of the file's name; a file of another name may hold any. The
 * slots of a file with a wrong header are not looked at, as they may be anything.
 */
FileFindings checkRecordFile(const QString& name, const QByteArray& image);

inline constexpr FileKind kRecordFileKind{isRecordFileName, isRecordFileImage, checkRecordFile};

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

inline constexpr char kPlaceWord[] = "place";

bool isFavouritesFileName(const QString& name);
bool isFavouritesFileImage(const QByteArray& image);

/// Checks header, size and each place.
FileFindings checkFavouritesFile(const QString& name, const QByteArray& image);

inline constexpr FileKind kFavouritesFileKind{isFavouritesFileName, isFavouritesFileImage, checkFavouritesFile};

} // namespace zyn::tool
