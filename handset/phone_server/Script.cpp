// Scripts of the phone server: what happens to the handset, and when; from a file or from standard input.
#include "handset/phone_server/Script.h"

#include "handset/common/FieldWords.h"
#include "handset/common/Log.h"
#include "handset/common/ScriptReader.h"
#include "handset/common/Suggestion.h"
#include "handset/phone_server/PhoneControl.h"
#include "handset/phone_server/PhoneLine.h"
#include "utility/message/PhoneMessages_p.h"

#include <algorithm>
#include <iterator>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zyn::phonecontrol;

namespace zyn::handset {
namespace {

int number(const QString& word, const QString& /*what*/, int lowest, int highest)
{
    return scriptNumber(word, lowest, highest);
}

/// The bytes that the hexadecimal digits @p word stand for, filled up with zeros to @p size.
QByteArray block(const QString& word, const QString& /*what*/, qsizetype size)
{
    const QByteArray digits = word.toLatin1();
    QByteArray bytes = QByteArray::fromHex(digits);
    if (bytes.toHex() != digits.toLower() || bytes.size() > size)
        throw ScriptError{
            u"'%1' must be pairs of hexadecimal digits, at most %2 of them"_s.arg(word, QString::number(size))};
    return bytes.leftJustified(size, '\0');
}

constexpr WordReader kWords{number, block, nullptr};

/// The names of the values of @p message, in the order in which a script gives them.
QStringList valueNames(const PhoneMessage& message)
{
    if (message.isRecord())
        return {QLatin1String(message.record)};
    QStringList names;
    for (const Field& field : message.fields)
        names += QLatin1String(field.name);
    return names;
}

QString usage(const PhoneMessage& message)
{
    return (QStringList(QLatin1String(message.word)) + valueNames(message)).join(u' ');
}

QStringList eventNames()
{
    QStringList names;
    for (const LineEvent& event : kLineEvents)
        names += QLatin1String(event.name);
    for (const PhoneMessage& message : phoneMessages()) {
        if (message.isStatus())
            names += QLatin1String(message.word);
    }
    return names;
}

/// The status message that @p word names.
const PhoneMessage& statusMessage(const QString& word)
{
    const auto messages = phoneMessages();
    const auto found = std::ranges::find_if(messages, [&](const PhoneMessage& message) {
        return message.isStatus() && word == QLatin1String(message.word);
    });
    if (found == messages.end())
        throw ScriptError{u"unknown event '%1'"_s.arg(word) + suggestion(word, eventNames())};
    return *found;
}

/// The payload of @p message: @p words holds one for each field, or one for the whole record.
QByteArray payloadOf(const PhoneMessage& message, const QStringList& words)
{
    if (words.size() != valueNames(message).size())
        throw ScriptError{u"it is '%1'"_s.arg(usage(message))};
    if (message.isRecord())
        return block(words.first(), {}, recordSize(message));
    std::vector<FieldValue> values;
    for (const Field& field : message.fields)
        values.push_back(valueFrom(kWords, field, words[qsizetype(values.size())], {}));
    return encode(message, values);
}

QString statusMessagesHelp()
{
    QString help;
    for (const PhoneMessage& message : phoneMessages()) {
        if (message.isStatus())
            help += u"  %1\n"_s.arg(usage(message));
    }
    return help;
}

using Run = decltype(ScriptStep::run);

Run incoming(const QStringList& values)
{
    const Party caller{values.value(0), values.value(1)};
    if (!isDialable(caller.number))
        throw ScriptError{u"'%1' is not a number to call from"_s.arg(caller.number)};
    return [caller](PhoneLine& line) { return line.ring(caller); };
}

int callId(const QString& word)
{
    return scriptNumber(word, 1, std::numeric_limits<int>::max());
}

Run answer(const QStringList& values)
{
    if (values.isEmpty())
        return &PhoneLine::answer;
    return [id = callId(values[0])](PhoneLine& line) { return line.apply(id, CallEvent::Answer); };
}

Run hangUp(const QStringList& values)
{
    if (values.isEmpty())
        return &PhoneLine::hangUp;
    if (values[0] == u"all"_s)
        return &PhoneLine::hangUpAll;
    return [id = callId(values[0])](PhoneLine& line) { return line.apply(id, CallEvent::HangUp); };
}

/// What makes a line's event happen.
struct Action
{
    LineEvent event;
    Run (*make)(const QStringList& values);
};

constexpr Action kActions[] = {
    {kIncoming, incoming},
    {kAnswer, answer},
    {kHangUp, hangUp},
    {kMissed, [](const QStringList&) -> Run { return &PhoneLine::miss; }},
    {kFail, [](const QStringList&) -> Run { return &PhoneLine::fail; }},
    {kSnapshot, [](const QStringList&) -> Run { return [](PhoneLine& line) { return line.status().tellAgain(); }; }},
};
static_assert(std::size(kActions) == std::size(kLineEvents));

QString usage(const LineEvent& event)
{
    return u"%1 %2"_s.arg(QLatin1String(event.name), QLatin1String(event.values)).trimmed();
}

Run runOf(const QString& name, const QStringList& values)
{
    const auto isMeant = [&](const Action& action) { return name == QLatin1String(action.event.name); };
    const auto action = std::ranges::find_if(kActions, isMeant);
    const bool isNone = action == std::end(kActions);
    if (!isNone && values.size() >= action->event.fewestValues && values.size() <= action->event.mostValues)
        return action->make(values);
    // The snapshot with a value is a status message of its own.
    if (!isNone && name != QLatin1String(kSnapshot.name))
        throw ScriptError{u"it is '%1'"_s.arg(usage(action->event))};
    const PhoneMessage& message = statusMessage(name);
    return [&message, payload = payloadOf(message, values)](PhoneLine& line) {
        line.status().report(message, payload);
        return true;
    };
}

} // namespace

ScriptStep scriptStep(const QString& line, int lineNumber)
{
    return scriptStep(scriptWords(line), lineNumber);
}

ScriptStep scriptStep(QStringList words, int lineNumber)
{
    const auto delay = takeScriptDelay(words);
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
        log(u"line %1 of the script does not apply now"_s.arg(step.lineNumber));
}

QString scriptHelp()
{
    QString help = u"A script has a line for each thing that happens: \"+\" and the milliseconds "
                   "after the line before, if any, then\n"_s;
    for (const LineEvent& event : kLineEvents)
        help += u"  %1\n"_s.arg(usage(event));
    help += u"or a status message with a value for each field:\n"_s + statusMessagesHelp();
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
        log(u"the script has ended"_s);
}

void ScriptPlayer::runNext()
{
    runScriptStep(m_script[m_position++], m_line);
    waitForNext();
}

ScriptInput::ScriptInput(PhoneLine& line)
    : m_line(line)
    , m_input(kLongestSaying)
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
