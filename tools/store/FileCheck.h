// Checks single files of a store: record files, contact files, the file of favourites.
#pragma once

#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "recentcall/utility/RC_Types.h"
#include "tools/zynphone/Finding.h"
#include "tools/zynphone/Table.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <algorithm>
#include <span>

namespace zyn::tool {

/// The result of checking one file.
struct FileReport
{
    QString kind;      ///< the kind of file
    Findings findings; ///< empty for a valid file
    Table usedSlots;

    bool isValid() const { return findings.empty(); }
};

/// How a kind of file is recognised, by name or else by contents, and checked.
struct FileKind
{
    bool (*isNamed)(const QString& name);
    bool (*isShaped)(const QByteArray& image);
    FileReport (*check)(const QString& name, const QByteArray& image);
};

/// No file of a store is larger, in bytes.
inline constexpr qsizetype kStoreFileLimit = qsizetype{16} * 1024 * 1024;

/// The name of a place in a file of records.
inline constexpr char kSlotWord[] = "slot";

/// The read flags that are defined.
inline constexpr uint8_t kKnownReadFlags = PHONE_ENG_RecentCall::kRead | PHONE_ENG_RecentCall::kStrictRead;

/// Faults of the header at the beginning of @p image. With any, the slots may hold anything.
QStringList headerProblems(const QByteArray& image);

/// The fault of a size other than @p expected, if any.
QStringList sizeProblems(const QByteArray& image, qint64 expected);

/// The undefined flags of @p call, which is in use.
QStringList flagProblems(const PHONE_ENG_RecentCall& call);

/// The texts of @p call that lack their NUL.
QStringList textProblems(const PHONE_ENG_RecentCall& call);

inline bool isTerminated(std::span<const char> field)
{
    return std::ranges::find(field, '\0') != field.end();
}

/// The name of the file of @p list.
QString recordFile(RC_CALL_CATEGORY_T list);
/// The list of the file @p name; RC_CALL_CATEGORY_NONE for other files.
RC_CALL_CATEGORY_T listOfFile(const QString& name);

bool isRecordFileName(const QString& name);
bool isRecordFileImage(const QByteArray& image);

/**
 * Checks header, size and every slot in use.
 *
 * The calls must belong to the list of the file's name; under another name they may be of any list. Under an invalid
 * header the slots are not checked.
 */
FileReport checkRecordFile(const QString& name, const QByteArray& image);

inline constexpr FileKind kRecordFileKind{isRecordFileName, isRecordFileImage, checkRecordFile};

/// Whether a telephone number can give a file this name.
bool isContactFileName(const QString& name);
/// Whether header and size fit and most slots hold their own number, as a record file may have the same size.
bool isContactFileImage(const QByteArray& image);

/**
 * Checks header, size and every slot.
 *
 * The file must have as many slots as the settings say, otherwise the library treats it as missing. The entries' number
 * must be the file's name, if that is a number.
 */
FileReport checkContactFile(const QString& name, const QByteArray& image);

inline constexpr FileKind kContactFileKind{isContactFileName, isContactFileImage, checkContactFile};

inline constexpr char kPlaceWord[] = "place";

bool isFavouritesFileName(const QString& name);
bool isFavouritesFileImage(const QByteArray& image);

/// Checks header, size and each place.
FileReport checkFavouritesFile(const QString& name, const QByteArray& image);

inline constexpr FileKind kFavouritesFileKind{isFavouritesFileName, isFavouritesFileImage, checkFavouritesFile};

} // namespace zyn::tool
