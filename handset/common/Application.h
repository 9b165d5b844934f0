// Set-up that every handset program shares.
#pragma once

#include "handset/common/Output.h"
#include "handset/common/TerminationSignals.h"

#include <QtCore/QCoreApplication>

namespace zyn::handset {

/// Ignores SIGPIPE: a write without a reader fails instead.
void ignoreBrokenPipes();

/// Raises the limit of open descriptors to its maximum. Returns how many of them are for clients, at least 1.
int raiseClientLimit();

/// Opens the standard streams that are closed. The next file or socket would get their number, and their output.
struct StandardStreams
{
    StandardStreams();
};

/// An application that runs until SIGTERM or SIGINT. Made first in main(), once.
class Application : StandardStreams, public QCoreApplication
{
public:
    /// @param argc  lives as long as the application
    Application(int& argc, char** argv, const QString& name);

private:
    const TerminationSignals m_terminationSignals;
};

/// An application that shows something in a terminal, and ends when nobody can see it any more.
class TerminalApplication : public Application
{
public:
    TerminalApplication(int& argc, char** argv, const QString& name);

    Output output;
};

} // namespace zyn::handset
