// Processes of a measurement: this program again, in a role, or another program.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <sys/types.h>

namespace bench {

/// A process that is told what to do, and answers, by lines on its standard input, a socket. It ends with the object.
class Child
{
public:
    using Words = std::vector<std::string>;

    enum class Log { Shown, Dropped };

    /// Starts the program @p words, a path and its arguments; standard output goes nowhere.
    explicit Child(const Words& words, Log log = Log::Shown);
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child();

    pid_t id() const { return m_process; }
    void tell(const std::string& line) const;
    /// The next line of the process, which comes within a minute.
    std::string line() const;
    /// Waits for the end; whether that was one of success.
    bool finish();

private:
    pid_t m_process = -1;
    int m_control = -1;
};

/// Starts this program in the role @p words, a name and its arguments.
Child::Words inRole(const Child::Words& words);

/// @{ For a role: the next line of who started it, empty when that has ended; an answer.
std::string nextOrder();
void answer(const std::string& line);
/// @}

/// Nanoseconds since the machine started, the same for all processes.
int64_t now();

/// Runs the role that the arguments of main() ask for, and gives its exit code; -1 when they ask for none.
int runRole(int argc, char** argv);

} // namespace bench
