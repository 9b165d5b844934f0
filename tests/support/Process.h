// Second processes of a test: the test binary itself, run again with a role, and the services of the handset.
#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>
#include <QtTest/QTest>

#include <csignal>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>

#include <sys/types.h>
#include <sys/wait.h>

namespace role {

/// How long a test waits for another process before it fails. Beside a tool, which takes its time, it is longer.
inline const int kTimeout = qEnvironmentVariableIsSet("ZYN_TEST_TOOL") ? 300'000 : 20'000;

inline constexpr char kSwitch[] = "--role";

using Body = std::function<int(const QStringList& arguments)>;

/// Called by a role when it has come to the point that its starter waits for.
inline void sayReady()
{
    std::puts("ready");
    std::fflush(stdout);
}

/// Runs @p name of the calling test binary in a new process.
inline std::unique_ptr<QProcess> start(const QString& name, const QStringList& arguments = {})
{
    auto process = std::make_unique<QProcess>();
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->start(QCoreApplication::applicationFilePath(), QStringList{QLatin1String(kSwitch), name} + arguments);
    return process;
}

/// Waits until the process says "ready" on its standard output.
inline bool waitReady(QProcess& process)
{
    QByteArray output;
    while (!output.contains("ready\n")) {
        if (!process.waitForReadyRead(kTimeout))
            return false;
        output += process.readAllStandardOutput();
    }
    return true;
}

/// Waits for the process's end and gives its exit code; -1 when it was killed or did not end.
inline int finish(QProcess& process)
{
    if (process.state() != QProcess::NotRunning && !process.waitForFinished(kTimeout))
        return -1;
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

/// The main of a test binary with roles: runs the role that the command line asks for, or else the test.
template<typename Test>
int testMain(int argc, char** argv, const std::map<QString, Body>& roles)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == QLatin1String(kSwitch)) {
        const auto found = roles.find(arguments.value(2));
        return found == roles.end() ? EXIT_FAILURE : found->second(arguments.mid(3));
    }
    Test test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace role

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
    /// The number that the system gave it, 0 once it has ended.
    qint64 id() const { return m_process.processId(); }
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
