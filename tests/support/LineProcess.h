// A program whose output a test reads line by line.
#pragma once

#include "tests/support/Role.h"

#include <QtCore/QProcess>

#include <csignal>

#include <sys/types.h>

/// A process that is told to end with the object.
class LineProcess : public QProcess
{
public:
    ~LineProcess() override { end(SIGTERM); }

    /// The next line, without its end, of the channel that is read; empty when none comes.
    QString nextLine()
    {
        while (!canReadLine() && waitForReadyRead(role::kTimeout)) {
        }
        return QString::fromUtf8(readLine()).remove(QLatin1Char('\n'));
    }

    /// The lines before the next one that reads @p last.
    QString linesBefore(const QString& last)
    {
        QString lines;
        for (QString line = nextLine(); line != last && state() == Running; line = nextLine())
            lines += line + QLatin1Char('\n');
        return lines;
    }

    /// Sends the signal, and gives the exit code; -1 when the process was killed.
    int end(int signal)
    {
        if (processId() != 0)
            ::kill(static_cast<pid_t>(processId()), signal);
        return role::finish(*this);
    }
};
