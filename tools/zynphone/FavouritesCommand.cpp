// zynphone favourites: the favourites and their activity log.
#include "tools/zynphone/FavouritesCommand.h"

#include "handset/favourites/Favourites.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/FavouriteKey_p.h"
#include "recentcall/utility/RC_TopPals_AL_Interface.h"
#include "tools/zynphone/ActivityText.h"
#include "tools/zynphone/CallInput.h"
#include "tools/zynphone/CallText.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/FavouritesFileCommand.h"
#include "tools/zynphone/FavouritesOwnership.h"
#include "tools/zynphone/FieldText.h"
#include "tools/zynphone/SendCommand.h"
#include "utility/PHONE_ChannelMessages_p.h"

#include <algorithm>
#include <array>
#include <ranges>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

using namespace zyn::tool;
namespace favourites = zyn::favourites;
using favourites::Change;
using Entry = PHONE_ENG_ActivityLog;

/// Of an entry that was made of no call in the call log.
constexpr int32_t kNoUid = -1;
constexpr qsizetype kMessageLimit = sizeof Entry::msgString - 1;

struct Favourite
{
    int place;
    QString number;
    int entries;
    TopPals_Missed_Details unread;
};

constexpr Column<Favourite> kFavouriteColumns[] = {
    {"place", "PLACE", [](const Favourite& favourite) { return QJsonValue(favourite.place); }},
    {"number", "NUMBER", [](const Favourite& favourite) { return QJsonValue(favourite.number); }},
    {"entries", "ENTRIES", [](const Favourite& favourite) { return QJsonValue(favourite.entries); }},
    {"unreadMissedCalls", "UNREAD MISSED CALLS",
     [](const Favourite& favourite) { return QJsonValue(favourite.unread.missedCallCount); }},
    {"unreadMessages", "UNREAD MESSAGES",
     [](const Favourite& favourite) { return QJsonValue(favourite.unread.unreadMsgCount); }},
};

constexpr Column<TopPals_Missed_Details> kUnreadColumns[] = {
    {"number", "number", [](const TopPals_Missed_Details& unread) { return QJsonValue(unread.number); }},
    {"unreadMissedCalls", "unread missed calls",
     [](const TopPals_Missed_Details& unread) { return QJsonValue(unread.missedCallCount); }},
    {"unreadMessages", "unread messages",
     [](const TopPals_Missed_Details& unread) { return QJsonValue(unread.unreadMsgCount); }},
};

/// The key of the favourite that the argument names.
QString favouriteFrom(const Invocation& call)
{
    const QString key = zyn::favouriteKey(callNumber(call.argument(0)));
    if (!favourites::isFavourite(key))
        throw failure(favourites::describe(Change::NoFavourite, key, QString()));
    return key;
}

void readInto(favourites::Entries& entries, const QString& key)
{
    if (!favourites::readEntries(entries, key))
        throw failure(u"the file of %1 cannot be read"_s.arg(key));
}

ExitCode listFavourites(const Invocation& call, Console& console)
{
    std::vector<Favourite> found;
    const QStringList keys = favourites::keys();
    for (int place = 0; place < keys.size(); ++place) {
        if (keys[place].isEmpty())
            continue;
        Favourite favourite{place, keys[place], 0, {keys[place]}};
        favourites::Entries entries;
        favourites::readEntries(entries, favourite.number);
        favourite.entries = static_cast<int>(entries.count());
        RC_TopPals_AL_Interface::instance()->getUnreadCount(favourite.unread);
        found.push_back(std::move(favourite));
    }
    printTable(console, Table(kFavouriteColumns, found), call.isSet(u"json"_s));
    return Done;
}

ExitCode tellChange(const QString& oldNumber, const QString& newNumber, Console& console)
{
    const Change change = favourites::replace(oldNumber, newNumber);
    const QString text = favourites::describe(change, oldNumber, newNumber);
    if (change != Change::Done && change != Change::Same)
        throw failure(text);
    console.write(printable(text) + u'\n');
    return Done;
}

ExitCode replaceFavourite(const Invocation& call, Console& console)
{
    const QString oldNumber = call.argument(0);
    const QString newNumber = call.argument(1);
    if (oldNumber.isEmpty() && newNumber.isEmpty())
        throw usageError(u"both numbers are empty"_s);
    if (!newNumber.isEmpty())
        callNumber(newNumber);
    const FavouritesOwnership ownership;
    return tellChange(oldNumber, newNumber, console);
}

/// What of a message the options describe.
void setMessage(Entry& entry, const Invocation& call)
{
    entry.msgType = numberFrom(call, u"message-type"_s, call.isSet(u"message"_s) ? 1 : 0);
    entry.msgInfo = numberFrom(call, u"message-info"_s, 0);
    entry.setMsgString(latin1Field(call.value(u"message"_s), u"message"_s, kMessageLimit));
}

RC_CALL_CATEGORY_T listFrom(const Invocation& call)
{
    const bool isMessage = call.isSet(u"message"_s) || call.isSet(u"message-type"_s);
    if (!call.isSet(u"list"_s))
        return isMessage ? RC_CALL_CATEGORY_NONE : RC_CALL_CATEGORY_MISSED;
    return wordNamed(kLists, call.value(u"list"_s), u"list"_s).value;
}

ExitCode logEntry(const Invocation& call, Console& console)
{
    Entry entry(callFrom(call, listFrom(call), callNumber(call.argument(0))));
    entry.uid = kNoUid;
    setMessage(entry, call);
    const FavouritesOwnership ownership;
    const QString key = favouriteFrom(call);
    if (!favourites::addEntry(entry, key))
        throw failure(u"the file of %1 cannot be written"_s.arg(key));
    console.write(u"logged in place %1\n"_s.arg(entry.topPalsAvlPos));
    return Done;
}

ExitCode showEntries(const Invocation& call, Console& console)
{
    favourites::Entries entries;
    readInto(entries, favouriteFrom(call));
    const auto rows = entries | std::views::transform([](const Entry* entry) -> const Entry& { return *entry; });
    printTable(console, Table(activityColumns(), rows), call.isSet(u"json"_s));
    return Done;
}

ExitCode countUnread(const Invocation& call, Console& console)
{
    TopPals_Missed_Details unread{call.argument(0)};
    if (RC_TopPals_AL_Interface::instance()->getUnreadCount(unread) != 1)
        throw failure(u"no favourite's file for %1 can be read"_s.arg(unread.number));
    printSheet(console, Table(kUnreadColumns, std::array{unread}), call.isSet(u"json"_s));
    return Done;
}

ExitCode removeEntry(const Invocation& call, Console& console)
{
    const int place = wholeNumber(call.argument(1), u"PLACE"_s, 0);
    const QString key = favouriteFrom(call);
    favourites::Entries entries;
    readInto(entries, key);
    const auto found = std::ranges::find(entries, place, &Entry::topPalsAvlPos);
    if (found == entries.end())
        throw failure(u"%1 has no entry in place %2"_s.arg(key).arg(place));
    if (ActivityLog_ENG_RecordStore::instance()->removeTopPalsAvlItem(**found) != 1)
        throw failure(u"the file of %1 cannot be written"_s.arg(key));
    console.write(u"removed\n"_s);
    return Done;
}

ExitCode remove(const Invocation& call, Console& console)
{
    const FavouritesOwnership ownership;
    if (call.arguments().size() > 1)
        return removeEntry(call, console);
    return tellChange(callNumber(call.argument(0)), QString(), console);
}

ExitCode announce(const Invocation& call, Console& console)
{
    const TopPals_Details_T details{call.value(u"name"_s), call.argument(1), call.value(u"image"_s),
                                    numberFrom(call, u"contact-id"_s, 0)};
    requireChannel(zyn::kActivityLogChannel);
    if (!RC_TopPals_AL_Interface::instance()->modifyTopPalsContactDetails(call.argument(0), details))
        throw failure(u"a listener does not take the message"_s);
    console.write(u"sent\n"_s);
    return Done;
}

Argument favouriteArgument()
{
    return {u"NUMBER"_s, u"of the favourite, of which the last %1 characters count"_s.arg(zyn::kFavouriteKeyLength)};
}

Command listRow()
{
    return {.name = u"list"_s,
            .summary = u"List the favourites with their entries, and what of these is unread"_s,
            .details = u"\nThe objects of --json have the fields %1.\n"_s.arg(fieldNames(kFavouriteColumns)),
            .options = {jsonOption()},
            .run = listFavourites};
}

Command replaceRow()
{
    return {.name = u"replace"_s,
            .summary = u"Replace a favourite by another, whose log begins empty"_s,
            .arguments = {{u"OLD"_s, u"the number of a favourite; '' when none is to leave"_s},
                          {u"NEW"_s, u"the number of the new one; '' when none is to come"_s}},
            .run = replaceFavourite};
}

Command logRow()
{
    QList<QCommandLineOption> options{
        valueOption(u"list"_s, u"LIST"_s, u"answered, missed (the default of a call) or dialed; a message has none"_s),
        valueOption(u"message"_s, u"TEXT"_s, u"of a message, Latin-1, at most %1 characters"_s.arg(kMessageLimit)),
        valueOption(u"message-type"_s, u"N"_s, u"0 for a call; 1 by default where there is a text"_s),
        valueOption(u"message-info"_s, u"N"_s, u"0 by default"_s)};
    return {.name = u"log"_s,
            .summary = u"Log a call or a message of a favourite, in place of its oldest entry when its file is full"_s,
            .arguments = {favouriteArgument()},
            .options = options + callOptions(),
            .words = callWords(),
            .run = logEntry};
}

Command showRow()
{
    return {.name = u"show"_s,
            .summary = u"Show a favourite's calls and messages, newest first"_s,
            .details = u"\nThe objects of --json have the fields\n%1;\nstart is UTC, duration is in seconds.\n"_s.arg(
                fieldNames(activityColumns())),
            .arguments = {favouriteArgument()},
            .options = {jsonOption()},
            .run = showEntries};
}

Command unreadRow()
{
    return {.name = u"unread"_s,
            .summary = u"Count a favourite's unread missed calls and unread messages, as the idle screen does"_s,
            .details = u"\nThe object of --json has the fields %1.\n"_s.arg(fieldNames(kUnreadColumns)),
            .arguments = {favouriteArgument()},
            .options = {jsonOption()},
            .run = countUnread};
}

Command removeRow()
{
    return {.name = u"remove"_s,
            .summary = u"Remove a favourite with its log, or one entry of its log"_s,
            .arguments = {favouriteArgument(),
                          {u"PLACE"_s, u"of the entry alone, as 'favourites show' shows it"_s, Argument::Optional}},
            .run = remove};
}

Command announceRow()
{
    return {.name = u"announce"_s,
            .summary = u"Tell the owner of the favourites of a contact's new details"_s,
            .details = u"\nWhat zyn-favourites makes of it: NEW becomes a favourite in place of OLD.\n"_s,
            .arguments = {{u"OLD"_s, u"the number before the change; '' for a new favourite"_s},
                          {u"NEW"_s, u"the number from now on; '' for a favourite that leaves"_s}},
            .options = {valueOption(u"name"_s, u"NAME"_s, u"of the contact"_s),
                        valueOption(u"image"_s, u"PATH"_s, u"of the contact's picture"_s),
                        valueOption(u"contact-id"_s, u"N"_s, u"in the address book; 0 by default"_s)},
            .run = announce};
}

} // namespace

namespace zyn::tool {

Command favouritesCommand()
{
    return {
        .name = u"favourites"_s,
        .summary = u"The favourites and their activity log"_s,
        .details =
            u"\nA favourite is registered, logged and counted under the last %1 characters of its number.\n"
            "The verbs replace, log, remove and import write: only while no zyn-favourites runs, which does so itself.\n"_s
                .arg(kFavouriteKeyLength),
        .verbs = {listRow(), replaceRow(), logRow(), showRow(), unreadRow(), removeRow(), announceRow(),
                  favouritesExportRow(), favouritesImportRow()}};
}

} // namespace zyn::tool
