// How the phone's state is laid out.
#include "tools/zynphone/top/TopView.h"

#include "tools/zynphone/JsonText.h"
#include "tools/zynphone/Table.h"
#include "tools/zynphone/top/Canvas.h"
#include "tools/zynphone/top/PhoneState.h"

#include <span>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

using namespace zyn::tool;

struct Line
{
    const char* label; ///< null for the title of a section, and for a blank line
    Item item;
    const char* title;
};

constexpr Line section(const char* title)
{
    return {nullptr, Item::Count, title};
}

constexpr Line kBlank = section("");

constexpr Line kLeft[] = {
    section("Power"),
    {"battery", Item::Battery, nullptr},
    {"battery status", Item::BatteryStatus, nullptr},
    {"charger", Item::Charger, nullptr},
    {"last event", Item::PowerEvent, nullptr},
    kBlank,
    section("SIM card"),
    {"SIM card", Item::SimCard, nullptr},
    {"PIN", Item::Pin, nullptr},
    {"subsidy lock", Item::SubsidyLock, nullptr},
    {"IMSI", Item::Imsi, nullptr},
    kBlank,
    section("Network"),
    {"network", Item::Network, nullptr},
    {"network id", Item::NetworkId, nullptr},
    {"service name", Item::ServiceName, nullptr},
    {"provider", Item::Provider, nullptr},
    {"home zone", Item::HomeZone, nullptr},
    {"signal", Item::Signal, nullptr},
    {"service", Item::Service, nullptr},
    {"roaming", Item::Roaming, nullptr},
};

constexpr Line kRight[] = {
    section("Calls"),
    {"call", Item::Call, nullptr},
    {"connected", Item::Connection, nullptr},
    {"in total", Item::ConnectionTotal, nullptr},
    {"last logged", Item::LastLogged, nullptr},
    {"missed", Item::Missed, nullptr},
    kBlank,
    section("Data"),
    {"GPRS attached", Item::GprsAttached, nullptr},
    {"GPRS service", Item::GprsService, nullptr},
    {"GPRS active", Item::GprsActivated, nullptr},
    {"EGPRS", Item::EgprsService, nullptr},
    {"EGPRS sending", Item::EgprsTransmission, nullptr},
    {"bytes", Item::TotalBytes, nullptr},
    {"bytes", Item::SessionBytes, nullptr},
    kBlank,
    section("Wi-Fi"),
    {"profile", Item::WifiProfile, nullptr},
    {"last event", Item::WifiEvent, nullptr},
    {"UMA icon", Item::Uma, nullptr},
};

constexpr Line kBelow[] = {
    section("Handset"),
    {"keypad lock", Item::KeypadLock, nullptr},
    {"phone system", Item::PhoneSystem, nullptr},
};

constexpr Item favourite(int place)
{
    return static_cast<Item>(static_cast<int>(Item::Favourite0) + place);
}

constexpr Line kFavourites[] = {
    section("Favourites"),        {"1", favourite(0), nullptr}, {"2", favourite(1), nullptr},
    {"3", favourite(2), nullptr}, {"4", favourite(3), nullptr}, {"5", favourite(4), nullptr},
};

constexpr std::span<const Line> kColumns[][2] = {{kLeft, kBelow}, {kRight, kFavourites}};

constexpr int kLabelWidth = 15;
constexpr int kMinColumns = 24;
constexpr int kMinRows = 5;
constexpr int kTwoColumns = 80;
constexpr QLatin1String kTitle("zynphone top");

/// The lines of one column of two, or of the only one.
std::vector<Line> linesOf(std::span<const std::span<const Line>[2]> columns)
{
    std::vector<Line> lines;
    for (const auto& column : columns) {
        for (const std::span<const Line> part : column) {
            if (!lines.empty())
                lines.push_back(kBlank);
            lines.insert(lines.end(), part.begin(), part.end());
        }
    }
    return lines;
}

QString textOf(const PhoneState::Value& value)
{
    return value.text.isNull() ? u"\u2013"_s : value.text;
}

/// Puts as many of @p lines as there is room for; how many are left out.
int putLines(const PhoneState& state, Canvas& canvas, const std::vector<Line>& lines, int column, int width)
{
    const int room = canvas.rows() - 3; // below the title and a blank line, above the foot
    int row = 2;
    for (const Line& line : lines) {
        if (row - 2 == room)
            return static_cast<int>(lines.size()) - room;
        if (line.label) {
            const PhoneState::Value& value = state.value(line.item);
            canvas.put(row, column, kLabelWidth, QLatin1String(line.label), Style::Label);
            canvas.put(row, column + kLabelWidth, width - kLabelWidth, textOf(value),
                       value.isAlert ? Style::Alert : Style::Plain);
        } else {
            canvas.put(row, column, width, QLatin1String(line.title), Style::Title);
        }
        ++row;
    }
    return 0;
}

int putColumns(const PhoneState& state, Canvas& canvas)
{
    if (canvas.columns() < kTwoColumns)
        return putLines(state, canvas, linesOf(kColumns), 0, canvas.columns());
    const int width = canvas.columns() / 2;
    const auto columns = std::span(kColumns);
    return std::max(putLines(state, canvas, linesOf(columns.first(1)), 0, width - 2),
                    putLines(state, canvas, linesOf(columns.last(1)), width, canvas.columns() - width));
}

} // namespace

namespace zyn::tool {

void layOut(const PhoneState& state, Canvas& canvas)
{
    if (canvas.columns() < kMinColumns || canvas.rows() < kMinRows) {
        canvas.put(0, 0, canvas.columns(), u"too small; %1x%2 will do"_s.arg(kMinColumns).arg(kMinRows));
        return;
    }
    canvas.put(0, 0, canvas.columns(), kTitle, Style::Title);
    const int column = int{kTitle.size()} + 2;
    canvas.put(0, column, canvas.columns() - column, textOf(state.value(Item::LastMessage)), Style::Label);
    const int hidden = putColumns(state, canvas);
    const QString foot = hidden > 0 ? u"q ends; %1 lines more"_s.arg(hidden) : u"q ends"_s;
    canvas.put(canvas.rows() - 1, 0, canvas.columns(), foot, Style::Label);
}

QString stateText(const PhoneState& state)
{
    QList<QStringList> rows;
    for (const Line& line : linesOf(kColumns)) {
        if (line.label)
            rows += {QLatin1String(line.label), jsonEscaped(textOf(state.value(line.item)))};
        else
            rows += QStringList{QLatin1String(line.title)};
    }
    return alignedLines(rows);
}

} // namespace zyn::tool
