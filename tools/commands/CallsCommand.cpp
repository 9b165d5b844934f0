// zynphone calls: the log of recent calls.
#include "tools/commands/Commands.h"

#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RC_Interface.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "tools/commands/CallOptions.h"
#include "tools/commands/Candidates.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/ExitCode.h"
#include "tools/zynphone/RecordText.h"

#include <algorithm>
#include <iterator>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Call = PHONE_ENG_RecentCall;

constexpr int kNoSuchCall = recentcall::NoSuchRecord; // of RC_Interface, too

CommandError noSuchCall(int uid)
{
    return failure(u"no such call: %1"_s.arg(uid));
}

ExitCode listCalls(const Invocation& invocation, Console& console)
{
    const auto list = invocation.arguments().isEmpty() ? RC_CALL_CATEGORY_ALL : listNamed(invocation.argument(0));
    printTable(console, Table(callColumns(), fetchCalls(list, typesFrom(invocation))), invocation.isSet(u"json"_s));
    return Done;
}

ExitCode addCall(const Invocation& invocation, Console& console)
{
    sendCalls({callFrom(invocation)});
    console.write(u"sent\n"_s);
    return Done;
}

/// The call with @p uid of @p calls, which are those of @p list.
const Call& callWith(int uid, const std::vector<Call>& calls, RC_CALL_CATEGORY_T list)
{
    const auto isNamed = [uid](const Call& candidate) { return candidate.uid == uid; };
    const auto found = std::ranges::find_if(calls, isNamed);
    if (found == calls.end())
        throw noSuchCall(uid);
    if (list == RC_CALL_CATEGORY_ALL && std::any_of(std::next(found), calls.end(), isNamed))
        throw failure(u"several calls have uid %1; name the list with --list"_s.arg(uid));
    return *found;
}

/// Throws unless the service's @p result says that it has changed @p call.
void expectChanged(int result, const Call& call)
{
    if (result == kNoSuchCall)
        throw noSuchCall(call.uid);
    if (result != 0)
        throw recentCallServiceError();
}

/// The calls whose uids are the arguments. All are found before one is changed, so that a mistyped one changes nothing.
std::vector<Call> namedCalls(const Invocation& invocation)
{
    std::vector<int> uids;
    for (const QString& text : invocation.arguments())
        uids.push_back(wholeNumber(text, u"UID"_s));
    const RC_CALL_CATEGORY_T list = listFrom(invocation);
    const std::vector<Call> calls = fetchCalls(list);
    std::vector<Call> named;
    named.reserve(uids.size());
    for (const int uid : uids)
        named.push_back(callWith(uid, calls, list));
    return named;
}

ExitCode deleteCall(const Invocation& invocation, Console& console)
{
    const Call call = namedCalls(invocation).front();
    expectChanged(RC_Interface().deleteRecord(RC_RecordInterfaceImpl(new Call(call))), call);
    console.write(u"deleted\n"_s);
    return Done;
}

ExitCode markCallsRead(const Invocation& invocation, Console& console)
{
    for (const Call& call : namedCalls(invocation))
        expectChanged(recentcall::markRead(call), call);
    console.write(u"marked as read\n"_s);
    return Done;
}

ExitCode clearCalls(const Invocation& invocation, Console& console)
{
    const RC_CALL_CATEGORY_T list = listNamed(invocation.argument(0));
    for (const RC_CALL_TYPE_T type : typesFrom(invocation)) {
        const int result = RC_Interface().deleteRecordAll(list, type);
        // The requested state is reached if there is nothing to delete.
        if (result != 0 && result != kNoSuchCall)
            throw recentCallServiceError();
    }
    console.write(u"cleared\n"_s);
    return Done;
}

ExitCode showLastDialed(const Invocation& invocation, Console& console)
{
    QString number;
    if (!RC_Interface().getLastDialedNumber(number))
        throw failure(u"no dialed call"_s);
    printValue(console, printable(number), {{u"number"_s, number}}, invocation.isSet(u"json"_s));
    return Done;
}

Command listCallsRow()
{
    return {.name = u"list"_s,
            .summary = u"List calls, newest first"_s,
            .details = u"\nThe objects of --json have the fields %1;\nstart is UTC, duration is in seconds.\n"_s.arg(
                fieldNames(callColumns())),
            .arguments = {{u"LIST"_s, u"answered, missed, dialed or all (the default)"_s, Argument::Optional}},
            .options = {typeOption(), jsonOption()},
            .words = selectionWords(),
            .run = listCalls};
}

Command addRow()
{
    return {.name = u"add"_s,
            .summary = u"Send a call to the recent-call service, which does not say whether it keeps it"_s,
            .arguments = callArguments(),
            .options = callOptions(),
            .words = callWords(),
            .sources = {{u"NUMBER"_s, callNumbers}},
            .run = addCall};
}

Command readRow()
{
    return {
        .name = u"read"_s,
        .summary = u"Mark calls as read: seen by the user, as the recent-call screens do with what they show"_s,
        .arguments = {{u"UID"_s, u"as 'calls list' shows it; when one is unknown, none is marked"_s, Argument::Many}},
        .options = {listOption()},
        .words = selectionWords(),
        .sources = {{u"UID"_s, callUids}},
        .run = markCallsRead};
}

Command deleteRow()
{
    return {.name = u"delete"_s,
            .summary = u"Delete one call"_s,
            .arguments = {{u"UID"_s, u"as 'calls list' shows it"_s}},
            .options = {listOption()},
            .words = selectionWords(),
            .sources = {{u"UID"_s, callUids}},
            .run = deleteCall};
}

Command clearRow()
{
    return {.name = u"clear"_s,
            .summary = u"Delete all calls of a list"_s,
            .arguments = {{u"LIST"_s, u"answered, missed, dialed or all"_s}},
            .options = {typeOption()},
            .words = selectionWords(),
            .run = clearCalls};
}

Command lastDialedRow()
{
    return {.name = u"last-dialed"_s,
            .summary = u"Show the number dialed last, read from the file without the service"_s,
            .details = u"\nThe object of --json has the field number.\n"_s,
            .options = {jsonOption()},
            .run = showLastDialed};
}

} // namespace

Command callsCommand()
{
    return {.name = u"calls"_s,
            .summary = u"The log of recent calls"_s,
            .verbs = {listCallsRow(), addRow(), readRow(), deleteRow(), clearRow(), lastDialedRow(), seedRow(),
                      exportRow(), importRow()}};
}

} // namespace zyn::tool
