// Measures the columns of a row in turn, so that what the machine does meanwhile meets all of them alike.
#pragma once

#include "bench/Bench.h"

#include <optional>

namespace bench {

/// How long is measured.
struct Effort
{
    int repetitions;
    double seconds; ///< of each repetition within a process
};

/// What a column took: nanoseconds an operation.
struct Taken
{
    double median;
    double spread; ///< half the distance of the quartiles, as a part of the median
};

/// The median and the spread of @p samples, which are not empty.
Taken summary(std::vector<double> samples);

struct MeasuredColumn
{
    std::string name;
    std::optional<Taken> taken; ///< none where what it needs is not installed
};

struct MeasuredRow
{
    std::string name;
    double goal;
    std::string base;
    std::vector<MeasuredColumn> columns;

    /// The median of a column; none when there is no such column, or it was not measured.
    std::optional<double> of(const std::string& column) const;
    /// How many times the base column ours takes.
    std::optional<double> ratio() const;
};

MeasuredRow measure(const Row& row, const Effort& effort);

} // namespace bench
