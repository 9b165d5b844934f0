// A sequence chart in a terminal, a line for each message as it comes.
#include "tools/chart/LiveChart.h"

#include "tools/chart/ChartStory.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr qsizetype kTimeWidth = 14;
constexpr qsizetype kLaneWidth = 16;
constexpr int kNamesEvery = 30;

/// The column of the lane's line.
qsizetype columnOf(qsizetype lane)
{
    return lane * kLaneWidth + kLaneWidth / 2;
}

/// Draws a line from one column to another, both of which stay as they are; it crosses lanes.
void drawLine(QString& row, qsizetype from, qsizetype to, QChar line)
{
    for (qsizetype column = std::min(from, to) + 1; column < std::max(from, to); ++column)
        row[column] = line;
}

} // namespace

QStringList LiveChart::linesFor(const ReceivedMessage& message)
{
    const qsizetype sender = laneAt(senderLane(message));
    for (const Participant& hearer : message.hearers.value_or(QList<Participant>()))
        laneAt(laneOf(hearer));
    QStringList lines;
    if (m_namedLanes != m_lanes.size() || m_sinceNames >= kNamesEvery) {
        lines += fitted(names());
        m_namedLanes = m_lanes.size();
        m_sinceNames = 0;
    }
    ++m_sinceNames;
    lines += fitted(arrow(message, sender));
    return lines;
}

/// The lane of the program @p name, a new one if need be.
qsizetype LiveChart::laneAt(const QString& name)
{
    const qsizetype lane = m_lanes.indexOf(name);
    if (lane >= 0)
        return lane;
    m_lanes += name;
    return m_lanes.size() - 1;
}

QString LiveChart::names() const
{
    QString row(kTimeWidth, u' ');
    for (const QString& lane : m_lanes) {
        const QString name = elided(printable(lane), kLaneWidth - 1);
        const qsizetype before = (kLaneWidth - name.size()) / 2;
        row += QString(before, u' ') + name.leftJustified(kLaneWidth - before);
    }
    return row;
}

QString LiveChart::arrow(const ReceivedMessage& message, qsizetype sender) const
{
    QString row(m_lanes.size() * kLaneWidth, u' ');
    for (qsizetype lane = 0; lane < m_lanes.size(); ++lane)
        row[columnOf(lane)] = u'\u2502';
    QList<qsizetype> hearers;
    for (const Participant& hearer : message.hearers.value_or(QList<Participant>()))
        hearers += m_lanes.indexOf(laneOf(hearer));
    hearers.removeAll(sender);
    const QChar line = asks(message) ? u'\u2501' : u'\u254C';
    if (!hearers.isEmpty()) {
        const auto [first, last] = std::ranges::minmax(hearers);
        drawLine(row, columnOf(std::min(first, sender)), columnOf(std::max(last, sender)), line);
    }
    for (const qsizetype hearer : hearers)
        row[columnOf(hearer)] = hearer < sender ? u'\u25C0' : u'\u25B6';
    row[columnOf(sender)] = u'\u25CF';
    QStringList text{messageWord(message.channel, message.name)};
    text += valueTexts(message, false);
    if (message.hearers && message.hearers->isEmpty())
        text += u"(nobody listens)"_s;
    return message.time.toLocalTime().toString(u"HH:mm:ss.zzz").leftJustified(kTimeWidth) + row + u"  "_s
           + text.join(u' ');
}

QString LiveChart::fitted(const QString& line) const
{
    QString text = m_width > 0 ? elided(line, m_width) : line;
    while (text.endsWith(u' '))
        text.chop(1);
    return text;
}

} // namespace zyn::tool
