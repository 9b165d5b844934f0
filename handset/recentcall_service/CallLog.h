// The log of recent calls: the service's commands on the store.
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
 * A list shows its newest calls, up to its limit. Older calls that a higher limit has left in the file stay there until
 * they are deleted, or until a new call replaces the oldest of them in a full list. They move up for a deleted call
 * only when the log is opened again.
 *
 * Only one process may have a log at a time. Records come from clients and may hold anything. Each operation reads the
 * lists from their files, and first recreates a missing or damaged one. Failures are logged. Not thread-safe.
 */
class CallLog
{
public:
    /// Recreates missing or damaged files, and reads the three lists.
    CallLog();

    /**
     * Adds a call, in place of the oldest one if its list is full. The log assigns the slot, and a uid above all
     * others.
     * newest of all.
     *
     * @return false if the category is not that of a list, or the call cannot be stored
     */
    bool add(PHONE_ENG_RecentCall record);

    /// Deletes the call with the uid of @p record from the list of its category, in any slot; of several with that uid,
    /// the one in the slot that @p record names. A renumbered call is also found by its old uid.
    recentcall::Status remove(const PHONE_ENG_RecentCall& record);

    /// Marks the call that remove() would delete as read.
    recentcall::Status markRead(const PHONE_ENG_RecentCall& record);

    /// Deletes the selected calls of the available lists. Success if none are left; Failure if one stays or may be in
    /// an unavailable list, or if the category is invalid.
    recentcall::Status removeAll(const recentcall::Selection& selection);

    /// The selected calls of the available lists, newest first, as the data of a reply. Nothing if the category is
    /// invalid or no list is available.
    std::optional<QByteArray> list(const recentcall::Selection& selection);

    /// Whether the missed calls on disk have changed since the last call of this function.
    bool fetchMissedChange() { return std::exchange(m_hasMissedChange, false); }

private:
    using Call = PHONE_ENG_RecentCall;
    class OpenFiles;

    /// The outcome of a change: done, not written, or written to a file that has been replaced.
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
    int32_t m_lastUid = -1;       ///< the last one assigned
    RenumberedCalls m_renumbered; ///< the last renumbering; clients may still use the old uids
    bool m_hasMissedChange = false;
};

} // namespace zyn::handset
