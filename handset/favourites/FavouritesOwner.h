// The owner of the favourites: registers them as it is told, and logs their calls.
#pragma once

#include "handset/common/Retry.h"
#include "handset/favourites/SeenCalls.h"
#include "platform/QCopChannel.h"
#include "utility/PHONE_MsgClient.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <vector>

namespace zyn::handset {

/**
 * Follows the announcements of the favourites' channel, and takes over the favourites' calls from the call log.
 *
 * The call log is looked through at the start, after every voice-call change that the phone server reports
 * and after every change of the missed calls, and once more a little later: a finished call may be reported before it
 * is in the log. While the recent-call service does not answer, each look would hold up the announcements: then there
 * are few, until one succeeds or the service announces something. Nor does a look succeed while it cannot be read who
 * the favourites are.
 *
 * The calls that came before a favourite are not taken. So the call log is looked through before one is registered;
 * where that fails, the next look that succeeds goes by the times at which the calls began.
 *
 * A call that cannot be written is tried again at each look.
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
    void lookInAnyCase();
    void takeCalls();
    Calls takeCallsOf(const QString& key, const Calls& calls);
    bool takeCall(const QString& key, const PHONE_ENG_RecentCall& call);
    void noteService(bool isServed);
    void noteFavourites(bool areRead);

    QCopChannel m_announcements;
    PHONE_MsgClient m_phone;
    QTimer m_soon;
    QTimer m_later;
    Retry m_retry;
    SeenCalls m_seen;
    bool m_isServed = true;               ///< whether the recent-call service answered the last time
    bool m_areRead = true;                ///< whether who the favourites are could be read the last time
    QHash<QString, qint64> m_blindStarts; ///< when the favourites came that came since it does not answer
};

} // namespace zyn::handset
