// zyn-cost: does what is measured a fixed number of times, for programs that count instructions and system calls.
#include "bench/Bench.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

#include <cstdio>

#include <unistd.h>

#if __has_include(<valgrind/callgrind.h>)
#    include <valgrind/callgrind.h>
#else
#    define CALLGRIND_START_INSTRUMENTATION
#    define CALLGRIND_ZERO_STATS
#    define CALLGRIND_DUMP_STATS_AT(name) static_cast<void>(name)
#    define CALLGRIND_STOP_INSTRUMENTATION
#endif

namespace bench {
namespace {

/// How often an operation is done that is counted; of those of a fresh process, once.
constexpr int kTimes = 10;
/// How old a file is, in microseconds, when the clock of files has surely moved on: what is read from then on may be
/// remembered.
constexpr unsigned kSettled = 50'000;
constexpr char kFresh[] = "first message of a process";

/// The rows whose cost is bounded: all that is done within a process, but what takes long.
std::vector<Row> costRows()
{
    std::vector<Row> rows;
    for (const auto& some : {storeRows(), settingsRows(), messageRows(), sendingRows()}) {
        for (const Row& row : some) {
            const bool takesLong = row.name == "list of a favourite, M 32767";
            const bool needsFile = row.name.ends_with("trace in a file");
            if (!takesLong && !needsFile)
                rows.push_back(row);
        }
    }
    rows.push_back(sendingRows().front());
    rows.back().name = kFresh;
    return rows;
}

int timesOf(const Row& row)
{
    return row.name == kFresh ? 1 : kTimes;
}

/// Does the operation of @p row, and has it counted: callgrind between its requests, strace between two calls that only
/// mark a place.
void count(const Row& row)
{
    const QTemporaryDir scratch;
    const Job job = row.columns.front().prepare(scratch.path().toLocal8Bit());
    ::usleep(kSettled);
    if (row.name != kFresh) {
        for (int i = 0; i < kTimes; ++i)
            job.run();
        if (job.renew)
            job.renew();
    }
    std::fflush(stdout);
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    static_cast<void>(::access("counted from here", F_OK)); // which check-cost finds among the system calls
    for (int i = 0; i < timesOf(row); ++i)
        job.run();
    static_cast<void>(::access("counted to here", F_OK));
    CALLGRIND_DUMP_STATS_AT(row.name.c_str());
    CALLGRIND_STOP_INSTRUMENTATION;
}

} // namespace
} // namespace bench

/// Without arguments, lists the rows and how often each is done; with a row's name, does that.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const std::vector<bench::Row> rows = bench::costRows();
    if (argc < 2) {
        for (const bench::Row& row : rows)
            std::printf("%s|%d\n", row.name.c_str(), bench::timesOf(row));
        return EXIT_SUCCESS;
    }
    bench::keepOutput();
    for (const bench::Row& row : rows) {
        if (row.name == argv[1])
            bench::count(row);
    }
    return EXIT_SUCCESS;
}
