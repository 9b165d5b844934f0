// What a program of the handset tells the service manager that started it.
#pragma once

namespace zyn::handset {

/// Tells the service manager whose socket the environment variable NOTIFY_SOCKET names that this program serves its
/// clients. Nothing happens where none is named. What cannot be told at once is told in the log instead: no program
/// waits for its service manager.
void tellServiceManagerReady();

} // namespace zyn::handset
