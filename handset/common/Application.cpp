// Set-up that every handset program shares.
#include "handset/common/Application.h"

#include <algorithm>
#include <climits>
#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

/// Descriptors for files, message channels, the event loop and the listening socket.
constexpr int kReservedDescriptors = 32;

} // namespace

void ignoreBrokenPipes()
{
    std::signal(SIGPIPE, SIG_IGN);
}

int raiseClientLimit()
{
    rlimit limit = {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit raised = {limit.rlim_max, limit.rlim_max};
    if (::setrlimit(RLIMIT_NOFILE, &raised) == 0)
        limit = raised;
    return std::max(1, static_cast<int>(std::min<rlim_t>(limit.rlim_cur, INT_MAX)) - kReservedDescriptors);
}

StandardStreams::StandardStreams()
{
    int fd = ::open("/dev/null", O_RDWR);
    while (fd >= 0 && fd <= STDERR_FILENO)
        fd = ::dup(fd);
    if (fd > STDERR_FILENO)
        ::close(fd);
}

Application::Application(int& argc, char** argv, const QString& name)
    : QCoreApplication(argc, argv)
{
    ignoreBrokenPipes();
    setApplicationName(name);
    setApplicationVersion(u"" ZYN_VERSION ""_s);
}

TerminalApplication::TerminalApplication(int& argc, char** argv, const QString& name)
    : Application(argc, argv, name)
{
    output.whenLost([] { quit(); });
}

} // namespace zyn::handset
