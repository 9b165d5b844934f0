// The time line of a desk: what happens to the handset, and when; read from a file or as it is typed.
#include "handset/phone_server/Script.h"

#include "handset/common/Log.h"
#include "handset/common/ScriptReader.h"
#include "handset/phone_server/PhoneLine.h"
#include "handset/phone_server/ScriptMessage.h"
#include "handset/phone_server/Status.h"

#include <algorithm>
#include <iterator>
#include <limits>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

using Run = decltype(ScriptStep::run);

Run incoming(const QStringList& values)
{
    const Party caller{values.value(0), values.value(1)};
    if (!isDialable(caller.number))
        throw ScriptError{u"'%1' is no number to call from"_s.arg(caller.number)};
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
        throw ScriptError{u"it is '%1'"_s.arg(QLatin1String(action.usage))};
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

/// The delay at the beginning of @p words, which it removes; 0 when there is none.
std::chrono::milliseconds readDelay(QStringList& words)
{
    if (!words.constFirst().startsWith(u'+'))
        return std::chrono::milliseconds(0);
    const QString delay = words.takeFirst().mid(1);
    if (words.isEmpty())
        throw ScriptError{u"nothing happens after the delay"_s};
    return std::chrono::milliseconds(scriptNumber(delay, 0, std::numeric_limits<int>::max()));
}

/// Status messages hold records, of which each byte is two digits.
constexpr qsizetype kLongestLine = qsizetype{16} * 1024;

} // namespace

ScriptStep scriptStep(const QString& line, int lineNumber)
{
    QStringList words = scriptWords(line);
    const auto delay = readDelay(words);
    const QString name = words.takeFirst();
    return {lineNumber, delay, runOf(name, words)};
}

std::optional<Script> readScript(const QString& path)
{
    Script script;
    if (!readScriptFile(path, [&](const QString& line, int number) { script.push_back(scriptStep(line, number)); }))
        return std::nullopt;
    return script;
}

void runScriptStep(const ScriptStep& step, PhoneLine& line)
{
    if (!step.run(line))
        log(u"line %1 of the script means nothing now"_s.arg(step.lineNumber));
}

QString scriptHelp()
{
    QString help = u"A script has a line for each thing that happens: \"+\" and the milliseconds "
                   "after the line before, if any, then\n"_s;
    for (const Action& action : kActions)
        help += u"  %1\n"_s.arg(QLatin1String(action.usage));
    help += u"or a status message with a value for each field:\n"_s + scriptMessagesHelp();
    return help
           + u"A text with blanks, or none, is put in double quotes; blocks and records are "
             "written in hexadecimal digits, with zeros behind what is written. Lines that "
             "begin with \"#\" are comments."_s;
}

ScriptPlayer::ScriptPlayer(Script script, PhoneLine& line)
    : m_script(std::move(script))
    , m_line(line)
{
    m_next.setSingleShot(true);
    m_next.setTimerType(Qt::PreciseTimer);
    connect(&m_next, &QTimer::timeout, this, &ScriptPlayer::runNext);
}

void ScriptPlayer::waitForNext()
{
    if (m_position < m_script.size())
        m_next.start(m_script[m_position].delay);
    else if (!m_script.empty())
        log(u"the script is over"_s);
}

void ScriptPlayer::runNext()
{
    runScriptStep(m_script[m_position++], m_line);
    waitForNext();
}

ScriptInput::ScriptInput(PhoneLine& line)
    : m_line(line)
    , m_input(kLongestLine)
{
    m_next.setSingleShot(true);
    m_next.setTimerType(Qt::PreciseTimer);
    connect(&m_input, &LineInput::entered, this, &ScriptInput::readLine);
    connect(&m_next, &QTimer::timeout, this, &ScriptInput::runStep);
}

void ScriptInput::stop()
{
    m_input.cancel();
    m_next.stop();
}

void ScriptInput::readLine(const QString& text)
{
    if (text.isNull())
        return;
    m_step.reset();
    readScriptLine(u"standard input"_s, ++m_lineNumber, text,
                   [this](const QString& line, int number) { m_step = scriptStep(line, number); });
    if (m_step)
        m_next.start(m_step->delay);
    else
        m_input.ask();
}

void ScriptInput::runStep()
{
    runScriptStep(*m_step, m_line);
    m_input.ask();
}

} // namespace zyn::handset
