// A service of the handset, run as the process that it is.
#pragma once

#include "tests/support/Role.h"

#include <csignal>

#include <sys/types.h>
#include <sys/wait.h>

/// A service that is started, told to end, and asked what it has logged.
class ServiceProcess
{
public:
    /// Starts @p program and waits until it serves its clients; @p before is for the shell that starts it.
    bool start(const char* program, const QString& options = {}, const QString& before = {})
    {
        const QString command = QStringLiteral("%1 exec '%2' --ready-fd 3 %3 3>&1 >/dev/null");
        m_process.setReadChannel(QProcess::StandardOutput);
        m_process.start(QStringLiteral("/bin/sh"),
                        {QStringLiteral("-c"), command.arg(before, QLatin1String(program), options)});
        return role::waitReady(m_process);
    }
    void tell(int signal) const
    {
        // The number 0, which a process that has ended has, would mean the test and its starter.
        const auto process = pid_t(m_process.processId());
        if (process <= 0)
            return;
        ::kill(process, signal);
        // On a busy machine it goes on for a while.
        siginfo_t info = {};
        if (signal == SIGSTOP)
            ::waitid(P_PID, id_t(process), &info, WSTOPPED);
    }
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    /// Waits for its end; its exit code, -1 when it was killed.
    int finish() { return role::finish(m_process); }
    /// Ends the service; its exit code, -1 when it was killed.
    int stop(int signal = SIGTERM)
    {
        tell(signal);
        return finish();
    }
    /// What it has logged up to now, which log() gives nevertheless.
    QByteArray logged()
    {
        m_process.setReadChannel(QProcess::StandardError);
        return m_process.peek(m_process.bytesAvailable());
    }
    /// Waits until it has logged @p text.
    bool waitLogged(const QByteArray& text)
    {
        return QTest::qWaitFor([&] { return logged().contains(text); }, role::kTimeout);
    }
    /// Ends the service and gives what it has logged since it told that it listens.
    QByteArray log()
    {
        return stop() == 0 ? m_process.readAllStandardError().split('\n').mid(1).join('\n') : "no clean end";
    }

private:
    QProcess m_process;
};
