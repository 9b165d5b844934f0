// What this program does when a measurement starts it as another process.
#include "bench/Bench.h"
#include "bench/Channels.h"
#include "bench/Child.h"

#include <QtCore/QCoreApplication>

#include <csignal>
#include <map>

#include <sys/prctl.h>
#include <unistd.h>

namespace bench {
namespace {

using Role = int (*)(const std::vector<std::string>& words);

/// Another program, which ends when the measurement does, and whose log nobody reads.
int execute(const std::vector<std::string>& words)
{
    ::dup2(STDOUT_FILENO, STDERR_FILENO);
    std::vector<std::string> copies = words;
    std::vector<char*> arguments;
    for (std::string& word : copies)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    ::execvp(arguments.front(), arguments.data());
    return EXIT_FAILURE;
}

const std::map<std::string, Role> kRoles = {
    {"execute", execute},
    {"listener", listen},
    {"sender", sendInTurns},
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
