// Notices when the listeners of a thread cannot be found any more.
#pragma once

#include "platform/posix/DirectoryWatch_p.h"

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <chrono>
#include <memory>
#include <set>

namespace zyn {

class ChannelListener;

/**
 * Lets the listeners of one thread look after their sockets when something has happened to any, or may have: a listener
 * whose socket somebody has removed, or a directory above it, is found by no sender and would never know.
 *
 * It lives as long as the thread's event dispatcher, without listeners too: to close what the kernel watches takes it
 * many milliseconds, which is too much for who listens only now and then.
 */
class ListenerWatch : public QObject
{
public:
    /// That of the calling thread, which has a dispatcher.
    static ListenerWatch& ofThisThread();
    ~ListenerWatch() override;

    void add(ChannelListener& listener);
    void remove(ChannelListener& listener);
    posix::DirectoryWatch& files() { return m_files; }
    /// Lets them look soon, and then less and less often while there is something to wait for.
    void lookSoon();

private:
    explicit ListenerWatch(QObject* dispatcher);
    void noteChanges();
    void look();

    posix::DirectoryWatch m_files;
    std::set<ChannelListener*> m_listeners;
    std::unique_ptr<QSocketNotifier> m_notifier; ///< none when watching is impossible
    QTimer m_timer;
    std::chrono::milliseconds m_pause{};
};

} // namespace zyn
