// The layout of the phone's state.
#include "tools/top/TopView.h"

#include "handset/common/Text.h"
#include "tools/top/PhoneState.h"
#include "tools/top/Screen.h"

#include <algorithm>
#include <iterator>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using handset::counted;
using handset::jsonEscaped;

struct Line
{
    const char* label; ///< null for a section title or a blank line
    Item item;
    const char* title;
};

constexpr Line sectionLine(const char* title)
{
    return {nullptr, Item::Count, title};
}

constexpr Line kBlank = sectionLine("");

constexpr Line kLeft[] = {
    sectionLine("Power"),
    {"battery", Item::Battery, nullptr},
    {"battery status", Item::BatteryStatus, nullptr},
    {"charger", Item::Charger, nullptr},
    {"last event", Item::PowerEvent, nullptr},
    kBlank,
    sectionLine("SIM card and handset"),
    {"SIM card", Item::SimCard, nullptr},
    {"PIN", Item::Pin, nullptr},
    {"subsidy lock", Item::SubsidyLock, nullptr},
    {"IMSI", Item::Imsi, nullptr},
    {"keypad lock", Item::KeypadLock, nullptr},
    {"phone system", Item::PhoneSystem, nullptr},
    kBlank,
    sectionLine("Network"),
    {"network", Item::Network, nullptr},
    {"network id", Item::NetworkId, nullptr},
    {"service name", Item::ServiceName, nullptr},
    {"provider", Item::Provider, nullptr},
    {"home zone", Item::HomeZone, nullptr},
    {"signal", Item::Signal, nullptr},
    {"service", Item::Service, nullptr},
    {"roaming", Item::Roaming, nullptr},
    {"UMA icon", Item::Uma, nullptr},
};

constexpr Item favourite(int place)
{
    return static_cast<Item>(static_cast<int>(Item::Favourite0) + place);
}

constexpr Line kRight[] = {
    sectionLine("Calls"),
    {"call", Item::Call, nullptr},
    {"connected", Item::Connection, nullptr},
    {"in total", Item::ConnectionTotal, nullptr},
    {"last logged", Item::LastLogged, nullptr},
    {"missed", Item::Missed, nullptr},
    {"favourite 1", favourite(0), nullptr},
    {"favourite 2", favourite(1), nullptr},
    {"favourite 3", favourite(2), nullptr},
    {"favourite 4", favourite(3), nullptr},
    {"favourite 5", favourite(4), nullptr},
    kBlank,
    sectionLine("Data"),
    {"GPRS attached", Item::GprsAttached, nullptr},
    {"GPRS service", Item::GprsService, nullptr},
    {"GPRS active", Item::GprsActivated, nullptr},
    {"EGPRS", Item::EgprsService, nullptr},
    {"EGPRS sending", Item::EgprsTransmission, nullptr},
    {"bytes", Item::TotalBytes, nullptr},
    {"session", Item::SessionBytes, nullptr},
    kBlank,
    sectionLine("Wi-Fi"),
    {"profile", Item::WifiProfile, nullptr},
    {"last event", Item::WifiEvent, nullptr},
};

using Lines = std::vector<Line>;

constexpr int kLabelWidth = 15;
constexpr int kMinColumns = 24;
constexpr int kMinRows = 5;
constexpr int kTwoColumns = 80;
constexpr QLatin1String kTitle("zynphone top");

bool isBlank(const Line& line)
{
    return !line.label && *line.title == '\0';
}

/// All lines in one column, the calls first as the most interesting.
Lines allLines()
{
    const auto* const endOfCalls = std::ranges::find_if(kRight, isBlank);
    Lines lines(std::begin(kRight), endOfCalls);
    lines.push_back(kBlank);
    lines.insert(lines.end(), std::begin(kLeft), std::end(kLeft));
    lines.insert(lines.end(), endOfCalls, std::end(kRight));
    return lines;
}

QString valueText(const PhoneState::Value& value)
{
    return value.text.isNull() ? u"\u2013"_s : value.text;
}

/// A part of the canvas without its first and last rows.
struct Area
{
    int column;
    int width;
    Lines lines;
};

void putLine(const PhoneState& state, Canvas& canvas, const Area& area, int row, const Line& line)
{
    if (!line.label)
        return canvas.put(row, area.column, area.width, QLatin1String(line.title), Style::Title);
    const PhoneState::Value& value = state.value(line.item);
    canvas.put(row, area.column, kLabelWidth, QLatin1String(line.label), Style::Label);
    canvas.put(row, area.column + kLabelWidth, area.width - kLabelWidth, valueText(value),
               value.isAlert ? Style::Alert : Style::Plain);
}

/// The lines above and below the canvas.
struct Hidden
{
    int above = 0;
    int below = 0;
};

/// Draws as many lines as fit behind the first @p scrolled ones, without blank lines if that helps.
Hidden putLines(const PhoneState& state, Canvas& canvas, Area area, int scrolled)
{
    const auto room = static_cast<size_t>(canvas.rows() - 2);
    if (area.lines.size() < room)
        area.lines.insert(area.lines.begin(), kBlank);
    if (area.lines.size() > room)
        std::erase_if(area.lines, isBlank);
    const size_t count = std::min(area.lines.size(), room);
    const size_t above = std::min(static_cast<size_t>(scrolled), area.lines.size() - count);
    for (size_t index = 0; index < count; ++index)
        putLine(state, canvas, area, static_cast<int>(index) + 1, area.lines[above + index]);
    return {static_cast<int>(above), static_cast<int>(area.lines.size() - count - above)};
}

Hidden putColumns(const PhoneState& state, Canvas& canvas, int scrolled)
{
    if (canvas.columns() < kTwoColumns)
        return putLines(state, canvas, {0, canvas.columns(), allLines()}, scrolled);
    const int width = canvas.columns() / 2;
    const Hidden left = putLines(state, canvas, {0, width - 2, {std::begin(kLeft), std::end(kLeft)}}, scrolled);
    const Hidden right =
        putLines(state, canvas, {width, canvas.columns() - width, {std::begin(kRight), std::end(kRight)}}, scrolled);
    return {std::max(left.above, right.above), std::max(left.below, right.below)};
}

QString footText(const Hidden& hidden)
{
    QStringList parts;
    if (hidden.above > 0)
        parts += u"%1 above"_s.arg(counted(hidden.above, "line"));
    if (hidden.below > 0)
        parts += u"%1 below"_s.arg(counted(hidden.below, "line"));
    return parts.isEmpty() ? u"q ends"_s : u"q ends; "_s + parts.join(", "_L1);
}

} // namespace

int layOut(const PhoneState& state, Canvas& canvas, int scrolled)
{
    if (canvas.columns() < kMinColumns || canvas.rows() < kMinRows) {
        canvas.put(0, 0, canvas.columns(), u"too small; %1x%2 will do"_s.arg(kMinColumns).arg(kMinRows));
        return scrolled;
    }
    canvas.put(0, 0, canvas.columns(), kTitle, Style::Title);
    const int column = int{kTitle.size()} + 2;
    canvas.put(0, column, canvas.columns() - column, valueText(state.value(Item::LastMessage)), Style::Label);
    const Hidden hidden = putColumns(state, canvas, scrolled);
    canvas.put(canvas.rows() - 1, 0, canvas.columns(), footText(hidden), Style::Label);
    return hidden.above;
}

QJsonObject stateObject(const PhoneState& state)
{
    QJsonObject object;
    QString title;
    for (const Line& line : allLines()) {
        if (!line.label) {
            title = QLatin1String(line.title);
            continue;
        }
        QJsonObject section = object.value(title).toObject();
        const QString& text = state.value(line.item).text;
        section.insert(QLatin1String(line.label), text.isNull() ? QJsonValue() : text);
        object.insert(title, section);
    }
    return object;
}

QString stateText(const PhoneState& state)
{
    QString text;
    for (const Line& line : allLines()) {
        if (line.label)
            text += QString(QLatin1String(line.label)).leftJustified(kLabelWidth)
                    + jsonEscaped(valueText(state.value(line.item)));
        else
            text += QLatin1String(line.title);
        text += u'\n';
    }
    return text;
}

} // namespace zyn::tool
