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
 * Hands calls over in their order, beside everything else: it never waits for the service.
 *
 * A call is sent on a connection of its own, and counts as handed over when the service has read it. A service that
 * dies before that is sent it again by way of the next one. When none is handed over for three seconds, each that waits
 * is told in the log; they are tried for as long as this process lives.
 */
class CallLogUploader : public QObject
{
    Q_OBJECT

public:
    CallLogUploader();
    ~CallLogUploader() override;

    /// Sends @p record, unless there is no service: whoever asks the service from here on finds the call in its list.
    void add(const PHONE_ENG_RecentCall& record);

    /// Waits until no call is left, for three seconds at most, while the event loop goes on. What is left then is told
    /// in the log.
    void finish();

Q_SIGNALS:
    /// No call is left.
    void idle();

private:
    struct Item
    {
        PHONE_ENG_RecentCall record;
        posix::UniqueFd connection = {};                ///< none before it is sent
        std::unique_ptr<QSocketNotifier> answered = {}; ///< when something has become of it
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
    QElapsedTimer m_sinceAccepted; ///< or since something has begun to wait
    bool m_isRefused = false;      ///< whether the last call that was to be sent could not be
    int m_late = 0;                ///< calls that were told, and taken after all
};

} // namespace zyn::handset
