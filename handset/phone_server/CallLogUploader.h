// Uploads finished calls to the recent-call service.
#pragma once

#include "platform/posix/UniqueFd_p.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <cstddef>
#include <deque>
#include <memory>

namespace zyn::handset {

/**
 * Uploads calls in order, without waiting for the service.
 *
 * Each call is sent on its own connection, and is done when the service has read it. If the service dies first, the
 * call is sent again to the next one. After three seconds without an upload, each waiting call is logged once; attempts
 * go on as long as this process lives.
 */
class CallLogUploader : public QObject
{
    Q_OBJECT

public:
    CallLogUploader();
    ~CallLogUploader() override;

    /// Sends @p record if the service runs. A client that connects to the service after that finds the call in its
    /// list.
    void add(const PHONE_ENG_RecentCall& record);

    /// Runs the event loop until no call is left, for at most three seconds; what is left is logged.
    void finish();

Q_SIGNALS:
    /// No call is left.
    void idle();

private:
    struct Item
    {
        PHONE_ENG_RecentCall record;
        posix::UniqueFd connection = {};                ///< invalid until sent
        std::unique_ptr<QSocketNotifier> answered = {}; ///< fires when the connection's fate is known
        bool isLogged = false;
    };

    void advance();
    void tryAgain();
    void collect();
    void noteAccepted(const Item& item);
    void sendWaiting(size_t most);
    bool send(Item& item);
    void logWaiting();

    std::deque<Item> m_waiting;
    QTimer m_pause;
    QElapsedTimer m_sinceAccepted; ///< or since the queue was empty
    bool m_isRefused = false;      ///< the last attempt to send a call failed
    int m_late = 0;                ///< uploaded calls that had been logged as waiting
};

} // namespace zyn::handset
