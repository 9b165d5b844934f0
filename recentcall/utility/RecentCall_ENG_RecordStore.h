// The recent calls on disk.
#pragma once

#include "platform/QSortedList.h"
#include "platform/ZynExport.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <array>
#include <cstdint>

/**
 * The recent calls on disk: a file of 50 slots for each of the answered, missed and dialed lists.
 *
 * The files lie in "/phone" under the directory that the environment variable ZYN_LOCAL_APP_WRITE_PATH names, or under
 * "/tmp", as "rc_a", "rc_m" and "rc_d"; the variable is read at every operation. An add, a change or a removal is one
 * open, one write of 228 bytes in place and one close. Every operation that uses a file writes the file's path, without
 * a line end, to standard output: see platform/QuietTrace.h.
 *
 * What the store knows of the files - the slots in use and the largest uid - comes from readDataList() alone: a process
 * that adds records must read the three lists first, or it overwrites calls. Only one process at a time may add and
 * remove records.
 *
 * To be used from one thread. Failures are results; nothing is retried.
 */
class ZYN_EXPORT RecentCall_ENG_RecordStore
{
public:
    /// The process's store, created by the first call and after destroy(). The library owns it.
    static RecentCall_ENG_RecordStore* instance();
    /// Ends the process's store, if there is one, for all its users. The uid counter goes on.
    static void destroy();

    /// Knows of no slot in use yet. Replaces each of the three files that is missing or invalid (any size but 11 408
    /// bytes, or a wrong header) by a fresh one; the calls of an invalid file are lost. A file that cannot be written
    /// is left.
    RecentCall_ENG_RecordStore();
    RecentCall_ENG_RecordStore(const RecentCall_ENG_RecordStore&) = delete;
    RecentCall_ENG_RecordStore& operator=(const RecentCall_ENG_RecordStore&) = delete;

    /**
     * Adds a call to the list of its category, in the lowest free slot.
     *
     * The caller sets inUse. A full list refuses: make room with removeItem() first.
     *
     * @param record  gets its uid, even when the add fails, and its slot, -1 when none is free
     */
    bool addItem(PHONE_ENG_RecentCall& record);

    /// Writes @p record over the slot that it names, in the file of its category. Refuses a slot that is negative, at
    /// or beyond the category's limit, or 50 or above.
    bool modifyItem(const PHONE_ENG_RecentCall& record);

    /// Frees the slot that @p record names, in the file of its category; the same slots are refused.
    bool removeItem(const PHONE_ENG_RecentCall& record);

    /// Frees every slot of the list of @p category that is known to be in use; false only when the file cannot be
    /// opened.
    bool removeItems(RC_CALL_CATEGORY_T category);

    /// Frees every slot of the three files, and starts uids at 0 again.
    void clearAllData();

    /**
     * Reads the calls of one list, newest first.
     *
     * Appends to @p list; what it already holds stays and is sorted with the rest. A missing file, which prints a line,
     * or one with a wrong header appends nothing. A record that the file's end cuts off is one from its in-use byte on,
     * what is missing being blank. Costs one open and one read.
     *
     * @param list      owns the appended records if it is set to delete its items
     * @param category  RC_CALL_CATEGORY_ANSWERED, _MISSED or _DIALED; any other names no list
     */
    void readDataList(QSortedList<PHONE_ENG_RecentCall>& list, RC_CALL_CATEGORY_T category);

private:
    std::array<uint32_t, 5> m_slotBitmap{};
};

static_assert(sizeof(RecentCall_ENG_RecordStore) == 20);
