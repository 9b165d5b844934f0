// The files of the activity log: the places of the favourites, and the entries of each contact.
#pragma once

#include "platform/posix/StagedFile_p.h"
#include "recentcall/utility/PHONE_ENG_ActivityLog.h"
#include "recentcall/utility/RecentCall_Setup.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "recentcall/utility/store/Trace_p.h"

#include <QtCore/QString>

#include <algorithm>
#include <array>
#include <span>

namespace zyn {

/// The file that the owner of the activity log keeps locked, in the store directory.
inline constexpr char kActivityLogLockName[] = "topPalsLock";
/// Where that owner keeps which calls of the call log it has processed, in the store directory.
inline constexpr char kSeenCallsName[] = "topPalsCalls";
/// Between a contact file's name and a number, in the name of a copy: what it was before entries of it did not fit.
inline constexpr char kFormerInfix[] = ".old.";

/// The details file, in the store directory, whose slots are the five places.
inline constexpr char kTopPalsDetailsName[] = "topPalsDetails";

using DetailsFile = SlotFile<TopPalNumberDetail, TopPalNumberDetail::kPlaces>;
static_assert(DetailsFile::offset(0) == 8 && DetailsFile::offset(3) == 80 && DetailsFile::size() == 128);

/// No contact's file has more slots, whatever the settings say.
inline constexpr int kMaxContactSlots = 32'767;

/// A contact's file, in the store directory, named by the contact's number.
using ContactFile = SlotFile<PHONE_ENG_ActivityLog, kMaxContactSlots>;

/// The offset of @p slot in a contact's file.
constexpr qint64 getTopPalsAvlFilePos(int slot)
{
    return ContactFile::offset(slot);
}
static_assert(getTopPalsAvlFilePos(0) == 8 && ContactFile::size(15) == 4508);

/// How many slots a contact's file has, as the settings say at present, 0 to kMaxContactSlots.
inline int contactSlots()
{
    constexpr unsigned int kLimit = kMaxContactSlots;
    return static_cast<int>(std::min(RecentCall_Setup::instance()->getMaxTopPalsAvlItems(), kLimit));
}

/// Whether a contact's file of @p slots slots has the slot @p pos.
constexpr bool isContactSlot(int pos, int slots)
{
    return pos >= 0 && pos < slots;
}

/// A favourite, and its file, are named by the end of its number, which is the same with and without a prefix.
inline constexpr qsizetype kFavouriteKeyLength = 7;

inline QString favouriteKey(const QString& number)
{
    return number.right(kFavouriteKeyLength);
}

/// Whether @p name would lead out of the store directory, or to a file of another kind.
inline bool isForeignName(const QString& name)
{
    static constexpr const char* kNames[] = {
        ".", "..", kActivityLogLockName, kSeenCallsName,
        // The names of record files begin with a slash.
        recordFileName(RC_CALL_CATEGORY_ANSWERED) + 1, recordFileName(RC_CALL_CATEGORY_MISSED) + 1,
        recordFileName(RC_CALL_CATEGORY_DIALED) + 1, recordFileName(RC_CALL_CATEGORY_ALL) + 1};
    return name.contains(u'/') || name.contains(QChar::Null) || name.contains(QLatin1String(posix::kStagedInfix))
           || name.contains(QLatin1String(kFormerInfix))
           || std::ranges::any_of(kNames, [&](const char* other) { return name == QLatin1String(other); });
}

/// The text in a fixed-width field, up to its first NUL, for as long as the field lives.
inline QLatin1String fieldText(std::span<const char> field)
{
    return QLatin1String(field.data(), static_cast<qsizetype>(qstrnlen(field.data(), field.size())));
}

/// Whether the file of a contact may have the name @p number.
inline bool canNameContactFile(const QString& number)
{
    return !number.isEmpty() && number != QLatin1String(kTopPalsDetailsName) && !isForeignName(number);
}

// What follows prints what it does to standard output.

using TopPalsDetails = std::array<TopPalNumberDetail, TopPalNumberDetail::kPlaces>;

/// The path of a file of the activity log; null for an empty name (which prints a line), and for one that a file of
/// another kind has or may get.
QString topPalsPath(const QString& name);
/// The path of a contact's file; null for the name of the details file as well.
QString contactPath(const QString& number);

/// @{ The same path as the system has it, found without conversions for what numbers are made of.
QByteArray contactFile(Trace& trace, QLatin1String number);
QByteArray contactFile(Trace& trace, const QString& number);
/// @}
/// How lines show the path @p path: as Latin-1.
QByteArray shownPath(const QByteArray& path);

bool checkTopPalsDetailsFile(const QString& fileName);
bool checkTopPalsFile(const QString& fileName, int slots);

/// @{ Create a file of free slots, unless another process has just created a valid one.
bool createTopPalsDetailsFile(const QString& fileName);
bool createActivityLogTopPalsFile(const QString& fileName, int slots);
/// @}

/// Deletes a contact's file if it is valid.
bool removeTopPalsAvlFile(const QString& number, int slots);

/**
 * Loads the places from the details file, which is created, along with its directory, when there is no valid one.
 *
 * Places are taken as the file has them, but for a number that fills its field. An nthFileItem that is neither the
 * place's own number nor TopPalNumberDetail::kFree only keeps the place from being free.
 */
void initTopPalNumberDetails(TopPalsDetails& places);

/// Writes one place to the details file.
bool storeTopPalsDetailsInFile(const TopPalsDetails& places, int place);

/// Writes @p record into its slot of the file of its number.
bool modifyTopPalsAvlItem(Trace& trace, const PHONE_ENG_ActivityLog& record, int slots);

/// Frees slot @p pos of the open contact's file @p fd.
bool removeTopPalsAvlFileItem(Trace& trace, int fd, int pos, int slots);

} // namespace zyn
