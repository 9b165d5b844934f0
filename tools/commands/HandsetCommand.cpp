// zynphone handset: the states of the stand-in handset.
#include "tools/commands/Commands.h"

#include "platform/HandsetState_p.h"
#include "platform/SETUP_SET_Manager.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Table.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using handset::readState;
using handset::State;

const QLatin1String kGroup(handset::kGroup);

constexpr Column<State> kStateColumns[] = {
    {"name", "NAME", [](const State& state) { return QJsonValue(QLatin1String(state.name)); }},
    {"value", "VALUE", [](const State& state) { return QJsonValue(readState(state)); }},
    {"meaning", "MEANING", [](const State& state) { return QJsonValue(QLatin1String(state.meaning)); }},
};

ExitCode showStates(const Invocation& invocation, Console& console)
{
    printTable(console, Table(kStateColumns, handset::kStates), invocation.isSet(u"json"_s));
    return Done;
}

handset::Candidates stateNames(const QStringList& /*arguments*/)
{
    handset::Candidates names;
    for (const State& state : handset::kStates)
        names += {QLatin1String(state.name), QLatin1String(state.meaning)};
    return names;
}

/// Values and further names take turns. Of a value, the present one.
handset::Candidates namesAndValues(const QStringList& arguments)
{
    if (arguments.size() % 2 == 0)
        return stateNames(arguments);
    const auto state = std::ranges::find(handset::kStates, arguments.last(),
                                         [](const State& each) { return QLatin1String(each.name); });
    if (state == handset::kStates.end())
        return {};
    return {{QString::number(readState(*state)), QLatin1String(state->meaning)}};
}

struct Assignment
{
    const State* state;
    int value;
};

const State* findState(const QString& name)
{
    const auto found =
        std::ranges::find(handset::kStates, name, [](const State& state) { return QLatin1String(state.name); });
    if (found == handset::kStates.end())
        throw usageError(u"unknown state '%1'; 'zynphone handset show' lists them"_s.arg(name));
    return found;
}

QList<Assignment> assignmentsFrom(const QStringList& words)
{
    QList<Assignment> assignments;
    for (qsizetype i = 0; i < words.size(); i += 2) {
        const State* state = findState(words[i]);
        if (i + 1 == words.size())
            throw usageError(u"missing value of '%1'"_s.arg(words[i]));
        assignments += {state, wholeNumber(words[i + 1], words[i])};
    }
    return assignments;
}

QString statesHelp()
{
    QString lines;
    for (const State& state : handset::kStates)
        lines += u"  %1: %2\n"_s.arg(QLatin1String(state.name), QLatin1String(state.meaning));
    return lines;
}

ExitCode setStates(const Invocation& invocation, Console& /*console*/)
{
    SETUP_SET_Manager settings(handset::stateFile(), false);
    for (const Assignment& assignment : assignmentsFrom(invocation.arguments())) {
        if (!settings.setSettingInfo(kGroup, QLatin1String(assignment.state->key), assignment.value))
            throw failure(u"cannot write %1"_s.arg(handset::stateFile()));
    }
    return Done;
}

} // namespace

Command handsetCommand()
{
    Command show{.name = u"show"_s,
                 .summary = u"Show the states"_s,
                 .details = u"\nThe objects of --json have the fields %1.\n"_s.arg(fieldNames(kStateColumns)),
                 .options = {jsonOption()},
                 .run = showStates};
    Command set{.name = u"set"_s,
                .summary = u"Set one or more states, for every process that asks from now on"_s,
                .details = u"\nThe states:\n%1"_s.arg(statesHelp()),
                .arguments = {{u"NAME"_s, u"a state that 'zynphone handset show' lists"_s},
                              {u"VALUE"_s, u"a whole number; further names and values may follow"_s, Argument::Many}},
                .sources = {{u"NAME"_s, stateNames}, {u"VALUE"_s, namesAndValues}},
                .run = setStates};
    return {.name = u"handset"_s,
            .summary = u"The states of the stand-in handset"_s,
            .verbs = {std::move(show), std::move(set)}};
}

} // namespace zyn::tool
