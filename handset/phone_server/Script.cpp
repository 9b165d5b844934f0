// The time line of a desk, read from a file.
#include "handset/phone_server/Script.h"

#include "handset/common/Log.h"
#include "handset/phone_server/PhoneLine.h"
#include "handset/phone_server/ScriptError.h"
#include "handset/phone_server/ScriptMessage.h"
#include "handset/phone_server/ScriptWords.h"
#include "handset/phone_server/Status.h"
#include "platform/posix/File_p.h"

#include <QtCore/QFile>

#include <algorithm>
#include <iterator>
#include <limits>

namespace zyn::handset {
namespace {

constexpr qsizetype kLargestScript = qsizetype{1024} * 1024;

using Run = decltype(ScriptStep::run);

Run incoming(const QStringList& values)
{
    const Party caller{values.value(0), values.value(1)};
    if (!isDialable(caller.number))
        throw ScriptError{QStringLiteral("'%1' is no number to call from").arg(caller.number)};
    return [caller](PhoneLine& line) { return line.ring(caller); };
}

/// What the people at the telephones do.
struct Action
{
    const char* name;
    qsizetype fewestValues;
    qsizetype mostValues;
    const char* usage;
    Run (*make)(const QStringList& values);
};

constexpr Action kActions[] = {
    {"incoming", 1, 2, "incoming number [name]", incoming},
    {"answer", 0, 0, "answer", [](const QStringList&) -> Run { return &PhoneLine::answer; }},
    {"hangup", 0, 0, "hangup", [](const QStringList&) -> Run { return &PhoneLine::hangUp; }},
    {"missed", 0, 0, "missed", [](const QStringList&) -> Run { return &PhoneLine::miss; }},
};

Run runOf(const Action& action, const QStringList& values)
{
    if (values.size() < action.fewestValues || values.size() > action.mostValues)
        throw ScriptError{QStringLiteral("it is '%1'").arg(QLatin1String(action.usage))};
    return action.make(values);
}

Run runOf(const QString& name, const QStringList& values)
{
    const auto action =
        std::ranges::find_if(kActions, [&](const Action& known) { return name == QLatin1String(known.name); });
    if (action != std::end(kActions))
        return runOf(*action, values);
    const PhoneMessage& message = scriptMessage(name);
    return [&message, payload = scriptPayload(message, values)](PhoneLine&) {
        reportStatus(message, payload);
        return true;
    };
}

/// The delay at the beginning of @p words, which it takes away; none is 0.
std::chrono::milliseconds takeDelay(QStringList& words)
{
    if (!words.constFirst().startsWith(QLatin1Char('+')))
        return std::chrono::milliseconds(0);
    const QString delay = words.takeFirst().mid(1);
    if (words.isEmpty())
        throw ScriptError{QStringLiteral("nothing happens after the delay")};
    return std::chrono::milliseconds(scriptNumber(delay, 0, std::numeric_limits<int>::max()));
}

bool isBlank(const QString& line)
{
    const QString trimmed = line.trimmed();
    return trimmed.isEmpty() || trimmed.startsWith(QLatin1Char('#'));
}

ScriptStep stepOf(const QString& line, int lineNumber)
{
    QStringList words = scriptWords(line);
    const auto delay = takeDelay(words);
    const QString name = words.takeFirst();
    return {lineNumber, delay, runOf(name, words)};
}

} // namespace

std::optional<Script> readScript(const QString& path)
{
    const auto text = zyn::posix::readWhole(QFile::encodeName(path), kLargestScript);
    if (!text) {
        log(QStringLiteral("%1 is no file that can be read, of at most 1 MiB").arg(path));
        return std::nullopt;
    }
    Script script;
    const QStringList lines = QString::fromUtf8(*text).split(QLatin1Char('\n'));
    for (int lineNumber = 1; lineNumber <= lines.size(); ++lineNumber) {
        const QString& line = lines[lineNumber - 1];
        auto step = readScriptLine(path, lineNumber, line);
        if (step)
            script.push_back(std::move(*step));
        else if (!isBlank(line))
            return std::nullopt;
    }
    return script;
}

std::optional<ScriptStep> readScriptLine(const QString& source, int lineNumber, const QString& line)
{
    if (isBlank(line))
        return std::nullopt;
    try {
        return stepOf(line.trimmed(), lineNumber);
    } catch (const ScriptError& error) {
        log(QStringLiteral("%1:%2: %3").arg(source, QString::number(lineNumber), error.text));
        return std::nullopt;
    }
}

void runScriptStep(const ScriptStep& step, PhoneLine& line)
{
    if (!step.run(line))
        log(QStringLiteral("line %1 of the script means nothing now").arg(step.lineNumber));
}

QString scriptHelp()
{
    QString help = QStringLiteral("A script has a line for each thing that happens: \"+\" and the milliseconds "
                                  "after the line before, if any, then\n");
    for (const Action& action : kActions)
        help += QStringLiteral("  %1\n").arg(QLatin1String(action.usage));
    help += QStringLiteral("or a status message with a value for each field:\n") + scriptMessagesHelp();
    return help
           + QStringLiteral("A text with blanks, or none, is put in double quotes; blocks and records are "
                            "written in hexadecimal digits, with zeros behind what is written. Lines that "
                            "begin with \"#\" are comments.");
}

} // namespace zyn::handset
