// zynphone favourites: the favourites and their activity log.
#include "tools/commands/Commands.h"

#include "recentcall/utility/RC_TopPals_AL_Interface.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tools/commands/CallOptions.h"
#include "tools/commands/Candidates.h"
#include "tools/commands/FavouritesEdit.h"
#include "tools/commands/MessageSending.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/RecordText.h"

#include <array>
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Entry = PHONE_ENG_ActivityLog;

struct ListedFavourite
{
    int place;
    QString number;
    QJsonValue entries = {}; ///< the number of entries, as in the next two; null if the file cannot be read
    QJsonValue unreadCalls = {};
    QJsonValue unreadMessages = {};
};

constexpr Column<ListedFavourite> kFavouriteColumns[] = {
    {"place", "PLACE", [](const ListedFavourite& favourite) { return QJsonValue(favourite.place); }},
    {"number", "NUMBER", [](const ListedFavourite& favourite) { return QJsonValue(favourite.number); }},
    {"entries", "ENTRIES", [](const ListedFavourite& favourite) { return favourite.entries; }},
    {"unreadMissedCalls", "UNREAD MISSED CALLS",
     [](const ListedFavourite& favourite) { return favourite.unreadCalls; }},
    {"unreadMessages", "UNREAD MESSAGES", [](const ListedFavourite& favourite) { return favourite.unreadMessages; }},
};

constexpr Column<TopPals_Missed_Details> kUnreadColumns[] = {
    {"number", "number", [](const TopPals_Missed_Details& unread) { return QJsonValue(unread.number); }},
    {"unreadMissedCalls", "unread missed calls",
     [](const TopPals_Missed_Details& unread) { return QJsonValue(unread.missedCallCount); }},
    {"unreadMessages", "unread messages",
     [](const TopPals_Missed_Details& unread) { return QJsonValue(unread.unreadMsgCount); }},
};

void count(ListedFavourite& favourite)
{
    handset::ActivityEntries entries;
    TopPals_Missed_Details unread{favourite.number};
    if (!handset::readEntries(entries, favourite.number)
        || RC_TopPals_AL_Interface::instance()->getUnreadCount(unread) != 1)
        return;
    favourite.entries = static_cast<int>(entries.count());
    favourite.unreadCalls = unread.missedCallCount;
    favourite.unreadMessages = unread.unreadMsgCount;
}

ExitCode listFavourites(const Invocation& invocation, Console& console)
{
    std::vector<ListedFavourite> found;
    QStringList unreadable;
    const QStringList keys = readKeys();
    for (int place = 0; place < keys.size(); ++place) {
        if (keys[place].isEmpty())
            continue;
        ListedFavourite& favourite = found.emplace_back(ListedFavourite{place, keys[place]});
        count(favourite);
        if (favourite.entries.isNull())
            unreadable += favourite.number;
    }
    printTable(console, Table(kFavouriteColumns, found), invocation.isSet(u"json"_s));
    if (!unreadable.isEmpty())
        throw failure(u"the file of %1 cannot be read"_s.arg(unreadable.join(u", "_s)));
    return Done;
}

ExitCode showEntries(const Invocation& invocation, Console& console)
{
    handset::ActivityEntries entries;
    if (readKeys().isEmpty())
        throw noFavourite(callNumber(invocation.argument(0)));
    readInto(entries, favouriteFrom(invocation));
    std::vector<std::reference_wrapper<const Entry>> rows; // copying an entry writes trace text
    for (const Entry* entry : entries)
        rows.emplace_back(*entry);
    printTable(console, Table(activityColumns(), rows), invocation.isSet(u"json"_s));
    return Done;
}

ExitCode countUnread(const Invocation& invocation, Console& console)
{
    TopPals_Missed_Details unread{invocation.argument(0)};
    if (readKeys().isEmpty() || RC_TopPals_AL_Interface::instance()->getUnreadCount(unread) != 1)
        throw failure(u"no favourite's file for %1 can be read"_s.arg(unread.number));
    printSheet(console, Table(kUnreadColumns, std::array{unread}), invocation.isSet(u"json"_s));
    return Done;
}

ExitCode announce(const Invocation& invocation, Console& console)
{
    const TopPals_Details_T details{invocation.value(u"name"_s), invocation.argument(1), invocation.value(u"image"_s),
                                    numberFrom(invocation, u"contact-id"_s, 0)};
    requireChannel(kActivityLogChannel);
    return sendOn(kActivityLogChannel, console, [&] {
        if (!RC_TopPals_AL_Interface::instance()->modifyTopPalsContactDetails(invocation.argument(0), details))
            throw failure(u"a listener does not take the message"_s);
    });
}

Command listFavouritesRow()
{
    return {.name = u"list"_s,
            .summary = u"List the favourites with their entries, and what of these is unread"_s,
            .details =
                u"\nThe objects of --json have the fields %1;\n"
                "the last three are null, and '-' in the table, where the file of a favourite cannot be read.\n"_s.arg(
                    fieldNames(kFavouriteColumns)),
            .options = {jsonOption()},
            .run = listFavourites};
}

Command showFavouriteRow()
{
    return {.name = u"show"_s,
            .summary = u"Show a favourite's calls and messages, newest first"_s,
            .details = u"\nThe objects of --json have the fields\n%1;\nstart is UTC, duration is in seconds.\n"_s.arg(
                fieldNames(activityColumns())),
            .arguments = {favouriteArgument()},
            .options = {jsonOption()},
            .sources = {{u"NUMBER"_s, favouriteNumbers}},
            .run = showEntries};
}

Command unreadRow()
{
    return {.name = u"unread"_s,
            .summary = u"Count a favourite's unread missed calls and unread messages, as the idle screen does"_s,
            .details = u"\nThe object of --json has the fields %1.\n"_s.arg(fieldNames(kUnreadColumns)),
            .arguments = {favouriteArgument()},
            .options = {jsonOption()},
            .sources = {{u"NUMBER"_s, favouriteNumbers}},
            .run = countUnread};
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
            .sources = {{u"OLD"_s, favouriteNumbers}, {u"NEW"_s, callNumbers}},
            .run = announce};
}

} // namespace

Command favouritesCommand()
{
    return {
        .name = u"favourites"_s,
        .summary = u"The favourites and their activity log"_s,
        .details =
            u"\nA favourite is registered, logged and counted under the last %1 characters of its number: two numbers\n"
            "that end in the same %1 are one favourite, with one log.\n"
            "The verbs replace, log, remove and import write: only while no zyn-favourites runs, which does so "
            "itself.\n"
            "They begin a new topPalsDetails where that is damaged; list, show, unread and export change nothing.\n"_s
                .arg(kFavouriteKeyLength),
        .verbs = {listFavouritesRow(), replaceFavouriteCommand(), logFavouriteCommand(), showFavouriteRow(),
                  unreadRow(), removeFavouriteCommand(), announceRow(), favouritesExportRow(), favouritesImportRow()}};
}

} // namespace zyn::tool
