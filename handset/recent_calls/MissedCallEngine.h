// The recent-call engine of a process that shows the unread missed calls.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "recentcall/utility/RC_MissedCallInterface.h"

#include <QtCore/QDateTime>

namespace zyn::handset {

/**
 * Reads the missed calls from the recent-call service and gives those that are unread, newest first.
 *
 * While it lives it is the engine of the process, which has one at a time. What it makes of a call:
 *
 * | Member   | Content                                    |
 * |----------|--------------------------------------------|
 * | `date`   | the day on which the call came, UTC        |
 * | `value`  | the second of that day                     |
 * | `first`  | the number                                 |
 * | `second` | the name, empty when there is none         |
 * | `word1`  | the call's uid                             |
 * | `word2`  | the call's type, RC_CALL_TYPE_T            |
 */
class MissedCallEngine final : public RC_EngineStub
{
public:
    MissedCallEngine() { g_rcEngineStub = this; }
    MissedCallEngine(const MissedCallEngine&) = delete;
    MissedCallEngine& operator=(const MissedCallEngine&) = delete;
    ~MissedCallEngine() { g_rcEngineStub = nullptr; }

    /// Waits for the service's answer; an empty list when there is none.
    RC_MissedCallList getUnreadMissedCallList() override;

    /// Whether the service has answered when the list was last asked for.
    bool isAnswered() const { return m_isAnswered; }

    static RC_MissedCallItem itemOf(const PHONE_ENG_RecentCall& call);

    /// @{ What @p item holds, of those that an engine of this class gives.
    static QDateTime start(const RC_MissedCallItem& item); ///< local time
    static int uid(const RC_MissedCallItem& item) { return static_cast<int32_t>(item.word1); }
    static RC_CALL_TYPE_T callType(const RC_MissedCallItem& item)
    {
        return static_cast<RC_CALL_TYPE_T>(static_cast<int32_t>(item.word2));
    }
    /// @}

private:
    bool m_isAnswered = false;
};

} // namespace zyn::handset
