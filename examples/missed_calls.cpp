// The idle screen's counter of missed calls: shows it at the start, and whenever it changes.
//
// On a desk: zyn-recentcalld & zyn-recents & missed_calls &
//            zynphone calls add missed 112
//            zynphone recents show missed    shows the calls, which marks them as read
#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include <recentcall/utility/RC_Interface.h>
#include <recentcall/utility/RC_MissedCallInterface.h>
#include <recentcall/utility/RecentCall_MsgClient.h>

#include "Screen.h"

namespace {

/// Lists the unread calls for the library, which asks the engine that the process provides.
class Engine final : public RC_EngineStub
{
public:
    RC_MissedCallList getUnreadMissedCallList() override
    {
        QPtrList<RC_RecordInterface> calls;
        m_isAnswered = RC_Interface().getRecordList(calls, RC_CALL_CATEGORY_MISSED, RC_CALL_TYPE_VOICE) == 0;
        RC_MissedCallList unread;
        for (const RC_RecordInterface* call : calls) {
            if (call->isRead())
                continue;
            RC_MissedCallItem item;
            item.date = call->getStartDateTime().date();
            item.first = call->getPhoneNumber();
            unread.append(item);
        }
        return unread;
    }

    bool isAnswered() const { return m_isAnswered; }

private:
    bool m_isAnswered = false;
};

void show(const Engine& engine, Screen& screen)
{
    const RC_MissedCallList unread = RC_MissedCallInterface::instance()->getUnreadMissedCalls();
    if (!engine.isAnswered())
        screen.show(QStringLiteral("missed calls unknown: the recent-call service does not answer"));
    else if (unread.isEmpty())
        screen.show(QStringLiteral("no missed calls"));
    else
        screen.show(QStringLiteral("%1 missed, last %2").arg(unread.size()).arg(unread.first().first));
}

} // namespace

int main(int argc, char** argv)
{
    Screen screen;
    const QCoreApplication application(argc, argv);
    if (!RecentCall_MsgClient::instance()->isListening())
        return EXIT_FAILURE; // the library has printed the reason

    Engine engine;
    g_rcEngineStub = &engine;
    QTimer redraw; // asks the service once for several changes
    redraw.setSingleShot(true);
    QObject::connect(&redraw, &QTimer::timeout, &redraw, [&] { show(engine, screen); });
    QObject::connect(RC_MissedCallInterface::instance(), &RC_MissedCallInterface::dataUpdate, &redraw,
                     qOverload<>(&QTimer::start));
    show(engine, screen);
    const int code = QCoreApplication::exec();
    g_rcEngineStub = nullptr; // the engine goes out of scope
    return code;
}
