// The tool's monitor, as a process of its own.
#pragma once

#include "tests/support/LineProcess.h"
#include "tests/support/Tool.h"

#include <QtCore/QTime>

/// `zynphone monitor`, listening once it is constructed.
class MonitorProcess : public LineProcess
{
public:
    /// @p arguments are percent-encoded words, as tool::words() takes them.
    explicit MonitorProcess(const QString& arguments)
    {
        start(QStringLiteral(ZYN_TOOL), tool::words(QLatin1String("monitor ") + arguments));
        setReadChannel(StandardError);
        greeting = nextLine();
        setReadChannel(StandardOutput);
    }

    /// The next line; where it begins with the local time, TIME stands instead.
    QString nextMessage()
    {
        const QString line = nextLine();
        const QTime time = QTime::fromString(line.left(12), QStringLiteral("HH:mm:ss.zzz"));
        const int age = (time.secsTo(QTime::currentTime()) + 86'400) % 86'400;
        return time.isValid() && age < 300 ? QLatin1String("TIME") + line.mid(12) : line;
    }

    QString greeting;
};
