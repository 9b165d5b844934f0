// The directories in which the handset's services keep their command sockets.
#include "utility/PHONE_SocketDirectory_p.h"

#include "platform/posix/PathAt_p.h"

namespace zyn {

QString socketDirectory(const char* directory)
{
    constexpr mode_t kOpenToAll = 0777;
    posix::makeDirectory(directory, kOpenToAll);
    posix::setMode(directory, kOpenToAll);
    return QLatin1String(directory) + QLatin1Char('/');
}

} // namespace zyn
