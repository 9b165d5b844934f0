// What costs though nothing happens: wake-ups and memory of idle processes, and how long programs take to start.
#pragma once

#include <QtCore/QString>

#include <string>
#include <vector>

namespace bench {

/// A table, as a document has it; idle processes are watched for as many seconds.
QString measurePower(int seconds);

/// The role of an application that has a client of a kind, and does nothing.
int idle(const std::vector<std::string>& words);

} // namespace bench
