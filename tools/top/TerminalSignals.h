// What a terminal and its shell tell a program by signals.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QSocketNotifier>

#include <functional>
#include <memory>

namespace zyn::tool {

/// Delivers SIGHUP, SIGQUIT, SIGTSTP, SIGCONT and SIGWINCH in the event loop. A program without further threads has
/// one.
class TerminalSignals
{
public:
    explicit TerminalSignals(std::function<void(int signal)> handler);

    /// Stops the process, as SIGTSTP would have if it were not caught, until it is told to go on.
    static void stop();

private:
    void deliver();

    std::function<void(int)> m_handler;
    posix::UniqueFd m_signals;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace zyn::tool
