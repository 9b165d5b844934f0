// Reads and follows the recent calls, for the programs that show them.
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

/// The named call types.
inline constexpr std::array kCallTypes{RC_CALL_TYPE_VOICE, RC_CALL_TYPE_PTT1, RC_CALL_TYPE_PTT2};

/// The calls of @p types in @p list, newest first, from the recent-call service; nothing if it does not answer.
std::optional<std::vector<PHONE_ENG_RecentCall>> fetchCalls(RC_CALL_CATEGORY_T list,
                                                            std::span<const RC_CALL_TYPE_T> types = kCallTypes);

/// Whether @p call is new to the user, who knows of answered and dialed calls.
bool isUnread(const PHONE_ENG_RecentCall& call);

/**
 * Reacts once to all announcements of one turn of the event loop.
 *
 * A reaction that waits for a service must not be connected to the signal itself: a burst would repeat it for each
 * message and block everything else.
 */
class Debouncer : public QObject
{
public:
    explicit Debouncer(const std::function<void()>& reaction)
    {
        m_timer.setSingleShot(true);
        m_timer.callOnTimeout(this, reaction);
    }

    /// The slot for the announcing signal.
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
 * A process has one engine at a time, this one while it exists. It represents a call as:
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

    /// Waits for the service's reply; the list is empty without one.
    RC_MissedCallList getUnreadMissedCallList() override;

    /// Whether the service answered the last request for the list.
    bool isAnswered() const { return m_isAnswered; }

    /// @{ The contents of @p item, which this engine has made.
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
