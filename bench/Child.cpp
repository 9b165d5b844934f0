// Processes of a measurement: this program again, in a role, or another program.
#include "bench/Child.h"

#include "bench/Bench.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <set>

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {
namespace {

constexpr time_t kPatience = 60; // seconds

/// The processes that have been started and not waited for. They end with a measurement that fails, too.
std::set<pid_t>& running()
{
    static std::set<pid_t> processes;
    return processes;
}

void endAll()
{
    for (const pid_t process : running())
        ::kill(process, SIGKILL);
}

void write(int fd, const std::string& line)
{
    const std::string text = line + '\n';
    require(::send(fd, text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size()),
            "telling a process");
}

/// The next line; empty at the end.
std::string read(int fd)
{
    std::string line;
    for (char byte = 0; ::recv(fd, &byte, 1, 0) == 1 && byte != '\n';)
        line += byte;
    return line;
}

} // namespace

Child::Child(const Words& words, Log log)
{
    std::array<int, 2> ends = {-1, -1};
    require(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0, "a socket pair");
    m_control = ends[0];
    const timeval patience{kPatience, 0};
    ::setsockopt(m_control, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDIN_FILENO);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    if (log == Log::Dropped)
        ::posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    std::vector<std::string> copies = words;
    std::vector<char*> arguments;
    arguments.reserve(copies.size() + 1);
    for (std::string& word : copies)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const int error = ::posix_spawnp(&m_process, arguments.front(), &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    require(error == 0, words.front().c_str());
    [[maybe_unused]] static const int registered = std::at_quick_exit(endAll);
    running().insert(m_process);
}

Child::~Child()
{
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
        running().erase(m_process);
    }
    ::close(m_control);
}

void Child::tell(const std::string& line) const
{
    write(m_control, line);
}

std::string Child::line() const
{
    std::string line = read(m_control);
    require(!line.empty(), "waiting for a process");
    return line;
}

bool Child::finish()
{
    int status = -1;
    require(::waitpid(m_process, &status, 0) == m_process, "the end of a process");
    running().erase(m_process);
    m_process = -1;
    return status == 0;
}

Child::Words inRole(const Child::Words& words)
{
    Child::Words all = {"/proc/self/exe", "--role"};
    all.insert(all.end(), words.begin(), words.end());
    return all;
}

std::string nextOrder()
{
    return read(STDIN_FILENO);
}

void answer(const std::string& line)
{
    write(STDIN_FILENO, line);
}

int64_t now()
{
    timespec time = {};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

} // namespace bench
