// zyn-favourites: owns the favourites, registers them as announced, and logs their calls.
#include "handset/common/Application.h"
#include "handset/common/CommandLine.h"
#include "handset/common/Log.h"
#include "handset/common/Retry.h"
#include "handset/common/Text.h"
#include "handset/favourites/ActivityLog.h"
#include "handset/favourites/Favourites.h"
#include "handset/recent_calls/RecentCalls.h"
#include "platform/QCopChannel.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "utility/PHONE_MsgClient.h"
#include "utility/message/Payload_p.h"

#include <QtCore/QDateTime>
#include <QtCore/QHash>
#include <QtCore/QTimer>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zyn::handset {
namespace {

/// Messages come in bursts; one look at the call log serves for a burst.
constexpr auto kSoon = 100ms;
/// By then a call whose end was reported is in the log, even if the service had to be tried several times.
constexpr auto kLater = 1500ms;

/// Between the looks while the service does not answer.
constexpr auto kFirstRetry = 5s;
constexpr auto kSlowestRetry = 60s;

constexpr qsizetype kNumberLimit = sizeof PHONE_ENG_RecentCall::phoneNumber - 1;

QString seenCallsPath()
{
    return storePath(QLatin1String(kSeenCallsName));
}

/// Whether a call could have @p number, or whether it is empty.
bool isNumber(const QString& number)
{
    return number.size() <= kNumberLimit && std::ranges::all_of(number, [](QChar character) {
               return character.unicode() <= 0xFF && character.isPrint();
           });
}

/// The entry of @p entries that was made of @p call, or null.
PHONE_ENG_ActivityLog* entryOf(const ActivityEntries& entries, const PHONE_ENG_RecentCall& call)
{
    const auto found = std::ranges::find_if(entries, [&](const PHONE_ENG_ActivityLog* entry) {
        return entry->uid == call.uid && entry->startTime == call.startTime && entry->category == call.category
               && entry->msgType == 0;
    });
    return found == entries.end() ? nullptr : *found;
}

/// Marks an entry as read when its call has been read; nothing marks it as unread again.
void followReading(PHONE_ENG_ActivityLog& entry, const PHONE_ENG_RecentCall& call)
{
    const auto flags = static_cast<uint8_t>(entry.readFlags | call.readFlags);
    if (flags == entry.readFlags)
        return;
    entry.readFlags = flags;
    if (ActivityLog_ENG_RecordStore::instance()->modifyTopPalsAvlItem(entry) == 1)
        log(u"the call %1 of %2 has been read"_s.arg(call.uid).arg(entry.getPhoneNumber()));
}

/**
 * Follows the announcements of the favourites' channel, and copies the favourites' calls from the call log.
 *
 * It looks through the call log at the start, after every voice-call change that the phone server reports and after
 * every change of the missed calls, and once more a little later: the end of a call may be reported before the call is
 * in the log. A look waits for the recent-call service and holds up the announcements: while the service does not
 * answer, looks are few, until one succeeds or the service announces something. Nor does a look succeed while the file
 * that names the favourites cannot be read.
 *
 * Calls from before a favourite are not logged. So the call log is looked through before one is registered; where that
 * fails, the next look that succeeds goes by the times at which the calls began.
 *
 * A call that cannot be written is tried again at each look. Everything that happens is logged. The process must hold
 * the activity log's lock.
 */
class FavouritesOwner : public QObject
{
public:
    FavouritesOwner();
    Q_DISABLE_COPY_MOVE(FavouritesOwner)
    ~FavouritesOwner() override { RecentCall_MsgClient::destruction(); }

    /// Whether announcements are received.
    bool isListening() const { return m_announcements.isListening(); }

private:
    using Calls = std::vector<PHONE_ENG_RecentCall>;

    void receive(const QCString& message, const QByteArray& data);
    void replace(const QString& oldNumber, const QString& newNumber);

    void lookSoon();
    void lookSoonUnlessUnserved();
    void look();
    Calls logCallsOf(const QString& key, const Calls& calls);
    static bool logCall(const QString& key, const PHONE_ENG_RecentCall& call);
    void noteService(bool isServed);
    void noteFavourites(bool areKnown);

    QCopChannel m_announcements{kActivityLogChannel};
    PHONE_MsgClient m_phone;
    QTimer m_soon;
    QTimer m_later;
    Retry m_retry{kFirstRetry, kSlowestRetry, [this] { look(); }};
    SeenCalls m_seen{seenCallsPath()};
    bool m_isServed = true;               ///< whether the recent-call service answered the last time
    bool m_areKnown = true;               ///< whether the favourites could be read the last time
    QHash<QString, qint64> m_blindStarts; ///< when the favourites came that came while the service did not answer
};

FavouritesOwner::FavouritesOwner()
{
    m_soon.setSingleShot(true);
    m_soon.setInterval(kSoon);
    m_later.setSingleShot(true);
    m_later.setInterval(kLater);
    for (const QTimer* timer : {&m_soon, &m_later})
        connect(timer, &QTimer::timeout, this, &FavouritesOwner::look);
    connect(&m_announcements, &QCopChannel::received, this, &FavouritesOwner::receive);
    connect(&m_phone, &PHONE_MsgClient::signalVoiceCallStatChanged, this, &FavouritesOwner::lookSoonUnlessUnserved);
    connect(RecentCall_MsgClient::instance(), &RecentCall_MsgClient::signalMissedCallUpdate, this,
            &FavouritesOwner::lookSoon);
    QTimer::singleShot(0, this, &FavouritesOwner::look);
    m_later.start();
}

void FavouritesOwner::receive(const QCString& message, const QByteArray& data)
{
    if (message != kModifyFavourite.name)
        return;
    const FieldValues values = decode(kModifyFavourite, data);
    const QString& oldNumber = values[0].text;
    const QString& newNumber = values[1].text;
    if (!values.isComplete() || values.end < data.size())
        log(u"an announcement of %1 bytes is none: ignored"_s.arg(data.size()));
    else if (!isNumber(oldNumber) || !isNumber(newNumber))
        log(u"an announcement with a number that no call can have: ignored"_s);
    else if (oldNumber.isEmpty() && newNumber.isEmpty())
        log(u"an announcement without a number: ignored"_s);
    else
        replace(oldNumber, newNumber);
}

void FavouritesOwner::replace(const QString& oldNumber, const QString& newNumber)
{
    const QString newKey = favouriteKey(newNumber);
    const bool isComing = !newKey.isEmpty() && !isFavourite(newKey);
    if (isComing && m_isServed)
        look();
    const FavouriteChange change = replaceFavourite(oldNumber, newNumber);
    if (isComing && !m_isServed)
        m_blindStarts.insert(newKey, QDateTime::currentSecsSinceEpoch());
    log(describe(change, oldNumber, newNumber));
    // The announcement holds as far as it can: the old number leaves though the new one is there already, and the new
    // one comes though the old one was no favourite.
    if (change == FavouriteChange::NoFavourite && !newNumber.isEmpty())
        replace(QString(), newNumber);
    if (change == FavouriteChange::AlreadyFavourite && !oldNumber.isEmpty())
        replace(oldNumber, QString());
}

void FavouritesOwner::lookSoonUnlessUnserved()
{
    if (m_isServed)
        lookSoon();
}

void FavouritesOwner::lookSoon()
{
    if (!m_soon.isActive())
        m_soon.start();
    m_later.start();
}

/// Looks through the call log, and logs the favourites' new calls.
void FavouritesOwner::look()
{
    const auto calls = fetchCalls(RC_CALL_CATEGORY_ALL);
    noteService(calls.has_value());
    if (calls)
        noteFavourites(reloadFavourites());
    const bool canLook = calls && m_areKnown;
    m_retry.note(canLook);
    if (!canLook)
        return;
    Calls seen = *calls;
    for (const QString& key : favouriteKeys()) {
        if (key.isEmpty())
            continue;
        for (const PHONE_ENG_RecentCall& failed : logCallsOf(key, *calls))
            std::erase(seen, failed);
    }
    m_blindStarts.clear();
    if (!m_seen.replaceBy(seen))
        log(u"cannot write %1"_s.arg(seenCallsPath()));
}

void FavouritesOwner::noteService(bool isServed)
{
    if (isServed != m_isServed)
        log(isServed ? u"the recent-call service answers again"_s
                     : u"the recent-call service does not answer: its calls are taken later"_s);
    m_isServed = isServed;
    if (isServed)
        return;
    m_soon.stop();
    m_later.stop();
}

void FavouritesOwner::noteFavourites(bool areKnown)
{
    if (areKnown != m_areKnown)
        log(areKnown ? u"the favourites can be read again"_s
                     : u"the favourites cannot be read: their calls are taken later"_s);
    m_areKnown = areKnown;
}

/// Logs the new ones of @p calls under @p key; returns those that are to be tried again.
FavouritesOwner::Calls FavouritesOwner::logCallsOf(const QString& key, const Calls& calls)
{
    const bool hasSlots = contactSlots() > 0;
    if (hasSlots && !hasValidLog(key))
        log((renewLog(key) ? u"the file of %1 is made anew"_s : u"the file of %1 cannot be made"_s)
                .arg(printable(key)));
    ActivityEntries entries;
    readEntries(entries, key); // a file that cannot be read gives no entry, and takes none
    const qint64 start = m_blindStarts.value(key, std::numeric_limits<qint64>::min());
    Calls fresh;
    for (const PHONE_ENG_RecentCall& call : calls) {
        if (favouriteKey(call.getPhoneNumber()) != key)
            continue;
        // A process that was killed between the two has logged a call that still counts as new.
        if (PHONE_ENG_ActivityLog* entry = entryOf(entries, call))
            followReading(*entry, call);
        else if (!m_seen.contains(call) && call.startTime >= start && !isTooOld(call, entries))
            fresh.push_back(call);
    }
    if (!hasSlots)
        return fresh; // they wait for slots
    // Each replaces an older one when the file is full.
    std::ranges::sort(fresh, AgeOrder());
    Calls failed;
    std::ranges::copy_if(fresh, std::back_inserter(failed), [&](const auto& call) { return !logCall(key, call); });
    return failed;
}

/// Whether it could be logged.
bool FavouritesOwner::logCall(const QString& key, const PHONE_ENG_RecentCall& call)
{
    PHONE_ENG_ActivityLog entry(call);
    const bool isLogged = addEntry(entry, key);
    log(u"the call %1 of %2 is %3"_s.arg(call.uid).arg(key, isLogged ? "logged"_L1
                                                                     : "tried again later: it cannot be written"_L1));
    return isLogged;
}

} // namespace
} // namespace zyn::handset

namespace handset = zyn::handset;

int main(int argc, char** argv)
{
    const handset::Application application(argc, argv, u"zyn-favourites"_s);

    const QString channel = QLatin1String(zyn::kActivityLogChannel);
    handset::CommandLine commandLine(
        u"Owns the favourites: registers and drops them as announced on the message channel\n%1, and logs "
        "their calls.\nEnds on SIGTERM and SIGINT. Messages go to standard error."_s.arg(channel));
    if (!commandLine.parse())
        return handset::kUsageError;
    handset::ActivityLogLock lock;
    if (!lock.lock()) {
        handset::log(lock.problem());
        return EXIT_FAILURE;
    }
    handset::FavouritesOwner owner;
    if (!owner.isListening())
        return EXIT_FAILURE;
    commandLine.announce(channel);
    return handset::Application::exec();
}
