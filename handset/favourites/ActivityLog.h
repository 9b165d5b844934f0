// The activity log of the favourites, and which calls have been considered for it.
#pragma once

#include "platform/QSortedList.h"
#include "recentcall/utility/PHONE_ENG_ActivityLog.h"

#include <QtCore/QHash>
#include <QtCore/QSet>
#include <QtCore/QString>

#include <cstddef>
#include <span>

namespace zyn::handset {

/// A list that deletes its entries.
using ActivityEntries = QSortedList<PHONE_ENG_ActivityLog>;

/**
 * Appends the entries of the favourite @p key, newest first, each with its actual slot. Entries that a damaged file
 * assigns to another number are skipped.
 *
 * @return false if the file cannot be read whole
 */
bool readEntries(ActivityEntries& entries, const QString& key);

/**
 * Orders calls and entries by age: the oldest is the first to be replaced.
 *
 * A date in the future counts as oldest: the clock was wrong, and the entry would stay for years while nothing new is
 * logged. Within one second the uid decides and, for entries with the same uid, the index and the slot.
 *
 * Each object compares with one fixed current time.
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

/// Whether the file of the favourite @p key has a valid header and the size given by the settings.
bool hasValidLog(const QString& key);

/**
 * Replaces the invalid or missing file of a favourite by a new one, atomically, with the newest entries of the old
 * file. If entries are left over, a copy of the old file is kept beside it, named with kFormerInfix and a number.
 *
 * @return false if the new file cannot be written, if the old one can neither be read nor copied and has to stay, or if
 * the settings allow no slots
 */
bool renewLog(const QString& key);

/**
 * Adds @p entry under @p key, over the oldest entry if no slot is free. An invalid file is replaced first.
 *
 * @return false if the key is not a favourite's, or the entry cannot be written
 */
bool addEntry(PHONE_ENG_ActivityLog& entry, const QString& key);

/**
 * The calls that the call log held when it was last read, kept in a file.
 *
 * A uid alone does not identify a call: the service reuses the uid of the newest call when that is deleted and the
 * service restarted. So the uid and start time of all calls are kept, not just the greatest uid.
 */
class SeenCalls
{
public:
    /// What identifies a call, in memory and in the file.
    struct Mark
    {
        int32_t uid;
        int32_t startTime;

        bool operator==(const Mark&) const = default;
        friend size_t qHash(const Mark& mark, size_t seed) { return qHashMulti(seed, mark.uid, mark.startTime); }
    };

    /// Reads the file at @p path; a missing or damaged file counts as empty.
    explicit SeenCalls(QString path);

    bool contains(const PHONE_ENG_RecentCall& call) const { return m_marks.contains(markOf(call)); }

    /// Replaces the stored calls by these; false if the file cannot be written.
    bool replaceBy(std::span<const PHONE_ENG_RecentCall> calls);

private:
    static Mark markOf(const PHONE_ENG_RecentCall& call) { return {call.uid, call.startTime}; }

    const QString m_path;
    QSet<Mark> m_marks;
    bool m_isStored = false; ///< the file holds these calls
};
static_assert(offsetof(SeenCalls::Mark, uid) == 0 && offsetof(SeenCalls::Mark, startTime) == 4);
static_assert(sizeof(SeenCalls::Mark) == 8);

} // namespace zyn::handset
