// Store files that are arrays of records: their layout, in memory and on disk.
#pragma once

#include "platform/posix/File_p.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "recentcall/utility/store/StoreFile_p.h"

#include <QtCore/QByteArray>

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstring>
#include <span>
#include <vector>

namespace zyn {

/**
 * A file of at most MaxSlots slots, each the bytes of one Record.
 *
 * | Offset                 | Size           | Content          |
 * |------------------------|----------------|------------------|
 * | 0                      | 8              | StoreFileHeader  |
 * | 8 + sizeof(Record) × i | sizeof(Record) | slot i: a Record |
 *
 * A free slot holds the blank record. An image is the bytes of a file from its start; it may be cut short or damaged.
 * Records are not returned by value unless that is plain: the copy of an activity prints.
 */
template<typename Record, int MaxSlots>
class SlotFile
{
public:
    static constexpr int kMaxSlots = MaxSlots;

    static constexpr qint64 offset(int slot)
    {
        return qint64{sizeof(StoreFileHeader)} + qint64{slot} * qint64{sizeof(Record)};
    }

    /// How many bytes a file of @p slots slots has.
    static constexpr qint64 size(int slots = MaxSlots) { return offset(slots); }

    /// The bytes of @p record, for as long as it lives.
    static QByteArrayView bytes(const Record& record)
    {
        return QByteArrayView(reinterpret_cast<const char*>(&record), qsizetype{sizeof record});
    }

    /// A file of @p slots free slots.
    static QByteArray blankImage(int slots = MaxSlots)
    {
        const Record blank{};
        return bytesOf(StoreFileHeader{}).toByteArray() + bytes(blank).toByteArray().repeated(slots);
    }

    /// Whether @p image is a file of exactly @p slots slots with a valid header.
    static bool isValid(QByteArrayView image, int slots = MaxSlots)
    {
        return image.size() == size(slots) && hasValidHeader(image);
    }

    /// How many whole records @p image holds, at most MaxSlots. A record cut short ends it.
    static int count(QByteArrayView image)
    {
        const qint64 records = (qint64{image.size()} - offset(0)) / qint64{sizeof(Record)};
        return static_cast<int>(std::clamp(records, qint64{0}, qint64{MaxSlots}));
    }

    /// Whether the record in @p slot is in use; false when its one byte that says so is beyond the end.
    static bool isInUse(QByteArrayView image, int slot) requires std::derived_from<Record, PHONE_ENG_RecentCall>
    {
        const qint64 flag = offset(slot) + qint64{offsetof(PHONE_ENG_RecentCall, inUse)};
        return flag < image.size() && image.at(static_cast<qsizetype>(flag)) != 0;
    }

    /// Those of the first @p slots slots that are in use, in ascending order.
    static std::vector<int> usedSlots(QByteArrayView image, int slots = MaxSlots)
    {
        std::vector<int> used;
        for (int slot = 0; slot < slots && offset(slot) < image.size(); ++slot) {
            if (isInUse(image, slot))
                used.push_back(slot);
        }
        return used;
    }

    /// Sets @p record to that in @p slot; what is beyond the end of @p image keeps its value.
    static void read(Record& record, QByteArrayView image, int slot)
    {
        const qint64 left = std::min(qint64{image.size()} - offset(slot), qint64{sizeof record});
        if (left > 0)
            std::memcpy(static_cast<void*>(&record), image.data() + offset(slot), static_cast<size_t>(left));
    }

    /// The same into a blank record.
    static Record at(QByteArrayView image, int slot) requires std::is_trivially_copyable_v<Record>
    {
        if (offset(slot + 1) > image.size()) {
            Record record{};
            read(record, image, slot);
            return record;
        }
        std::array<char, sizeof(Record)> bytes{};
        std::memcpy(bytes.data(), image.data() + offset(slot), bytes.size());
        return std::bit_cast<Record>(bytes);
    }

    /// Puts @p record into @p slot of @p image, which holds that slot whole.
    static void put(QByteArray& image, int slot, const Record& record)
    {
        image.replace(static_cast<qsizetype>(offset(slot)), qsizetype{sizeof record}, bytes(record));
    }

    /// Reads @p record from @p slot of the open file @p fd; false when it is not there whole.
    static bool readAt(int fd, int slot, Record& record)
    {
        const auto buffer = std::as_writable_bytes(std::span(&record, 1));
        return posix::readAt(fd, buffer, static_cast<off_t>(offset(slot))) == ssize_t{sizeof record};
    }

    /// Writes @p record into @p slot of the open file @p fd.
    static bool write(int fd, int slot, const Record& record)
    {
        return posix::writeAt(fd, std::as_bytes(std::span(&record, 1)), static_cast<off_t>(offset(slot)));
    }

    /// Frees @p slot of the open file @p fd.
    static bool writeBlank(int fd, int slot) { return write(fd, slot, Record{}); }

    /// Whether the file at @p path is one of exactly @p slots slots with a valid header.
    static bool isAt(const QByteArray& path, int slots = MaxSlots) { return isStoreFile(path, size(slots)); }

    /// Creates a file of @p slots free slots, as createStoreFile() does.
    static CreateResult create(const QByteArray& path, int slots = MaxSlots)
    {
        return createStoreFile(path, blankImage(slots));
    }
};

} // namespace zyn
