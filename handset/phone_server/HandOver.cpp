// Hands finished calls to the recent-call service.
#include "handset/phone_server/HandOver.h"

#include "handset/common/Log.h"
#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/RecentCall_Client_p.h"

#include <QtCore/QEventLoop>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;
using zyn::posix::Delivery;

namespace zyn::handset {
namespace {

/// The time in which a service that died is started again.
constexpr std::chrono::milliseconds kPatience = 3s;
/// @{ Between two tries: within that time, and from then on.
constexpr auto kPause = 200ms;
constexpr auto kLongPause = 1s;
/// @}

/// How many calls are on their way at a time. A service that hangs must not have all descriptors.
constexpr size_t kMostOnTheWay = 16;

QString describe(const PHONE_ENG_RecentCall& record)
{
    return QStringLiteral("the call of list %1, type %2, number %3, start %4, %5 seconds")
        .arg(QString::number(record.category), QString::number(record.callType), record.getPhoneNumber(),
             record.getStartDateTime().toString(Qt::ISODate), QString::number(record.duration));
}

} // namespace

HandOver::HandOver()
{
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &HandOver::tryAgain);
}

HandOver::~HandOver() = default;

void HandOver::add(const PHONE_ENG_RecentCall& record)
{
    if (m_waiting.empty())
        m_sinceTaken.start();
    m_waiting.push_back({record});
    goOn();
}

void HandOver::finish()
{
    // What waits from here on is told once, below.
    m_pause.disconnect();
    connect(&m_pause, &QTimer::timeout, this, &HandOver::goOn);
    goOn();
    if (!m_waiting.empty()) {
        QEventLoop loop;
        connect(this, &HandOver::idle, &loop, &QEventLoop::quit);
        QTimer::singleShot(kPatience, &loop, &QEventLoop::quit);
        loop.exec();
    }
    // A service that only hangs finds what it was sent when it goes on.
    sendWaiting(m_waiting.size());
    for (const Item& item : m_waiting) {
        const bool isSent = item.connection.isValid();
        log((isSent ? QStringLiteral("the recent-call service was sent %1, and has not read it")
                    : QStringLiteral("the recent-call service never took %1"))
                .arg(describe(item.record)));
    }
}

void HandOver::goOn()
{
    collect();
    sendWaiting(kMostOnTheWay);
    if (m_waiting.empty()) {
        m_pause.stop();
        Q_EMIT idle();
    } else if (!m_pause.isActive()) {
        m_pause.start(m_sinceTaken.hasExpired(kPatience.count()) ? kLongPause : kPause);
    }
}

void HandOver::tryAgain()
{
    goOn();
    if (m_sinceTaken.hasExpired(kPatience.count()))
        tellWaiting();
}

/// Takes away what has been handed over; what was lost on its way is to be sent again.
void HandOver::collect()
{
    for (auto item = m_waiting.begin(); item != m_waiting.end();) {
        const Delivery delivery =
            item->connection.isValid() ? zyn::posix::deliveryOn(item->connection.get()) : Delivery::Pending;
        if (delivery == Delivery::Read) {
            noteTaken(*item);
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
        log(QStringLiteral("the recent-call service is back, and has taken the %1 calls that waited")
                .arg(std::exchange(m_late, 0)));
}

void HandOver::noteTaken(const Item& item)
{
    m_sinceTaken.start();
    m_isRefused = false;
    m_late += item.isTold ? 1 : 0;
}

/// Sends what was not sent yet of the first @p most calls, one after the other.
void HandOver::sendWaiting(size_t most)
{
    for (size_t i = 0; i < std::min(most, m_waiting.size()); ++i) {
        if (m_waiting[i].connection.isValid() || send(m_waiting[i]))
            continue;
        if (!std::exchange(m_isRefused, true))
            log(QStringLiteral("the recent-call service does not take a call: trying again"));
        return;
    }
}

bool HandOver::send(Item& item)
{
    zyn::posix::UniqueFd connection = zyn::posix::connectUnixAtOnce(zyn::recentcall::kSocketPath);
    if (!connection.isValid() || !zyn::posix::isPeerTrusted(connection.get()))
        return false;
    const QByteArray request = zyn::recentcall::addRequest(item.record);
    std::array blocks{zyn::posix::toIovec(std::as_bytes(std::span(request.constData(), size_t(request.size()))))};
    if (zyn::posix::sendSome(connection.get(), blocks) != request.size())
        return false;
    zyn::posix::endSending(connection.get());
    item.answered = std::make_unique<QSocketNotifier>(connection.get(), QSocketNotifier::Read);
    // Queued: by then the notifier, which goes with its call, has nothing more to do.
    connect(item.answered.get(), &QSocketNotifier::activated, this, &HandOver::goOn, Qt::QueuedConnection);
    item.connection = std::move(connection);
    return true;
}

void HandOver::tellWaiting()
{
    for (Item& item : m_waiting) {
        if (!std::exchange(item.isTold, true))
            log(QStringLiteral("the recent-call service has not taken %1: it waits").arg(describe(item.record)));
    }
}

} // namespace zyn::handset
