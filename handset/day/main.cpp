// zyn-day: plays a day of the handset, each program in a process of its own, and checks what the programs print.
#include "handset/common/TerminationSignals.h"
#include "handset/day/Day.h"
#include "handset/day/Player.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>

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

/// Adds a recorder of all messages to @p day; it replaces @p file.
void record(Day& day, const QString& file)
{
    const QString recorder = u"recorder"_s;
    day.cast += {recorder, u"channels"_s, u"file"_s, false, u"zynphone monitor --force --record \"%1\""_s.arg(file)};
    const auto step = [&](const QString& chapter, Verb verb, const QString& verbText) {
        Step result;
        result.chapter = chapter;
        result.who = u"desk"_s;
        result.verb = verb;
        result.verbText = verbText;
        result.whom = recorder;
        return result;
    };
    day.steps.prepend(step(u"All messages are recorded from now on"_s, Verb::Starts, u"starts"_s));
    day.steps.append(step(u"The recording ends"_s, Verb::Ends, u"ends"_s));
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
    parser.addOption({u"slow"_s, u"Play it at a person's pace."_s});
    parser.addOption({recordOption, u"Record all messages in this file, for zynphone replay and chart."_s, u"file"_s});
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
