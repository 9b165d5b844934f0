// Measures the columns of a row in turn: within the process by Google Benchmark, whose repetitions it has interleaved.
#include "bench/Sampler.h"

#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

#include <sys/stat.h>

namespace bench {
namespace {

using Samples = std::map<std::string, std::vector<double>>;
using Jobs = std::vector<std::pair<std::string, Job>>;

/// Takes each repetition of each column.
class Collector : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context& /*context*/) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && run.iterations > 0)
                m_samples[run.run_name.function_name].push_back(run.real_accumulated_time * 1e9
                                                                / static_cast<double>(run.iterations));
        }
    }
    const Samples& samples() const { return m_samples; }

private:
    Samples m_samples;
};

/// As many operations as there is room for, then room again.
void runWithRenewals(benchmark::State& state, const Job& job)
{
    using Clock = std::chrono::steady_clock;
    while (state.KeepRunningBatch(job.often)) {
        const auto start = Clock::now();
        for (int i = 0; i < job.often; ++i)
            job.run();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        job.renew();
    }
}

void runFreely(benchmark::State& state, const Job& job)
{
    for ([[maybe_unused]] auto _ : state)
        job.run();
}

Samples sampleWithin(const Jobs& jobs, const Effort& effort)
{
    for (const auto& [name, job] : jobs) {
        auto* const registered = benchmark::RegisterBenchmark(name.c_str(), [&job = job](benchmark::State& state) {
            job.renew ? runWithRenewals(state, job) : runFreely(state, job);
        });
        registered->MinTime(effort.seconds)->Repetitions(effort.repetitions);
        job.renew ? registered->UseManualTime() : registered->UseRealTime();
    }
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector, ".");
    benchmark::ClearRegisteredBenchmarks();
    return collector.samples();
}

Samples sampleAcross(const Jobs& jobs, const Effort& effort)
{
    Samples samples;
    for (const auto& [name, job] : jobs)
        job.sample(); // what is done only the first time
    for (int i = 0; i < effort.repetitions; ++i) {
        for (const auto& [name, job] : jobs)
            samples[name].push_back(job.sample());
    }
    return samples;
}

} // namespace

Taken summary(std::vector<double> samples)
{
    std::ranges::sort(samples);
    const auto quantile = [&](size_t quarters) { return samples[(samples.size() - 1) * quarters / 4]; };
    return {quantile(2), (quantile(3) - quantile(1)) / 2 / quantile(2)};
}

std::optional<double> MeasuredRow::of(const std::string& column) const
{
    const auto found = std::ranges::find(columns, column, &MeasuredColumn::name);
    return found == columns.end() || !found->taken ? std::nullopt : std::optional(found->taken->median);
}

std::optional<double> MeasuredRow::ratio() const
{
    const auto ours = of(kOurs);
    const auto other = of(base);
    return ours && other ? std::optional(*ours / *other) : std::nullopt;
}

MeasuredRow measure(const Row& row, const Effort& effort)
{
    const QTemporaryDir scratch;
    require(scratch.isValid(), "a temporary directory");
    Jobs jobs;
    // Ours is the first, and so made last: the environment leads to its directory then.
    for (auto column = row.columns.rbegin(); column != row.columns.rend(); ++column) {
        const QByteArray directory = scratch.path().toLocal8Bit() + '/' + QByteArray::number(qsizetype(jobs.size()));
        require(::mkdir(directory.constData(), S_IRWXU) == 0, "a directory for a column");
        if (column->prepare)
            jobs.emplace_back(column->name, column->prepare(directory));
    }
    const bool isAcross = !jobs.empty() && jobs.front().second.sample;
    const Samples samples = isAcross ? sampleAcross(jobs, effort) : sampleWithin(jobs, effort);
    MeasuredRow measured{row.name, row.goal, row.base, {}};
    for (const Column& column : row.columns) {
        const auto found = samples.find(column.name);
        measured.columns.push_back(
            {column.name, found == samples.end() ? std::nullopt : std::optional(summary(found->second))});
    }
    return measured;
}

} // namespace bench
