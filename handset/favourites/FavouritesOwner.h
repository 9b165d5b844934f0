// The owner of the favourites: registers them as it is told, and logs their calls.
#pragma once

#include "handset/favourites/SeenCalls.h"
#include "platform/QCopChannel.h"
#include "utility/PHONE_MsgClient.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <vector>

/**
 * Follows the announcements of the favourites' channel, and takes over the favourites' calls from the call log.
 *
 * The call log is looked through at the start, after every voice-call change that the phone server reports
 * and after every change of the missed calls, and once more a little later: a finished call may be reported before it
 * is in the log. What cannot be had from the recent-call service is taken at the next look.
 *
 * Everything that happens is told in the log. The process must have the activity log's lock.
 */
class FavouritesOwner : public QObject
{
    Q_OBJECT

public:
    FavouritesOwner();
    ~FavouritesOwner() override;

    /// Whether announcements are received.
    bool isListening() const { return m_announcements.isListening(); }

private:
    using Calls = std::vector<PHONE_ENG_RecentCall>;

    void receive(const QCString& message, const QByteArray& data);
    void replace(const QString& oldNumber, const QString& newNumber);

    void look();
    void takeCalls();
    void takeCallsOf(const QString& key, const Calls& calls);
    void takeCall(const QString& key, const PHONE_ENG_RecentCall& call);

    QCopChannel m_announcements;
    PHONE_MsgClient m_phone;
    QTimer m_soon;
    QTimer m_later;
    SeenCalls m_seen;
    bool m_isServed = true; ///< whether the recent-call service answered the last time
};
