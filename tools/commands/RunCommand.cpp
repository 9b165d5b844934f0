// zynphone run: a command in a handset of its own.
#include "tools/commands/Commands.h"

#include "handset/common/TerminationSignals.h"
#include "tools/run/PrivateHandset.h"
#include "tools/run/PrivatePlace.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/ExitCode.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QScopeGuard>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>

#include <csignal>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// How long a command may take to end when this program is told to, in milliseconds.
constexpr int kCommandEndTime = 5000;
/// What a shell adds to the number of the signal that has ended a command.
constexpr int kSignalBase = 128;

/// The path of @p command. Throws a CommandError if there is none that can be run.
QString programNamed(const QString& command)
{
    QString path = command.contains(u'/') ? command : QStandardPaths::findExecutable(command);
    const QFileInfo file(path);
    if (path.isEmpty() || !file.exists())
        throw CommandError(NotFound, u"there is no command '%1'"_s.arg(command));
    if (!file.isFile() || !file.isExecutable())
        throw CommandError(NotExecutable, u"'%1' cannot be run"_s.arg(command));
    return path;
}

/// The script's path, which holds from every folder; empty without one. Throws a usage error if it cannot be read.
QString scriptOf(const Invocation& invocation)
{
    if (!invocation.isSet(u"script"_s))
        return {};
    const QFileInfo file(invocation.value(u"script"_s));
    if (!file.isFile() || !file.isReadable())
        throw usageError(u"'%1' is no script that can be read"_s.arg(invocation.value(u"script"_s)));
    return file.absoluteFilePath();
}

/// Runs the command with this program's streams; what a shell would return.
int runToTheEnd(const QStringList& words, const Console& console)
{
    ChildProcess command([output = console.descriptor()] { ::dup2(output, STDOUT_FILENO); });
    command.setInputChannelMode(QProcess::ForwardedInputChannel);
    QObject::connect(&command, &QProcess::finished, QCoreApplication::instance(), &QCoreApplication::quit);
    command.start(programNamed(words.first()), words.mid(1));
    if (!command.waitForStarted())
        throw CommandError(NotExecutable, u"'%1' cannot be run: %2"_s.arg(words.first(), command.errorString()));
    if (command.state() != QProcess::NotRunning)
        QCoreApplication::exec();
    if (command.state() != QProcess::NotRunning) {
        command.terminate();
        if (!command.waitForFinished(kCommandEndTime))
            command.kill();
        command.waitForFinished();
    }
    // The process's own word for the signal is its exit code.
    return command.exitStatus() == QProcess::NormalExit ? command.exitCode() : kSignalBase + command.exitCode();
}

/// Ends what the command has left running, and what that leaves.
void endChildren()
{
    const QString list = u"/proc/self/task/%1/children"_s.arg(::getpid());
    for (QFile children(list); children.open(QIODevice::ReadOnly); children.close()) {
        const QByteArrayList numbers = children.readAll().simplified().split(' ');
        if (numbers.first().isEmpty())
            return;
        for (const QByteArray& number : numbers)
            ::kill(number.toInt(), SIGKILL);
        ::waitpid(-1, nullptr, 0);
    }
}

ExitCode runInHandset(const Invocation& invocation, Console& console)
{
    const QString script = scriptOf(invocation);
    const bool keeps = invocation.isSet(u"keep"_s);
    // Made before the place is private, so that it outlasts it; any other folder goes with the place.
    QTemporaryDir kept(QDir::tempPath() + u"/zynphone-run-XXXXXX"_s);
    kept.setAutoRemove(!keeps);
    if (keeps && !kept.isValid())
        throw CommandError(NotStarted, u"no folder to keep: %1"_s.arg(kept.errorString()));
    if (!keeps)
        kept.remove();
    enterPrivatePlace();
    const QTemporaryDir folder(u"/tmp/zynphone-run-XXXXXX"_s);
    // A terminal tells the command too, which decides what comes of it.
    const bool hasTerminal = ::isatty(STDIN_FILENO) != 0;
    if (hasTerminal)
        std::signal(SIGINT, SIG_IGN);
    const auto signalsThatEnd = hasTerminal ? handset::TerminationSignals({SIGTERM, SIGHUP})
                                            : handset::TerminationSignals({SIGTERM, SIGHUP, SIGINT});
    // What the command leaves running is this program's to end.
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    const auto endTheRest = qScopeGuard(&endChildren);
    PrivateHandset handset(keeps ? kept.path() : folder.path());
    QObject::connect(&handset, &PrivateHandset::serviceEnded, &handset,
                     [&console](const QString& text) { console.writeError(u"zynphone: "_s + text); });
    const auto tellMore = qScopeGuard([&] {
        if (keeps)
            console.writeError(u"files, settings and logs are in "_s + kept.path());
    });
    int code = NotStarted;
    const auto showLogs = qScopeGuard([&] {
        for (const QString& line : code != 0 && code != NotAllowed && !keeps ? handset.logLines() : QStringList())
            console.writeError(line);
    });
    handset.start(script);
    code = runToTheEnd(invocation.arguments(), console);
    return static_cast<ExitCode>(code);
}

} // namespace

Command runInHandsetCommand()
{
    return {.name = u"run"_s,
            .summary = u"Run a command in a handset of its own, as an application's tests do"_s,
            .details = u"\nStarts the recent-call service, the owner of the favourites and the phone server in a\n"
                       "place of their own: with sockets, channels, settings and files that nobody else has.\n"
                       "Runs the command as soon as they serve, ends them after it, and returns its exit code.\n"
                       "When that is not 0, the services' last lines are shown. For example:\n"
                       "  zynphone run -- sh -c 'zynphone phone incoming 0301 Dora && ./my_test'\n"
                       "  zynphone run --script calls.script -- ./call_screen\n"
                       "  zynphone run -- bash\n"
                       "Exit codes beside the command's: 77 where the kernel does not allow it, 125 when a\n"
                       "service does not start, 126 and 127 when the command cannot be run or is not there, 128\n"
                       "and its number after a signal.\n"_s,
            .arguments = {{u"COMMAND"_s, u"a program and its arguments, behind --"_s, Argument::Many}},
            .options = {valueOption(u"script"_s, u"FILE"_s,
                                    u"what happens on the phone server's line, as zyn-phoned "
                                    "has it"_s),
                        flagOption(u"keep"_s, u"keep the files, settings and logs, and say where they are"_s)},
            .run = runInHandset};
}

} // namespace zyn::tool
