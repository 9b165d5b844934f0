// zynphone chart: a recording as a picture.
#include "tools/commands/Commands.h"

#include "tools/chart/ChartStory.h"
#include "tools/chart/ChartSvg.h"
#include "tools/chart/LiveChart.h"
#include "tools/recording/Recording.h"
#include "tools/zynphone/Console.h"

#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr char kStandardOutput[] = "-";
constexpr int kFewestAllowedLanes = 2;
constexpr int kMostLanes = 64;

qsizetype lanesFrom(const Invocation& invocation)
{
    return invocation.isSet(u"lanes"_s)
               ? wholeNumber(invocation.value(u"lanes"_s), u"--lanes"_s, kFewestAllowedLanes, kMostLanes)
               : kMostLanes;
}

/// The chart as text, for a terminal or a report.
QByteArray chartText(const std::vector<ReceivedMessage>& messages, const QString& title, qsizetype lanes)
{
    LiveChart chart = LiveChart::forReport(lanes);
    for (const ReceivedMessage& message : messages)
        chart.addLanes(message);
    QStringList lines{title};
    const std::vector<QString> meant = meanings(messages);
    for (size_t place = 0; place < messages.size(); ++place)
        lines += chart.linesFor(messages[place], meant[place]);
    for (const QString& sentence : outcomes(messages))
        lines += jsonEscaped(sentence);
    return (lines.join(u'\n') + u'\n').toUtf8();
}

ExitCode drawChart(const Invocation& invocation, Console& console)
{
    const QString input = invocation.argument(0);
    const QString output =
        invocation.isSet(u"output"_s) ? invocation.value(u"output"_s) : QLatin1String(kStandardOutput);
    const bool isToFile = output != QLatin1String(kStandardOutput);
    Recording recording(input);
    if (isToFile && QFileInfo(output) == QFileInfo(input))
        throw usageError(u"the chart would replace the recording"_s);
    recording.keepOnly(invocation.values(u"channel"_s));
    const QString title = invocation.isSet(u"title"_s) ? invocation.value(u"title"_s) : QFileInfo(input).fileName();
    const auto draw = invocation.isSet(u"text"_s) ? chartText : chartSvg;
    const QByteArray chart = draw(recording.messages(), jsonEscaped(title), lanesFrom(invocation));
    if (isToFile)
        writeFile(output, chart);
    else
        console.write(QString::fromUtf8(chart));
    return Done;
}

} // namespace

Command chartCommand()
{
    return {.name = u"chart"_s,
            .summary = u"Draw the messages of a recording as a sequence chart in SVG"_s,
            .details =
                u"\nA lane is a program, time runs downwards. An arrow goes from the program that sends to those\n"
                "that listen: solid when it asks for something, dashed when it tells. Of recordings that do not\n"
                "know the sender a lane is a channel. From three of a kind, or three turns of the same few, on,\n"
                "messages that follow each other in a lane are one entry. Long pauses are shortened and say so.\n"
                "A card says what its message means, as that a call rings or is missed, where that, or those\n"
                "around it, tells. All that it holds is in its tooltip. The end says what came of the calls.\n"_s,
            .arguments = {{u"FILE"_s, u"as 'monitor --record' writes it"_s}},
            .options = {flagOption(u"text"_s, u"draw it as text, a line a message, as 'monitor --chart' does"_s),
                        QCommandLineOption({u"output"_s, u"o"_s},
                                           u"write the chart to FILE (also -o), else, and for -, to standard output"_s,
                                           u"FILE"_s),
                        valueOption(u"title"_s, u"TEXT"_s, u"the title; the file's name by default"_s),
                        valueOption(u"lanes"_s, u"N"_s,
                                    u"at most N lanes, 64 by default; the last is that of all other programs"_s),
                        valueOption(u"channel"_s, u"CHANNEL"_s,
                                    u"only the messages of that channel, and of each other one so given"_s)},
            .run = drawChart};
}

} // namespace zyn::tool
