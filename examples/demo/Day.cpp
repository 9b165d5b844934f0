// The script of a day: who takes part, what happens, and what must be seen of it.
#include "examples/demo/Day.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr struct
{
    const char* text;
    Verb verb;
} kVerbs[] = {
    {"starts", Verb::Starts},        {"tells", Verb::Tells}, {"types", Verb::Types}, {"asks", Verb::Asks},
    {"cannot ask", Verb::CannotAsk}, {"kills", Verb::Kills}, {"ends", Verb::Ends},
};

/// Thrown while a line is read, and caught where its number is known.
struct DayError
{
    QString text;
};

/// The first columns of a line, which two blanks or more part, and in the last of @p count the rest.
QStringList columnsOf(const QString& line, qsizetype count)
{
    static const QRegularExpression gap(u"  +"_s);
    QStringList columns = line.trimmed().split(gap);
    const QString rest = columns.mid(count - 1).join(u"  "_s);
    columns = columns.mid(0, count - 1);
    return rest.isEmpty() ? columns : columns + QStringList{rest};
}

/// How often, as "N x" in front of the first column of @p line tells, which is taken away.
int takeTimes(QString& line)
{
    static const QRegularExpression times(u"^\\s*(\\d{1,4}) x  +"_s);
    const auto match = times.match(line);
    line = line.mid(match.hasMatch() ? match.capturedLength() : 0);
    return match.hasMatch() ? match.captured(1).toInt() : 1;
}

class Reader
{
public:
    void take(QString line, int number)
    {
        if (line.trimmed().isEmpty() || line.startsWith(u'#'))
            return;
        if (line.startsWith("== "_L1))
            m_chapter = line.mid(3);
        else if (line.startsWith(u' '))
            takeExpectation(line, number);
        else if (line.startsWith("cast  "_L1) || line.startsWith("witness  "_L1))
            takeMember(line);
        else
            takeStep(line, number);
    }
    Day day;

private:
    void takeMember(const QString& line)
    {
        const QStringList columns = columnsOf(line, 4);
        static const QRegularExpression arrow(u"^(->|<-) (.+)$"_s);
        const auto match = arrow.match(columns.value(2));
        if (columns.size() != 4 || !match.hasMatch())
            throw DayError{u"it is 'cast  NAME  -> OTHER  COMMAND', or '<-'"_s};
        const bool isSpeaker = match.captured(1) == "->"_L1;
        const QString other = match.captured(2);
        day.cast += {columns[1], isSpeaker ? columns[1] : other, isSpeaker ? other : columns[1],
                     columns[0] == "witness"_L1, columns[3]};
    }
    void takeStep(QString line, int number)
    {
        Step step;
        step.lineNumber = number;
        step.times = takeTimes(line);
        step.chapter = std::exchange(m_chapter, {});
        const QStringList columns = columnsOf(line, 4);
        step.who = columns[0];
        step.verbText = columns.value(1);
        step.whom = columns.value(2);
        step.what = columns.value(3);
        const auto* verb =
            std::ranges::find_if(kVerbs, [&](const auto& row) { return step.verbText == QLatin1String(row.text); });
        if (verb == std::end(kVerbs))
            throw DayError{u"it is 'WHO  VERB  WHOM  WHAT'"_s};
        step.verb = verb->verb;
        if (step.verb != Verb::Asks && step.verb != Verb::CannotAsk)
            requireMember(step.whom);
        day.steps += step;
    }
    void takeExpectation(QString line, int number)
    {
        const int times = takeTimes(line);
        const QStringList columns = columnsOf(line, 2);
        if (columns.size() != 2 || day.steps.isEmpty())
            throw DayError{u"it is '  WHO  LINE', below a step"_s};
        Step& step = day.steps.last();
        if (columns[0] != step.who)
            requireMember(columns[0]);
        step.expected += {number, times, columns[0], columns[1].simplified()};
    }
    void requireMember(const QString& name) const
    {
        if (!day.member(name))
            throw DayError{u"there is no '%1' in the cast"_s.arg(name)};
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
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "zyn-day: cannot read %s\n", qPrintable(path));
        return std::nullopt;
    }
    Reader reader;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (int number = 1; number <= lines.size(); ++number) {
        try {
            reader.take(lines[number - 1], number);
        } catch (const DayError& error) {
            std::fprintf(stderr, "zyn-day: %s:%d: %s\n", qPrintable(path), number, qPrintable(error.text));
            return std::nullopt;
        }
    }
    return reader.day;
}
