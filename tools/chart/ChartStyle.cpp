// The colours and fonts of a chart.
#include "tools/chart/ChartStyle.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// The colour of a lane on light and on dark ground; each is told from its neighbours by people who see fewer colours,
/// and text on it, or in it, is legible.
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
.mono{font-family:ui-monospace,monospace;font-size:11px;white-space:pre}
.paper{fill:#ffffff}
.title{font-size:20px;font-weight:600}
.note,.unit,.span{font-size:12px;fill:#5b6570}
.unit,.span{font-size:11px}
.time{fill:#5b6570;text-anchor:end}
.unit,.silence{text-anchor:end}
.silence{font-size:11px;font-style:italic;fill:#5b6570}
.axis{fill:none;stroke:#b4bdc7;stroke-width:1.5}
.dot{fill:#7b8692}
.gap{stroke-dasharray:1 5;stroke-linecap:round}
.name{font-size:12px;font-weight:600}
.prefix{font-weight:400;fill:#5b6570}
.on{font-size:12px;font-weight:600;fill:#ffffff}
.count{text-anchor:middle;font-size:11px}
.line{fill:none;stroke-width:1.5}
.arrow{fill:none;stroke-width:1;stroke-opacity:.55}
.card{fill-opacity:.09}
.bar{fill-opacity:.4}
)";

constexpr char kDarkStyle[] = R"(text{fill:#e8ecf0}
.paper{fill:#14181d}
.note,.unit,.span,.time,.silence,.prefix{fill:#9aa5b1}
.axis{stroke:#4a545f}
.dot{fill:#8d98a4}
.on{fill:#14181d}
.card{fill-opacity:.14}
)";

QString laneRules(qsizetype lanes, const char* LaneColor::*color)
{
    QString rules;
    for (qsizetype lane = 0; lane < std::min(lanes, qsizetype(kLaneColors.size())); ++lane) {
        const QString value = QLatin1String(kLaneColors[size_t(lane)].*color);
        rules += u".%1 .fill{fill:%2} .%1 .line,.%1 .arrow{stroke:%2}\n"_s.arg(zyn::tool::laneClass(lane), value);
    }
    return rules;
}

} // namespace

QString chartStyle(qsizetype lanes)
{
    return QLatin1String(kStyle) + laneRules(lanes, &LaneColor::light) + u"@media (prefers-color-scheme:dark){\n"_s
           + QLatin1String(kDarkStyle) + laneRules(lanes, &LaneColor::dark) + u"}\n"_s;
}

QString laneClass(qsizetype lane)
{
    return u"l%1"_s.arg(lane % qsizetype(kLaneColors.size()));
}

} // namespace zyn::tool
