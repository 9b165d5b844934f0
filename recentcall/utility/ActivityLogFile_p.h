// The files of the activity log: the favourites' numbers, and the entries of each contact.
#pragma once

#include "platform/posix/StagedFile_p.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/PHONE_ENG_ActivityLog.h"
#include "recentcall/utility/RecentCall_Setup.h"
#include "recentcall/utility/RecordFile_p.h"
#include "recentcall/utility/StoreFile_p.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

#include <algorithm>
#include <array>
#include <cstring>

namespace zyn {

/// The file that the owner of the activity log keeps locked, in the store directory.
inline constexpr char kActivityLogLockName[] = "topPalsLock";
/// Where that owner keeps which calls of the call log it has looked at, in the store directory.
inline constexpr char kSeenCallsName[] = "topPalsCalls";
/// Between a contact file's name and a number, in the name of a copy: what it was before entries of it did not fit.
inline constexpr char kFormerInfix[] = ".old.";

/**
 * The details file, in the store directory.
 *
 * | Offset     | Size | Content                               |
 * |------------|------|---------------------------------------|
 * | 0          | 8    | StoreFileHeader                       |
 * | 8 + 24 × i | 24   | place i, 0 to 4: a TopPalNumberDetail |
 */
inline constexpr char kTopPalsDetailsName[] = "topPalsDetails";

constexpr qint64 topPalsDetailsOffset(int place)
{
    return qint64{sizeof(StoreFileHeader)} + qint64{place} * qint64{sizeof(TopPalNumberDetail)};
}

inline constexpr qint64 kTopPalsDetailsSize = topPalsDetailsOffset(ActivityLog_ENG_RecordStore::kFavourites);
static_assert(topPalsDetailsOffset(0) == 8 && topPalsDetailsOffset(3) == 80 && kTopPalsDetailsSize == 128);

/**
 * A contact's file, in the store directory, named by the contact's number.
 *
 * | Offset      | Size | Content                                                               |
 * |-------------|------|-----------------------------------------------------------------------|
 * | 0           | 8    | StoreFileHeader                                                       |
 * | 8 + 300 × p | 300  | slot p, from 0, as many as the settings say: a PHONE_ENG_ActivityLog  |
 *
 * A slot whose record is not in use holds the blank record.
 */
inline constexpr int kMaxContactSlots = 32'767;

/// How many slots a contact's file has, as the settings say at present, 0 to kMaxContactSlots.
inline int contactSlots()
{
    constexpr unsigned int kLimit = kMaxContactSlots;
    return static_cast<int>(std::min(RecentCall_Setup::instance()->getMaxTopPalsAvlItems(), kLimit));
}

constexpr qint64 getTopPalsAvlFilePos(int slot)
{
    return qint64{sizeof(StoreFileHeader)} + qint64{slot} * qint64{sizeof(PHONE_ENG_ActivityLog)};
}

constexpr qint64 contactFileSize(int slots)
{
    return getTopPalsAvlFilePos(slots);
}
static_assert(getTopPalsAvlFilePos(0) == 8 && contactFileSize(15) == 4508);

/// How many whole records @p image, the bytes of a contact's file from its start, holds; one cut short is its end.
inline int contactRecordCount(QByteArrayView image)
{
    const qint64 length = image.size() - getTopPalsAvlFilePos(0);
    return length < 0 ? 0 : static_cast<int>(length / qint64{sizeof(PHONE_ENG_ActivityLog)});
}

/// Whether the record in @p slot, 0 to contactRecordCount() - 1, of @p image is in use; looks at its one byte.
inline bool isContactRecordInUse(QByteArrayView image, int slot)
{
    const qint64 offset = getTopPalsAvlFilePos(slot) + qint64{offsetof(PHONE_ENG_RecentCall, inUse)};
    return image.at(static_cast<qsizetype>(offset)) != 0;
}

/// Makes @p record that in @p slot. Not by value: to copy a record prints.
inline void readContactRecord(PHONE_ENG_ActivityLog& record, QByteArrayView image, int slot)
{
    std::memcpy(static_cast<void*>(&record), image.data() + getTopPalsAvlFilePos(slot), sizeof record);
}

/// The bytes of @p record, for as long as it lives.
inline QByteArrayView contactRecordBytes(const PHONE_ENG_ActivityLog& record)
{
    return QByteArrayView(reinterpret_cast<const char*>(&record), qsizetype{sizeof record});
}

/// Whether @p name would lead out of the store directory, or to a file of another kind.
inline bool isForeignName(const QString& name)
{
    static const std::array kNames = {QStringLiteral("."), QStringLiteral(".."),
                                      QString::fromLatin1(kActivityLogLockName), QString::fromLatin1(kSeenCallsName),
                                      // The names of record files begin with a slash.
                                      QString::fromLatin1(recordFileName(RC_CALL_CATEGORY_ANSWERED) + 1),
                                      QString::fromLatin1(recordFileName(RC_CALL_CATEGORY_MISSED) + 1),
                                      QString::fromLatin1(recordFileName(RC_CALL_CATEGORY_DIALED) + 1),
                                      QString::fromLatin1(recordFileName(RC_CALL_CATEGORY_ALL) + 1)};
    return name.contains(u'/') || name.contains(QChar::Null) || name.contains(QLatin1String(posix::kStagedInfix))
           || name.contains(QLatin1String(kFormerInfix)) || std::ranges::find(kNames, name) != kNames.end();
}

/// Whether the file of a contact may have the name @p number.
inline bool canNameContactFile(const QString& number)
{
    return !number.isEmpty() && number != QLatin1String(kTopPalsDetailsName) && !isForeignName(number);
}

} // namespace zyn
