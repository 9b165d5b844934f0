// How cost grows with what it is about.
#pragma once

#include "bench/Sampler.h"

#include <QtCore/QString>

namespace bench {

/// A line for each operation: what it costs at several sizes, and the slope.
QString measureScale(const Effort& effort);

} // namespace bench
