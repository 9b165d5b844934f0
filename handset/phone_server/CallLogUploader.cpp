// Uploads finished calls to the recent-call service.
#include "handset/phone_server/CallLogUploader.h"

#include "handset/common/Log.h"
#include "handset/common/Text.h"
#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/RecentCall_Client_p.h"

#include <QtCore/QEventLoop>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zyn::handset {
namespace {

using posix::Delivery;

/// Enough for a service that died to be restarted.
constexpr std::chrono::milliseconds kTimeout = 3s;
/// @{ Between two attempts: within that time, and after it.
constexpr auto kPause = 200ms;
constexpr auto kLongPause = 1s;
/// @}

/// Concurrent uploads, so that a hanging service does not use up the descriptors.
constexpr size_t kMostOnTheWay = 16;

QString describe(const PHONE_ENG_RecentCall& record)
{
    return u"the call of list %1, type %2, number %3, start %4, %5"_s.arg(
        QString::number(record.category), QString::number(record.callType), record.getPhoneNumber(),
        timeText(record.getStartDateTime()), counted(record.duration, "second"));
}

} // namespace

CallLogUploader::CallLogUploader()
{
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &CallLogUploader::tryAgain);
}

CallLogUploader::~CallLogUploader() = default;

void CallLogUploader::add(const PHONE_ENG_RecentCall& record)
{
    if (m_waiting.empty())
        m_sinceAccepted.start();
    m_waiting.push_back({record});
    advance();
}

void CallLogUploader::finish()
{
    // Calls that wait from here on are logged once, below.
    m_pause.disconnect();
    connect(&m_pause, &QTimer::timeout, this, &CallLogUploader::advance);
    advance();
    if (!m_waiting.empty()) {
        QEventLoop loop;
        connect(this, &CallLogUploader::idle, &loop, &QEventLoop::quit);
        QTimer::singleShot(kTimeout, &loop, &QEventLoop::quit);
        loop.exec();
    }
    // A service that only hangs reads what it was sent when it resumes.
    sendWaiting(m_waiting.size());
    for (const Item& item : m_waiting) {
        const bool isSent = item.connection.isValid();
        log((isSent ? u"the recent-call service has not read %1"_s : u"the recent-call service never accepted %1"_s)
                .arg(describe(item.record)));
    }
}

void CallLogUploader::advance()
{
    collect();
    sendWaiting(kMostOnTheWay);
    if (m_waiting.empty()) {
        m_pause.stop();
        Q_EMIT idle();
    } else if (!m_pause.isActive()) {
        m_pause.start(m_sinceAccepted.hasExpired(kTimeout.count()) ? kLongPause : kPause);
    }
}

void CallLogUploader::tryAgain()
{
    advance();
    if (m_sinceAccepted.hasExpired(kTimeout.count()))
        logWaiting();
}

/// Removes what has been uploaded; what was lost on its way is sent again.
void CallLogUploader::collect()
{
    for (auto item = m_waiting.begin(); item != m_waiting.end();) {
        const Delivery delivery =
            item->connection.isValid() ? posix::deliveryOn(item->connection.get()) : Delivery::Pending;
        if (delivery == Delivery::Read) {
            noteAccepted(*item);
            item = m_waiting.erase(item);
            continue;
        }
        if (delivery == Delivery::Lost) {
            item->answered.reset();
            item->connection.reset();
        }
        ++item;
    }
    if (m_waiting.empty() && m_late > 0)
        log(u"the recent-call service is back and has accepted %1 that waited"_s.arg(
            counted(std::exchange(m_late, 0), "call")));
}

void CallLogUploader::noteAccepted(const Item& item)
{
    m_sinceAccepted.start();
    m_isRefused = false;
    m_late += item.isLogged ? 1 : 0;
}

/// Sends the unsent ones of the first @p most calls, in order.
void CallLogUploader::sendWaiting(size_t most)
{
    for (size_t i = 0; i < std::min(most, m_waiting.size()); ++i) {
        if (m_waiting[i].connection.isValid() || send(m_waiting[i]))
            continue;
        if (!std::exchange(m_isRefused, true))
            log(u"the recent-call service does not accept a call: trying again"_s);
        return;
    }
}

bool CallLogUploader::send(Item& item)
{
    posix::UniqueFd connection = posix::connectUnixAtOnce(recentcall::kSocketPath);
    if (!connection.isValid() || !posix::isPeerTrusted(connection.get()))
        return false;
    const QByteArray request = recentcall::addRequest(item.record);
    std::array blocks{posix::toIovec(std::as_bytes(std::span(request.constData(), size_t(request.size()))))};
    if (posix::sendSome(connection.get(), blocks) != request.size())
        return false;
    posix::endSending(connection.get());
    item.answered = std::make_unique<QSocketNotifier>(connection.get(), QSocketNotifier::Read);
    // Queued, because advance() deletes the notifier along with its call.
    connect(item.answered.get(), &QSocketNotifier::activated, this, &CallLogUploader::advance, Qt::QueuedConnection);
    item.connection = std::move(connection);
    return true;
}

void CallLogUploader::logWaiting()
{
    for (Item& item : m_waiting) {
        if (!std::exchange(item.isLogged, true))
            log(u"the recent-call service has not accepted %1: it waits"_s.arg(describe(item.record)));
    }
}

} // namespace zyn::handset
