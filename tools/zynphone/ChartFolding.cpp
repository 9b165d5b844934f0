// The lanes of a chart, and what is drawn in each as one.
#include "tools/zynphone/ChartFolding.h"

#include <algorithm>

namespace {

using namespace zyn::tool;

constexpr size_t kLeastFolded = 3;
constexpr size_t kLeastFoldedAcross = 20;

size_t firstOf(const ChartRun& run)
{
    return run.messages.front();
}

/// All messages of one name that follow each other on their channel, however few.
ChartRuns allRuns(const std::vector<ReceivedMessage>& messages)
{
    ChartRuns result;
    std::vector<size_t> lastRuns; // of each lane
    for (size_t i = 0; i < messages.size(); ++i) {
        qsizetype lane = result.lanes.indexOf(messages[i].channel);
        const bool isNewLane = lane < 0;
        if (isNewLane) {
            lane = result.lanes.size();
            result.lanes += messages[i].channel;
            lastRuns.push_back(0);
        }
        size_t& lastRun = lastRuns[size_t(lane)];
        if (!isNewLane && messages[firstOf(result.runs[lastRun])].name == messages[i].name) {
            result.runs[lastRun].messages.push_back(i);
        } else {
            lastRun = result.runs.size();
            result.runs.push_back({lane, {i}});
        }
    }
    return result;
}

/// Adds the parts of @p run between which messages of other channels came.
void addUninterrupted(const ChartRun& run, std::vector<ChartRun>& runs)
{
    for (auto begin = run.messages.begin(); begin != run.messages.end();) {
        const auto isGap = [](size_t place, size_t next) { return next != place + 1; };
        const auto last = std::adjacent_find(begin, run.messages.end(), isGap);
        const auto end = last == run.messages.end() ? last : last + 1;
        if (size_t(end - begin) >= kLeastFolded) {
            runs.push_back({run.lane, {begin, end}});
        } else {
            for (auto message = begin; message != end; ++message)
                runs.push_back({run.lane, {*message}});
        }
        begin = end;
    }
}

} // namespace

namespace zyn::tool {

ChartRuns foldedRuns(const std::vector<ReceivedMessage>& messages)
{
    ChartRuns result = allRuns(messages);
    std::vector<ChartRun> runs;
    for (const ChartRun& run : result.runs) {
        if (run.messages.size() >= kLeastFoldedAcross)
            runs.push_back(run);
        else
            addUninterrupted(run, runs);
    }
    std::ranges::sort(runs, {}, firstOf);
    result.runs = std::move(runs);
    return result;
}

} // namespace zyn::tool
