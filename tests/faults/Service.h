// A program of the handset that a campaign starts, and kills at a moment which no program can foresee.
#pragma once

#include "platform/posix/UniqueFd_p.h"
#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <iterator>
#include <vector>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace faults {

/// Longer than anything takes on the slowest machine: what is not there by then never comes.
inline constexpr std::chrono::seconds kPatience{30};

inline void pauseFor(std::chrono::microseconds time)
{
    const timespec pause{time_t(time.count() / 1'000'000), long(time.count() % 1'000'000) * 1000};
    ::nanosleep(&pause, nullptr);
}

/// Waits until @p condition holds; false when it never does.
inline bool comesTrue(const std::function<bool()>& condition)
{
    const auto deadline = zyn::posix::Clock::now() + kPatience;
    while (!condition()) {
        if (zyn::posix::Clock::now() > deadline)
            return false;
        pauseFor(std::chrono::milliseconds(1));
    }
    return true;
}

/// The names of all that is in the directory @p path, in order.
inline QStringList namesIn(const QString& path)
{
    return QDir(path).entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

inline QByteArray contentsOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A process of this one's, which goes with the object.
class Process
{
public:
    Process() = default;
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process() { kill(); }

    /// Does @p work in a copy of this process.
    void fork(const std::function<void()>& work)
    {
        kill();
        m_id = ::fork();
        if (m_id != 0)
            return;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        work();
        ::_exit(EXIT_SUCCESS);
    }

    /// Starts @p program and waits until it serves its clients; false when it ends instead, or never does.
    bool start(const QString& program, const QStringList& arguments = {})
    {
        kill();
        int ready[2];
        if (::pipe2(ready, O_CLOEXEC) != 0)
            return false;
        std::vector<QByteArray> words{QFile::encodeName(program), "--ready-fd", "3"};
        std::ranges::transform(arguments, std::back_inserter(words),
                               [](const QString& argument) { return QFile::encodeName(argument); });
        std::vector<char*> pointers(words.size() + 1);
        std::ranges::transform(words, pointers.begin(), [](QByteArray& word) { return word.data(); });
        m_id = ::fork();
        if (m_id == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            ::signal(SIGPIPE, SIG_DFL);
            const int nowhere = ::open("/dev/null", O_RDWR);
            for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                ::dup2(nowhere, stream);
            constexpr int kReady = 3;
            if (ready[1] == kReady)
                ::fcntl(kReady, F_SETFD, 0);
            else
                ::dup2(ready[1], kReady);
            ::execv(pointers.front(), pointers.data());
            ::_exit(EXIT_FAILURE);
        }
        ::close(ready[1]);
        const zyn::posix::UniqueFd heard(ready[0]);
        char byte = 0;
        return zyn::posix::waitUntilReadable(heard.get(), zyn::posix::Clock::now() + kPatience)
               && zyn::posix::retry([&] { return ::read(heard.get(), &byte, 1); }) == 1;
    }

    pid_t id() const { return m_id; }
    bool isRunning()
    {
        if (m_id > 0 && ::waitpid(m_id, &m_status, WNOHANG) == m_id)
            m_id = 0;
        return m_id > 0;
    }
    /// Waits for its end; whether that was a kill, and no crash or end of its own.
    bool waitKilled()
    {
        if (m_id > 0)
            zyn::posix::retry([&] { return ::waitpid(m_id, &m_status, 0); });
        m_id = 0;
        return WIFSIGNALED(m_status) && WTERMSIG(m_status) == SIGKILL;
    }
    /// Waits for its end; whether it has done its work.
    bool finish()
    {
        waitKilled();
        return WIFEXITED(m_status) && WEXITSTATUS(m_status) == EXIT_SUCCESS;
    }
    bool kill()
    {
        if (m_id <= 0)
            return false;
        ::kill(m_id, SIGKILL);
        return waitKilled();
    }
    /// Ends a program; whether it has ended well.
    bool stop()
    {
        if (m_id <= 0)
            return false;
        ::kill(m_id, SIGTERM);
        return finish();
    }

private:
    pid_t m_id = 0;
    int m_status = 0;
};

/// Kills a process while this one goes on with what it does: a signal interrupts that at any instruction.
class Killer
{
public:
    Killer()
    {
        struct sigaction action = {};
        action.sa_handler = strike;
        action.sa_flags = SA_RESTART;
        ::sigaction(SIGALRM, &action, nullptr);
    }
    Killer(const Killer&) = delete;
    Killer& operator=(const Killer&) = delete;
    ~Killer()
    {
        const itimerval none = {};
        ::setitimer(ITIMER_REAL, &none, nullptr);
        ::signal(SIGALRM, SIG_DFL);
    }

    void aim(const Process& process, std::chrono::microseconds delay)
    {
        s_victim = process.id();
        s_hasStruck = 0;
        const itimerval timer{{0, 0}, {time_t(delay.count() / 1'000'000), suseconds_t(delay.count() % 1'000'000)}};
        ::setitimer(ITIMER_REAL, &timer, nullptr);
    }
    bool hasStruck() const { return s_hasStruck != 0; }

private:
    static void strike(int /*signal*/)
    {
        ::kill(s_victim, SIGKILL);
        s_hasStruck = 1;
    }

    static inline volatile pid_t s_victim = 0;
    static inline volatile std::sig_atomic_t s_hasStruck = 0;
};

} // namespace faults
