// Plays a day, and compares the lines of its programs with those that the script expects.
#include "handset/day/Player.h"

#include "handset/common/Text.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QRegularExpression>
#include <QtCore/QTimer>

#include <algorithm>
#include <csignal>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zyn::handset {
namespace {

constexpr auto kBeforeStep = 1200ms;
constexpr auto kBeforeLine = 150ms;
constexpr auto kBetweenKeys = 250ms;
/// For a program that was late once: it is unlikely to show the lines after that either.
constexpr auto kLateLimit = 500ms;
constexpr int kWokenUp = 1;

bool isMatch(const QString& line, const QString& pattern)
{
    const QString escaped = QRegularExpression::escape(pattern).replace(u"\\*"_s, u".*"_s);
    return QRegularExpression(QRegularExpression::anchoredPattern(escaped)).match(line.simplified()).hasMatch();
}

QString timesText(int times)
{
    return times > 1 ? u"%1 x  "_s.arg(times) : QString();
}

qsizetype longestName(const Day& day)
{
    qsizetype length = 0;
    for (const Member& member : day.cast)
        length = std::max({length, member.from.size(), member.to.size()});
    for (const Step& step : day.steps)
        length = std::max({length, step.who.size(), step.whom.size()});
    return length;
}

} // namespace

Player::Player(Day day, QString store, Pace pace)
    : m_day(std::move(day))
    , m_store(std::move(store))
    , m_pace(pace)
    , m_view(longestName(m_day))
{
    for (const Member& member : m_day.cast)
        connect(&m_actors[member.name].program, &Program::changed, this, &Player::changed);
}

bool Player::play()
{
    for (const Step& step : m_day.steps) {
        pause(kBeforeStep);
        if (m_isInterrupted)
            return false;
        if (!step.chapter.isEmpty())
            m_view.chapter(step.chapter);
        m_view.act(step.who, step.whom, timesText(step.times) + (step.verbText + u"  "_s + step.what).trimmed());
        for (int number = 1; number <= step.times; ++number)
            play(step, filled(step.what, number));
        for (const Expectation& expectation : step.expected) {
            if (!step.isAnswer(expectation))
                expect(expectation, *m_day.member(expectation.who), m_actors[expectation.who]);
        }
    }
    if (m_isInterrupted)
        return false;
    m_view.chapter(u"What the witnesses have seen, line by line"_s);
    for (const Member& member : m_day.cast) {
        if (member.isWitness)
            compare(member, m_actors[member.name]);
    }
    return m_view.conclude();
}

void Player::play(const Step& step, const QString& what)
{
    switch (step.verb) {
    case Verb::Starts:
        start(step);
        break;
    case Verb::Tells:
    case Verb::Types:
        write(step, what);
        break;
    case Verb::Asks:
    case Verb::CannotAsk:
        runCommand(step, what);
        break;
    case Verb::Kills:
    case Verb::Ends:
        end(step);
        break;
    }
}

void Player::start(const Step& step)
{
    const Member& member = *m_day.member(step.whom);
    m_actors[step.whom].program.start(filled(member.command));
    expect({step.lineNumber, 1, member.name, u"listening on *"_s}, member, m_actors[step.whom]);
}

void Player::write(const Step& step, const QString& what)
{
    for (const QChar key : what.split(u" ; "_s).join(u'\n') + u'\n') {
        if (step.verb == Verb::Types)
            pause(kBetweenKeys);
        m_actors[step.whom].program.write(QString(key).toUtf8());
    }
}

/// Runs a command to its end, and compares its output with the expected lines, if the step has any.
void Player::runCommand(const Step& step, const QString& what)
{
    const Member member{step.what, step.whom, step.who, false, what};
    Actor command;
    connect(&command.program, &Program::changed, this, &Player::changed);
    command.program.start(what);
    waitUntil([&] { return !command.program.isRunning(); }, m_pace.limit);
    for (const Expectation& expectation : step.expected) {
        if (step.isAnswer(expectation))
            expect(expectation, member, command);
    }
    const bool hasSucceeded = !command.program.isRunning() && command.program.exitCode() == 0;
    if (hasSucceeded != (step.verb == Verb::Asks) && !m_isInterrupted)
        m_view.check(false, member.from, member.to, u"exit code %1"_s.arg(command.program.exitCode()));
    if (!command.called.isEmpty() && command.called.size() != command.program.lines().size())
        compare(member, command);
}

/// Ends a program, and waits until it has ended.
void Player::end(const Step& step)
{
    Program& program = m_actors[step.whom].program;
    const bool wasRunning = program.isRunning();
    program.sendSignal(step.verb == Verb::Kills ? SIGKILL : SIGTERM);
    waitUntil([&] { return !program.isRunning(); }, m_pace.limit);
    if (m_isInterrupted)
        return;
    const bool holds = wasRunning && !program.isRunning() && (step.verb == Verb::Kills || program.exitCode() == 0);
    m_view.check(holds, step.whom, step.who, holds ? u"has ended"_s : u"ended with an error, or too early"_s);
}

/// Waits for a line of @p actor, or for several like it.
void Player::expect(const Expectation& expectation, const Member& member, Actor& actor)
{
    const QString line = filled(expectation.line);
    QString seen = line;
    int count = 0;
    for (; count < expectation.times; ++count) {
        actor.called += line;
        qsizetype found = -1;
        const auto isFound = [&] { return (found = find(actor, line)) >= 0; };
        waitUntil([&] { return isFound() || !actor.program.isRunning(); }, actor.isLate ? kLateLimit : m_pace.limit);
        if (!isFound())
            break;
        actor.matched += found;
        seen = actor.program.lines().at(found);
    }
    if (m_isInterrupted)
        return;
    pause(kBeforeLine);
    m_view.check(count == expectation.times, member.from, member.to, timesText(expectation.times) + seen);
    if (count == expectation.times)
        return;
    actor.isLate = true;
    m_view.explain(u"seen %1; expected by line %2"_s.arg(counted(count, "time")).arg(expectation.lineNumber));
    constexpr qsizetype kEnough = 3;
    const QStringList& lines = actor.program.lines();
    for (const QString& other : lines.mid(std::max<qsizetype>(0, lines.size() - kEnough)))
        m_view.explain(u"one of the last lines: "_s + other);
    if (!actor.program.isRunning())
        m_view.explain(u"the program has ended, with exit code %1"_s.arg(actor.program.exitCode()));
}

/// The index of @p line among the lines of @p actor that are not matched yet; -1 if it has not come. In any order: a
/// program that hears from several others may hear from the later one first.
qsizetype Player::find(const Actor& actor, const QString& line) const
{
    const QStringList& lines = actor.program.lines();
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (!actor.matched.contains(i) && isMatch(lines[i], line))
            return i;
    }
    return -1;
}

/// Checks that the lines of @p actor are exactly the expected ones, in their order.
void Player::compare(const Member& member, const Actor& actor)
{
    const QStringList& lines = actor.program.lines();
    const auto [line, called] = std::ranges::mismatch(lines, actor.called, isMatch);
    const bool holds = line == lines.end() && called == actor.called.end();
    m_view.check(holds, member.from, member.to,
                 u"%1 seen, %2 expected"_s.arg(counted(lines.size(), "line")).arg(actor.called.size()));
    if (!holds)
        m_view.explain(u"the first difference: "_s + (line == lines.end() ? *called : *line));
}

QString Player::filled(QString text, int number) const
{
    // {quick|slow}
    static const QRegularExpression choice(u"\\{([^{}|]*)\\|([^{}|]*)\\}"_s);
    text.replace(choice, m_pace.isSlow ? u"\\2"_s : u"\\1"_s);
    text.replace(u"{store}"_s, m_store);
    return text.replace(u"{n}"_s, QString::number(number).rightJustified(2, '0'_L1));
}

/// Runs the event loop until @p isMet returns true; false if it does not within @p limit, or if the application quits.
bool Player::waitUntil(const std::function<bool()>& isMet, std::chrono::milliseconds limit)
{
    const QDeadlineTimer deadline(limit);
    while (!isMet()) {
        if (deadline.hasExpired() || m_isInterrupted)
            return false;
        QEventLoop loop;
        const auto wakeUp = [&loop] { loop.exit(kWokenUp); };
        QTimer::singleShot(std::chrono::milliseconds(deadline.remainingTime()), &loop, wakeUp);
        connect(this, &Player::changed, &loop, wakeUp);
        m_isInterrupted = loop.exec() != kWokenUp;
    }
    return true;
}

void Player::pause(std::chrono::milliseconds time)
{
    if (m_pace.isSlow)
        waitUntil([] { return false; }, time);
}

} // namespace zyn::handset
