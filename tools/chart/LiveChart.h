// A sequence chart in a terminal, a line for each message as it comes.
#pragma once

#include "tools/recording/MessageText.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::tool {

/**
 * The lines of a chart whose lanes are programs. A program gets its lane with its first message, or the first that it
 * hears; the lanes' names are repeated then, and after many lines.
 */
class LiveChart
{
public:
    /// @param width  of the terminal, to which lines are cut; 0 for none
    explicit LiveChart(int width)
        : m_width(width)
    {}

    /// The lines for @p message: the names of the lanes when they are due, and the arrow.
    QStringList linesFor(const ReceivedMessage& message);

private:
    qsizetype laneAt(const QString& name);
    QString names() const;
    QString arrow(const ReceivedMessage& message, qsizetype sender) const;
    QString fitted(const QString& line) const;

    const int m_width;
    QStringList m_lanes;
    qsizetype m_namedLanes = 0; ///< how many of them the last line of names has
    int m_sinceNames = 0;       ///< lines
};

} // namespace zyn::tool
