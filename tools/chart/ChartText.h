// The texts of a chart: names, times, and runs of like messages folded into one line.
#pragma once

#include "tools/recording/MessageText.h"

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace zyn::tool {

/// A message, or several that follow each other on their channel and are of one name, or of names that take turns.
struct ChartRun
{
    qsizetype lane;
    std::vector<size_t> messages; ///< their places in the recording, ascending
    size_t inTurn = 1;            ///< how many of them are a turn; they are whole turns

    bool isFold() const { return messages.size() > 1; }
    size_t turns() const { return messages.size() / inTurn; }
};

struct ChartRuns
{
    QList<QCString> lanes;      ///< the channels, in the order of their first messages
    std::vector<ChartRun> runs; ///< in the order of their first messages
};

/// Folds @p messages: from three of a kind, or three turns, on, when no other message came between; from twenty
/// messages on also across those of other channels. Fewer show the order in which things happened.
ChartRuns foldedRuns(const std::vector<ReceivedMessage>& messages);

/// How a chart writes times: as all of them are written alike, the longest says how.
class ChartClock
{
public:
    /// For times of at most @p longest milliseconds.
    explicit ChartClock(qint64 longest);

    /// "0.250", "1:00.250" or "1:00:00.250".
    QString text(qint64 milliseconds) const;
    /// What the numbers are.
    QString unit() const;

private:
    bool m_hasMinutes;
    bool m_hasHours;
};

/// "1.5 s", "2 min 5 s", "3 h 20 min".
QString durationText(qint64 milliseconds);

/// A message's name in two parts: what all numbered messages of the channel begin with, and what tells it from others.
struct ChartName
{
    QString prefix;
    QString own;
};
ChartName chartName(const ReceivedMessage& message);

/// The fields of @p run; where they change, what they were first and last. The names that follow the first in each turn
/// when several take turns.
QStringList chartFields(const std::vector<ReceivedMessage>& messages, const ChartRun& run);

/// All that the messages of @p run hold, as far as somebody would read it.
QString chartTooltip(const std::vector<ReceivedMessage>& messages, const ChartRun& run, const ChartClock& clock);

/// @p words in lines of at most @p columns; what needs more than @p limit lines ends in an ellipsis.
QStringList chartLines(const QStringList& words, qsizetype columns, qsizetype limit);

/// How many columns @p text takes in a monospace font.
qsizetype columnsOf(const QString& text);

/// How wide @p text is at most in a bold sans-serif font of @p size pixels, in pixels: the viewer chooses the font.
int boldWidth(const QString& text, int size);

/// @p text, shortened to a boldWidth() of @p width.
QString elidedToWidth(const QString& text, int size, int width);

} // namespace zyn::tool
