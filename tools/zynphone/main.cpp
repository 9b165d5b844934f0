// zynphone: the handset's phone library on the command line, for people who develop applications.
#include "tools/commands/Commands.h"
#include "tools/commands/MessageSending.h"
#include "tools/zynphone/Completion.h"
#include "tools/zynphone/Console.h"

#include <QtCore/QCoreApplication>

using namespace Qt::StringLiterals;
using namespace zyn::tool;

namespace {

Command zynphoneCommand()
{
    return {
        .name = u"zynphone"_s,
        .summary = u"Look at the phone library's data and services, and change them"_s,
        .verbs = {dialCommand(),    hangupCommand(),  emergencyCommand(), speedDialCommand(),  prependCommand(),
                  pttCommand(),     javaCommand(),    stkCommand(),       radioCommand(),      languageCommand(),
                  callsCommand(),   recentsCommand(), missedCommand(),    favouritesCommand(), settingsCommand(),
                  handsetCommand(), inspectCommand(), monitorCommand(),   replayCommand(),     chartCommand(),
                  statusCommand(),  sendCommand(),    doctorCommand(),    topCommand(),        completionCommand()}};
}

} // namespace

int main(int argc, char** argv)
{
    Console console;
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(ZYN_VERSION));
    const Command tool = zynphoneCommand();
    const QStringList words = application.arguments().mid(1);
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
