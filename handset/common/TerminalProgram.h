// A program of the handset that shows something in a terminal.
#pragma once

#include "handset/common/Output.h"
#include "handset/common/Process.h"
#include "handset/common/TerminationSignals.h"

#include <QtCore/QCoreApplication>

namespace zyn::handset {

/// What such a program sets up before its own work, in the order in which it must be; to be made once, in main().
class TerminalProgram
{
    const struct Streams
    {
        Streams()
        {
            openStandardStreams();
            ignoreBrokenPipes();
        }
    } m_streams;

public:
    /// @param argc  lives as long as the program
    TerminalProgram(int& argc, char** argv, const QString& name, const QString& version)
        : application(argc, argv)
    {
        QCoreApplication::setApplicationName(name);
        QCoreApplication::setApplicationVersion(version);
    }

    Output output;
    const QCoreApplication application;

private:
    const TerminationSignals m_terminationSignals;
};

} // namespace zyn::handset
