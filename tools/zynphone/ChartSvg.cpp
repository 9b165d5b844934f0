// A recording as a message sequence chart.
#include "tools/zynphone/ChartSvg.h"

#include "tools/zynphone/ChartLayout.h"
#include "tools/zynphone/ChartStyle.h"
#include "tools/zynphone/Counted.h"

#include <QtCore/QXmlStreamWriter>

#include <algorithm>
#include <initializer_list>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using namespace zyn::tool;
using namespace zyn::tool::chart;

using Attributes = std::initializer_list<std::pair<const char*, QString>>;

constexpr int kDotRadius = 3;
constexpr int kArrowHead = 7;
constexpr int kBarWidth = 7;
constexpr int kCorner = 6;
constexpr int kBadgeHeight = 17;
constexpr int kZigzag = 5;

QString px(int value)
{
    return QString::number(value);
}

QString laneClass(qsizetype lane)
{
    return u"l%1"_s.arg(lane % qsizetype(kLaneColors.size()));
}

QString styleText(qsizetype lanes)
{
    const auto laneRules = [lanes](const char* LaneColor::*color) {
        QString rules;
        for (qsizetype lane = 0; lane < std::min(lanes, qsizetype(kLaneColors.size())); ++lane) {
            const QString value = QLatin1String(kLaneColors[size_t(lane)].*color);
            rules += u".%1 .fill{fill:%2} .%1 .line,.%1 .arrow{stroke:%2}\n"_s.arg(laneClass(lane), value);
        }
        return rules;
    };
    return QLatin1String(kStyle) + laneRules(&LaneColor::light) + u"@media (prefers-color-scheme:dark){\n"_s
           + QLatin1String(kDarkStyle) + laneRules(&LaneColor::dark) + u"}\n"_s;
}

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
        , m_xml(&m_svg)
    {}

    QByteArray svg()
    {
        m_xml.setAutoFormatting(true);
        m_xml.setAutoFormattingIndent(1);
        m_xml.writeStartDocument();
        m_xml.writeStartElement(u"svg"_s);
        write({{"xmlns", u"http://www.w3.org/2000/svg"_s},
               {"width", px(m_layout.width())},
               {"height", px(m_layout.height())},
               {"viewBox", u"0 0 %1 %2"_s.arg(m_layout.width()).arg(m_layout.height())},
               {"role", u"img"_s},
               {"aria-labelledby", u"chart-title chart-description"_s}});
        drawFrame();
        drawLines();
        drawHeads();
        for (const ChartSilence& silence : m_layout.silences())
            draw(silence);
        for (const ChartEntry& entry : m_layout.entries())
            draw(entry);
        m_xml.writeEndDocument();
        return m_svg;
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
    void drawName(const ChartEntry& entry, int x);
    void drawBadge(const QString& badge, int right, int baseline);

    void write(Attributes attributes)
    {
        for (const auto& [name, value] : attributes)
            m_xml.writeAttribute(QLatin1String(name), value);
    }
    void element(const char* name, Attributes attributes)
    {
        m_xml.writeEmptyElement(QLatin1String(name));
        write(attributes);
    }
    void group(const QString& styleClass)
    {
        m_xml.writeStartElement(u"g"_s);
        write({{"class", styleClass}});
    }
    void end() { m_xml.writeEndElement(); }
    void text(const char* styleClass, int x, int y, const QString& content)
    {
        m_xml.writeStartElement(u"text"_s);
        write({{"class", QLatin1String(styleClass)}, {"x", px(x)}, {"y", px(y)}});
        m_xml.writeCharacters(content);
        end();
    }
    void named(const char* element, const char* id, const QString& content)
    {
        m_xml.writeStartElement(QLatin1String(element));
        write({{"id", QLatin1String(id)}});
        m_xml.writeCharacters(content);
        end();
    }
    void rectangle(const char* styleClass, int x, int y, int width, int height, int corner)
    {
        element("rect", {{"class", QLatin1String(styleClass)},
                         {"x", px(x)},
                         {"y", px(y)},
                         {"width", px(width)},
                         {"height", px(height)},
                         {"rx", px(corner)}});
    }
    void path(const char* styleClass, const QString& steps)
    {
        element("path", {{"class", QLatin1String(styleClass)}, {"d", steps}});
    }

    QString summary() const;
    QString description() const;

    const std::vector<ReceivedMessage>& m_messages;
    const QString m_title;
    const ChartRuns m_runs;
    const ChartClock m_clock;
    const ChartLayout m_layout;
    QByteArray m_svg;
    QXmlStreamWriter m_xml;
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
    named("title", "chart-title", m_title);
    named("desc", "chart-description", description());
    m_xml.writeTextElement(u"style"_s, styleText(m_runs.lanes.size()));
    rectangle("paper", 0, 0, m_layout.width(), m_layout.height(), kCorner);
    text("title", kMargin, kTitleBaseline, elidedToWidth(m_title, kTitleSize, m_layout.width() - 2 * kMargin));
    text("note", kMargin, kNoteBaseline, summary());
}

void Drawing::drawLines()
{
    drawLine("axis", m_layout.axis());
    for (qsizetype lane = 0; lane < m_runs.lanes.size(); ++lane) {
        group(laneClass(lane));
        drawLine("line", m_layout.lanes()[size_t(lane)].x);
        end();
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
    path(styleClass, solid + u'V' + px(m_layout.bottom()));
    if (!isAxis && !dotted.isEmpty())
        path((QByteArray(styleClass) + " gap").constData(), dotted);
}

void Drawing::drawHeads()
{
    for (const int top : m_layout.heads()) {
        const int baseline = top + kHeadHeight / 2 + kNameSize / 3;
        rectangle("paper", m_layout.axis() - kZigzag, top, 2 * kZigzag, kHeadHeight, 0);
        text("unit", m_layout.axis() + kZigzag, baseline, m_clock.unit());
        for (qsizetype i = 0; i < m_runs.lanes.size(); ++i) {
            const ChartLane& lane = m_layout.lanes()[size_t(i)];
            group(laneClass(i));
            rectangle("fill", lane.x - kCardOffset, top, lane.cardWidth + 2 * kCardOffset, kHeadHeight, kCorner);
            text("on", lane.x + kCardOffset, baseline, lane.title);
            end();
        }
    }
}

void Drawing::draw(const ChartSilence& silence)
{
    const int middle = silence.top + silence.height / 2;
    path("axis", u"M%1 %2V%3l%4 %4l-%5 %5l%4 %4V%6"_s.arg(m_layout.axis())
                     .arg(silence.top)
                     .arg(middle - 2 * kZigzag)
                     .arg(kZigzag)
                     .arg(2 * kZigzag)
                     .arg(silence.top + silence.height));
    text("silence", m_layout.axis() - 2 * kZigzag, middle + kNameSize / 3, silence.duration);
}

void Drawing::draw(const ChartEntry& entry)
{
    const ChartLane& lane = m_layout.lanes()[size_t(entry.run->lane)];
    const int y = entry.top + kArrowLine;
    group(laneClass(entry.run->lane));
    m_xml.writeTextElement(u"title"_s, chartTooltip(m_messages, *entry.run, m_clock));
    text("mono time", m_layout.axis() - 2 * kZigzag, y + kNameSize / 3, entry.time);
    drawArrow(entry, lane.x);
    drawCard(entry, lane);
    end();
}

void Drawing::drawArrow(const ChartEntry& entry, int x)
{
    const int y = entry.top + kArrowLine;
    const int tip = entry.run->isFold() ? x - (kBarWidth + 1) / 2 : x - 1;
    if (entry.run->isFold())
        rectangle("fill bar", x - kBarWidth / 2, entry.top, kBarWidth, entry.barBottom - entry.top, kBarWidth / 2);
    path("arrow", u"M%1 %2H%3"_s.arg(m_layout.axis()).arg(y).arg(tip - kArrowHead));
    path("fill", u"M%1 %2l-%3 -4v8z"_s.arg(tip).arg(y).arg(kArrowHead));
    element("circle", {{"class", u"dot"_s}, {"cx", px(m_layout.axis())}, {"cy", px(y)}, {"r", px(kDotRadius)}});
}

void Drawing::drawCard(const ChartEntry& entry, const ChartLane& lane)
{
    const int left = lane.x + kCardOffset;
    const int textLeft = left + kCardPadding;
    int baseline = entry.top + kNameBaseline;
    rectangle("fill card", left, entry.top, lane.cardWidth, entry.height, kCorner);
    drawName(entry, textLeft);
    if (!entry.badge.isEmpty())
        drawBadge(entry.badge, left + lane.cardWidth - kCardPadding / 2, baseline);
    for (const QString& line : entry.fields)
        text("mono", textLeft, baseline += kLineHeight, line);
    if (!entry.span.isEmpty())
        text("span", textLeft, baseline += kLineHeight, entry.span);
}

void Drawing::drawName(const ChartEntry& entry, int x)
{
    m_xml.writeStartElement(u"text"_s);
    write({{"class", u"name"_s}, {"x", px(x)}, {"y", px(entry.top + kNameBaseline)}});
    if (!entry.name.prefix.isEmpty()) {
        m_xml.writeStartElement(u"tspan"_s);
        write({{"class", u"prefix"_s}});
        m_xml.writeCharacters(entry.name.prefix);
        end();
    }
    m_xml.writeCharacters(entry.name.own);
    end();
}

void Drawing::drawBadge(const QString& badge, int right, int baseline)
{
    const int width = badgeWidth(badge);
    rectangle("fill", right - width, baseline - kNameSize - 1, width, kBadgeHeight, kBadgeHeight / 2);
    text("on count", right - width / 2, baseline, badge);
}

} // namespace

namespace zyn::tool {

QByteArray chartSvg(const std::vector<ReceivedMessage>& messages, const QString& title)
{
    return Drawing(messages, title).svg();
}

} // namespace zyn::tool
