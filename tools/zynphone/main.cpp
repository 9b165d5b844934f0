// zynphone: the phone library on the command line, for application developers.
#include "tools/commands/Commands.h"
#include "tools/zynphone/Completion.h"
#include "tools/zynphone/Console.h"

#include <QtCore/QCoreApplication>

#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// The verbs in their groups, those first that somebody tries who has a phone for the first time.
std::vector<Command> groupedVerbs()
{
    std::pair<const char*, std::vector<Command>> groups[] = {
        {"The phone", {phoneCommand(), statusCommand(), handsetCommand(), runInHandsetCommand(), topCommand()}},
        {"Calls and requests",
         {dialCommand(), hangupCommand(), emergencyCommand(), speedDialCommand(), prependCommand(), pttCommand(),
          javaCommand(), stkCommand(), radioCommand(), languageCommand()}},
        {"Recent calls and favourites",
         {callsCommand(), missedCommand(), recentsCommand(), settingsCommand(), favouritesCommand()}},
        {"Messages", {monitorCommand(), replayCommand(), chartCommand(), sendCommand()}},
        {"Faults and the tool", {doctorCommand(), inspectCommand(), completionCommand()}},
    };
    std::vector<Command> verbs;
    for (auto& [group, members] : groups) {
        for (Command& verb : members) {
            verb.group = group;
            verbs.push_back(std::move(verb));
        }
    }
    return verbs;
}

Command zynphoneCommand()
{
    return {.name = u"zynphone"_s,
            .summary = u"Look at the phone library's data and services, and change them"_s,
            .verbs = groupedVerbs()};
}

ExitCode run(const QStringList& words)
{
    Console console;
    const Command tool = zynphoneCommand();
    if (words.value(0) == handset::kCompleteWord) {
        const Completion completion = completions(tool, words.mid(1));
        console.write(completion.text);
        return completion.code == handset::FilesToo ? Failed : Done;
    }
    const ExitCode code = runCommand(tool, tool.name, words, console);
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
