// The lanes of a chart, and what is drawn in each as one.
#include "tools/chart/ChartFolding.h"

#include <algorithm>
#include <span>

namespace zyn::tool {
namespace {

constexpr size_t kLeastFolded = 3;
constexpr size_t kLeastFoldedAcross = 20;
constexpr size_t kMostInTurn = 8;

using Messages = std::vector<ReceivedMessage>;
using Places = std::span<const size_t>;

size_t firstOf(const ChartRun& run)
{
    return run.messages.front();
}

/// The longest fold that @p places of one lane begin with: whole turns of as few names as make it. One message when
/// there is none.
ChartRun leadingFold(const Messages& messages, qsizetype lane, Places places)
{
    size_t longest = 1;
    size_t names = 1;
    for (size_t inTurn = 1; inTurn <= std::min(kMostInTurn, places.size()); ++inTurn) {
        size_t length = inTurn;
        while (length < places.size() && messages[places[length]].name == messages[places[length - inTurn]].name)
            ++length;
        length -= length % inTurn;
        if (length >= kLeastFolded * inTurn && length > longest) {
            longest = length;
            names = inTurn;
        }
    }
    return {lane, {places.begin(), places.begin() + std::ptrdiff_t(longest)}, names};
}

/// Adds all of @p places, between which no message of another lane came.
void addUninterrupted(const Messages& messages, qsizetype lane, Places places, std::vector<ChartRun>& runs)
{
    while (!places.empty()) {
        runs.push_back(leadingFold(messages, lane, places));
        places = places.subspan(runs.back().messages.size());
    }
}

/// Adds all of @p places, of which none is in a fold across other lanes.
void addParts(const Messages& messages, qsizetype lane, Places places, std::vector<ChartRun>& runs)
{
    while (!places.empty()) {
        const auto isGap = [](size_t place, size_t next) { return next != place + 1; };
        const auto last = std::ranges::adjacent_find(places, isGap);
        const size_t size = last == places.end() ? places.size() : size_t(last - places.begin()) + 1;
        addUninterrupted(messages, lane, places.first(size), runs);
        places = places.subspan(size);
    }
}

void addLane(const Messages& messages, qsizetype lane, Places places, std::vector<ChartRun>& runs)
{
    size_t before = 0; // messages that are in no run yet
    while (before < places.size()) {
        ChartRun fold = leadingFold(messages, lane, places.subspan(before));
        const size_t size = fold.messages.size();
        if (size < kLeastFoldedAcross) {
            ++before;
            continue;
        }
        addParts(messages, lane, places.first(before), runs);
        runs.push_back(std::move(fold));
        places = places.subspan(before + size);
        before = 0;
    }
    addParts(messages, lane, places, runs);
}

} // namespace

ChartRuns foldedRuns(const std::vector<ReceivedMessage>& messages)
{
    ChartRuns result;
    std::vector<std::vector<size_t>> places; // of each lane's messages
    for (size_t i = 0; i < messages.size(); ++i) {
        qsizetype lane = result.lanes.indexOf(messages[i].channel);
        if (lane < 0) {
            lane = result.lanes.size();
            result.lanes += messages[i].channel;
            places.emplace_back();
        }
        places[size_t(lane)].push_back(i);
    }
    for (qsizetype lane = 0; lane < result.lanes.size(); ++lane)
        addLane(messages, lane, places[size_t(lane)], result.runs);
    std::ranges::sort(result.runs, {}, firstOf);
    return result;
}

} // namespace zyn::tool
