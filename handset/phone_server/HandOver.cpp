// Hands finished calls to the recent-call service.
#include "handset/phone_server/HandOver.h"

#include "handset/common/Log.h"
#include "recentcall/utility/PHONE_RecentCall.h"

#include <QtCore/QEventLoop>

#include <chrono>

using namespace std::chrono_literals;
using zyn::handset::log;

namespace {

/// Together the time in which a service that died is started again.
constexpr int kAttempts = 15;
constexpr auto kPause = 200ms;

QString describe(const PHONE_ENG_RecentCall& record)
{
    return QStringLiteral("the call of list %1, type %2, number %3, start %4, %5 seconds")
        .arg(record.category)
        .arg(record.callType)
        .arg(record.getPhoneNumber(), record.getStartDateTime().toString(Qt::ISODate))
        .arg(record.duration);
}

} // namespace

HandOver::HandOver()
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(kPause);
    connect(&m_pause, &QTimer::timeout, this, &HandOver::goOn);
}

void HandOver::add(const PHONE_ENG_RecentCall& record, std::function<void()> done)
{
    m_waiting.append({record, std::move(done)});
    if (m_waiting.size() == 1)
        goOn();
}

void HandOver::finish()
{
    if (m_waiting.isEmpty())
        return;
    QEventLoop loop;
    connect(this, &HandOver::idle, &loop, &QEventLoop::quit);
    loop.exec();
}

void HandOver::goOn()
{
    while (!m_waiting.isEmpty()) {
        if (!tryFirst()) {
            m_pause.start();
            return;
        }
        m_failures = 0;
        const Item item = m_waiting.takeFirst();
        item.done();
    }
    Q_EMIT idle();
}

/// False when the first that waits is to be tried again.
bool HandOver::tryFirst()
{
    PHONE_ENG_RecentCall& record = m_waiting.first().record;
    if (PHONE_RecentCall_AddRecord(record) == 0)
        return true;
    ++m_failures;
    if (m_failures == 1)
        log(QStringLiteral("the recent-call service does not take a call: trying again"));
    if (m_failures < kAttempts)
        return false;
    log(QStringLiteral("the recent-call service never took %1").arg(describe(record)));
    return true;
}
