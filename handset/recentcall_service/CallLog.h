// The log of recent calls: what each command does to the store.
#pragma once

#include "handset/recentcall_service/CallFile.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/store/RecordFile_p.h"

#include <QtCore/QByteArray>

#include <array>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace zyn::handset {

/**
 * The answered, missed and dialed calls, in the files of the record store.
 *
 * A list shows its newest calls, as many as its limit allows; older ones that a higher limit has left in the file stay
 * there until they are deleted, or the oldest of them goes for a new call of a full list. They make up for no call that
 * is deleted, not before the log is opened anew.
 *
 * One process at a time may have one. What it is handed comes from clients and may hold anything. Lists are read from
 * their files at every operation; a file that turns out missing or damaged is made anew first. What fails is told in
 * the log. To be used from one thread.
 *
 * It remembers whether the missed calls have changed, for whoever tells others of it.
 */
class CallLog
{
public:
    /// Makes the files that are missing or damaged, and reads the three lists.
    CallLog();

    /**
     * Adds a call, in place of the oldest one when its list is full. Slot and uid are the log's to give: the call is
     * the newest of all.
     *
     * False when the category names no list that keeps calls, or when the call could not be stored.
     */
    bool add(PHONE_ENG_RecentCall record);

    /// Deletes the call with the uid of @p record from the list of its category, wherever it lies; of several with that
    /// uid, the one in the slot that @p record names. A call that has been renumbered is known by its old uid too.
    zyn::recentcall::Status remove(const PHONE_ENG_RecentCall& record);

    /// Lets the call that remove() would delete count as read, as it does already when it was marked before.
    zyn::recentcall::Status markRead(const PHONE_ENG_RecentCall& record);

    /// Deletes the selected calls, of all lists those that can be had: Success also when there are none, Failure when
    /// one of them stays, may be in a list that cannot be had, or when the category names no list.
    zyn::recentcall::Status removeAll(const zyn::recentcall::Selection& selection);

    /// The selected calls, newest first, as the data of an answer, of all lists those that can be had; nothing when the
    /// category names no list or none can be had.
    std::optional<QByteArray> list(const zyn::recentcall::Selection& selection);

    /// Whether the missed calls on disk have changed since this was last asked.
    bool takeMissedChange() { return std::exchange(m_hasMissedChange, false); }

private:
    using Calls = std::vector<PHONE_ENG_RecentCall>;
    using Lists = std::span<const RC_CALL_CATEGORY_T>;
    using Files = std::vector<CallFile*>;
    class OpenFiles;

    bool open(CallFile& file);
    /// What became of a change: done, not written, or written into a file that is not the list's any more.
    enum class Outcome { Done, Failed, Displaced };
    class Attempts;

    Outcome store(const Files& files, CallFile& file, PHONE_ENG_RecentCall& record);
    static void dropCopies(CallFile& file);
    static void bringForward(CallFile& file);
    static Calls callsOf(const Files& files);
    int32_t nextUid(const Files& files);
    void renumber(const Files& files);
    PHONE_ENG_RecentCall renumbered(const PHONE_ENG_RecentCall& record) const;
    Outcome erase(CallFile& file, const PHONE_ENG_RecentCall& call);
    Outcome setRead(CallFile& file, const PHONE_ENG_RecentCall& call);
    using Change = Outcome (CallLog::*)(CallFile& file, const PHONE_ENG_RecentCall& stored);
    zyn::recentcall::Status changeStored(const PHONE_ENG_RecentCall& record, Change change);
    void noteChange(RC_CALL_CATEGORY_T category);

    std::array<CallFile, 3> m_files;
    int32_t m_lastUid = -1;            ///< the one that was given last
    zyn::RenumberedCalls m_renumbered; ///< the last time; clients may still name these by their old uids
    bool m_hasMissedChange = false;
};

} // namespace zyn::handset
