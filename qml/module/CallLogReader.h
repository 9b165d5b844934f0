// Reads the log of recent calls beside the thread of the user interface, and again when it has changed.
#pragma once

#include "qml/module/CallLogChanges.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace zyn::qml {

/// A call of the log.
using CallRecord = PHONE_ENG_RecentCall;

/// Which calls of the log.
struct CallSelection
{
    int category = RC_CALL_CATEGORY_ALL; ///< RC_CALL_CATEGORY_T
    int callType = 0;                    ///< RC_CALL_TYPE_T; 0 for the three types that have names

    bool operator==(const CallSelection& other) const = default;

    /// The types that the service is asked for, one by one.
    std::vector<RC_CALL_TYPE_T> types() const;
    /// The list, or all three.
    RC_CALL_CATEGORY_T list() const { return static_cast<RC_CALL_CATEGORY_T>(category); }
};

/// Whether the service has answered with @p result, which is one of RC_Interface. It may have had no such call.
bool isAnswered(int result);

/**
 * Reads the calls of a selection, one request at a time.
 *
 * Says when they are to be read again: when the log has changed, and, while the service does not answer, now and then,
 * as one that has hung does not announce that it goes on. One that does not run is waited for without that after a
 * while. For the thread of the user interface.
 */
class CallLogReader : public QObject
{
    Q_OBJECT

public:
    /// Newest first; nothing when the service did not answer.
    using Calls = std::optional<std::vector<CallRecord>>;
    /// Takes what was read.
    using Taker = std::function<void(const CallSelection& selection, const Calls& calls)>;

    /// @param begins  called before each request
    /// @param ends    called when it has been answered, or not
    CallLogReader(std::function<void()> begins, Taker ends);

    /// Reads the calls of @p selection. While a request is on its way, this is done when that has ended.
    void read(const CallSelection& selection);

    /// The shared changes of the log.
    CallLogChanges& changes() const { return *m_changes; }

    /// What is wrong when the service does not answer, for people.
    static QString noAnswerText();

Q_SIGNALS:
    /// The calls are to be read again.
    void outdated();

private:
    void send(const CallSelection& selection);
    void end(const CallSelection& selection, const Calls& calls, bool isServed);
    void noteAnswer(bool isThere, bool isServed);

    const std::shared_ptr<CallLogChanges> m_changes = CallLogChanges::shared();
    const std::function<void()> m_begins;
    const Taker m_ends;
    std::optional<CallSelection> m_next; ///< what is read when the request on its way has ended
    bool m_isReading = false;
    QTimer m_retry;
    std::chrono::milliseconds m_pause; ///< before the next attempt
};

} // namespace zyn::qml
