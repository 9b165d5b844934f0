// The unread missed calls, for applications.
#include "recentcall/utility/RC_MissedCallInterface.h"

#include "recentcall/utility/RecentCall_MsgClient.h"

#include <QtCore/QPointer>

#include <cstdio>
#include <utility>

RC_EngineStub* g_rcEngineStub = nullptr;

namespace {

/// Not ended with the process: by then the channels may be gone.
RC_MissedCallInterface* s_instance = nullptr;

} // namespace

struct RC_MissedCallInterface::Holder
{
    QPointer<RecentCall_MsgClient> client;
};

RC_MissedCallInterface* RC_MissedCallInterface::instance()
{
    if (!s_instance)
        s_instance = new RC_MissedCallInterface;
    s_instance->followClient();
    return s_instance;
}

void RC_MissedCallInterface::destruction()
{
    delete std::exchange(s_instance, nullptr);
}

RC_MissedCallInterface::RC_MissedCallInterface()
    : m_holder(std::make_unique<Holder>())
{
    followClient();
}

RC_MissedCallInterface::~RC_MissedCallInterface() = default;

RC_MissedCallList RC_MissedCallInterface::getUnreadMissedCalls()
{
    followClient();
    if (!g_rcEngineStub) {
        std::fprintf(stderr, "{%d} %s:%d\tooooooooooo\n", 1, "RC_MissedCallInterface.cpp", __LINE__);
        return {};
    }
    return g_rcEngineStub->getUnreadMissedCallList();
}

/// Takes the client of the process, and another one once its user has destroyed that.
void RC_MissedCallInterface::followClient()
{
    if (m_holder->client)
        return;
    m_holder->client = RecentCall_MsgClient::instance();
    connect(m_holder->client, &RecentCall_MsgClient::signalMissedCallUpdate, this, &RC_MissedCallInterface::dataUpdate);
}
