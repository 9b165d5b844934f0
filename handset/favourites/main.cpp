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

/// Messages come in bursts; the call log is read once per burst.
constexpr auto kSoon = 100ms;
/// By then a call whose end was reported is in the log, even if the service needed several attempts.
constexpr auto kLater = 1500ms;

/// Between reads while the service does not answer.
constexpr auto kFirstRetry = 5s;
constexpr auto kSlowestRetry = 60s;

constexpr qsizetype kNumberLimit = sizeof PHONE_ENG_RecentCall::phoneNumber - 1;

QString seenCallsPath()
{
    return storePath(QLatin1String(kSeenCallsName));
}

/// Whether @p number is empty or could be that of a call.
bool isNumber(const QString& number)
{
    return number.size() <= kNumberLimit && std::ranges::all_of(number, [](QChar character) {
               return character.unicode() <= 0xFF && character.isPrint();
           });
}

/// The entry of @p entries that was made from @p call, or null.
PHONE_ENG_ActivityLog* entryOf(const ActivityEntries& entries, const PHONE_ENG_RecentCall& call)
{
    const auto found = std::ranges::find_if(entries, [&](const PHONE_ENG_ActivityLog* entry) {
        return entry->uid == call.uid && entry->startTime == call.startTime && entry->category == call.category
               && entry->msgType == 0;
    });
    return found == entries.end() ? nullptr : *found;
}

/// Marks an entry as read once its call has been read, never the reverse.
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
 * Reads the call log at the start, after each voice-call change and each change of the missed calls, and a little later
 * once more: the end of a call may be reported before the call is in the log. A read waits for the recent-call service
 * and delays the announcements, so reads are rare while the service does not answer, until one succeeds or the service
 * announces something. A read fails as well while the file of favourites cannot be read.
 *
 * Calls from before a favourite was registered are not logged, so the call log is read before each registration. If
 * that fails, the next successful read compares start times.
 *
 * A call that cannot be written is tried again at each read. Everything that happens is logged. The process must hold
 * the lock of the activity log.
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

    void syncSoon();
    void syncSoonIfServed();
    void sync();
    Calls logCallsOf(const QString& key, const Calls& calls);
    static bool logCall(const QString& key, const PHONE_ENG_RecentCall& call);
    void noteService(bool isServed);
    void noteFavourites(bool areKnown);

    QCopChannel m_announcements{kActivityLogChannel};
    PHONE_MsgClient m_phone;
    QTimer m_soon;
    QTimer m_later;
    Retry m_retry{kFirstRetry, kSlowestRetry, [this] { sync(); }};
    SeenCalls m_seen{seenCallsPath()};
    bool m_isServed = true;               ///< the recent-call service answered the last time
    bool m_areKnown = true;               ///< the favourites could be read the last time
    QHash<QString, qint64> m_blindStarts; ///< favourites registered while the service did not answer, and when
};

FavouritesOwner::FavouritesOwner()
{
    m_soon.setSingleShot(true);
    m_soon.setInterval(kSoon);
    m_later.setSingleShot(true);
    m_later.setInterval(kLater);
    for (const QTimer* timer : {&m_soon, &m_later})
        connect(timer, &QTimer::timeout, this, &FavouritesOwner::sync);
    connect(&m_announcements, &QCopChannel::received, this, &FavouritesOwner::receive);
    connect(&m_phone, &PHONE_MsgClient::signalVoiceCallStatChanged, this, &FavouritesOwner::syncSoonIfServed);
    connect(RecentCall_MsgClient::instance(), &RecentCall_MsgClient::signalMissedCallUpdate, this,
            &FavouritesOwner::syncSoon);
    QTimer::singleShot(0, this, &FavouritesOwner::sync);
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
        log(u"an announcement of %1 is invalid: ignored"_s.arg(counted(data.size(), "byte")));
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
        sync();
    const FavouriteChange change = replaceFavourite(oldNumber, newNumber);
    if (isComing && !m_isServed)
        m_blindStarts.insert(newKey, QDateTime::currentSecsSinceEpoch());
    log(describe(change, oldNumber, newNumber));
    // The announcement is applied as far as possible: the old number is removed even if the new one already is a
    // favourite, and the new one is added even if the old one was not.
    if (change == FavouriteChange::NoFavourite && !newNumber.isEmpty())
        replace(QString(), newNumber);
    if (change == FavouriteChange::AlreadyFavourite && !oldNumber.isEmpty())
        replace(oldNumber, QString());
}

void FavouritesOwner::syncSoonIfServed()
{
    if (m_isServed)
        syncSoon();
}

void FavouritesOwner::syncSoon()
{
    if (!m_soon.isActive())
        m_soon.start();
    m_later.start();
}

/// Reads the call log, and logs the favourites' new calls.
void FavouritesOwner::sync()
{
    const auto calls = fetchCalls(RC_CALL_CATEGORY_ALL);
    noteService(calls.has_value());
    if (calls)
        noteFavourites(reloadFavourites());
    const bool canSync = calls && m_areKnown;
    m_retry.note(canSync);
    if (!canSync)
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

/// Logs the new ones of @p calls under @p key; returns those to try again.
FavouritesOwner::Calls FavouritesOwner::logCallsOf(const QString& key, const Calls& calls)
{
    const bool hasSlots = contactSlots() > 0;
    if (hasSlots && !hasValidLog(key))
        log((renewLog(key) ? u"the file of %1 is made anew"_s : u"the file of %1 cannot be made"_s)
                .arg(printable(key)));
    ActivityEntries entries;
    readEntries(entries, key); // an unreadable file yields no entries, and accepts none
    const qint64 start = m_blindStarts.value(key, std::numeric_limits<qint64>::min());
    Calls fresh;
    for (const PHONE_ENG_RecentCall& call : calls) {
        if (favouriteKey(call.getPhoneNumber()) != key)
            continue;
        // A process that was killed between the two steps has logged a call that still counts as new.
        if (PHONE_ENG_ActivityLog* entry = entryOf(entries, call))
            followReading(*entry, call);
        else if (!m_seen.contains(call) && call.startTime >= start && !isTooOld(call, entries))
            fresh.push_back(call);
    }
    if (!hasSlots)
        return fresh; // they wait for slots
    // In a full file each replaces an older one.
    std::ranges::sort(fresh, AgeOrder());
    Calls failed;
    std::ranges::copy_if(fresh, std::back_inserter(failed), [&](const auto& call) { return !logCall(key, call); });
    return failed;
}

/// Whether the call was logged.
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
