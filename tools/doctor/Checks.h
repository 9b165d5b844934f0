// The checks of doctor. None of them changes anything.
#pragma once

#include "tools/zynphone/Finding.h"

namespace zyn::tool {

/// The variables that name directories.
Findings checkEnvironment();
/// The directories of the channels, and their listeners.
Findings checkChannels();
/// This user's other programs: whether they use these channels and these libraries.
Findings checkProcesses();
/// The service manager's units: whether they start the programs beside this one.
Findings checkUnits();
/// The sockets of the handset's services, and who serves them.
Findings checkServices();
/// The telephony under the phone server, unless the network is played.
Findings checkModem();
/// The store directory and the files in it.
Findings checkStore();
/// The settings files and the list of emergency numbers.
Findings checkSettings();
/// Which features are enabled.
Findings checkSwitches();

} // namespace zyn::tool
