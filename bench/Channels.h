// Messages from one process to listeners that are processes too.
#pragma once

#include "bench/Bench.h"
#include "bench/Transports.h"

namespace bench {

/// What is sent, and how.
struct Traffic
{
    int listeners;
    bool isInLoop; ///< whether the sender sends from its event loop
    int burst = 1; ///< how many messages a turn sends
    int turns = 1; ///< how many turns, each when all listeners have heard the one before
};

/// A job that measures until all listeners have heard: of one message, or of each of a burst.
Prepare exchange(const Kind& kind, const Traffic& traffic);

/// @{ The roles of its processes.
int listen(const std::vector<std::string>& words);
int sendInTurns(const std::vector<std::string>& words);
/// @}

} // namespace bench
