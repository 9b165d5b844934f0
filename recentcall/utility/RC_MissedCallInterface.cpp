// The unread missed calls, for applications.
#include "recentcall/utility/RC_MissedCallInterface.h"

#include "recentcall/utility/RecentCall_MsgClient.h"

#include <QtCore/QPointer>

#include <cstdio>
#include <utility>

RC_EngineStub* g_rcEngineStub = nullptr;

namespace {

/// Not ended with the process: by then the channels may be gone.
RC_MissedCallInterface* s_missedCalls = nullptr;

} // namespace

struct RC_MissedCallInterface::Holder
{
    QPointer<RecentCall_MsgClient> client;

    /// Follows the client of the process, and the next one once that is destroyed.
    void followClient(RC_MissedCallInterface* owner)
    {
        if (client)
            return;
        client = RecentCall_MsgClient::instance();
        connect(client, &RecentCall_MsgClient::signalMissedCallUpdate, owner, &RC_MissedCallInterface::dataUpdate);
    }
};

RC_MissedCallInterface* RC_MissedCallInterface::instance()
{
    if (!s_missedCalls)
        s_missedCalls = new RC_MissedCallInterface;
    s_missedCalls->m_holder->followClient(s_missedCalls);
    return s_missedCalls;
}

void RC_MissedCallInterface::destruction()
{
    delete std::exchange(s_missedCalls, nullptr);
}

RC_MissedCallInterface::RC_MissedCallInterface()
    : m_holder(std::make_unique<Holder>())
{
    m_holder->followClient(this);
}

RC_MissedCallInterface::~RC_MissedCallInterface() = default;

RC_MissedCallList RC_MissedCallInterface::getUnreadMissedCalls()
{
    m_holder->followClient(this);
    if (!g_rcEngineStub) {
        std::fprintf(stderr, "{%d} %s:%d\tooooooooooo\n", 1, "RC_MissedCallInterface.cpp", __LINE__);
        return {};
    }
    return g_rcEngineStub->getUnreadMissedCallList();
}
