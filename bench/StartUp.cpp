// Fresh processes: one that sends a message, and one that only loads the library.
#include "bench/Channels.h"
#include "bench/Child.h"
#include "bench/Service.h"

#include <algorithm>
#include <string>
#include <vector>

namespace bench {
namespace {

constexpr int kStarts = 10;

/// The median of some starts of the program @p name until it ended.
double sampleStarts(const std::string& name)
{
    std::vector<double> taken;
    for (int i = 0; i < kStarts; ++i) {
        const int64_t start = now();
        Child child({program(name)});
        require(child.finish(), "a program that starts");
        taken.push_back(static_cast<double>(now() - start));
    }
    std::ranges::sort(taken);
    return taken[taken.size() / 2];
}

/// Has a fresh process of @p command, a program's name and its arguments, send one message to a listener of @p kind.
Prepare sendOnce(const std::string& kind, Child::Words command, bool untilHeard)
{
    command.front() = program(command.front());
    return [=](const QByteArray& directory) -> Job {
        const auto listener = std::make_shared<Audience>(directory, kind);
        const auto sample = [=] {
            std::vector<double> taken;
            for (int i = 0; i < kStarts; ++i) {
                listener->expect(1);
                qputenv("ZYN_QCOP_PATH", directory);
                const int64_t start = now();
                Child child(command);
                require(child.finish(), "a program that sends");
                const int64_t end = now();
                taken.push_back(static_cast<double>((untilHeard ? listener->heard() : end) - start));
            }
            std::ranges::sort(taken);
            return taken[taken.size() / 2];
        };
        return {.run = nullptr, .sample = sample};
    };
}

Prepare start(const std::string& name)
{
    return [name](const QByteArray& /*directory*/) -> Job {
        return {.run = nullptr, .sample = [name] { return sampleStarts(name); }};
    };
}

Column firstMessageOfDbus([[maybe_unused]] bool untilHeard)
{
#ifdef ZYN_BENCH_DBUS
    return {kDbus, sendOnce("dbus", {"zyn-start-dbus"}, untilHeard)};
#else
    return {kDbus, nullptr};
#endif
}

Row firstMessage(const char* name, bool untilHeard)
{
    return {.name = name,
            .goal = 1.2,
            .base = kByHand,
            .columns = {{kOurs, sendOnce("channel", {"zyn-start-channel"}, untilHeard)},
                        {kByHand, sendOnce("socket", {"zyn-start-socket"}, untilHeard)},
                        firstMessageOfDbus(untilHeard)}};
}

Row firstMessageFromC(const char* name, bool untilHeard)
{
    return {.name = name,
            .goal = 1,
            .base = kDbus,
            .columns = {{kOurs, sendOnce("phone", {"zyn-start-c", "80"}, untilHeard)}, firstMessageOfDbus(untilHeard)}};
}

} // namespace

std::vector<Row> startUpRows()
{
    return {
        firstMessage("message of a fresh process, until heard", true),
        firstMessage("message of a fresh process, until it ended", false),
        firstMessageFromC("message of a fresh process, from C without Qt, until heard", true),
        firstMessageFromC("message of a fresh process, from C without Qt, until it ended", false),
        {"load the library", 1.15, kByHand, {{kOurs, start("zyn-start-library")}, {kByHand, start("zyn-start-qt")}}},
    };
}

} // namespace bench
