// What the intruder does, each for a first user, or root, and their place.
#pragma once

#include "tests/faults/intruder/Users.h"

#include <QtCore/QRandomGenerator>

namespace intruder {

/// How much is tried.
struct Extent
{
    int frames;      ///< damaged ones, for each socket
    int names;       ///< of those that can be taken, with what takes them; 0 for all
    int restarts;    ///< of services
    int memoryBound; ///< by how many KiB a service may grow; 0 for any
};

/// Tries every operation on every path, segment and process of a handset that runs.
void attackDoors(const Place& place, const Handset& handset);

/// Attacks a handset that runs: its doors, and its sockets.
void attackRunning(const Place& place, QRandomGenerator& random, const Extent& extent);

/// Takes names before the services start.
void attackNames(const Place& place, QRandomGenerator& random, const Extent& extent);

/// Takes and plants while services end and start again.
void attackRestarts(const Place& place, QRandomGenerator& random, const Extent& extent);

} // namespace intruder
