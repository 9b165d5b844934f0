// How cost grows with what it is about: a slope on a scale of powers of ten, and a sentence.
#include "bench/Scale.h"

#include "bench/Channels.h"
#include "bench/Report.h"
#include "bench/Service.h"

#include <QtCore/QStringList>

#include <cmath>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace bench {
namespace {

/// An operation whose cost may grow with a number.
struct Series
{
    const char* operation;
    const char* of; ///< what the number counts
    std::vector<int> numbers;
    std::function<Prepare(int number)> job;
};

Prepare messageTo(int listeners)
{
    constexpr int kScaleTurns = 100;
    return exchange(ourTransports().front(), {.listeners = listeners, .isInLoop = true, .turns = kScaleTurns});
}

std::vector<Series> allSeries()
{
    return {
        {"A message, until all have heard it,", "listeners", {1, 2, 4, 8, 16, 32, 64}, messageTo},
        {"A message, sent and heard in one process,", "bytes", {16, 256, 4096, 65'536, 1'048'576}, sendBytes},
        {"A message on one of a thread's channels", "channels", {1, 10, 100, 1000}, sendOnChannels},
        {"A new entry of a favourite", "slots (M)", {15, 100, 1000, 10'000, 32'767}, addEntry},
        {"The list of a favourite", "slots (M)", {15, 100, 1000, 10'000, 32'767}, listEntries},
        {"A key while dialing is restricted", "emergency numbers", {5, 20, 100, 500, 1500}, pressKey},
        {"A call that is added through the service", "clients", {1, 10, 100, 400, 1000}, addBesideClients},
    };
}

/// The slope of the line through the points' logarithms: 1 where cost grows as the number does, 0 where it does not.
double slope(const std::vector<std::pair<double, double>>& points)
{
    double x = 0;
    double y = 0;
    double xx = 0;
    double xy = 0;
    for (const auto& [number, taken] : points) {
        x += std::log(number);
        y += std::log(taken);
        xx += std::log(number) * std::log(number);
        xy += std::log(number) * std::log(taken);
    }
    const auto count = static_cast<double>(points.size());
    return (count * xy - x * y) / (count * xx - x * x);
}

QString sentence(const Series& series, const std::vector<std::pair<double, double>>& points)
{
    QStringList costs;
    for (const auto& [number, taken] : points)
        costs += u"%1 at %2"_s.arg(duration(taken)).arg(number, 0, 'f', 0);
    const double last = points.back().second / points.front().second;
    return u"%1 costs %2 %3: slope %4, %5 times as much for %6 times as many.\n"_s
        .arg(QLatin1String(series.operation), costs.join(u", "_s), QLatin1String(series.of))
        .arg(slope(points), 0, 'f', 2)
        .arg(last, 0, 'f', last < 10 ? 1 : 0)
        .arg(points.back().first / points.front().first, 0, 'f', 0);
}

} // namespace

QString measureScale(const Effort& effort)
{
    QString text;
    for (const Series& series : allSeries()) {
        std::vector<std::pair<double, double>> points;
        for (const int number : series.numbers) {
            std::fprintf(stderr, "bench: %s %d %s\n", series.operation, number, series.of);
            const MeasuredRow row = measure({.name = "", .columns = {{kOurs, series.job(number)}}}, effort);
            points.emplace_back(number, row.of(kOurs).value());
        }
        text += u"- "_s + sentence(series, points);
    }
    return text;
}

} // namespace bench
