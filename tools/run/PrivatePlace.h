// A place of its own for the programs of a handset.
#pragma once

#include <QtCore/QString>

namespace zyn::tool {

/**
 * Gives this process, and all that it starts from now on, a /tmp of its own. All that is in the system's /tmp stays
 * visible in it, but for the places of a handset: its sockets, its list of emergency numbers, its channels and its
 * files. What is made directly in /tmp is gone when the last of the processes has ended, however it ends.
 *
 * No thread may run yet. Throws a CommandError with NotAllowed if the kernel forbids it, after which nothing has
 * changed.
 */
void enterPrivatePlace();

} // namespace zyn::tool
