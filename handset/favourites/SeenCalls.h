// Which calls of the call log have been looked at.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtCore/QHash>
#include <QtCore/QSet>
#include <QtCore/QString>

#include <cstddef>
#include <span>

namespace zyn::handset {

/**
 * The calls that the call log held when it was last looked at, kept in a file.
 *
 * A uid alone does not tell a call: when the newest one is deleted, the service gives its uid again after a restart. So
 * calls are told by uid and start time, and all that the log holds are remembered, not just the greatest uid.
 */
class SeenCalls
{
public:
    /// What of a call is remembered, in memory as in the file.
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

    /// From now on these are the calls that have been looked at; false when the file could not be written.
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
