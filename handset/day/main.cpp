// zyn-day: plays a day of the handset, each program in a process of its own, and checks what the programs print.
#include "handset/common/TerminationSignals.h"
#include "handset/day/Day.h"
#include "handset/day/Player.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zyn::handset {
namespace {

/// Makes the programs keep all their files in @p directory.
void setEnvironment(const QString& directory)
{
    for (const char* name : {"ZYN_LOCAL_APP_WRITE_PATH", "ZYN_APP_WRITE_PATH", "ZYN_QCOP_PATH"})
        qputenv(name, directory.toLocal8Bit());
    qputenv("TZ", "UTC");
    qputenv("PATH", QCoreApplication::applicationDirPath().toLocal8Bit() + ':' + qgetenv("PATH"));
}

/// What somebody at the desk does to @p whom of the cast.
Step stepOfDesk(Verb verb, const QString& verbText, const QString& whom, const QString& chapter = {})
{
    Step step;
    step.chapter = chapter;
    step.who = u"desk"_s;
    step.verb = verb;
    step.verbText = verbText;
    step.whom = whom;
    return step;
}

/// Adds a recorder of all messages to @p day; it replaces @p file.
void record(Day& day, const QString& file)
{
    const QString recorder = u"recorder"_s;
    day.cast += {recorder, u"channels"_s, u"file"_s, false, u"zynphone monitor --force --record \"%1\""_s.arg(file)};
    day.steps.prepend(stepOfDesk(Verb::Starts, u"starts"_s, recorder, u"All messages are recorded from now on"_s));
    day.steps.append(stepOfDesk(Verb::Ends, u"ends"_s, recorder, u"The recording ends"_s));
}

/// Adds the handset on the screen to @p day, once the programs of the day are there.
void showWindow(Day& day)
{
    const QString window = u"window"_s;
    day.cast += {window, window, u"user"_s, false, u"zyn-handset --no-services"_s};
    const auto begins =
        std::find_if(day.steps.cbegin(), day.steps.cend(), [](const Step& step) { return step.verb != Verb::Starts; });
    day.steps.insert(begins - day.steps.cbegin(), stepOfDesk(Verb::Starts, u"starts"_s, window));
    day.steps.append(stepOfDesk(Verb::Ends, u"ends"_s, window, u"The window closes"_s));
}

} // namespace

} // namespace zyn::handset

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"zyn-day"_s);
    const zyn::handset::TerminationSignals terminationSignals;

    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Plays a day of the handset, every side a process of its own, and compares what is "
        "seen with what the script calls for.\nThe exit code is 0 when all has held, else "
        "1. Colour comes on a terminal, unless NO_COLOR is set."_s);
    parser.addHelpOption();
    const QString recordOption = u"record"_s;
    const QString windowOption = u"window"_s;
    parser.addOption({u"slow"_s, u"Play it at a person's pace."_s});
    parser.addOption({recordOption, u"Record all messages in this file, for zynphone replay and chart."_s, u"file"_s});
    parser.addOption({windowOption, u"Show the day in the window of zyn-handset, too."_s});
    parser.addPositionalArgument(u"script"_s, u"What happens, and what must be seen."_s);
    parser.process(application);
    if (parser.positionalArguments().size() != 1) {
        std::fputs("zyn-day: name exactly one script\n", stderr);
        return 2;
    }
    auto day = zyn::handset::readDay(parser.positionalArguments().constFirst());
    if (!day)
        return 2;

    const QString recording = parser.value(recordOption);
    if (recording.contains(u'"')) {
        std::fputs("zyn-day: the name of a recording must not contain a quotation mark\n", stderr);
        return 2;
    }
    if (parser.isSet(recordOption))
        zyn::handset::record(*day, recording);

    if (parser.isSet(windowOption))
        zyn::handset::showWindow(*day);

    const QTemporaryDir directory;
    if (!directory.isValid()) {
        std::fprintf(stderr, "zyn-day: %s\n", qPrintable(directory.errorString()));
        return EXIT_FAILURE;
    }
    zyn::handset::setEnvironment(directory.path());
    zyn::handset::Player player(std::move(*day), directory.path() + u"/phone"_s,
                                {.isSlow = parser.isSet(u"slow"_s), .limit = 10s});
    int code = EXIT_FAILURE; // also if the day is ended early
    QTimer::singleShot(0, &player, [&] {
        if (player.play())
            code = EXIT_SUCCESS;
        QCoreApplication::quit();
    });
    QCoreApplication::exec();
    return code;
}
