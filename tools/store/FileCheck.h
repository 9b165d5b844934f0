// Checks the files of a store, each by itself: record files, contacts' files, the favourites' file.
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

/// What the check of one file gives.
struct FileReport
{
    QString kind;      ///< what the file is, for people
    Findings findings; ///< none for a valid file
    Table usedSlots;

    bool isValid() const { return findings.empty(); }
};

/// How a kind of file is told from others, by its name or else by its bytes, and checked.
struct FileKind
{
    bool (*isNamed)(const QString& name);
    bool (*isShaped)(const QByteArray& image);
    FileReport (*check)(const QString& name, const QByteArray& image);
};

/// No file of a store is longer, in bytes.
inline constexpr qsizetype kStoreFileLimit = qsizetype{16} * 1024 * 1024;

/// What a place in a file of records is called.
inline constexpr char kSlotWord[] = "slot";

/// The read flags that have a meaning.
inline constexpr uint8_t kKnownReadFlags = PHONE_ENG_RecentCall::kRead | PHONE_ENG_RecentCall::kStrictRead;

/// What is wrong with the header that @p image begins with; then its slots may be anything.
QStringList headerProblems(const QByteArray& image);

/// A size that is not the one that @p expected says, or nothing.
QStringList sizeProblems(const QByteArray& image, qint64 expected);

/// The flags of @p call, which is in use, that have no meaning.
QStringList flagProblems(const PHONE_ENG_RecentCall& call);

/// The texts of @p call that are not ended.
QStringList textProblems(const PHONE_ENG_RecentCall& call);

inline bool isTerminated(std::span<const char> field)
{
    return std::ranges::find(field, '\0') != field.end();
}

/// The name of the file of @p list.
QString recordFile(RC_CALL_CATEGORY_T list);
/// The list whose file has the name @p name; RC_CALL_CATEGORY_NONE for any other.
RC_CALL_CATEGORY_T listOfFile(const QString& name);

bool isRecordFileName(const QString& name);
bool isRecordFileImage(const QByteArray& image);

/**
 * Checks header, size and every slot in use.
 *
 * The list that the calls must belong to is that of the file's name; a file of another name may hold any. The slots of
 * a file with a wrong header are not looked at, as they may be anything.
 */
FileReport checkRecordFile(const QString& name, const QByteArray& image);

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
FileReport checkContactFile(const QString& name, const QByteArray& image);

inline constexpr FileKind kContactFileKind{isContactFileName, isContactFileImage, checkContactFile};

inline constexpr char kPlaceWord[] = "place";

bool isFavouritesFileName(const QString& name);
bool isFavouritesFileImage(const QByteArray& image);

/// Checks header, size and each place.
FileReport checkFavouritesFile(const QString& name, const QByteArray& image);

inline constexpr FileKind kFavouritesFileKind{isFavouritesFileName, isFavouritesFileImage, checkFavouritesFile};

} // namespace zyn::tool
