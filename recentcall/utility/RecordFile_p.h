// The record file of one list of calls.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "recentcall/utility/StoreFile_p.h"

#include <QtCore/QByteArrayView>

#include <algorithm>
#include <cstring>

namespace zyn {

/**
 * | Offset      | Size | Content                                       |
 * |-------------|------|-----------------------------------------------|
 * | 0           | 8    | StoreFileHeader                               |
 * | 8 + 228 × i | 228  | slot i, 0 to 49: one PHONE_ENG_RecentCall     |
 *
 * A slot whose record is not in use holds the blank record.
 */
inline constexpr int kRecordSlots = 50;

constexpr qint64 recordOffset(int slot)
{
    return qint64{sizeof(StoreFileHeader)} + qint64{slot} * qint64{sizeof(PHONE_ENG_RecentCall)};
}

inline constexpr qint64 kRecordFileSize = recordOffset(kRecordSlots);
static_assert(recordOffset(0) == 8 && recordOffset(3) == 692 && kRecordFileSize == 11'408);

/// A record file without a call.
inline QByteArray freshRecordFile()
{
    QByteArray image;
    image.reserve(static_cast<qsizetype>(kRecordFileSize));
    image += bytesOf(StoreFileHeader{});
    const PHONE_ENG_RecentCall blank;
    for (int slot = 0; slot < kRecordSlots; ++slot)
        image += bytesOf(blank);
    return image;
}

/// How many whole records @p image, the bytes of a record file from its start, holds.
inline int recordCount(QByteArrayView image)
{
    const qint64 length = image.size() - recordOffset(0);
    return length < 0 ? 0 : static_cast<int>(length / qint64{sizeof(PHONE_ENG_RecentCall)});
}

/// The record in @p slot, from 0 on, of @p image; what the image's end cuts off is blank.
inline PHONE_ENG_RecentCall recordAt(QByteArrayView image, int slot)
{
    PHONE_ENG_RecentCall record;
    const qint64 left = qint64{image.size()} - recordOffset(slot);
    const qint64 size = std::clamp(left, qint64{0}, qint64{sizeof record});
    if (size > 0)
        std::memcpy(static_cast<void*>(&record), image.data() + recordOffset(slot), static_cast<size_t>(size));
    return record;
}

/// Whether that record is in use; looks at its one byte, which must be there.
inline bool isRecordInUse(QByteArrayView image, int slot)
{
    const qint64 offset = recordOffset(slot) + qint64{offsetof(PHONE_ENG_RecentCall, inUse)};
    return offset < image.size() && image.at(static_cast<qsizetype>(offset)) != 0;
}

/// The name of a list's file, with its leading slash; a category without a list of its own has a name that no file has.
constexpr const char* recordFileName(RC_CALL_CATEGORY_T category)
{
    switch (category) {
    case RC_CALL_CATEGORY_ANSWERED:
        return "/rc_a";
    case RC_CALL_CATEGORY_MISSED:
        return "/rc_m";
    case RC_CALL_CATEGORY_DIALED:
        return "/rc_d";
    default:
        return "/rc_e";
    }
}

/// The categories that have a file, in the order in which they are gone through.
inline constexpr RC_CALL_CATEGORY_T kRecordLists[] = {RC_CALL_CATEGORY_ANSWERED, RC_CALL_CATEGORY_MISSED,
                                                      RC_CALL_CATEGORY_DIALED};

} // namespace zyn
