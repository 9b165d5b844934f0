// A sequence chart of text, a line for each message as it comes.
#pragma once

#include "tools/recording/MessageText.h"

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::tool {

/**
 * The lines of a chart whose lanes are programs. A program gets its lane with its first message, or the first that it
 * hears; the lanes' names are repeated then, and after many lines. The more lanes there are, the narrower they get,
 * down to a number that a legend explains, so that the messages beside them stay readable; the last lane is that of all
 * programs for which there is no room.
 */
class LiveChart
{
public:
    /// For a terminal.
    /// @param width  of the terminal, to which lines are cut; 0 for none
    static LiveChart forTerminal(int width);
    /// For a file: lines are not cut.
    /// @param lanes  at most so many
    static LiveChart forReport(qsizetype lanes);

    /// Gives the programs of @p message their lanes.
    void addLanes(const ReceivedMessage& message);
    /// The lines for @p message: the names of the lanes when they are due, and the arrow.
    /// @param meaning  what it means to people; may be empty
    QStringList linesFor(const ReceivedMessage& message, const QString& meaning = {});

private:
    LiveChart(int width, qsizetype room, qsizetype mostLanes)
        : m_width(width)
        , m_room(room)
        , m_mostLanes(mostLanes)
    {}

    qsizetype laneAt(const QString& name);
    bool isFull() const { return m_mostLanes > 0 && m_lanes.size() == m_mostLanes; }
    qsizetype laneWidth() const;
    qsizetype columnOf(qsizetype lane) const;
    QString nameOf(qsizetype lane) const;
    QStringList names() const;
    QStringList legend() const;
    QString arrow(const ReceivedMessage& message, const QString& meaning);
    QString fitted(const QString& line) const;

    int m_width;
    qsizetype m_room;      ///< columns of all lanes; 0 without a limit
    qsizetype m_mostLanes; ///< 0 without a limit
    QStringList m_lanes;
    QHash<QString, qsizetype> m_laneOf;
    bool m_hasOthers = false;   ///< the last lane is not only that of its program
    qsizetype m_namedLanes = 0; ///< how many of them the last line of names has
    bool m_namedOthers = false;
    int m_sinceNames = 0; ///< lines
};

} // namespace zyn::tool
