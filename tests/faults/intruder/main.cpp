// A second user against the first: everything that he can do to the services' sockets, files, channels and names.
//
// Root plays both: it starts the services as the first user, or as itself, and forks the intruder, who gives up all
// rights. What he achieves is a breach, unless a row of kOpen says that it is open to all users on purpose.
#include "tests/faults/intruder/Attacks.h"
#include "tests/faults/intruder/Evidence.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRandomGenerator>

#include <cstdio>
#include <cstdlib>

#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int kSkipped = 77;

/// Why nothing can be tried here; empty when it can.
QString obstacle()
{
    if (::geteuid() != 0)
        return u"only root can play two users"_s;
    if (qgetenv("ZYN_IN_PRIVATE_TMP") != "yes")
        return u"/tmp is not private: run it by scripts/private-tmp"_s;
    const pid_t child = ::fork();
    if (child == 0) {
        intruder::become(intruder::kIntruder);
        ::_exit(EXIT_SUCCESS);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? QString() : u"root cannot become another user here"_s;
}

} // namespace

int main(int argc, char** argv)
{
    using namespace intruder;
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Has a second user try everything against the services of the first, and of root, in a private /tmp.\n"
        "The exit code is 0 without a breach, 1 with one, 77 where that cannot be tried.\n\n"
        "scripts/private-tmp \"$PWD/build/dev\" \"$PWD\" build/dev/tests/intruder build/dev/bin"_s);
    parser.addHelpOption();
    const QCommandLineOption shortForm(u"short"_s,
                                       u"Try a part that takes seconds: some of the names, few restarts."_s);
    const QCommandLineOption json(u"json"_s, u"Write the result as a JSON object."_s);
    const QCommandLineOption seed(u"seed"_s, u"Where the choices begin (random)."_s, u"number"_s);
    const QCommandLineOption bound(u"memory"_s, u"KiB by which a service may grow; 0 for any (8192)."_s, u"KiB"_s,
                                   u"8192"_s);
    parser.addOptions({shortForm, json, seed, bound});
    parser.addPositionalArgument(u"PROGRAMS"_s, u"The folder of the programs."_s);
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);
    programs = QDir(parser.positionalArguments().first()).absolutePath();
    if (const QString why = obstacle(); !why.isEmpty()) {
        std::fprintf(stderr, "intruder: %s: skipped\n", qPrintable(why));
        return kSkipped;
    }

    const quint32 start = parser.isSet(seed) ? parser.value(seed).toUInt() : QRandomGenerator::system()->generate();
    QRandomGenerator random(start);
    const bool isShort = parser.isSet(shortForm);
    const int memoryBound = parser.value(bound).toInt();
    const Extent extent = isShort ? Extent{8, 10, 3, memoryBound} : Extent{200, 0, 30, memoryBound};
    std::fprintf(stderr, "intruder: seed %u\n", start);
    for (const uid_t owner : {kFirst, uid_t(0)}) {
        for (const bool hasRuntimeDirectory : {false, true}) {
            const Place place{owner, hasRuntimeDirectory};
            if (isShort && hasRuntimeDirectory)
                continue;
            attackRunning(place, random, extent);
            attackNames(place, random, extent);
            attackRestarts(place, random, extent);
        }
    }
    clearTmp({0, false});

    if (parser.isSet(json)) {
        const QJsonObject result{{u"seed"_s, qint64(start)},
                                 {u"attempts"_s, report.attempts},
                                 {u"open"_s, report.open},
                                 {u"keptOut"_s, report.keptOut},
                                 {u"checks"_s, report.checks},
                                 {u"growthKiB"_s, report.memory},
                                 {u"breaches"_s, QJsonArray::fromStringList(report.breaches)}};
        std::puts(QJsonDocument(result).toJson().constData());
    } else {
        std::printf("seed %u: %d attempts, %d of them open to all, %d services kept out and saying why, %d checks, "
                    "%lld breaches\n",
                    start, report.attempts, report.open, report.keptOut, report.checks,
                    static_cast<long long>(report.breaches.size()));
    }
    return report.breaches.isEmpty() ? EXIT_SUCCESS : EXIT_FAILURE;
}
