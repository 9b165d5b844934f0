// What this program does when a measurement starts it as another process.
#include "bench/Bench.h"
#include "bench/Channels.h"
#include "bench/Child.h"
#include "bench/Power.h"
#include "bench/Service.h"

#include <QtCore/QCoreApplication>

#include <csignal>
#include <map>

#include <sys/prctl.h>

namespace bench {
namespace {

using Role = int (*)(const std::vector<std::string>& words);

const std::map<std::string, Role> kRoles = {
    {"idle", idle},
    {"listener", listen},
    {"sender", sendInTurns},
    {"server", serveBare},
};

} // namespace

int runRole(int argc, char** argv)
{
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() < 2 || words.front() != "--role")
        return -1;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const QCoreApplication application(argc, argv);
    return kRoles.at(words[1])({words.begin() + 2, words.end()});
}

} // namespace bench
