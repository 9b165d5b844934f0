// zyn-idle: plays the idle screen's counters in a terminal.
#include "handset/common/CommandLine.h"
#include "handset/common/TerminalProgram.h"
#include "handset/common/Text.h"
#include "handset/idle_screen/FavouriteCounters.h"
#include "handset/recent_calls/Coalescing.h"
#include "handset/recent_calls/MissedCallEngine.h"
#include "recentcall/utility/RecentCall_MsgClient.h"

#include <QtCore/QCoreApplication>

#include <cstdlib>
#include <utility>

using namespace Qt::StringLiterals;
namespace handset = zyn::handset;

namespace {

QString counterText(const handset::MissedCallEngine& engine, const RC_MissedCallList& unread)
{
    if (!engine.isAnswered())
        return u"missed unknown: the recent-call service does not answer\n"_s;
    if (unread.isEmpty())
        return u"missed 0 unread\n"_s;
    const RC_MissedCallItem& last = unread.first();
    const QString number = last.first.isEmpty() ? u"an unknown number"_s : handset::printable(last.first);
    return u"missed %1 unread, last %2 at %3\n"_s.arg(QString::number(unread.size()), number,
                                                      engine.start(last).toString(u"yyyy-MM-dd HH:mm:ss"));
}

} // namespace

int main(int argc, char** argv)
{
    handset::TerminalProgram program(argc, argv, u"zyn-idle"_s, QStringLiteral(ZYN_VERSION));
    handset::Output& output = program.output;

    handset::CommandLine commandLine(
        u"Plays the idle screen's counters: tells how many missed calls are unread, and what of each "
        "favourite's\ncalls and messages, at the start and whenever that changes.\nEnds on "
        "SIGTERM and SIGINT, and when the handset is switched off."_s,
        &output);
    if (!commandLine.parse())
        return handset::kUsageError;

    const RecentCall_MsgClient& client = *RecentCall_MsgClient::instance();
    if (!client.isListening())
        return EXIT_FAILURE;
    handset::MissedCallEngine engine;
    RC_MissedCallInterface& missedCalls = *RC_MissedCallInterface::instance();
    QString shown;
    const auto show = [&] {
        const QString text = counterText(engine, missedCalls.getUnreadMissedCalls());
        if (std::exchange(shown, text) != text)
            output.write(text);
    };
    handset::Coalescing update(show);
    QObject::connect(&missedCalls, &RC_MissedCallInterface::dataUpdate, &update, &handset::Coalescing::trigger);
    QObject::connect(&client, &RecentCall_MsgClient::signalPowerOff, &program.application, &QCoreApplication::quit);
    show();
    const handset::FavouriteCounters favouriteCounters(output);
    commandLine.announce(QString::fromUtf8(client.channel()));
    QCoreApplication::exec();
    RC_MissedCallInterface::destruction();
    RecentCall_MsgClient::destruction();
    return output.exitCode();
}
