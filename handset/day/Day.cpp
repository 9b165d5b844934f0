// Reads the script of a day: the programs that take part, what happens, and the lines that must then be seen.
#include "handset/day/Day.h"

#include "handset/common/ScriptReader.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <algorithm>
#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

constexpr struct
{
    const char* text;
    Verb verb;
} kVerbs[] = {
    {"starts", Verb::Starts},        {"tells", Verb::Tells}, {"types", Verb::Types}, {"asks", Verb::Asks},
    {"cannot ask", Verb::CannotAsk}, {"kills", Verb::Kills}, {"ends", Verb::Ends},
};

/// Removes "N x" from the start of @p line and returns N; 1 if it does not start so.
int readTimes(QString& line)
{
    static const QRegularExpression times(u"^\\s*(\\d{1,4}) x  +"_s);
    const auto match = times.match(line);
    line = line.mid(match.hasMatch() ? match.capturedLength() : 0);
    return match.hasMatch() ? match.captured(1).toInt() : 1;
}

class DayReader
{
public:
    void read(const QString& line, int number)
    {
        if (line.startsWith("== "_L1))
            m_chapter = line.mid(3);
        else if (line.startsWith(u' '))
            readExpectation(line, number);
        else if (line.startsWith("cast  "_L1) || line.startsWith("witness  "_L1))
            readMember(line);
        else
            readStep(line, number);
    }
    Day day;

private:
    void readMember(const QString& line)
    {
        const QStringList columns = scriptColumns(line, 4);
        static const QRegularExpression arrow(u"^(->|<-) (.+)$"_s);
        const auto match = arrow.match(columns.value(2));
        if (columns.size() != 4 || !match.hasMatch())
            throw ScriptError{u"expected 'cast  NAME  -> OTHER  COMMAND', or '<-'"_s};
        const bool isSpeaker = match.captured(1) == "->"_L1;
        const QString other = match.captured(2);
        day.cast += {columns[1], isSpeaker ? columns[1] : other, isSpeaker ? other : columns[1],
                     columns[0] == "witness"_L1, columns[3]};
    }
    void readStep(QString line, int number)
    {
        Step step;
        step.lineNumber = number;
        step.times = readTimes(line);
        step.chapter = std::exchange(m_chapter, {});
        const QStringList columns = scriptColumns(line, 4);
        step.who = columns[0];
        step.verbText = columns.value(1);
        step.whom = columns.value(2);
        step.what = columns.value(3);
        const auto* verb =
            std::ranges::find_if(kVerbs, [&](const auto& row) { return step.verbText == QLatin1String(row.text); });
        if (verb == std::end(kVerbs))
            throw ScriptError{u"expected 'WHO  VERB  WHOM  WHAT'"_s};
        step.verb = verb->verb;
        if (step.verb != Verb::Asks && step.verb != Verb::CannotAsk)
            requireMember(step.whom);
        day.steps += step;
    }
    void readExpectation(QString line, int number)
    {
        const int times = readTimes(line);
        const QStringList columns = scriptColumns(line, 2);
        if (columns.size() != 2 || day.steps.isEmpty())
            throw ScriptError{u"expected '  WHO  LINE', below a step"_s};
        Step& step = day.steps.last();
        if (columns[0] != step.who)
            requireMember(columns[0]);
        step.expected += {number, times, columns[0], columns[1].simplified()};
    }
    void requireMember(const QString& name) const
    {
        if (!day.member(name))
            throw ScriptError{u"'%1' is not in the cast"_s.arg(name)};
    }

    QString m_chapter;
};

} // namespace

const Member* Day::member(const QString& name) const
{
    const auto found = std::ranges::find(cast, name, &Member::name);
    return found == cast.end() ? nullptr : &*found;
}

std::optional<Day> readDay(const QString& path)
{
    DayReader reader;
    if (!readScriptFile(path, [&](const QString& line, int number) { reader.read(line, number); }))
        return std::nullopt;
    return reader.day;
}

} // namespace zyn::handset
