// zyn-faults: runs real processes of the handset, breaks them, and counts what is lost.
#include "platform/QuietTrace.h"
#include "tests/faults/Campaign.h"
#include "tests/faults/MessageBoard.h"
#include "tests/support/Process.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr int kSkipped = 77;
constexpr int kUsage = 2;

struct Row
{
    const char* name;
    const char* does;
    void (*run)(faults::Campaign& campaign);
};

constexpr std::array kCampaigns{
#ifdef ZYN_HAS_SHIM
    Row{"calls", "every system call of the library fails in turn, in every operation", faults::calls},
#endif
    Row{"clients", "a thousand clients at once on each socket, many of them hostile", faults::clients},
    Row{"clock", "the clock and the time zone are set while calls are made", faults::setClocks},
    Row{"files", "files are replaced, cut, linked and spoiled under who uses them", faults::files},
    Row{"kills", "programs are killed at any moment of their work", faults::kills},
    Row{"messages", "200 channels, whose listeners stop, die, come and leave", faults::messages},
    Row{"servers", "clients whose servers stall, answer in part, lie and close", faults::servers},
    Row{"week", "seven days of calls: no program grows", faults::playWeek},
};

/// What this program is when a campaign starts it again.
struct RoleRow
{
    const char* name;
    int (*run)(const QStringList& arguments);
};

constexpr std::array kRoles{
    RoleRow{"messages-listen", faults::channels::listenRole},
    RoleRow{"messages-send", faults::channels::sendRole},
};

QString table()
{
    QString text;
    for (const Row& row : kCampaigns)
        text += u"  %1  %2\n"_s.arg(QLatin1String(row.name), -10).arg(QLatin1String(row.does));
    return text;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String(role::kSwitch)) {
        const auto* row = std::ranges::find(kRoles, arguments.value(2), [](auto& r) { return QLatin1String(r.name); });
        return row == kRoles.end() ? kUsage : row->run(arguments.mid(3));
    }
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Runs real processes of the handset, breaks them, and counts what is lost, in a private /tmp.\n"
        "The exit code is 0 when nothing was lost, 1 when something was, 77 where it cannot be tried.\n\n"
        "Campaigns:\n"_s
        + table());
    parser.addHelpOption();
    const QCommandLineOption shortForm(u"short"_s, u"Run the form of each campaign that takes seconds."_s);
    const QCommandLineOption json(u"json"_s, u"Write the results as a JSON array."_s);
    const QCommandLineOption list(u"list"_s, u"List the campaigns."_s);
    const QCommandLineOption seed(u"seed"_s, u"Where the choices begin (random)."_s, u"number"_s);
    parser.addOptions({shortForm, json, list, seed});
    parser.addPositionalArgument(u"PROGRAMS"_s, u"The folder of the programs."_s);
    parser.addPositionalArgument(u"CAMPAIGN"_s, u"The campaigns to run (all)."_s, u"[CAMPAIGN...]"_s);
    parser.process(application);
    if (parser.isSet(list)) {
        std::fputs(qPrintable(table()), stdout);
        return EXIT_SUCCESS;
    }
    QStringList names = parser.positionalArguments();
    bool hasSeed = true;
    const quint32 start =
        parser.isSet(seed) ? parser.value(seed).toUInt(&hasSeed) : QRandomGenerator::system()->generate();
    if (names.isEmpty() || !hasSeed)
        parser.showHelp(kUsage);
    const faults::Options options{start, parser.isSet(shortForm), QDir(names.takeFirst()).absolutePath()};
    for (const QString& name : names) {
        if (std::ranges::none_of(kCampaigns, [&](const Row& row) { return name == QLatin1String(row.name); })) {
            std::fprintf(stderr, "zyn-faults: no campaign %s, but these:\n%s", qPrintable(name), qPrintable(table()));
            return kUsage;
        }
    }
    if (qgetenv("ZYN_IN_PRIVATE_TMP") != "yes") {
        std::fputs("zyn-faults: /tmp is not private: run it by scripts/private-tmp: skipped\n", stderr);
        return kSkipped;
    }
    // A process that was killed is found by the write that fails.
    std::signal(SIGPIPE, SIG_IGN);

    const QuietTrace trace;
    if (!trace.output()) {
        std::perror("zyn-faults: standard output");
        return EXIT_FAILURE;
    }
    QJsonArray results;
    bool isLost = false;
    bool isRun = false;
    for (const Row& row : kCampaigns) {
        const QString name = QString::fromLatin1(row.name);
        if (!names.isEmpty() && !names.contains(name))
            continue;
        std::fprintf(stderr, "%s: seed %u\n", row.name, start);
        faults::Campaign campaign(name, options);
        row.run(campaign);
        isLost = isLost || campaign.isLost();
        isRun = isRun || !campaign.isSkipped();
        results.append(campaign.result());
        if (!parser.isSet(json))
            std::fprintf(trace.output(), "%s\n", qPrintable(campaign.line()));
    }
    if (parser.isSet(json))
        std::fputs(QJsonDocument(results).toJson().constData(), trace.output());
    if (!isRun)
        return kSkipped;
    return isLost ? EXIT_FAILURE : EXIT_SUCCESS;
}
