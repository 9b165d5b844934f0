// zynphone completion: completes command lines in a shell.
#include "tools/commands/Commands.h"

#include "tools/zynphone/Completion.h"
#include "tools/zynphone/Console.h"

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

ExitCode printBashScript(const Invocation& /*invocation*/, Console& console)
{
    console.write(uR"(# zynphone's verbs, options and fixed words in bash; files where it knows none.
_zynphone() {
    mapfile -t COMPREPLY < <("${1/#\~/$HOME}" %1 "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -o default -F _zynphone zynphone
)"_s.arg(kCompleteVerb));
    return Done;
}

} // namespace

Command completionCommand()
{
    Command bash{.name = u"bash"_s,
                 .summary = u"Print the script that completes zynphone's command lines in bash"_s,
                 .details =
                     u"\nFor one shell: source <(zynphone completion bash). For every one, print it into the file\n"
                     "~/.local/share/bash-completion/completions/zynphone.\n"_s,
                 .run = printBashScript};
    return {.name = u"completion"_s, .summary = u"Completion of command lines"_s, .verbs = {std::move(bash)}};
}

} // namespace zyn::tool
