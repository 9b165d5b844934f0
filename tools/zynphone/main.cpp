// zynphone: the phone library on the command line, for application developers.
#include "tools/commands/Commands.h"
#include "tools/zynphone/Completion.h"
#include "tools/zynphone/Console.h"

#include <QtCore/QCoreApplication>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

Command zynphoneCommand()
{
    return {.name = u"zynphone"_s,
            .summary = u"Look at the phone library's data and services, and change them"_s,
            .verbs = {dialCommand(),         hangupCommand(),  emergencyCommand(),  speedDialCommand(),
                      prependCommand(),      pttCommand(),     javaCommand(),       stkCommand(),
                      phoneCommand(),        radioCommand(),   languageCommand(),   callsCommand(),
                      recentsCommand(),      missedCommand(),  favouritesCommand(), settingsCommand(),
                      handsetCommand(),      inspectCommand(), monitorCommand(),    replayCommand(),
                      chartCommand(),        statusCommand(),  sendCommand(),       doctorCommand(),
                      runInHandsetCommand(), topCommand(),     completionCommand()}};
}

ExitCode run(const QStringList& words)
{
    Console console;
    const Command tool = zynphoneCommand();
    ExitCode code = Done;
    if (words.value(0) == kCompleteVerb)
        console.write(completions(tool, words.mid(1)));
    else
        code = runCommand(tool, tool.name, words, console);
    if (console.isValid())
        return code;
    console.writeError(u"zynphone: cannot write to standard output: "_s + console.errorString());
    return Failed;
}

} // namespace
} // namespace zyn::tool

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(ZYN_VERSION));
    return zyn::tool::run(application.arguments().mid(1));
}
