// What arguments and values may be at this moment, for completion: read from files, so that no service is waited for.
#include "tools/commands/Candidates.h"

#include "handset/favourites/ActivityLog.h"
#include "handset/favourites/Favourites.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tools/recording/MessageText.h"
#include "tools/store/StoredCalls.h"
#include "tools/zynphone/RecordText.h"
#include "utility/message/PhoneMessages_p.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using handset::Candidates;
using Call = PHONE_ENG_RecentCall;

/// The calls of @p list, newest first; none of a file that cannot be read.
std::vector<Call> callsOf(RC_CALL_CATEGORY_T list)
{
    std::vector<Call> calls;
    for (const RC_CALL_CATEGORY_T each : kRecordLists) {
        if (each == list || list == RC_CALL_CATEGORY_ALL)
            std::ranges::copy(storedCalls(each).value_or(std::vector<Call>()), std::back_inserter(calls));
    }
    std::ranges::stable_sort(calls, std::ranges::greater(), &Call::uid);
    return calls;
}

template<typename Record>
QString description(const Record& record)
{
    return QStringList{categoryWord(record.category), record.getPhoneNumber(), record.getDisplayName(),
                       localStart(record)}
        .join(u' ');
}

/// All messages that the library knows.
std::vector<const Message*> knownMessages()
{
    std::vector<const Message*> known;
    const auto add = [&known](const auto& messages) {
        for (const Message& message : messages)
            known.push_back(&message);
    };
    add(phoneMessages());
    add(channelMessages());
    return known;
}

} // namespace

Candidates callUids(const QStringList& /*arguments*/)
{
    Candidates found;
    for (const Call& call : callsOf(RC_CALL_CATEGORY_ALL))
        found += {QString::number(call.uid), description(call)};
    return found;
}

Candidates callNumbers(const QStringList& /*arguments*/)
{
    Candidates found;
    for (const Call& call : callsOf(RC_CALL_CATEGORY_ALL))
        found += {call.getPhoneNumber(), call.getDisplayName()};
    return found;
}

Candidates callIndices(const QStringList& arguments)
{
    const auto list = std::ranges::find(kListsOrAll, arguments.value(0),
                                        [](const ListWord& word) { return QLatin1String(word.text); });
    Candidates found;
    if (list != kListsOrAll.end()) {
        for (const Call& call : callsOf(list->value))
            found += {QString::number(found.size()), description(call)};
    }
    return found;
}

Candidates favouriteNumbers(const QStringList& /*arguments*/)
{
    Candidates found;
    const QStringList keys = handset::readFavouriteKeys().value_or(QStringList());
    for (qsizetype place = 0; place < keys.size(); ++place)
        found += {keys[place], u"favourite in place %1"_s.arg(place)};
    return found;
}

Candidates entryPlaces(const QStringList& arguments)
{
    const QString key = favouriteKey(arguments.value(0));
    handset::ActivityEntries entries;
    Candidates found;
    if (!handset::readFavouriteKeys().value_or(QStringList()).contains(key) || !handset::readEntries(entries, key))
        return found;
    for (const PHONE_ENG_ActivityLog* entry : entries)
        found += {QString::number(entry->topPalsAvlPos), description(*entry)};
    return found;
}

Candidates messageWords(const QStringList& /*arguments*/)
{
    Candidates found;
    for (const Message* message : knownMessages())
        found += {messageWord(message->channel, message->name), QLatin1String(message->name)};
    return found;
}

Candidates messageNames(const QStringList& arguments)
{
    Candidates found;
    for (const Message* message : knownMessages()) {
        if (arguments.value(0) == QLatin1String(message->channel))
            found += {QLatin1String(message->name), messageWord(message->channel, message->name)};
    }
    return found;
}

} // namespace zyn::tool
