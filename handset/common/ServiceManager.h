// What a program of the handset tells the service manager that started it.
#pragma once

namespace zyn::handset {

/// Tells the service manager whose socket the environment variable NOTIFY_SOCKET names that this program serves its
/// clients. Nothing happens where none is named. A manager that is busy is waited for at most 5 seconds; what it does
/// not take is told in the log.
void tellServiceManagerReady();

} // namespace zyn::handset
