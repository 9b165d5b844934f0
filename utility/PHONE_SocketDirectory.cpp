// The directories in which the handset's services keep their command sockets.
#include "utility/PHONE_SocketDirectory_p.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace zyn {

QString socketDirectory(const char* directory)
{
    constexpr mode_t kOpenToAll = 0777;
    ::mkdir(directory, kOpenToAll);
    ::fchmodat(AT_FDCWD, directory, kOpenToAll, AT_SYMLINK_NOFOLLOW);
    return QLatin1String(directory) + QLatin1Char('/');
}

} // namespace zyn
