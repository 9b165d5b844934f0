// The directories in which the handset's services keep their command sockets.
#pragma once

#include <QtCore/QString>

namespace zyn {

/// Creates @p directory open to all users, whatever the umask, and gives its path with a final slash. Failures are left
/// to whoever connects. A symbolic link of that name is not followed when the mode is set.
QString socketDirectory(const char* directory);

} // namespace zyn
