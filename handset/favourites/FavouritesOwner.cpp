// The owner of the favourites: registers them as it is told, and logs their calls.
#include "handset/favourites/FavouritesOwner.h"

#include "handset/common/Log.h"
#include "handset/common/Text.h"
#include "handset/favourites/Favourites.h"
#include "handset/recent_calls/RecentCalls.h"
#include "recentcall/utility/ActivityLogFile_p.h"
#include "recentcall/utility/FavouriteKey_p.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "recentcall/utility/StoreDirectory_p.h"
#include "utility/PHONE_ChannelMessages_p.h"
#include "utility/PHONE_Payload_p.h"

#include <QtCore/QDateTime>

#include <algorithm>
#include <chrono>
#include <limits>

using namespace std::chrono_literals;
using zyn::favourites::Change;
using zyn::favourites::Entries;

namespace zyn::handset {
namespace {

/// Messages come in bursts; one look serves for a burst.
constexpr auto kSoon = 100ms;
/// By then a call whose end was reported is in the log, also where the service had to be tried several times.
constexpr auto kLater = 1500ms;

/// Between the looks while the service does not answer.
constexpr auto kFirstRetry = 5s;
constexpr auto kSlowestRetry = 60s;

constexpr qsizetype kNumberLimit = sizeof PHONE_ENG_RecentCall::phoneNumber - 1;

QString seenCallsPath()
{
    return zyn::storePath(QLatin1String(zyn::kSeenCallsName));
}

/// Whether a call could have @p number, or whether it is empty.
bool isNumber(const QString& number)
{
    return number.size() <= kNumberLimit && std::ranges::all_of(number, [](QChar character) {
               return character.unicode() <= 0xFF && character.isPrint();
           });
}

/// The entry of @p entries that was made of @p call, or null.
PHONE_ENG_ActivityLog* entryOf(const Entries& entries, const PHONE_ENG_RecentCall& call)
{
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const PHONE_ENG_ActivityLog* entry) {
        return entry->uid == call.uid && entry->startTime == call.startTime && entry->category == call.category
               && entry->msgType == 0;
    });
    return found == entries.end() ? nullptr : *found;
}

/// Marks an entry as read when its call has been; nothing marks it as unread again.
void followReading(PHONE_ENG_ActivityLog& entry, const PHONE_ENG_RecentCall& call)
{
    const auto flags = static_cast<uint8_t>(entry.readFlags | call.readFlags);
    if (flags == entry.readFlags)
        return;
    entry.readFlags = flags;
    if (ActivityLog_ENG_RecordStore::instance()->modifyTopPalsAvlItem(entry) == 1)
        log(QStringLiteral("the call %1 of %2 has been read").arg(call.uid).arg(entry.getPhoneNumber()));
}

} // namespace

FavouritesOwner::FavouritesOwner()
    : m_announcements(zyn::kActivityLogChannel)
    , m_retry(kFirstRetry, kSlowestRetry, [this] { takeCalls(); })
    , m_seen(seenCallsPath())
{
    m_soon.setSingleShot(true);
    m_soon.setInterval(kSoon);
    m_later.setSingleShot(true);
    m_later.setInterval(kLater);
    for (const QTimer* timer : {&m_soon, &m_later})
        connect(timer, &QTimer::timeout, this, &FavouritesOwner::takeCalls);
    connect(&m_announcements, &QCopChannel::received, this, &FavouritesOwner::receive);
    connect(&m_phone, &PHONE_MsgClient::signalVoiceCallStatChanged, this, &FavouritesOwner::look);
    connect(RecentCall_MsgClient::instance(), &RecentCall_MsgClient::signalMissedCallUpdate, this,
            &FavouritesOwner::lookInAnyCase);
    QTimer::singleShot(0, this, &FavouritesOwner::takeCalls);
    m_later.start();
}

FavouritesOwner::~FavouritesOwner()
{
    RecentCall_MsgClient::destruction();
}

void FavouritesOwner::receive(const QCString& message, const QByteArray& data)
{
    if (message != zyn::kModifyFavourite)
        return;
    zyn::PayloadReader reader(data);
    const QString oldNumber = reader.readText();
    const QString newNumber = reader.readText();
    reader.readText(); // the name
    reader.readText(); // where the picture is
    reader.readInt();  // the contact's id
    if (!reader.isComplete() || reader.remaining() > 0)
        log(QStringLiteral("an announcement of %1 bytes is none: ignored").arg(data.size()));
    else if (!isNumber(oldNumber) || !isNumber(newNumber))
        log(QStringLiteral("an announcement with a number that no call can have: ignored"));
    else if (oldNumber.isEmpty() && newNumber.isEmpty())
        log(QStringLiteral("an announcement without a number: ignored"));
    else
        replace(oldNumber, newNumber);
}

void FavouritesOwner::replace(const QString& oldNumber, const QString& newNumber)
{
    const QString newKey = zyn::favouriteKey(newNumber);
    const bool isComing = !newKey.isEmpty() && !zyn::favourites::isFavourite(newKey);
    if (isComing && m_isServed)
        takeCalls();
    const Change change = zyn::favourites::replace(oldNumber, newNumber);
    if (isComing && !m_isServed)
        m_blindStarts.insert(newKey, QDateTime::currentSecsSinceEpoch());
    log(zyn::favourites::describe(change, oldNumber, newNumber));
    // What was announced holds as far as it can: the one number leaves though the other is there, and comes though the
    // other was not.
    if (change == Change::NoFavourite && !newNumber.isEmpty())
        replace(QString(), newNumber);
    if (change == Change::AlreadyFavourite && !oldNumber.isEmpty())
        replace(oldNumber, QString());
}

void FavouritesOwner::look()
{
    if (m_isServed)
        lookInAnyCase();
}

void FavouritesOwner::lookInAnyCase()
{
    if (!m_soon.isActive())
        m_soon.start();
    m_later.start();
}

void FavouritesOwner::takeCalls()
{
    const auto calls = fetchCalls(RC_CALL_CATEGORY_ALL);
    noteService(calls.has_value());
    if (calls)
        noteFavourites(zyn::favourites::refresh());
    const bool canLook = calls && m_areRead;
    m_retry.note(canLook);
    if (!canLook)
        return;
    Calls seen = *calls;
    for (const QString& key : zyn::favourites::keys()) {
        if (key.isEmpty())
            continue;
        for (const PHONE_ENG_RecentCall& lost : takeCallsOf(key, *calls))
            std::erase(seen, lost);
    }
    m_blindStarts.clear();
    if (!m_seen.replaceBy(seen))
        log(QStringLiteral("cannot write %1").arg(seenCallsPath()));
}

void FavouritesOwner::noteService(bool isServed)
{
    if (isServed != m_isServed)
        log(isServed ? QStringLiteral("the recent-call service answers again")
                     : QStringLiteral("the recent-call service does not answer: its calls are taken later"));
    m_isServed = isServed;
    if (isServed)
        return;
    m_soon.stop();
    m_later.stop();
}

void FavouritesOwner::noteFavourites(bool areRead)
{
    if (areRead != m_areRead)
        log(areRead ? QStringLiteral("the favourites can be read again")
                    : QStringLiteral("the favourites cannot be read: their calls are taken later"));
    m_areRead = areRead;
}

/// Those that are to be tried again.
FavouritesOwner::Calls FavouritesOwner::takeCallsOf(const QString& key, const Calls& calls)
{
    const bool hasSlots = zyn::contactSlots() > 0;
    if (hasSlots && !zyn::favourites::isSound(key))
        log((zyn::favourites::renew(key) ? QStringLiteral("the file of %1 is made anew")
                                         : QStringLiteral("the file of %1 cannot be made"))
                .arg(printable(key)));
    Entries entries;
    zyn::favourites::readEntries(entries, key); // none from a file that cannot be read, nor can a call be added to it
    const qint64 start = m_blindStarts.value(key, std::numeric_limits<qint64>::min());
    Calls fresh;
    for (const PHONE_ENG_RecentCall& call : calls) {
        if (zyn::favouriteKey(call.getPhoneNumber()) != key)
            continue;
        // An entry may be there though the call counts as new: then this process ended between the two.
        if (PHONE_ENG_ActivityLog* entry = entryOf(entries, call))
            followReading(*entry, call);
        else if (!m_seen.contains(call) && call.startTime >= start && !zyn::favourites::isTooOld(call, entries))
            fresh.push_back(call);
    }
    if (!hasSlots)
        return fresh; // they wait until there are some
    // Each takes the place of an older one where the file is full.
    std::ranges::sort(fresh, zyn::favourites::AgeOrder());
    Calls lost;
    for (const PHONE_ENG_RecentCall& call : fresh) {
        if (!takeCall(key, call))
            lost.push_back(call);
    }
    return lost;
}

bool FavouritesOwner::takeCall(const QString& key, const PHONE_ENG_RecentCall& call)
{
    PHONE_ENG_ActivityLog entry(call);
    const bool isTaken = zyn::favourites::addEntry(entry, key);
    log(QStringLiteral("the call %1 of %2 is %3")
            .arg(call.uid)
            .arg(key, isTaken ? QLatin1String("logged") : QLatin1String("tried again later: it cannot be written")));
    return isTaken;
}

} // namespace zyn::handset
