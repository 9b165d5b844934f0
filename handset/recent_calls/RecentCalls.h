// The recent calls, as the programs that show them read and follow them.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "recentcall/utility/RC_MissedCallInterface.h"

#include <QtCore/QDateTime>
#include <QtCore/QTimer>

#include <array>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace zyn::handset {

/// The call types that have a name.
inline constexpr std::array kCallTypes{RC_CALL_TYPE_VOICE, RC_CALL_TYPE_PTT1, RC_CALL_TYPE_PTT2};

/// The calls of @p types in @p list, newest first, from the recent-call service; nothing when it does not answer.
std::optional<std::vector<PHONE_ENG_RecentCall>> fetchCalls(RC_CALL_CATEGORY_T list,
                                                            std::span<const RC_CALL_TYPE_T> types = kCallTypes);

/// Whether the user has yet to see @p call. He knows of answered and dialed calls.
bool isUnread(const PHONE_ENG_RecentCall& call);

/**
 * Reacts once to all announcements that come in one turn of the event loop, as soon as all of them are received.
 *
 * A reaction that waits for a service must not be connected to the signal itself: a burst would wait for it again and
 * again, and nothing else would be seen meanwhile.
 */
class Debouncer : public QObject
{
public:
    explicit Debouncer(const std::function<void()>& reaction)
    {
        m_timer.setSingleShot(true);
        m_timer.callOnTimeout(this, reaction);
    }

    /// The slot for the signal that announces.
    void trigger()
    {
        if (!m_timer.isActive())
            m_timer.start(0);
    }

private:
    QTimer m_timer;
};

/**
 * The recent-call engine of a process that shows the unread missed calls: reads them from the recent-call service,
 * newest first.
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

    /// Whether the service answered when the list was last asked for.
    bool isAnswered() const { return m_isAnswered; }

    /// @{ The contents of @p item, which an engine of this class has made.
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
