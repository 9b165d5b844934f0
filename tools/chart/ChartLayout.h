// The layout of a chart.
#pragma once

#include "tools/chart/ChartText.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace zyn::tool {

/// All positions and sizes are in pixels.
inline constexpr int kMargin = 28;
inline constexpr int kTitleBaseline = 46;
inline constexpr int kNoteBaseline = 68;
inline constexpr int kLegendBaseline = 86;
inline constexpr int kTitleSize = 20;
inline constexpr int kNameSize = 13;
inline constexpr int kHeadHeight = 42;
inline constexpr int kCardOffset = 12; ///< from the lane's line
inline constexpr int kCardPadding = 10;
inline constexpr int kNameBaseline = 19; ///< below the card's top, like the following ones
inline constexpr int kArrowLine = 14;
inline constexpr int kLineHeight = 17;
inline constexpr int kOutcomeLine = 20;
inline constexpr int kOutcomeGap = 14; ///< above and below the outcomes

inline int badgeWidth(const QString& badge)
{
    return int(badge.size()) * 7 + 12;
}

/// One program.
struct ChartLane
{
    QString title;
    QString role;      ///< for people; may be empty
    int x = 0;         ///< of its line
    int cardWidth = 0; ///< of the cards beside the line
};

/// A message or a fold, beside the line of its lane.
struct ChartEntry
{
    const ChartRun* run = nullptr;
    ChartName name;
    QString badge;      ///< the number of messages; empty for one
    QString meaning;    ///< for people; may be empty
    QStringList fields; ///< lines
    QString span;       ///< first and last time of a fold
    QString time;
    int top = 0;
    int height = 0;
    int barBottom = 0;              ///< the end of a fold's bar on the lane's line
    std::vector<qsizetype> hearers; ///< their lanes, without the sender's
    bool isUnheard = false;         ///< nobody listens
    bool asks = false;
};

/// A pause that is drawn shorter than it was.
struct ChartSilence
{
    int top;
    int height;
    QString duration;
};

class ChartLayout
{
public:
    /// Lays out @p messages; keeps a reference to their @p runs.
    ChartLayout(const std::vector<ReceivedMessage>& messages, const ChartLanes& lanes,
                const std::vector<ChartRun>& runs, const ChartClock& clock);

    const std::vector<ChartLane>& lanes() const { return m_lanes; }
    const std::vector<ChartEntry>& entries() const { return m_entries; }
    const std::vector<ChartSilence>& silences() const { return m_silences; }
    /// The tops of the lanes' heads, which repeat.
    const std::vector<int>& heads() const { return m_heads; }
    int axis() const { return m_axis; }
    /// The end of the lanes' lines.
    int bottom() const { return m_bottom; }
    int width() const { return m_width; }
    int height() const { return m_bottom + kMargin + (m_outcomes.isEmpty() ? 0 : outcomeHeight() + kOutcomeGap); }
    int outcomeHeight() const { return int(m_outcomes.size() + 1) * kOutcomeLine + kOutcomeGap; }
    /// What came of the calls, below the lines.
    const QStringList& outcomes() const { return m_outcomes; }

private:
    ChartEntry entryOf(const std::vector<ReceivedMessage>& messages, const ChartRun& run, const QString& meaning,
                       const ChartClock& clock) const;
    static void findHearers(const std::vector<ReceivedMessage>& messages, const ChartLanes& lanes, ChartEntry& entry);
    void placeLanes();
    void placeEntries(const std::vector<ReceivedMessage>& messages);
    void addHeads();
    void addPause(qint64 milliseconds);
    void endBars();

    std::vector<ChartLane> m_lanes;
    std::vector<ChartEntry> m_entries;
    std::vector<ChartSilence> m_silences;
    std::vector<int> m_heads;
    QStringList m_outcomes;
    int m_axis = 0;
    int m_bottom = 0; ///< the top of the next entry during layout
    int m_width = 0;
};

} // namespace zyn::tool
