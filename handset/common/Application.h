// What every program of the handset sets up before its own work.
#pragma once

#include "handset/common/Output.h"
#include "handset/common/TerminationSignals.h"

#include <QtCore/QCoreApplication>

namespace zyn::handset {

/// Keeps the process alive when the reader of a pipe or socket goes away: the write fails instead.
void ignoreBrokenPipes();

/// Raises the process's limit of open descriptors to its maximum. Returns how many of them are for clients, at least 1.
int raiseClientLimit();

/// Opens the standard streams that are closed: the next file or socket would get their number, and what is written
/// there.
struct StandardStreams
{
    StandardStreams();
};

/// The application of a program that runs until SIGTERM or SIGINT ends its event loop. Made once, first in main().
class Application : StandardStreams, public QCoreApplication
{
public:
    /// @param argc  lives as long as the program
    Application(int& argc, char** argv, const QString& name);

private:
    const TerminationSignals m_terminationSignals;
};

/// The application of a program that shows something in a terminal.
class TerminalApplication : public Application
{
public:
    using Application::Application;

    Output output;
};

} // namespace zyn::handset
