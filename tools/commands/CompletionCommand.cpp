// zynphone completion: completes command lines in a shell.
#include "tools/commands/Commands.h"

#include "CompletionScripts.h"
#include "tools/zynphone/Console.h"

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

template<const auto& script>
ExitCode printScript(const Invocation& /*invocation*/, Console& console)
{
    console.write(QStringView(script).toString());
    return Done;
}

template<const auto& script>
Command shellRow(const QString& shell, const QString& forOne, const QString& file)
{
    return {.name = shell,
            .summary = u"Print the script that completes command lines in %1"_s.arg(shell),
            .details = u"\nIt is for zynphone and for the programs of the handset.\n"
                       "For one shell: %1. For every one, where no package has\n"
                       "installed it, print it into the file\n%2.\n"_s.arg(forOne, file),
            .run = printScript<script>};
}

} // namespace

Command completionCommand()
{
    return {.name = u"completion"_s,
            .summary = u"Completion of command lines"_s,
            .verbs = {shellRow<kBashScript>(u"bash"_s, u"source <(zynphone completion bash)"_s,
                                            u"~/.local/share/bash-completion/completions/zynphone"_s),
                      shellRow<kFishScript>(u"fish"_s, u"zynphone completion fish | source"_s,
                                            u"~/.config/fish/completions/zynphone.fish"_s),
                      shellRow<kZshScript>(u"zsh"_s, u"source <(zynphone completion zsh)"_s,
                                           u"_zynphone in a folder of $fpath"_s)}};
}

} // namespace zyn::tool
