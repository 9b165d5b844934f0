// What all measurements share.
#include "bench/Bench.h"

#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/RecentCall_ENG_RecordStore.h"
#include "recentcall/utility/RecentCall_Setup.h"

#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace bench {

void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "bench: failed: %s\n", what);
    std::quick_exit(EXIT_FAILURE);
}

void useStores(const QByteArray& directory)
{
    qputenv("ZYN_LOCAL_APP_WRITE_PATH", directory);
    qputenv("ZYN_APP_WRITE_PATH", directory);
    RecentCall_ENG_RecordStore::destroy();
    ActivityLog_ENG_RecordStore::destroy();
    RecentCall_Setup::destroy();
}

int keepOutput()
{
    const int output = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    require(output >= 0 && nowhere >= 0 && ::dup2(nowhere, STDOUT_FILENO) >= 0, "standard output");
    return output;
}

} // namespace bench
