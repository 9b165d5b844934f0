// Notices when the listeners of a thread cannot be found any more.
#include "platform/qcop/ListenerWatch_p.h"

#include "platform/qcop/ChannelListener_p.h"

#include <QtCore/QAbstractEventDispatcher>

#include <algorithm>

namespace zyn {
namespace {

/// How soon a listener that could not register tries again, and how seldom in the end.
constexpr std::chrono::milliseconds kFirstPause{10};
constexpr std::chrono::milliseconds kLastPause{1000};

} // namespace

ListenerWatch& ListenerWatch::ofThisThread()
{
    QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
    for (QObject* child : dispatcher->children()) {
        // A forked child has its parent's, which watches nothing there.
        auto* watch = dynamic_cast<ListenerWatch*>(child);
        if (watch && watch->m_files.isOwn())
            return *watch;
    }
    return *new ListenerWatch(dispatcher);
}

ListenerWatch::ListenerWatch(QObject* dispatcher)
    : QObject(dispatcher)
{
    m_timer.setSingleShot(true);
    m_timer.callOnTimeout(this, &ListenerWatch::look);
    if (m_files.fd() < 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_files.fd(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &ListenerWatch::noteChanges);
}

ListenerWatch::~ListenerWatch()
{
    for (ChannelListener* listener : m_listeners)
        listener->loseWatch();
}

void ListenerWatch::add(ChannelListener& listener)
{
    m_listeners.insert(&listener);
}

void ListenerWatch::remove(ChannelListener& listener)
{
    m_listeners.erase(&listener);
}

void ListenerWatch::lookSoon()
{
    m_pause = kFirstPause;
    m_timer.start(m_pause);
}

void ListenerWatch::noteChanges()
{
    if (!m_files.isOwn()) // a forked child's loop
        return m_notifier->setEnabled(false);
    if (!m_files.poll())
        return;
    m_pause = kFirstPause;
    look();
}

/// Goes on for a while when all is well: what has removed a socket may be about to remove, or to cover, what is above
/// it.
void ListenerWatch::look()
{
    bool isSettled = m_pause >= kLastPause;
    if (!m_files.isOwn())
        return;
    for (ChannelListener* listener : m_listeners)
        isSettled = listener->look() && isSettled;
    if (isSettled)
        return;
    m_timer.start(m_pause);
    m_pause = std::min(m_pause * 2, kLastPause);
}

} // namespace zyn
