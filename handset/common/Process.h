// What every program of the handset that runs in the background does for itself, before anything else.
#pragma once

namespace zyn::handset {

/// Sees to it that the three standard streams are open: in place of a closed one the next file, or socket, would take
/// what is meant for it.
void openStandardStreams();

/// A reader that leaves a pipe is no reason to end.
void ignoreBrokenPipes();

/// Allows the process as many descriptors as it may have, and gives how many of them are for clients: 1 or more.
int raiseClientLimit();

} // namespace zyn::handset
