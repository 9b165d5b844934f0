// zynphone missed: the unread missed calls.
#include "tools/commands/Commands.h"

#include "handset/common/TerminationSignals.h"
#include "handset/common/Text.h"
#include "handset/recent_calls/RecentCalls.h"
#include "recentcall/utility/RC_MissedCallInterface.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "tools/commands/MessageSending.h"
#include "tools/commands/ServiceWatch.h"
#include "tools/zynphone/Command.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/ExitCode.h"
#include "tools/zynphone/RecordText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QScopeGuard>

#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using handset::Debouncer;
using handset::MissedCallEngine;

constexpr Column<RC_MissedCallItem> kMissedColumns[] = {
    {"uid", "UID", [](const RC_MissedCallItem& item) { return QJsonValue(MissedCallEngine::uid(item)); }},
    {"number", "NUMBER", [](const RC_MissedCallItem& item) { return QJsonValue(item.first); }},
    {"name", "NAME", [](const RC_MissedCallItem& item) { return QJsonValue(item.second); }},
    {"start", "START",
     [](const RC_MissedCallItem& item) {
         return QJsonValue(MissedCallEngine::start(item).toUTC().toString(Qt::ISODate));
     },
     [](const RC_MissedCallItem& item) { return handset::timeText(MissedCallEngine::start(item)); }},
    {"type", "TYPE",
     [](const RC_MissedCallItem& item) { return QJsonValue(wordFor(kTypes, MissedCallEngine::callType(item))); }},
};

/// Shows the unread missed calls at each change, up to a number of times.
class MissedCalls
{
public:
    MissedCalls(const Invocation& invocation, Console& console)
        : m_console(console)
        , m_json(invocation.isSet(u"json"_s))
        , m_left(limitFrom(invocation, u"count"_s))
    {}

    void show()
    {
        const Table table(kMissedColumns, m_engine.getUnreadMissedCallList());
        if (!m_engine.isAnswered())
            throw recentCallServiceError();
        const QJsonObject object{{u"unread"_s, table.count()}, {u"calls"_s, table.json()}};
        if (std::exchange(m_shown, object) == object)
            return;
        if (m_json)
            m_console.write(QJsonDocument(object));
        else
            m_console.write(u"%1 unread\n"_s.arg(table.count()) + (table.isEmpty() ? QString() : table.text()));
        if (m_left)
            --*m_left;
    }

    /// Shows them until the limit is reached.
    void follow()
    {
        QObject::connect(RC_MissedCallInterface::instance(), &RC_MissedCallInterface::dataUpdate, &m_update,
                         &Debouncer::trigger);
        m_service.start();
        show();
        if (!isOver())
            QCoreApplication::exec();
    }

private:
    bool isOver() const { return m_left == 0 || !m_console.isValid(); }

    void showAgain()
    {
        // A service that begins announces its calls.
        m_service.start();
        try {
            show();
        } catch (const CommandError& error) {
            m_console.writeError(u"zynphone: "_s + error.message());
        }
        if (isOver())
            QCoreApplication::quit();
    }

    void tellEnd()
    {
        m_console.writeError(u"zynphone: the recent-call service has ended; the calls are shown when one runs again"_s);
        m_shown.reset();
    }

    Console& m_console;
    const bool m_json;
    std::optional<int> m_left; ///< unset without a limit
    std::optional<QJsonObject> m_shown;
    MissedCallEngine m_engine;
    Debouncer m_update{[this] { showAgain(); }};
    ServiceWatch m_service{recentcall::kSocketPath, [this] { tellEnd(); }};
};

ExitCode showMissed(const Invocation& invocation, Console& console)
{
    const bool follows = invocation.isSet(u"follow"_s);
    for (const QString& option : {u"count"_s, u"for"_s}) {
        if (!follows && invocation.isSet(option))
            throw usageError(u"--%1 is for --follow"_s.arg(option));
    }
    const TimeLimit limit(invocation);
    MissedCalls missed(invocation, console);
    if (!follows) {
        missed.show();
        return Done;
    }
    requireChannel(kRecentCallChannel, u"listen on"_s);
    const auto destroy = qScopeGuard([] {
        RC_MissedCallInterface::destruction();
        RecentCall_MsgClient::destruction();
    });
    const handset::TerminationSignals signalsThatEnd;
    limit.start();
    missed.follow();
    return Done;
}

} // namespace

Command missedCommand()
{
    return {.name = u"missed"_s,
            .summary = u"Show how many missed calls are unread, and list them, newest first"_s,
            .details = u"\nThe object of --json has the fields unread and calls, an array of objects with the fields\n"
                       u"%1; start is UTC. With --follow it is one object a line.\n"_s.arg(fieldNames(kMissedColumns)),
            .options = {jsonOption(),
                        flagOption(u"follow"_s, u"show them again at each change, until SIGINT or SIGTERM"_s),
                        valueOption(u"count"_s, u"N"_s, u"with --follow: end after showing them N times"_s),
                        TimeLimit::option(u"with --follow: end after that time"_s)},
            .run = showMissed};
}

} // namespace zyn::tool
