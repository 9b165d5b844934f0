// What the favourites' activity log holds, and which calls have been considered for it.
#pragma once

#include "platform/QSortedList.h"
#include "recentcall/utility/PHONE_ENG_ActivityLog.h"

#include <QtCore/QHash>
#include <QtCore/QSet>
#include <QtCore/QString>

#include <cstddef>
#include <span>

namespace zyn::handset {

/// Entries that the list deletes.
using ActivityEntries = QSortedList<PHONE_ENG_ActivityLog>;

/**
 * Appends the entries of the favourite @p key, newest first, each with the slot where it lies. An entry that a damaged
 * file gives another number is left out.
 *
 * @return false when the file cannot be read whole
 */
bool readEntries(ActivityEntries& entries, const QString& key);

/**
 * The order of calls and entries by age: whether the first is older than the second, and so the one to give way when
 * there is no room for both.
 *
 * A date in the future counts as older than all others: a clock was wrong, and such an entry would stay for years while
 * nothing new is logged. Within one second the order is that of the uids and, of entries with the same uid, that of
 * index and slot.
 *
 * All comparisons of one object use the same present.
 */
class AgeOrder
{
public:
    AgeOrder();

    bool operator()(const PHONE_ENG_RecentCall& one, const PHONE_ENG_RecentCall& other) const;
    bool operator()(const PHONE_ENG_ActivityLog& one, const PHONE_ENG_ActivityLog& other) const;

private:
    qint64 m_now;
};

/// Whether @p call could only replace a newer one of @p entries, which fill their file.
bool isTooOld(const PHONE_ENG_RecentCall& call, const ActivityEntries& entries);

/// Whether the file of the favourite @p key has a valid header and the size that the settings ask for.
bool hasValidLog(const QString& key);

/**
 * Gives a favourite without a valid file a new one, whole and at once, with the newest of the entries that the old file
 * holds. When that holds more, a copy of it stays beside it: the name, kFormerInfix, a number.
 *
 * @return false when the new file cannot be written, when the old one can be neither read nor copied and must stay, or
 * when the settings ask for a file without slots
 */
bool renewLog(const QString& key);

/**
 * Adds @p entry under @p key, over the oldest entry when no slot is free; a file that is not valid is renewed before.
 *
 * @return false when the key is no favourite's or the entry could not be written
 */
bool addEntry(PHONE_ENG_ActivityLog& entry, const QString& key);

/**
 * The calls that the call log held when it was last looked through, kept in a file.
 *
 * A uid alone does not identify a call: the service reuses that of the newest call when this is deleted and the service
 * restarted. So a call is remembered by uid and start time, and all calls are remembered, not just the greatest uid.
 */
class SeenCalls
{
public:
    /// What is remembered of a call, in memory as in the file.
    struct Mark
    {
        int32_t uid;
        int32_t startTime;

        bool operator==(const Mark&) const = default;
        friend size_t qHash(const Mark& mark, size_t seed) { return qHashMulti(seed, mark.uid, mark.startTime); }
    };

    /// Reads the file at @p path. A missing or damaged one holds no call.
    explicit SeenCalls(QString path);

    bool contains(const PHONE_ENG_RecentCall& call) const { return m_marks.contains(markOf(call)); }

    /// Remembers these calls in place of the former ones; false when the file could not be written.
    bool replaceBy(std::span<const PHONE_ENG_RecentCall> calls);

private:
    static Mark markOf(const PHONE_ENG_RecentCall& call) { return {call.uid, call.startTime}; }

    const QString m_path;
    QSet<Mark> m_marks;
    bool m_isStored = false; ///< whether the file holds them
};
static_assert(offsetof(SeenCalls::Mark, uid) == 0 && offsetof(SeenCalls::Mark, startTime) == 4);
static_assert(sizeof(SeenCalls::Mark) == 8);

} // namespace zyn::handset
