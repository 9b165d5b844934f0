// The activity log of five favourites on disk.
#pragma once

#include "platform/QSortedList.h"
#include "platform/ZynExport.h"
#include "recentcall/utility/PHONE_ENG_ActivityLog.h"

#include <QtCore/QString>

#include <array>
#include <cstdint>

/**
 * The activity log of this process: up to five favourites, and a file of the latest calls and messages of each.
 *
 * The files are in the directory of the record files: "topPalsDetails" with the five numbers, and one file a favourite,
 * named by its number, with as many slots as RecentCall_Setup::getMaxTopPalsAvlItems() says at the start of each
 * operation (never more than 32767). A file of another size or with a wrong header counts as missing, and registering
 * its number again replaces it.
 *
 * Not guarded: use it from one thread. Several processes may read the same files, but only one may change them.
 *
 * Every operation prints what it does to standard output: see platform/QuietTrace.h. Where an int is returned it is 1
 * on success, 0 on failure.
 */
class ZYN_EXPORT ActivityLog_ENG_RecordStore
{
public:
    static constexpr int kFavourites = TopPalNumberDetail::kPlaces; ///< how many favourites there may be

    /// The store of the process. The first call creates it, and the file of the favourites if that is missing; slots
    /// that hold entries already are known to be used, also those of a file of another size.
    static ActivityLog_ENG_RecordStore* instance();
    /// Deletes the store; the index that the next entry will get is kept.
    static void destroy();

    ActivityLog_ENG_RecordStore(const ActivityLog_ENG_RecordStore&) = delete;
    ActivityLog_ENG_RecordStore& operator=(const ActivityLog_ENG_RecordStore&) = delete;

    /**
     * Logs an activity of the favourite whose number the record has, in the lowest free slot. The caller sets inUse.
     *
     * There is no eviction: with every slot in use, an entry must be removed first.
     *
     * @param rec  gets its topPalsAvlIndex, even when the add fails, and its topPalsAvlPos
     */
    int addTopPalsAvlItem(PHONE_ENG_ActivityLog& rec);

    /// Writes @p rec over the slot topPalsAvlPos of its number's file.
    int modifyTopPalsAvlItem(const PHONE_ENG_ActivityLog& rec);

    /// Empties the slot that @p rec names by topPalsAvlPos, in the file of its number.
    int removeTopPalsAvlItem(PHONE_ENG_ActivityLog& rec);

    /**
     * Reads the entries of the file of the contact @p number, newest first.
     *
     * Appends to @p list new records that the list is to delete; what it already holds is sorted with the rest, and of
     * all only as many as a file has slots are kept. Slots that are in use are remembered as such.
     *
     * @return 1 when every slot was read, also when none is in use
     */
    int readTopPalsAvlContactRecordList(QSortedList<PHONE_ENG_ActivityLog>& list, const QString& number);

    /// Orders the list by start time, newest first, and removes what is beyond the number of slots of a file, deleting
    /// it if the list deletes its items. Of equal times, each place goes to the one met first by a selection sort.
    void sortOnTimeStamp(QSortedList<PHONE_ENG_ActivityLog>& list);

    /**
     * Replaces a favourite: @p oldNumber leaves, and its file goes; @p newNumber takes the lowest free place, with a
     * file of empty slots.
     *
     * Either may be empty. A number whose valid file exists is refused, and so is one that cannot name a file: with a
     * slash or a NUL, ".", "..", or the name of a file that the store directory has for another purpose.
     *
     * @return the result for the new number if there is one, else for the old one; 0 when both are empty
     */
    int revampTopPalsAvlStorage(const QString& oldNumber, const QString& newNumber);

    /// Sets @p names, an array of 5, to the favourites' numbers, empty for a free place; false only when it is null.
    bool getCurrentTopPalsFileNames(QString* names);

    /// The first place, 0 to 4, that has @p number, to the letter; -1 when none does. A free place has an empty one.
    int8_t getTopPalFileItem(const QString& number) const;
    /// The lowest free place; -1 when all five are taken.
    int8_t getValidIndexForTopPalFiles() const;

    /// The path of a file of the activity log, whose directory is created unless it exists; null for a name that is
    /// empty or leads elsewhere.
    QString getStoreFileName(const QString& name);

    /// Whether @p fileName, a path, is a file of the favourites, of its size and with a valid header.
    bool checkTopPalsDetailsFile(const QString& fileName);
    /// Whether @p fileName, a path, is a contact's file, of the size for the present number of slots and with a valid
    /// header.
    bool checkTopPalsFile(const QString& fileName);

    /// @{ Marks slot @p pos of a favourite, counted from 0, as used or as free. False if @p number is not a favourite
    /// or the file has no such slot.
    bool setTopPalsAvlFlag(const QString& number, int pos);
    bool clearTopPalsAvlFlag(const QString& number, int pos);
    /// @}
    /// The lowest slot not known to be used; -1 if all are, or if @p number is not a favourite.
    int getAvailableTopPalsAvlPos(const QString& number);

private:
    ActivityLog_ENG_RecordStore();
    ~ActivityLog_ENG_RecordStore() = default;

    std::array<TopPalNumberDetail, kFavourites> topPalNumberDetails;
};
