// A recording as a message sequence chart.
#include "tools/chart/ChartSvg.h"

#include "tools/chart/ChartLayout.h"
#include "tools/chart/ChartStyle.h"
#include "tools/chart/SvgWriter.h"
#include "tools/zynphone/Counted.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using namespace zyn::tool::chart;

constexpr int kDotRadius = 3;
constexpr int kArrowHead = 7;
constexpr int kBarWidth = 7;
constexpr int kCorner = 6;
constexpr int kBadgeHeight = 17;
constexpr int kZigzag = 5;

/// Draws a layout.
class Drawing
{
public:
    Drawing(const std::vector<ReceivedMessage>& messages, const QString& title)
        : m_messages(messages)
        , m_title(title)
        , m_runs(foldedRuns(messages))
        , m_clock(messages.empty() ? 0 : messages.front().time.msecsTo(messages.back().time))
        , m_layout(messages, m_runs, m_clock)
    {}

    QByteArray svg()
    {
        drawFrame();
        drawLines();
        drawHeads();
        for (const ChartSilence& silence : m_layout.silences())
            draw(silence);
        for (const ChartEntry& entry : m_layout.entries())
            draw(entry);
        return m_svg.finish();
    }

private:
    void drawFrame();
    void drawLines();
    void drawLine(const char* styleClass, int x);
    void drawHeads();
    void draw(const ChartSilence& silence);
    void draw(const ChartEntry& entry);
    void drawArrow(const ChartEntry& entry, int x);
    void drawCard(const ChartEntry& entry, const ChartLane& lane);
    void drawBadge(const QString& badge, int right, int baseline);

    QString summary() const;
    QString description() const;

    const std::vector<ReceivedMessage>& m_messages;
    const QString m_title;
    const ChartRuns m_runs;
    const ChartClock m_clock;
    const ChartLayout m_layout;
    SvgWriter m_svg;
};

QString Drawing::summary() const
{
    if (m_messages.empty())
        return u"no messages"_s;
    return u"%1 on %2 in %3 from %4 UTC"_s.arg(counted(qsizetype(m_messages.size()), "message"),
                                               counted(m_runs.lanes.size(), "channel"),
                                               durationText(m_messages.front().time.msecsTo(m_messages.back().time)),
                                               m_messages.front().time.toString(u"yyyy-MM-dd HH:mm:ss"));
}

QString Drawing::description() const
{
    QStringList parts{u"Message sequence chart: "_s + summary()};
    for (const QCString& lane : m_runs.lanes) {
        const auto count = std::ranges::count(m_messages, lane, &ReceivedMessage::channel);
        parts += u"%1 on %2"_s.arg(counted(count, "message"), nameText(lane));
    }
    return parts.join(u"; "_s);
}

void Drawing::drawFrame()
{
    m_svg.begin(m_layout.width(), m_layout.height(), m_title, description());
    m_svg.style(chartStyle(m_runs.lanes.size()));
    m_svg.rectangle("paper", 0, 0, m_layout.width(), m_layout.height(), kCorner);
    m_svg.text("title", kMargin, kTitleBaseline, elidedToWidth(m_title, kTitleSize, m_layout.width() - 2 * kMargin));
    m_svg.text("note", kMargin, kNoteBaseline, summary());
}

void Drawing::drawLines()
{
    drawLine("axis", m_layout.axis());
    for (qsizetype lane = 0; lane < m_runs.lanes.size(); ++lane) {
        m_svg.beginGroup(laneClass(lane));
        drawLine("line", m_layout.lanes()[size_t(lane)].x);
        m_svg.endGroup();
    }
}

/// A line from the first heads to the end, dotted where time is shortened.
void Drawing::drawLine(const char* styleClass, int x)
{
    const bool isAxis = x == m_layout.axis();
    QString solid = u"M%1 %2"_s.arg(x).arg(m_layout.heads().front() + kHeadHeight / 2);
    QString dotted;
    for (const ChartSilence& silence : m_layout.silences()) {
        const int bottom = silence.top + silence.height;
        solid += u"V%1M%2 %3"_s.arg(silence.top).arg(x).arg(bottom);
        dotted += u"M%1 %2V%3"_s.arg(x).arg(silence.top).arg(bottom);
    }
    m_svg.path(styleClass, solid + u'V' + QString::number(m_layout.bottom()));
    if (!isAxis && !dotted.isEmpty())
        m_svg.path((QByteArray(styleClass) + " gap").constData(), dotted);
}

void Drawing::drawHeads()
{
    for (const int top : m_layout.heads()) {
        const int baseline = top + kHeadHeight / 2 + kNameSize / 3;
        m_svg.rectangle("paper", m_layout.axis() - kZigzag, top, 2 * kZigzag, kHeadHeight, 0);
        m_svg.text("unit", m_layout.axis() + kZigzag, baseline, m_clock.unit());
        for (qsizetype i = 0; i < m_runs.lanes.size(); ++i) {
            const ChartLane& lane = m_layout.lanes()[size_t(i)];
            m_svg.beginGroup(laneClass(i));
            m_svg.rectangle("fill", lane.x - kCardOffset, top, lane.cardWidth + 2 * kCardOffset, kHeadHeight, kCorner);
            m_svg.text("on", lane.x + kCardOffset, baseline, lane.title);
            m_svg.endGroup();
        }
    }
}

void Drawing::draw(const ChartSilence& silence)
{
    const int middle = silence.top + silence.height / 2;
    m_svg.path("axis", u"M%1 %2V%3l%4 %4l-%5 %5l%4 %4V%6"_s.arg(m_layout.axis())
                           .arg(silence.top)
                           .arg(middle - 2 * kZigzag)
                           .arg(kZigzag)
                           .arg(2 * kZigzag)
                           .arg(silence.top + silence.height));
    m_svg.text("silence", m_layout.axis() - 2 * kZigzag, middle + kNameSize / 3, silence.duration);
}

void Drawing::draw(const ChartEntry& entry)
{
    const ChartLane& lane = m_layout.lanes()[size_t(entry.run->lane)];
    const int y = entry.top + kArrowLine;
    m_svg.beginGroup(laneClass(entry.run->lane));
    m_svg.tooltip(chartTooltip(m_messages, *entry.run, m_clock));
    m_svg.text("mono time", m_layout.axis() - 2 * kZigzag, y + kNameSize / 3, entry.time);
    drawArrow(entry, lane.x);
    drawCard(entry, lane);
    m_svg.endGroup();
}

void Drawing::drawArrow(const ChartEntry& entry, int x)
{
    const int y = entry.top + kArrowLine;
    const int tip = entry.run->isFold() ? x - (kBarWidth + 1) / 2 : x - 1;
    if (entry.run->isFold())
        m_svg.rectangle("fill bar", x - kBarWidth / 2, entry.top, kBarWidth, entry.barBottom - entry.top,
                        kBarWidth / 2);
    m_svg.path("arrow", u"M%1 %2H%3"_s.arg(m_layout.axis()).arg(y).arg(tip - kArrowHead));
    m_svg.path("fill", u"M%1 %2l-%3 -4v8z"_s.arg(tip).arg(y).arg(kArrowHead));
    m_svg.circle("dot", m_layout.axis(), y, kDotRadius);
}

void Drawing::drawCard(const ChartEntry& entry, const ChartLane& lane)
{
    const int left = lane.x + kCardOffset;
    const int textLeft = left + kCardPadding;
    int baseline = entry.top + kNameBaseline;
    m_svg.rectangle("fill card", left, entry.top, lane.cardWidth, entry.height, kCorner);
    m_svg.text("name", textLeft, baseline, "prefix", entry.name.prefix, entry.name.own);
    if (!entry.badge.isEmpty())
        drawBadge(entry.badge, left + lane.cardWidth - kCardPadding / 2, baseline);
    for (const QString& line : entry.fields)
        m_svg.text("mono", textLeft, baseline += kLineHeight, line);
    if (!entry.span.isEmpty())
        m_svg.text("span", textLeft, baseline + kLineHeight, entry.span);
}

void Drawing::drawBadge(const QString& badge, int right, int baseline)
{
    const int width = badgeWidth(badge);
    m_svg.rectangle("fill", right - width, baseline - kNameSize - 1, width, kBadgeHeight, kBadgeHeight / 2);
    m_svg.text("on count", right - width / 2, baseline, badge);
}

} // namespace

QByteArray chartSvg(const std::vector<ReceivedMessage>& messages, const QString& title)
{
    return Drawing(messages, title).svg();
}

} // namespace zyn::tool
