// Draws a recording as a message sequence chart.
#include "tools/chart/ChartSvg.h"

#include "tools/chart/ChartLayout.h"
#include "tools/chart/ChartStory.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Text.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QXmlStreamWriter>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// Writes a picture, element by element. Positions and sizes are in pixels; classes refer to its style.
class SvgWriter
{
public:
    SvgWriter();
    SvgWriter(const SvgWriter&) = delete;
    SvgWriter& operator=(const SvgWriter&) = delete;

    /// The size of the picture, and its description for screen readers.
    void begin(int width, int height, const QString& title, const QString& description);
    void style(const QString& rules);
    /// Ends the picture and returns it.
    QByteArray finish();

    /// Groups what follows up to endGroup().
    void beginGroup(const QString& styleClass);
    void endGroup();
    /// The tooltip of the group just begun.
    void tooltip(const QString& text);

    void text(const char* styleClass, int x, int y, const QString& content);
    /// A text; a prefix, if not empty, has the class @p prefixClass.
    void text(const char* styleClass, int x, int y, const char* prefixClass, const QString& prefix,
              const QString& content);
    void rectangle(const char* styleClass, int x, int y, int width, int height, int corner);
    void circle(const char* styleClass, int x, int y, int radius);
    void path(const char* styleClass, const QString& steps);

private:
    using Attributes = std::initializer_list<std::pair<const char*, QString>>;
    void beginElement(const char* name, Attributes attributes);
    void emptyElement(const char* name, Attributes attributes);
    void textElement(const char* name, Attributes attributes, const QString& content);

    QByteArray m_svg;
    QXmlStreamWriter m_xml;
};

constexpr char kTitleId[] = "chart-title";
constexpr char kDescriptionId[] = "chart-description";

QString px(int value)
{
    return QString::number(value);
}

QString latin1(const char* text)
{
    return QLatin1String(text);
}

SvgWriter::SvgWriter()
    : m_xml(&m_svg)
{
    m_xml.setAutoFormatting(true);
    m_xml.setAutoFormattingIndent(1);
}

void SvgWriter::begin(int width, int height, const QString& title, const QString& description)
{
    m_xml.writeStartDocument();
    beginElement("svg", {{"xmlns", u"http://www.w3.org/2000/svg"_s},
                         {"width", px(width)},
                         {"height", px(height)},
                         {"viewBox", u"0 0 %1 %2"_s.arg(px(width), px(height))},
                         {"role", u"img"_s},
                         {"aria-labelledby", latin1(kTitleId) + u' ' + latin1(kDescriptionId)}});
    textElement("title", {{"id", latin1(kTitleId)}}, title);
    textElement("desc", {{"id", latin1(kDescriptionId)}}, description);
}

void SvgWriter::style(const QString& rules)
{
    textElement("style", {}, rules);
}

QByteArray SvgWriter::finish()
{
    m_xml.writeEndDocument();
    return m_svg;
}

void SvgWriter::beginGroup(const QString& styleClass)
{
    beginElement("g", {{"class", styleClass}});
}

void SvgWriter::endGroup()
{
    m_xml.writeEndElement();
}

void SvgWriter::tooltip(const QString& text)
{
    textElement("title", {}, text);
}

void SvgWriter::text(const char* styleClass, int x, int y, const QString& content)
{
    text(styleClass, x, y, "", QString(), content);
}

void SvgWriter::text(const char* styleClass, int x, int y, const char* prefixClass, const QString& prefix,
                     const QString& content)
{
    beginElement("text", {{"class", latin1(styleClass)}, {"x", px(x)}, {"y", px(y)}});
    if (!prefix.isEmpty())
        textElement("tspan", {{"class", latin1(prefixClass)}}, prefix);
    m_xml.writeCharacters(content);
    m_xml.writeEndElement();
}

void SvgWriter::rectangle(const char* styleClass, int x, int y, int width, int height, int corner)
{
    emptyElement("rect", {{"class", latin1(styleClass)},
                          {"x", px(x)},
                          {"y", px(y)},
                          {"width", px(width)},
                          {"height", px(height)},
                          {"rx", px(corner)}});
}

void SvgWriter::circle(const char* styleClass, int x, int y, int radius)
{
    emptyElement("circle", {{"class", latin1(styleClass)}, {"cx", px(x)}, {"cy", px(y)}, {"r", px(radius)}});
}

void SvgWriter::path(const char* styleClass, const QString& steps)
{
    emptyElement("path", {{"class", latin1(styleClass)}, {"d", steps}});
}

void SvgWriter::beginElement(const char* name, Attributes attributes)
{
    m_xml.writeStartElement(latin1(name));
    for (const auto& [attribute, value] : attributes)
        m_xml.writeAttribute(latin1(attribute), value);
}

void SvgWriter::emptyElement(const char* name, Attributes attributes)
{
    m_xml.writeEmptyElement(latin1(name));
    for (const auto& [attribute, value] : attributes)
        m_xml.writeAttribute(latin1(attribute), value);
}

void SvgWriter::textElement(const char* name, Attributes attributes, const QString& content)
{
    beginElement(name, attributes);
    m_xml.writeCharacters(content);
    m_xml.writeEndElement();
}

/// Lane colours on light and dark ground. Neighbours are distinguishable with colour blindness, and text on or in them
/// is legible.
struct LaneColor
{
    const char* light;
    const char* dark;
};

constexpr std::array<LaneColor, 8> kLaneColors{{
    {"#0b61a4", "#6cb2f2"}, // blue
    {"#a8430c", "#f2975f"}, // orange
    {"#0b7250", "#4fc797"}, // green
    {"#84408f", "#d6a0e0"}, // purple
    {"#755600", "#dcb64c"}, // ochre
    {"#0b6878", "#5cc6d6"}, // teal
    {"#a81f45", "#f58ca4"}, // crimson
    {"#4b5563", "#a9b4c2"}, // slate
}};

constexpr char kStyle[] = R"(
text{font-family:system-ui,sans-serif;fill:#1c2126}
.mono{font-family:ui-monospace,monospace;font-size:12px;white-space:pre}
.paper{fill:#ffffff}
.title{font-size:20px;font-weight:600}
.note,.unit,.span{font-size:13px;fill:#5b6570}
.unit,.span{font-size:12px}
.time{fill:#5b6570;text-anchor:end}
.unit,.silence{text-anchor:end}
.silence{font-size:12px;font-style:italic;fill:#5b6570}
.axis{fill:none;stroke:#b4bdc7;stroke-width:1.5}
.dot{fill:#7b8692}
.gap{stroke-dasharray:1 5;stroke-linecap:round}
.name{font-size:13px;font-weight:600}
.meaning{font-size:13px}
.prefix{font-weight:400;fill:#5b6570}
.on{font-size:13px;font-weight:600;fill:#ffffff}
.count{text-anchor:middle;font-size:12px}
.line{fill:none;stroke-width:1.5}
.arrow{fill:none;stroke-width:1.5;stroke-dasharray:4 4}
.asks{stroke-dasharray:none;stroke-width:2}
.role{font-weight:400}
.unheard{font-size:12px;font-style:italic;fill:#5b6570}
.outcome{fill:#eef1f4}
.sentence{font-size:14px}
.card{fill-opacity:.09}
.bar{fill-opacity:.4}
)";

constexpr char kDarkStyle[] = R"(text{fill:#e8ecf0}
.paper{fill:#14181d}
.note,.unit,.span,.time,.silence,.prefix,.unheard{fill:#9aa5b1}
.outcome{fill:#222931}
.axis{stroke:#4a545f}
.dot{fill:#8d98a4}
.on{fill:#14181d}
.card{fill-opacity:.14}
)";

/// The class of elements in a lane's colour.
QString laneClass(qsizetype lane)
{
    return u"l%1"_s.arg(lane % qsizetype(kLaneColors.size()));
}

QString laneRules(qsizetype lanes, const char* LaneColor::*color)
{
    QString rules;
    for (qsizetype lane = 0; lane < std::min(lanes, qsizetype(kLaneColors.size())); ++lane) {
        const QString value = QLatin1String(kLaneColors[size_t(lane)].*color);
        rules += u".%1 .fill{fill:%2} .%1 .line,.%1 .arrow{stroke:%2}\n"_s.arg(laneClass(lane), value);
    }
    return rules;
}

/// The style rules of a chart with @p lanes lanes, for light and dark schemes.
QString chartStyle(qsizetype lanes)
{
    return QLatin1String(kStyle) + laneRules(lanes, &LaneColor::light) + u"@media (prefers-color-scheme:dark){\n"_s
           + QLatin1String(kDarkStyle) + laneRules(lanes, &LaneColor::dark) + u"}\n"_s;
}

constexpr int kDotRadius = 3;
constexpr int kArrowHead = 7;
constexpr int kBarWidth = 7;
constexpr int kCorner = 6;
constexpr int kBadgeHeight = 17;
constexpr int kZigzag = 5;
constexpr qsizetype kNamedOthers = 40; ///< in a tooltip

/// Draws a layout.
class Drawing
{
public:
    Drawing(const std::vector<ReceivedMessage>& messages, const QString& title, qsizetype lanes)
        : m_messages(messages)
        , m_title(title)
        , m_lanes(messages, lanes)
        , m_runs(foldedRuns(messages, m_lanes))
        , m_clock(messages.empty() ? 0 : messages.front().time.msecsTo(messages.back().time))
        , m_layout(messages, m_lanes, m_runs, m_clock)
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
        drawOutcomes();
        return m_svg.finish();
    }

private:
    void drawFrame();
    void drawLines();
    void drawLine(const char* styleClass, int x);
    void drawHeads();
    void draw(const ChartSilence& silence);
    void draw(const ChartEntry& entry);
    void drawArrows(const ChartEntry& entry, const ChartLane& sender);
    void drawOutcomes();
    void drawCard(const ChartEntry& entry, const ChartLane& lane);
    void drawBadge(const QString& badge, int right, int baseline);

    QString summary() const;
    QString description() const;

    const std::vector<ReceivedMessage>& m_messages;
    const QString m_title;
    const ChartLanes m_lanes;
    const std::vector<ChartRun> m_runs;
    const ChartClock m_clock;
    const ChartLayout m_layout;
    SvgWriter m_svg;
};

QString Drawing::summary() const
{
    if (m_messages.empty())
        return u"no messages"_s;
    const bool isKnown = std::ranges::any_of(m_messages, [](const auto& message) { return message.sender.isKnown(); });
    const QString text = isKnown ? u"%1 between %2 in %3, from %4 UTC on"_s
                                 : u"%1 on %2 in %3, from %4 UTC on; who sent them is not known"_s;
    return text.arg(
        counted(qsizetype(m_messages.size()), "message"),
        counted(m_lanes.size() + std::max(m_lanes.others().size() - 1, qsizetype{0}), isKnown ? "program" : "channel"),
        durationText(m_messages.front().time.msecsTo(m_messages.back().time)),
        handset::timeText(m_messages.front().time));
}

QString Drawing::description() const
{
    QStringList parts{u"Message sequence chart: "_s + summary()};
    std::vector<qsizetype> counts(size_t(m_lanes.size()));
    for (const ChartRun& run : m_runs)
        counts[size_t(run.lane)] += qsizetype(run.messages.size());
    for (qsizetype lane = 0; lane < m_lanes.size(); ++lane) {
        if (counts[size_t(lane)] > 0)
            parts += u"%1 from %2"_s.arg(counted(counts[size_t(lane)], "message"), jsonEscaped(m_lanes.name(lane)));
    }
    return (parts + m_layout.outcomes()).join(u"; "_s);
}

void Drawing::drawFrame()
{
    m_svg.begin(m_layout.width(), m_layout.height(), m_title, description());
    m_svg.style(chartStyle(m_lanes.size()));
    m_svg.rectangle("paper", 0, 0, m_layout.width(), m_layout.height(), kCorner);
    m_svg.text("title", kMargin, kTitleBaseline, elidedToWidth(m_title, kTitleSize, m_layout.width() - 2 * kMargin));
    m_svg.text("note", kMargin, kNoteBaseline, summary());
    const bool hasArrows =
        std::ranges::any_of(m_layout.entries(), [](const ChartEntry& entry) { return !entry.hearers.empty(); });
    m_svg.text("note", kMargin, kLegendBaseline,
               hasArrows ? u"Time runs downwards. A solid arrow asks for something, a dashed one tells of it; it ends "
                           "at those who listen."_s
                         : u"Time runs downwards."_s);
}

void Drawing::drawLines()
{
    drawLine("axis", m_layout.axis());
    for (qsizetype lane = 0; lane < m_lanes.size(); ++lane) {
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
        for (qsizetype i = 0; i < m_lanes.size(); ++i) {
            const ChartLane& lane = m_layout.lanes()[size_t(i)];
            m_svg.beginGroup(laneClass(i));
            if (i == m_lanes.size() - 1 && !m_lanes.others().isEmpty())
                m_svg.tooltip(
                    jsonEscaped(m_lanes.others().first(std::min(m_lanes.others().size(), kNamedOthers)).join(u", "_s)));
            m_svg.rectangle("fill", lane.x - kCardOffset, top, lane.cardWidth + 2 * kCardOffset, kHeadHeight, kCorner);
            const bool hasRole = !lane.role.isEmpty();
            m_svg.text("on", lane.x + kCardOffset, baseline - (hasRole ? kLineHeight / 2 : 0), lane.title);
            if (hasRole)
                m_svg.text("on role", lane.x + kCardOffset, baseline + kLineHeight / 2, lane.role);
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
    m_svg.circle("dot", m_layout.axis(), y, kDotRadius);
    if (entry.run->isFold())
        m_svg.rectangle("fill bar", lane.x - kBarWidth / 2, entry.top, kBarWidth, entry.barBottom - entry.top,
                        kBarWidth / 2);
    m_svg.circle("fill", lane.x, y, kDotRadius + 1);
    drawCard(entry, lane);
    drawArrows(entry, lane);
    m_svg.endGroup();
}

/// An arrow to each side on which somebody listens, with a head at each that does.
void Drawing::drawArrows(const ChartEntry& entry, const ChartLane& sender)
{
    const int y = entry.top + kArrowLine;
    const int right = sender.x + kCardOffset + sender.cardWidth;
    const char* const line = entry.asks ? "arrow asks" : "arrow";
    int farthestLeft = sender.x;
    int farthestRight = right;
    for (const qsizetype hearer : entry.hearers) {
        const int x = m_layout.lanes()[size_t(hearer)].x;
        const bool isLeft = x < sender.x;
        farthestLeft = std::min(farthestLeft, x);
        farthestRight = std::max(farthestRight, x);
        m_svg.path("fill", isLeft ? u"M%1 %2l%3 -4v8z"_s.arg(x + 1).arg(y).arg(kArrowHead)
                                  : u"M%1 %2l-%3 -4v8z"_s.arg(x - 1).arg(y).arg(kArrowHead));
    }
    if (farthestLeft < sender.x)
        m_svg.path(line, u"M%1 %2H%3"_s.arg(sender.x).arg(y).arg(farthestLeft + kArrowHead));
    if (farthestRight > right)
        m_svg.path(line, u"M%1 %2H%3"_s.arg(right).arg(y).arg(farthestRight - kArrowHead));
    if (entry.isUnheard)
        m_svg.text("unheard", right + kCardOffset / 2, y + kNameSize / 3, u"nobody listens"_s);
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
    if (!entry.meaning.isEmpty())
        m_svg.text("meaning", textLeft, baseline += kLineHeight, entry.meaning);
    for (const QString& line : entry.fields)
        m_svg.text("mono", textLeft, baseline += kLineHeight, line);
    if (!entry.span.isEmpty())
        m_svg.text("span", textLeft, baseline + kLineHeight, entry.span);
}

void Drawing::drawOutcomes()
{
    if (m_layout.outcomes().isEmpty())
        return;
    const int top = m_layout.bottom() + kOutcomeGap;
    const int width = m_layout.width() - 2 * kMargin;
    m_svg.rectangle("outcome", kMargin, top, width, m_layout.outcomeHeight(), kCorner);
    int baseline = top + kOutcomeLine;
    m_svg.text("name", kMargin + kCardPadding, baseline, u"What came of it"_s);
    for (const QString& sentence : m_layout.outcomes())
        m_svg.text("sentence", kMargin + kCardPadding, baseline += kOutcomeLine,
                   elidedToWidth(jsonEscaped(sentence), kNameSize, width - 2 * kCardPadding));
}

void Drawing::drawBadge(const QString& badge, int right, int baseline)
{
    const int width = badgeWidth(badge);
    m_svg.rectangle("fill", right - width, baseline - kNameSize - 1, width, kBadgeHeight, kBadgeHeight / 2);
    m_svg.text("on count", right - width / 2, baseline, badge);
}

} // namespace

QByteArray chartSvg(const std::vector<ReceivedMessage>& messages, const QString& title, qsizetype lanes)
{
    return Drawing(messages, title, lanes).svg();
}

} // namespace zyn::tool
