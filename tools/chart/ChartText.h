// The texts of a chart: what they say, and how much room they take.
#pragma once

#include "tools/chart/ChartFolding.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::tool {

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
