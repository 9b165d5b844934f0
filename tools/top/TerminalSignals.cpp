// What a terminal and its shell tell a program by signals.
#include "tools/top/TerminalSignals.h"

#include "platform/posix/UniqueFd_p.h"

#include <csignal>
#include <initializer_list>

#include <sys/signalfd.h>

namespace zyn::tool {
namespace {

sigset_t setOf(std::initializer_list<int> numbers)
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : numbers)
        sigaddset(&signals, number);
    return signals;
}

} // namespace

TerminalSignals::TerminalSignals(std::function<void(int)> handler)
    : m_handler(std::move(handler))
{
    const sigset_t signals = setOf({SIGHUP, SIGQUIT, SIGTSTP, SIGCONT, SIGWINCH});
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    m_signals.reset(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    m_notifier = std::make_unique<QSocketNotifier>(m_signals.get(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { deliver(); });
}

void TerminalSignals::deliver()
{
    signalfd_siginfo info = {};
    while (posix::retry([&] { return ::read(m_signals.get(), &info, sizeof info); }) == ssize_t{sizeof info})
        m_handler(static_cast<int>(info.ssi_signo));
}

void TerminalSignals::stop()
{
    const sigset_t signal = setOf({SIGTSTP});
    // Pending while it is blocked; the process stops where it is unblocked.
    ::raise(SIGTSTP);
    ::sigprocmask(SIG_UNBLOCK, &signal, nullptr);
    ::sigprocmask(SIG_BLOCK, &signal, nullptr);
}

} // namespace zyn::tool
