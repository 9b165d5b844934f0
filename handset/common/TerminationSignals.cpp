// Ends the event loop on SIGTERM and SIGINT.
#include "handset/common/TerminationSignals.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>

#include <csignal>

#include <sys/signalfd.h>

namespace zyn::handset {

TerminationSignals::TerminationSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    // Blocked signals wait for the descriptor to be read, even those that were ignored when the process started.
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    m_signals.reset(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    m_notifier = std::make_unique<QSocketNotifier>(m_signals.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, QCoreApplication::instance(), [this] {
        // The signal is left unread, so that a nested event loop ends as well.
        m_notifier->setEnabled(false);
        QCoreApplication::quit();
    });
}

TerminationSignals::~TerminationSignals() = default;

} // namespace zyn::handset
