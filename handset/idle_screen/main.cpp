// zyn-idle: plays the idle screen's counters in a terminal.
#include "handset/common/CommandLine.h"
#include "handset/common/Retry.h"
#include "handset/common/TerminalProgram.h"
#include "handset/common/Text.h"
#include "handset/idle_screen/FavouriteCounters.h"
#include "handset/recent_calls/RecentCalls.h"
#include "recentcall/utility/RecentCall_MsgClient.h"

#include <QtCore/QCoreApplication>

#include <chrono>
#include <cstdlib>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
namespace handset = zyn::handset;

namespace {

/// Between the questions to a service that does not answer: one that hung announces nothing when it goes on.
constexpr auto kFirstRetry = 1s;
constexpr auto kSlowestRetry = 15s;

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

/// Shows how many missed calls are unread, at first and whenever that has changed.
class MissedCallCounter
{
public:
    explicit MissedCallCounter(handset::Output& output)
        : m_output(output)
    {
        QObject::connect(RC_MissedCallInterface::instance(), &RC_MissedCallInterface::dataUpdate, &m_update,
                         &handset::Debouncer::trigger);
        show();
    }

private:
    void show()
    {
        const QString text = counterText(m_engine, RC_MissedCallInterface::instance()->getUnreadMissedCalls());
        if (std::exchange(m_shown, text) != text)
            m_output.write(text);
        m_retry.note(m_engine.isAnswered());
    }

    handset::Output& m_output;
    handset::MissedCallEngine m_engine;
    QString m_shown;
    handset::Debouncer m_update{[this] { show(); }};
    handset::Retry m_retry{kFirstRetry, kSlowestRetry, [this] { show(); }};
};

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
    const MissedCallCounter missedCallCounter(output);
    QObject::connect(&client, &RecentCall_MsgClient::signalPowerOff, &program.application, &QCoreApplication::quit);
    const handset::FavouriteCounters favouriteCounters(output);
    commandLine.announce(QString::fromUtf8(client.channel()));
    QCoreApplication::exec();
    RC_MissedCallInterface::destruction();
    RecentCall_MsgClient::destruction();
    return output.exitCode();
}
