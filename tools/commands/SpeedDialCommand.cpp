// zynphone speed-dial: the nine numbers of speed dial.
#include "tools/commands/Commands.h"

#include "tools/commands/Candidates.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Table.h"
#include "utility/PHONE_SpeedDial.h"

#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr int kFirstIndex = 1;
constexpr int kLastIndex = 9;

struct SpeedDialEntry
{
    int index;
    QString number; ///< empty if the entry is free
};

constexpr Column<SpeedDialEntry> kSpeedDialColumns[] = {
    {"index", "INDEX", [](const SpeedDialEntry& entry) { return QJsonValue(entry.index); }},
    {"number", "NUMBER", [](const SpeedDialEntry& entry) { return QJsonValue(entry.number); }},
};

int indexFrom(const Invocation& invocation)
{
    return wholeNumber(invocation.argument(0), u"INDEX"_s, kFirstIndex, kLastIndex);
}

ExitCode listEntries(const Invocation& invocation, Console& console)
{
    QStringList numbers;
    PHONE_SpeedDial().getTurboDialingList(numbers);
    std::vector<SpeedDialEntry> entries;
    for (const QString& number : numbers)
        entries.push_back({kFirstIndex + static_cast<int>(entries.size()), number});
    printTable(console, Table(kSpeedDialColumns, entries), invocation.isSet(u"json"_s));
    return Done;
}

ExitCode showEntry(const Invocation& invocation, Console& console)
{
    const int index = indexFrom(invocation);
    const QString number = PHONE_SpeedDial().getTurboDialing(index);
    if (number.isEmpty())
        throw failure(u"entry %1 is free"_s.arg(index));
    printValue(console, printable(number), {{u"index"_s, index}, {u"number"_s, number}}, invocation.isSet(u"json"_s));
    return Done;
}

ExitCode setEntry(const Invocation& invocation, Console& /*console*/)
{
    const int index = indexFrom(invocation);
    if (!PHONE_SpeedDial().setTurboDialing(index, invocation.argument(1)))
        throw failure(u"the settings store did not take the number"_s);
    return Done;
}

ExitCode showFirstFree(const Invocation& invocation, Console& console)
{
    const int index = PHONE_SpeedDial().getFirstAvailableTurboDialingIndex();
    if (index < kFirstIndex)
        throw failure(u"no entry is free"_s);
    printValue(console, QString::number(index), {{u"index"_s, index}}, invocation.isSet(u"json"_s));
    return Done;
}

handset::Candidates indices(const QStringList& /*arguments*/)
{
    QStringList numbers;
    PHONE_SpeedDial().getTurboDialingList(numbers);
    handset::Candidates found;
    for (const QString& number : numbers)
        found += {QString::number(kFirstIndex + found.size()), number.isEmpty() ? u"free"_s : number};
    return found;
}

Argument indexArgument()
{
    return {u"INDEX"_s, u"%1 to %2"_s.arg(kFirstIndex).arg(kLastIndex)};
}

} // namespace

Command speedDialCommand()
{
    Command list{.name = u"list"_s,
                 .summary = u"List the entries, the free ones with an empty number"_s,
                 .details = u"\nThe objects of --json have the fields %1.\n"_s.arg(fieldNames(kSpeedDialColumns)),
                 .options = {jsonOption()},
                 .run = listEntries};
    Command get{.name = u"get"_s,
                .summary = u"Show the number of an entry"_s,
                .details = u"\nThe object of --json has the fields index and number.\n"_s,
                .arguments = {indexArgument()},
                .options = {jsonOption()},
                .sources = {{u"INDEX"_s, indices}},
                .run = showEntry};
    Command set{.name = u"set"_s,
                .summary = u"Set the number of an entry"_s,
                .arguments = {indexArgument(), {u"NUMBER"_s, u"any text; '' frees the entry"_s}},
                .sources = {{u"INDEX"_s, indices}, {u"NUMBER"_s, callNumbers}},
                .run = setEntry};
    Command firstFree{.name = u"first-free"_s,
                      .summary = u"Show the lowest index whose entry is free"_s,
                      .details = u"\nThe object of --json has the field index.\n"_s,
                      .options = {jsonOption()},
                      .run = showFirstFree};
    return {.name = u"speed-dial"_s,
            .summary = u"The nine numbers of speed dial"_s,
            .verbs = {std::move(list), std::move(get), std::move(set), std::move(firstFree)}};
}

} // namespace zyn::tool
