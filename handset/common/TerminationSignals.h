// Ends the event loop on SIGTERM and SIGINT.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QObject>

#include <memory>

class QSocketNotifier;

namespace zyn::handset {

/**
 * Turns SIGTERM and SIGINT into the end of the event loop, so that what follows exec() cleans up.
 *
 * A program has one, made when there is an application and no thread besides the first. A signal that comes before the
 * event loop runs ends it as soon as it does.
 */
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

private:
    posix::UniqueFd m_signals;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace zyn::handset
