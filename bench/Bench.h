// What is measured: rows, each the same operation done by the library, by bare system calls, by hand and by peers.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// One operation, ready to be done again and again. What it needs is in what its functions hold.
struct Job
{
    std::function<void()> run;             ///< one operation, within this process
    std::function<void()> renew = nullptr; ///< makes room again, without being measured, after @p often operations
    int often = 1;
    /// Instead of run: measures one operation that crosses processes, or several, and gives the nanoseconds of each.
    std::function<double()> sample = nullptr;
};

/// Makes a job in an empty directory of its own.
using Prepare = std::function<Job(const QByteArray& directory)>;

struct Column
{
    std::string name; ///< one of those below, or a peer's
    Prepare prepare;
};

inline constexpr char kOurs[] = "ours";
inline constexpr char kLimit[] = "limit";    ///< bare system calls
inline constexpr char kByHand[] = "by hand"; ///< what somebody would write for this one job

/// An operation, and what is compared: the first column is ours. The goal is a multiple of the column @p base.
struct Row
{
    std::string name;
    double goal = 0;
    const char* base = kLimit;
    std::vector<Column> columns;
};

/// @{ The rows, by what they are about.
std::vector<Row> storeRows();
std::vector<Row> settingsRows();
std::vector<Row> messageRows();
std::vector<Row> channelRows();
std::vector<Row> serviceRows();
std::vector<Row> startUpRows();
/// @}

/// Messages between objects of one process, of which only the cost is counted.
std::vector<Row> sendingRows();

/// @{ Operations of the library whose cost may grow with a number: of a favourite's slots, of emergency numbers, of a
/// message's bytes, of the thread's channels.
Prepare addEntry(int slots);
Prepare listEntries(int slots);
Prepare pressKey(int numbers);
Prepare sendBytes(int size);
Prepare sendOnChannels(int channels);
/// @}

/// Ends the process with a message when what a measurement rests on does not hold.
void require(bool holds, const char* what);

/// Lets the library's stores and settings be in @p directory, as in a process that starts there.
void useStores(const QByteArray& directory);

/// Keeps standard output for the results, and gives it: what the library writes there goes nowhere from now on.
int keepOutput();

} // namespace bench
