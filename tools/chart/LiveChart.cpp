// A sequence chart of text, a line for each message as it comes.
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
constexpr qsizetype kNarrowLane = 4;
constexpr qsizetype kNamedLane = 10; ///< from this width on a lane shows its name
constexpr qsizetype kFewestLanes = 3;
constexpr qsizetype kTextWidth = 44; ///< of a message and its first values, in a terminal
constexpr qsizetype kReportRoom = 64;
constexpr qsizetype kReportWidth = 120; ///< of the legend
constexpr int kNamesEvery = 30;

/// Draws a line from one column to another, both of which stay as they are; it crosses lanes.
void drawLine(QString& row, qsizetype from, qsizetype to, QChar line)
{
    for (qsizetype column = std::min(from, to) + 1; column < std::max(from, to); ++column)
        row[column] = line;
}

/// @p text with its middle above @p column of @p row.
void placeAt(QString& row, qsizetype column, const QString& text)
{
    row = row.leftJustified(column - text.size() / 2) + text;
}

} // namespace

LiveChart LiveChart::forTerminal(int width)
{
    if (width <= 0)
        return {0, 0, 0};
    const qsizetype room = std::max(width - kTimeWidth - kTextWidth, kFewestLanes * kNarrowLane);
    return {width, room, room / kNarrowLane};
}

LiveChart LiveChart::forReport(qsizetype lanes)
{
    return {0, kReportRoom, std::min(lanes, kReportRoom / kNarrowLane)};
}

void LiveChart::addLanes(const ReceivedMessage& message)
{
    laneAt(senderLane(message));
    for (const Participant& hearer : message.hearers.value_or(QList<Participant>()))
        laneAt(laneOf(hearer));
}

QStringList LiveChart::linesFor(const ReceivedMessage& message, const QString& meaning)
{
    addLanes(message);
    QStringList lines;
    if (m_namedLanes != m_lanes.size() || m_namedOthers != m_hasOthers || m_sinceNames >= kNamesEvery) {
        lines += names();
        m_namedLanes = m_lanes.size();
        m_namedOthers = m_hasOthers;
        m_sinceNames = 0;
    }
    ++m_sinceNames;
    lines += fitted(arrow(message, meaning));
    return lines;
}

/// The lane of the program @p name, a new one if need be and if there is room.
qsizetype LiveChart::laneAt(const QString& name)
{
    const auto known = m_laneOf.constFind(name);
    if (known != m_laneOf.cend())
        return *known;
    if (isFull()) {
        m_hasOthers = true;
        return m_lanes.size() - 1; // not kept: there may be any number of them
    }
    m_laneOf.insert(name, m_lanes.size());
    m_lanes += name;
    return m_lanes.size() - 1;
}

qsizetype LiveChart::laneWidth() const
{
    return m_room == 0 ? kLaneWidth : std::clamp(m_room / m_lanes.size(), kNarrowLane, kLaneWidth);
}

/// The column of the lane's line.
qsizetype LiveChart::columnOf(qsizetype lane) const
{
    return lane * laneWidth() + laneWidth() / 2;
}

QString LiveChart::nameOf(qsizetype lane) const
{
    const bool isShared = m_hasOthers && lane == m_lanes.size() - 1;
    return isShared ? u"others"_s : printable(m_lanes.at(lane));
}

/// Above each lane its name, or, in a narrow one, its number, which the legend before it explains.
QStringList LiveChart::names() const
{
    const bool isNamed = laneWidth() >= kNamedLane;
    QStringList lines = isNamed ? QStringList() : legend();
    QString row;
    for (qsizetype lane = 0; lane < m_lanes.size(); ++lane)
        placeAt(row, kTimeWidth + columnOf(lane),
                isNamed ? elided(nameOf(lane), laneWidth() - 1) : QString::number(lane + 1));
    return lines << fitted(row);
}

QStringList LiveChart::legend() const
{
    const qsizetype width = m_width > 0 ? m_width : kReportWidth;
    QStringList lines;
    for (qsizetype lane = 0; lane < m_lanes.size(); ++lane) {
        const QString entry = u"%1 %2"_s.arg(lane + 1).arg(elided(nameOf(lane), width / 2));
        if (!lines.isEmpty() && lines.last().size() + 2 + entry.size() <= width)
            lines.last() += u"  "_s + entry;
        else
            lines += entry;
    }
    return lines;
}

QString LiveChart::arrow(const ReceivedMessage& message, const QString& meaning)
{
    const qsizetype sender = laneAt(senderLane(message));
    QString row(m_lanes.size() * laneWidth(), u' ');
    for (qsizetype lane = 0; lane < m_lanes.size(); ++lane)
        row[columnOf(lane)] = u'\u2502';
    QList<qsizetype> hearers;
    for (const Participant& hearer : message.hearers.value_or(QList<Participant>()))
        hearers += laneAt(laneOf(hearer));
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
    if (!meaning.isEmpty())
        text += u"(%1)"_s.arg(meaning);
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
