// What has changed the log of recent calls, for all that show it in this process.
#include "qml/module/CallLogChanges.h"

#include <chrono>

using namespace std::chrono_literals;

namespace zyn::qml {
namespace {

/// A burst, such as the calls that are marked as read one by one, is told once.
constexpr auto kSoon = 30ms;
/// By then a call is in the log even if the service was away when it ended, and has come back.
constexpr auto kLater = 2500ms;

} // namespace

std::shared_ptr<CallLogChanges> CallLogChanges::shared()
{
    static std::weak_ptr<CallLogChanges> current;
    std::shared_ptr<CallLogChanges> changes = current.lock();
    if (!changes) {
        changes.reset(new CallLogChanges);
        current = changes;
    }
    return changes;
}

CallLogChanges::CallLogChanges()
{
    m_soon.setInterval(kSoon);
    m_later.setInterval(kLater);
    for (QTimer* timer : {&m_soon, &m_later}) {
        timer->setSingleShot(true);
        connect(timer, &QTimer::timeout, this, &CallLogChanges::changed);
    }
    connect(&m_missedCalls, &RC_MissedCallInterface::dataUpdate, this, &CallLogChanges::noteFromOutside);
    connect(&m_phone, &PHONE_MsgClient::signalVoiceCallStatChanged, this, &CallLogChanges::noteFromOutside);
}

void CallLogChanges::note()
{
    // Not started anew: changes that do not end would never be told.
    if (!m_soon.isActive())
        m_soon.start();
}

void CallLogChanges::noteFromOutside()
{
    note();
    m_later.start();
}

} // namespace zyn::qml
