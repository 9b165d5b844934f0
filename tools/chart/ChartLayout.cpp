// The layout of a chart.
#include "tools/chart/ChartLayout.h"

#include "tools/chart/ChartStory.h"
#include "tools/zynphone/Console.h"

#include <algorithm>
#include <iterator>
#include <set>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr int kFirstHeads = 108;
constexpr int kBelowHeads = 18;
/// The distance after which the heads are repeated.
constexpr int kHeadsEvery = 1400;
constexpr int kAboveHeads = 10;

constexpr int kEntryGap = 8;
constexpr int kBelowEntries = 20;
constexpr int kBelowText = 10;

constexpr int kTimeColumn = 8; ///< width of a character of a time
constexpr int kBesideTime = 14;
constexpr int kArrowLength = 30; ///< from the axis to the first lane
constexpr int kLaneGap = 22;     ///< from a lane's cards to the next lane
constexpr int kLeastWidth = 560;
constexpr int kCardsTogether = 1080; ///< the approximate greatest width of all cards together
constexpr int kLeastCard = 100;
constexpr int kWidestCard = 400; ///< with several lanes
constexpr qsizetype kFewLanes = 3;
constexpr int kFieldsOfMany = 184; ///< the width of fields with more lanes
constexpr int kSpanWidth = 170;
constexpr int kMonoColumn = 8; ///< greatest width of a column of the fields' font
constexpr qsizetype kMostLines = 4;

/// Longer pauses are drawn alike.
constexpr qint64 kSilence = 2000;
constexpr int kSilenceHeight = 44;
constexpr qint64 kPausePerPixel = 50;

int cardLimit(qsizetype lanes)
{
    return std::max(kWidestCard, kCardsTogether / int(std::max<qsizetype>(lanes, 2)));
}

/// Fields wrap early, so that only long names widen a lane.
qsizetype fieldColumns(int room, qsizetype lanes)
{
    const int width = room * 5 / 6;
    return (lanes > kFewLanes ? std::min(width, kFieldsOfMany) : width) / kMonoColumn;
}

/// The width that @p badge takes from the name.
int badgeRoom(const QString& badge)
{
    return badge.isEmpty() ? 0 : badgeWidth(badge) + kCardPadding;
}

/// The width of the contents of the card of @p entry.
int contentWidth(const ChartEntry& entry)
{
    int width = boldWidth(entry.name.prefix + entry.name.own, kNameSize) + badgeRoom(entry.badge);
    width = std::max(width, boldWidth(entry.meaning, kNameSize));
    for (const QString& line : entry.fields)
        width = std::max(width, int(columnsOf(line)) * kMonoColumn);
    return std::max(width, entry.span.isEmpty() ? 0 : kSpanWidth);
}

int lineCount(const ChartEntry& entry)
{
    return int(entry.fields.size()) + (entry.meaning.isEmpty() ? 0 : 1) + (entry.span.isEmpty() ? 0 : 1);
}

/// The last message of @p run before @p place; the first one is before it.
size_t lastBefore(size_t place, const ChartRun& run)
{
    return *std::prev(std::ranges::lower_bound(run.messages, place));
}

} // namespace

ChartLayout::ChartLayout(const std::vector<ReceivedMessage>& messages, const ChartLanes& lanes,
                         const std::vector<ChartRun>& runs, const ChartClock& clock)
    : m_outcomes(zyn::tool::outcomes(messages))
{
    for (qsizetype lane = 0; lane < lanes.size(); ++lane)
        m_lanes.push_back({jsonEscaped(lanes.name(lane)), roleOf(lanes.name(lane))});
    const bool doOthersSpeak = std::ranges::find(runs, lanes.size() - 1, &ChartRun::lane) != runs.end();
    if (!lanes.others().isEmpty() && !doOthersSpeak)
        m_lanes.back().role = u"only listen"_s;
    const std::vector<QString> meant = meanings(messages);
    for (const ChartRun& run : runs) {
        m_entries.push_back(entryOf(messages, run, run.isFold() ? QString() : meant[run.messages.front()], clock));
        findHearers(messages, lanes, m_entries.back());
    }
    placeLanes();
    placeEntries(messages);
    endBars();
}

ChartEntry ChartLayout::entryOf(const std::vector<ReceivedMessage>& messages, const ChartRun& run,
                                const QString& meaning, const ChartClock& clock) const
{
    const auto timeOf = [&](size_t place) { return clock.text(messages.front().time.msecsTo(messages[place].time)); };
    ChartEntry entry;
    entry.run = &run;
    entry.name = chartName(messages[run.messages.front()]);
    entry.time = timeOf(run.messages.front());
    if (run.isFold()) {
        entry.badge = u"\u00D7 %1"_s.arg(run.turns());
        entry.span = entry.time + u" \u2013 "_s + timeOf(run.messages.back());
    }
    const int room = cardLimit(qsizetype(m_lanes.size())) - 2 * kCardPadding;
    const int prefix = boldWidth(entry.name.prefix, kNameSize);
    entry.name.own = elidedToWidth(entry.name.own, kNameSize, room - prefix - badgeRoom(entry.badge));
    entry.meaning = meaning;
    QStringList fields = chartFields(messages, run);
    fields.removeIf([&](const QString& field) { return !field.contains(u'=') && meaning.contains(field); });
    entry.fields =
        chartLines(fields, fieldColumns(room, qsizetype(m_lanes.size())), std::max(kMostLines, qsizetype(run.inTurn)));
    entry.height = kNameBaseline + lineCount(entry) * kLineHeight + kBelowText;
    return entry;
}

/// Of a fold, those that heard any of it.
void ChartLayout::findHearers(const std::vector<ReceivedMessage>& messages, const ChartLanes& lanes, ChartEntry& entry)
{
    entry.asks = asks(messages[entry.run->messages.front()]);
    entry.isUnheard = true;
    std::set<qsizetype> heard;
    for (const size_t place : entry.run->messages) {
        const auto& hearers = messages[place].hearers;
        entry.isUnheard = entry.isUnheard && hearers && hearers->isEmpty();
        const std::vector<qsizetype> ofMessage = lanes.hearersOf(messages[place]);
        heard.insert(ofMessage.begin(), ofMessage.end());
    }
    entry.hearers.assign(heard.begin(), heard.end());
}

void ChartLayout::placeLanes()
{
    for (const ChartEntry& entry : m_entries) {
        ChartLane& lane = m_lanes[size_t(entry.run->lane)];
        lane.cardWidth = std::max(lane.cardWidth, contentWidth(entry) + 2 * kCardPadding);
    }
    const qsizetype timeLength = m_entries.empty() ? 0 : m_entries.back().time.size();
    m_axis = kMargin + std::max<int>(int(timeLength), 8) * kTimeColumn + kBesideTime;
    int x = m_axis + kArrowLength;
    for (ChartLane& lane : m_lanes) {
        const int limit = cardLimit(qsizetype(m_lanes.size()));
        lane.title = elidedToWidth(lane.title, kNameSize, limit - 2 * kCardPadding);
        const int title =
            std::max(boldWidth(lane.title, kNameSize), boldWidth(lane.role, kNameSize)) + 2 * kCardPadding;
        lane.cardWidth = std::clamp(std::max(lane.cardWidth, title), kLeastCard, limit);
        lane.x = x;
        x += kCardOffset + lane.cardWidth + kLaneGap;
    }
    m_width = std::max(kLeastWidth, x - kLaneGap + kMargin);
}

void ChartLayout::placeEntries(const std::vector<ReceivedMessage>& messages)
{
    m_bottom = kFirstHeads;
    addHeads();
    const ChartRun* before = nullptr;
    for (ChartEntry& entry : m_entries) {
        if (m_bottom - m_heads.back() > kHeadsEvery) {
            m_bottom += kAboveHeads;
            addHeads();
        }
        const size_t place = entry.run->messages.front();
        if (before)
            addPause(messages[lastBefore(place, *before)].time.msecsTo(messages[place].time));
        before = entry.run;
        entry.top = m_bottom;
        m_bottom += entry.height + kEntryGap;
    }
    m_bottom += kBelowEntries - kEntryGap;
}

void ChartLayout::addHeads()
{
    m_heads.push_back(m_bottom);
    m_bottom += kHeadHeight + kBelowHeads;
}

void ChartLayout::addPause(qint64 milliseconds)
{
    if (milliseconds < kSilence) {
        m_bottom += int(milliseconds / kPausePerPixel);
        return;
    }
    m_silences.push_back({m_bottom, kSilenceHeight, durationText(milliseconds)});
    m_bottom += kSilenceHeight + kEntryGap;
}

/// Extends the bar of each fold to the entry before its last message.
void ChartLayout::endBars()
{
    for (ChartEntry& entry : m_entries) {
        if (!entry.run->isFold())
            continue;
        const auto next = std::ranges::lower_bound(m_entries, entry.run->messages.back(), {},
                                                   [](const ChartEntry& other) { return other.run->messages.front(); });
        entry.barBottom = std::prev(next)->top + std::prev(next)->height;
    }
}

} // namespace zyn::tool
