// Ends the event loop on SIGTERM, SIGINT and the like.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QObject>

#include <csignal>
#include <initializer_list>
#include <memory>

class QSocketNotifier;

namespace zyn::handset {

/**
 * Ends the event loop on signals, so that what follows exec() cleans up.
 *
 * Made once per program, after the application and before any thread. A signal that arrives before the event loop runs
 * ends it as soon as it does.
 */
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(std::initializer_list<int> signals = {SIGTERM, SIGINT});
    ~TerminationSignals() override;

    /// Whether one has ended the event loop.
    bool hasCome() const;

private:
    posix::UniqueFd m_signals;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace zyn::handset
