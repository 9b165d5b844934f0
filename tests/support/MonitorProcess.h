// The tool's monitor, as a process of its own.
#pragma once

#include "tests/support/Tool.h"

#include <QtCore/QTime>

#include <csignal>

/// `zynphone monitor`, listening once it is constructed.
class MonitorProcess : public QProcess
{
public:
    /// @p arguments are percent-encoded words, as tool::words() takes them.
    explicit MonitorProcess(const QString& arguments)
    {
        start(QStringLiteral(ZYN_TOOL), tool::words(QLatin1String("monitor ") + arguments));
        setReadChannel(StandardError);
        greeting = waitForLine();
        setReadChannel(StandardOutput);
    }

    ~MonitorProcess() override { end(SIGTERM); }

    /// The next line; where it begins with the local time, TIME stands instead.
    QString nextLine()
    {
        const QString line = waitForLine();
        const QTime time = QTime::fromString(line.left(12), QStringLiteral("HH:mm:ss.zzz"));
        const int age = (time.secsTo(QTime::currentTime()) + 86'400) % 86'400;
        return time.isValid() && age < 300 ? QLatin1String("TIME") + line.mid(12) : line;
    }

    int end(int signal)
    {
        if (processId() != 0)
            ::kill(static_cast<pid_t>(processId()), signal);
        return role::finish(*this);
    }

    QString greeting;

private:
    QString waitForLine()
    {
        while (!canReadLine() && waitForReadyRead(role::kPatience)) {
        }
        return QString::fromUtf8(readLine()).remove(QLatin1Char('\n'));
    }
};
