// The log of recent calls: what each command of the service does to the store.
#pragma once

#include "handset/recentcall_service/CallFile.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/store/RecordFile_p.h"

#include <QtCore/QByteArray>

#include <array>
#include <optional>
#include <utility>

namespace zyn::handset {

/**
 * The answered, missed and dialed calls, in the files of the record store.
 *
 * A list shows its newest calls, as many as its limit allows. Older ones that a higher limit has left in the file stay
 * there until they are deleted, or until a new call replaces the oldest of them in a full list. They do not move up for
 * a call that is deleted, unless the log is opened anew.
 *
 * One process at a time may have a log. Records come from clients and may hold anything. Lists are read from their
 * files at every operation; a file that turns out missing or damaged is made anew first. Failures are logged. To be
 * used from one thread.
 */
class CallLog
{
public:
    /// Makes the files that are missing or damaged, and reads the three lists.
    CallLog();

    /**
     * Adds a call, in place of the oldest one when its list is full. The log assigns slot and uid: the call is the
     * newest of all.
     *
     * @return false when the category names no list that keeps calls, or when the call could not be stored
     */
    bool add(PHONE_ENG_RecentCall record);

    /// Deletes the call with the uid of @p record from the list of its category, whatever its slot; of several with
    /// that uid, the one in the slot that @p record names. A renumbered call is known by its old uid too.
    recentcall::Status remove(const PHONE_ENG_RecentCall& record);

    /// Marks the call that remove() would delete as read. A call that is read already stays so.
    recentcall::Status markRead(const PHONE_ENG_RecentCall& record);

    /// Deletes the selected calls of the lists that are available. Success also when there are none; Failure when one
    /// of them stays or may be in a list that is not available, or when the category names no list.
    recentcall::Status removeAll(const recentcall::Selection& selection);

    /// The selected calls of the lists that are available, newest first, as the data of an answer; nothing when the
    /// category names no list or none is available.
    std::optional<QByteArray> list(const recentcall::Selection& selection);

    /// Whether the missed calls on disk have changed since the last call of this function.
    bool fetchMissedChange() { return std::exchange(m_hasMissedChange, false); }

private:
    using Call = PHONE_ENG_RecentCall;
    class OpenFiles;

    /// The outcome of a change: done, not written, or written into a file that is not the list's any more.
    enum class Outcome { Done, Failed, Displaced };
    using Change = Outcome (CallLog::*)(CallFile& file, const Call& stored);

    template<typename Attempt>
    static Outcome repeat(const Attempt& attempt);
    bool open(CallFile& file);
    Outcome store(const OpenFiles& files, CallFile& file, Call& record);
    int32_t nextUid(const OpenFiles& files);
    void renumber(const OpenFiles& files);
    Call renumbered(const Call& record) const;
    Outcome erase(CallFile& file, const Call& call);
    Outcome setRead(CallFile& file, const Call& call);
    recentcall::Status changeStored(const Call& record, Change change);
    void noteChange(RC_CALL_CATEGORY_T list) { m_hasMissedChange |= list == RC_CALL_CATEGORY_MISSED; }

    std::array<CallFile, 3> m_files;
    int32_t m_lastUid = -1;       ///< the last one that was assigned
    RenumberedCalls m_renumbered; ///< of the last time; clients may still know these by their old uids
    bool m_hasMissedChange = false;
};

} // namespace zyn::handset
