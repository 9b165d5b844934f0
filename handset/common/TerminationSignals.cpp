// Ends the event loop on SIGTERM, SIGINT and the like.
#include "handset/common/TerminationSignals.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>

#include <sys/signalfd.h>

namespace zyn::handset {

TerminationSignals::TerminationSignals(std::initializer_list<int> signals)
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : signals)
        sigaddset(&set, signal);
    // Blocked signals wait for the descriptor to be read, even those that were ignored when the process started.
    ::sigprocmask(SIG_BLOCK, &set, nullptr);
    m_signals.reset(::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
    m_notifier = std::make_unique<QSocketNotifier>(m_signals.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, QCoreApplication::instance(), [this] {
        // The signal is left unread, so that a nested event loop ends as well.
        m_notifier->setEnabled(false);
        QCoreApplication::quit();
    });
}

TerminationSignals::~TerminationSignals() = default;

bool TerminationSignals::hasCome() const
{
    return !m_notifier->isEnabled();
}

} // namespace zyn::handset
