// Changes the favourites and their logs, as their temporary owner.
#include "tools/commands/FavouritesEdit.h"

#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/commands/CallOptions.h"
#include "tools/commands/Candidates.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/RecordText.h"
#include "tools/zynphone/Text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Change = handset::FavouriteChange;
using Entry = PHONE_ENG_ActivityLog;

/// Marks an entry that was not made from a call.
constexpr int32_t kNoUid = -1;
constexpr qsizetype kMessageLimit = sizeof Entry::msgString - 1;

ExitCode reportChange(const QString& oldNumber, const QString& newNumber, Console& console)
{
    const Change change = handset::replaceFavourite(oldNumber, newNumber);
    const QString text = handset::describe(change, oldNumber, newNumber);
    if (change != Change::Done && change != Change::Same)
        throw failure(text);
    console.write(printable(text) + u'\n');
    return Done;
}

ExitCode replaceFavourite(const Invocation& invocation, Console& console)
{
    const QString oldNumber = invocation.argument(0);
    const QString newNumber = invocation.argument(1);
    if (oldNumber.isEmpty() && newNumber.isEmpty())
        throw usageError(u"both numbers are empty"_s);
    if (!newNumber.isEmpty())
        callNumber(newNumber);
    const FavouritesOwnership ownership;
    return reportChange(oldNumber, newNumber, console);
}

/// The message fields given by the options.
void setMessage(Entry& entry, const Invocation& invocation)
{
    entry.msgType = numberFrom(invocation, u"message-type"_s, invocation.isSet(u"message"_s) ? 1 : 0);
    entry.msgInfo = numberFrom(invocation, u"message-info"_s, 0);
    entry.setMsgString(latin1Field(invocation.value(u"message"_s), u"message"_s, kMessageLimit));
}

/// A missed call by default; a message belongs to no list.
RC_CALL_CATEGORY_T entryListFrom(const Invocation& invocation)
{
    const bool isMessage = invocation.isSet(u"message"_s) || invocation.isSet(u"message-type"_s);
    if (!invocation.isSet(u"list"_s))
        return isMessage ? RC_CALL_CATEGORY_NONE : RC_CALL_CATEGORY_MISSED;
    return wordNamed(kLists, invocation.value(u"list"_s), u"list"_s).value;
}

ExitCode logEntry(const Invocation& invocation, Console& console)
{
    Entry entry(callFrom(invocation, entryListFrom(invocation), callNumber(invocation.argument(0))));
    entry.uid = kNoUid;
    setMessage(entry, invocation);
    const FavouritesOwnership ownership;
    const QString key = favouriteFrom(invocation);
    if (!handset::addEntry(entry, key))
        throw failure(u"the file of %1 cannot be written"_s.arg(key));
    const int place = entry.topPalsAvlPos;
    printValue(console, u"logged in place %1"_s.arg(place), {{u"place"_s, place}}, invocation.isSet(u"json"_s));
    return Done;
}

ExitCode removeEntry(const Invocation& invocation, Console& console)
{
    const int place = wholeNumber(invocation.argument(1), u"PLACE"_s, 0);
    const QString key = favouriteFrom(invocation);
    handset::ActivityEntries entries;
    readInto(entries, key);
    const auto found = std::ranges::find(entries, place, &Entry::topPalsAvlPos);
    if (found == entries.end())
        throw failure(u"%1 has no entry in place %2"_s.arg(key, QString::number(place)));
    if (ActivityLog_ENG_RecordStore::instance()->removeTopPalsAvlItem(**found) != 1)
        throw failure(u"the file of %1 cannot be written"_s.arg(key));
    console.write(u"removed\n"_s);
    return Done;
}

ExitCode remove(const Invocation& invocation, Console& console)
{
    const FavouritesOwnership ownership;
    if (invocation.arguments().size() > 1)
        return removeEntry(invocation, console);
    return reportChange(callNumber(invocation.argument(0)), QString(), console);
}

} // namespace

Argument favouriteArgument()
{
    return {u"NUMBER"_s, u"of the favourite, of which the last %1 characters count"_s.arg(kFavouriteKeyLength)};
}

QString favouriteFrom(const Invocation& invocation)
{
    QString key = favouriteKey(callNumber(invocation.argument(0)));
    if (!handset::isFavourite(key))
        throw noFavourite(key);
    return key;
}

QStringList readKeys()
{
    const auto keys = handset::readFavouriteKeys();
    if (!keys)
        throw failure(u"%1 is damaged or cannot be read; see 'zynphone inspect'"_s.arg(
            storePath(QLatin1String(kTopPalsDetailsName))));
    return *keys;
}

CommandError noFavourite(const QString& number)
{
    return failure(handset::describe(Change::NoFavourite, number, QString()));
}

void readInto(handset::ActivityEntries& entries, const QString& key)
{
    if (!handset::readEntries(entries, key))
        throw failure(u"the file of %1 cannot be read"_s.arg(key));
}

Command replaceFavouriteCommand()
{
    return {.name = u"replace"_s,
            .summary = u"Replace a favourite by another, whose log begins empty"_s,
            .arguments = {{u"OLD"_s, u"the number of a favourite; '' when none is to leave"_s},
                          {u"NEW"_s, u"the number of the new one; '' when none is to come"_s}},
            .sources = {{u"OLD"_s, favouriteNumbers}, {u"NEW"_s, callNumbers}},
            .run = replaceFavourite};
}

Command logFavouriteCommand()
{
    QList<QCommandLineOption> options{
        valueOption(u"list"_s, u"LIST"_s, u"answered, missed (the default of a call) or dialed; a message has none"_s),
        valueOption(u"message"_s, u"TEXT"_s, u"of a message, Latin-1, at most %1 characters"_s.arg(kMessageLimit)),
        valueOption(u"message-type"_s, u"N"_s, u"0 for a call; 1 by default where there is a text"_s),
        valueOption(u"message-info"_s, u"N"_s, u"0 by default"_s)};
    return {.name = u"log"_s,
            .summary = u"Log a call or a message of a favourite, in place of its oldest entry when its file is full"_s,
            .details = u"\nThe object of --json has the field place.\n"_s,
            .arguments = {favouriteArgument()},
            .options = QList{jsonOption()} + options + callOptions(),
            .words = callWords(),
            .sources = {{u"NUMBER"_s, favouriteNumbers}},
            .run = logEntry};
}

Command removeFavouriteCommand()
{
    return {.name = u"remove"_s,
            .summary = u"Remove a favourite with its log, or one entry of its log"_s,
            .arguments = {favouriteArgument(),
                          {u"PLACE"_s, u"of the entry alone, as 'favourites show' shows it"_s, Argument::Optional}},
            .sources = {{u"NUMBER"_s, favouriteNumbers}, {u"PLACE"_s, entryPlaces}},
            .run = remove};
}

} // namespace zyn::tool
