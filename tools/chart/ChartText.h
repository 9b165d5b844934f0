// The texts of a chart: names, times, and runs of similar messages folded into one entry.
#pragma once

#include "tools/recording/MessageText.h"

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace zyn::tool {

/// A message, or consecutive messages of one sender with one name or with alternating names.
struct ChartRun
{
    qsizetype lane;               ///< the sender's
    std::vector<size_t> messages; ///< indexes in the recording, ascending
    size_t inTurn = 1;            ///< the number of alternating names; the messages are whole turns

    bool isFold() const { return messages.size() > 1; }
    size_t turns() const { return messages.size() / inTurn; }
};

/// The lanes of a chart: programs, those that send by their first messages, then those that only hear. Where there are
/// more than fit, the last lane is that of all the others.
class ChartLanes
{
public:
    /// At most @p limit lanes, which is two or more.
    ChartLanes(const std::vector<ReceivedMessage>& messages, qsizetype limit);

    qsizetype size() const { return m_names.size() + (m_others.isEmpty() ? 0 : 1); }
    /// The lane of a program in the messages.
    qsizetype indexOf(const QString& program) const { return m_indexes.value(program); }
    /// Those of the programs that heard @p message, without the sender's; each once, ascending.
    std::vector<qsizetype> hearersOf(const ReceivedMessage& message) const;
    /// Who a lane belongs to: a program, or "3 others".
    QString name(qsizetype lane) const;
    /// The programs in the last lane; none if it is that of one.
    const QStringList& others() const { return m_others; }

private:
    QStringList m_names;
    QStringList m_others;
    QHash<QString, qsizetype> m_indexes;
};

/// Folds @p messages: at least three of a kind, or three turns, without messages between them; at least twenty messages
/// also across those of other senders. Shorter runs show the order of events. They are ordered by their first messages.
std::vector<ChartRun> foldedRuns(const std::vector<ReceivedMessage>& messages, const ChartLanes& lanes);

/// The format of times, chosen by the longest of them.
class ChartClock
{
public:
    /// For times up to @p longest milliseconds.
    explicit ChartClock(qint64 longest);

    /// "0.250", "1:00.250" or "1:00:00.250".
    QString text(qint64 milliseconds) const;
    /// The unit.
    QString unit() const;

private:
    bool m_hasMinutes;
    bool m_hasHours;
};

/// "1.5 s", "2 min 5 s", "3 h 20 min".
QString durationText(qint64 milliseconds);

/// A message's name in two parts: its channel, shortened, unless the library knows the message; and its word or name.
struct ChartName
{
    QString prefix;
    QString own;
};
ChartName chartName(const ReceivedMessage& message);

/// The values of @p run, in words where they are known, with their first and last values where they change, and the
/// other names of a turn.
QStringList chartFields(const std::vector<ReceivedMessage>& messages, const ChartRun& run);

/// All fields of the messages of @p run, up to a limit.
QString chartTooltip(const std::vector<ReceivedMessage>& messages, const ChartRun& run, const ChartClock& clock);

/// @p words in lines of at most @p columns; beyond @p limit lines they end in an ellipsis.
QStringList chartLines(const QStringList& words, qsizetype columns, qsizetype limit);

/// The columns that @p text takes in a monospace font.
qsizetype columnsOf(const QString& text);

/// The greatest width of @p text in pixels in a bold sans-serif font of @p size pixels: the viewer chooses the font.
int boldWidth(const QString& text, int size);

/// @p text, shortened to a boldWidth() of @p width.
QString elidedToWidth(const QString& text, int size, int width);

} // namespace zyn::tool
