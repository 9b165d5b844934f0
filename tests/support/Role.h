// Second processes of a test: the test binary itself, run again with a role.
#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>
#include <QtTest/QTest>

#include <cstdio>
#include <functional>
#include <map>
#include <memory>

namespace role {

/// How long a test waits for another process before it fails.
inline constexpr int kTimeout = 20'000;

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
