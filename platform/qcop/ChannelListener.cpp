// The receiving end of a channel: the socket under which a listener is found.
#include "platform/qcop/ChannelListener_p.h"

#include "platform/posix/Acceptor_p.h"
#include "platform/posix/UnixSocket_p.h"
#include "platform/qcop/ChannelChanges_p.h"
#include "platform/qcop/ChannelFrame_p.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QEvent>
#include <QtCore/QPointer>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <algorithm>
#include <chrono>
#include <set>
#include <utility>

namespace zyn {
namespace {

/// How often a listener tries at once to register: others remove the channel's directory while it is empty.
constexpr int kNameAttempts = 8;
/// How soon a listener that could not register tries again, and how seldom in the end.
constexpr std::chrono::milliseconds kFirstPause{10};
constexpr std::chrono::milliseconds kLastPause{1000};

/// Says whose messages a listener receives, for as long as it does. In a nested loop others may come meanwhile; either
/// may destroy the listener.
class OriginScope
{
public:
    explicit OriginScope(ChannelListener& listener)
        : m_listener(&listener)
        , m_outer(listener.exchangeOrigin(&m_origin))
    {}
    OriginScope(const OriginScope&) = delete;
    OriginScope& operator=(const OriginScope&) = delete;
    ~OriginScope()
    {
        if (m_listener)
            m_listener->exchangeOrigin(m_outer);
    }

    /// Sets that of the next message, which comes from the same sender as those before.
    void set(const ChannelOrigin& origin)
    {
        if (m_origin.process != origin.process)
            m_origin = origin;
        m_origin.sentAt = origin.sentAt;
    }

private:
    const QPointer<ChannelListener> m_listener;
    ChannelOrigin m_origin;
    const ChannelOrigin* const m_outer;
};

/// One sender's connection. Hands its messages on in the order sent, and ends itself with the connection, or when what
/// comes is no message.
class ChannelConnection : public QObject
{
public:
    ChannelConnection(posix::ForkLocalFd fd, pid_t process, const ChannelListener::Receive& receive,
                      ChannelListener& listener)
        : QObject(&listener)
        , m_fd(std::move(fd))
        , m_notifier(m_fd.get(), QSocketNotifier::Read, this)
        , m_receive(receive)
        , m_listener(listener)
        , m_reader(process)
    {
        connect(&m_notifier, &QSocketNotifier::activated, this, &ChannelConnection::read);
    }

private:
    void read();
    void deliver();
    void deliverInNestedLoop();
    void close();

    posix::ForkLocalFd m_fd;
    QSocketNotifier m_notifier;
    const ChannelListener::Receive& m_receive;
    ChannelListener& m_listener;
    ChannelFrameReader m_reader;
    bool m_hasEnded = false;
    bool m_isDeliveryPosted = false;
};

/// Reads once and no more: a sender that never stops must not keep the loop from its other work.
void ChannelConnection::read()
{
    const ssize_t n = posix::receiveSome(m_fd.get(), m_reader.room());
    if (n < 0)
        return;
    m_reader.add(n);
    m_hasEnded = n == 0;
    deliver();
}

void ChannelConnection::deliver()
{
    const QPointer<ChannelConnection> self(this);
    QByteArray name;
    QByteArray data;
    OriginScope scope(m_listener);
    // A receiver may have forked: what is left is for the parent's listener alone.
    while (m_fd.isOwn() && m_reader.next(name, data)) {
        if (m_reader.hasMore())
            deliverInNestedLoop();
        scope.set(m_reader.origin());
        m_receive(name, data);
        if (!self)
            return; // the receiver has destroyed the listener
    }
    if (m_hasEnded || m_reader.isBroken())
        close();
}

/// A receiver may run a loop of its own to wait for an answer that has already been read: the delivery continues there.
void ChannelConnection::deliverInNestedLoop()
{
    if (std::exchange(m_isDeliveryPosted, true))
        return;
    const auto deliverRest = [this] {
        m_isDeliveryPosted = false;
        deliver();
    };
    QMetaObject::invokeMethod(this, deliverRest, Qt::QueuedConnection);
}

void ChannelConnection::close()
{
    m_notifier.setEnabled(false);
    m_fd.reset();
    deleteLater();
}

} // namespace

/**
 * Has the listeners of one thread check their sockets when something has happened to any, or may have: a listener whose
 * socket somebody has removed, or a directory above it, is found by no sender and would never know.
 *
 * It lives as long as the thread's event dispatcher, without listeners too: the kernel takes many milliseconds to close
 * a watch, which is too much for a program that listens only now and then.
 */
class ListenerWatch : public QObject
{
public:
    /// That of the calling thread, which has a dispatcher.
    static ListenerWatch& ofThisThread();
    ~ListenerWatch() override;

    void add(ChannelListener& listener) { m_listeners.insert(&listener); }
    void remove(ChannelListener& listener) { m_listeners.erase(&listener); }
    posix::DirectoryWatch& files() { return m_files; }
    /// Checks the listeners soon, and then less and less often while there is something to wait for.
    void checkSoon();

private:
    explicit ListenerWatch(QObject* dispatcher);
    void noteChanges();
    void check();

    posix::DirectoryWatch m_files;
    std::set<ChannelListener*> m_listeners;
    std::unique_ptr<QSocketNotifier> m_notifier; ///< none when watching is impossible
    QTimer m_timer;
    std::chrono::milliseconds m_pause{};
};

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
    m_timer.callOnTimeout(this, &ListenerWatch::check);
    if (m_files.fd() < 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_files.fd(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &ListenerWatch::noteChanges);
}

ListenerWatch::~ListenerWatch()
{
    for (ChannelListener* listener : m_listeners)
        listener->forgetWatch();
}

void ListenerWatch::checkSoon()
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
    check();
}

/// Repeats itself for a while when all is well: what has removed a socket may be about to remove, or to cover, what is
/// above it.
void ListenerWatch::check()
{
    bool isSettled = m_pause >= kLastPause;
    if (!m_files.isOwn())
        return;
    for (ChannelListener* listener : m_listeners)
        isSettled = listener->restore() && isSettled;
    if (isSettled)
        return;
    m_timer.start(m_pause);
    m_pause = std::min(m_pause * 2, kLastPause);
}

/// A socket and what accepts its connections.
struct ChannelListener::Entrance
{
    posix::ForkLocalFd socket;
    std::unique_ptr<posix::Acceptor> acceptor;
};

ChannelListener::ChannelListener(const QByteArray& channel, Receive receive, QObject* parent)
    : QObject(parent)
    , m_environment(ChannelEnvironment::current())
    , m_channel(channel)
    , m_name(ChannelDirectory::newName())
    , m_receive(std::move(receive))
{
    const QByteArray root = m_environment.root();
    ChannelDirectory::clean(root);
    m_entrance = makeEntrance();
    if (!m_entrance->socket.isValid())
        qWarning("QCopChannel: no listener on \"%s\" in \"%s\"", channel.constData(), root.constData());
    if (QAbstractEventDispatcher::instance())
        enterLoop();
    else // messages wait in the socket until the thread has a loop
        QMetaObject::invokeMethod(this, &ChannelListener::enterLoop, Qt::QueuedConnection);
}

ChannelListener::~ChannelListener()
{
    leaveWatch();
    // A forked child's copy of the object is no listener, and the name is its parent's.
    if (!m_entrance->socket.isValid() || !m_entrance->socket.isOwn())
        return;
    if (const auto directory = ChannelDirectory::open(m_environment.root(), m_channel)) {
        directory->remove(m_name);
        directory->removeIfEmpty();
        if (m_announced)
            ChannelChanges::withdraw(directory->root(), *m_announced);
    }
}

bool ChannelListener::isListening() const
{
    const auto directory = ChannelDirectory::open(m_environment.root(), m_channel);
    return directory && m_entrance->socket.isValid() && m_entrance->socket.isOwn()
           && directory->fileOf(m_name) == m_file;
}

std::unique_ptr<ChannelListener::Entrance> ChannelListener::makeEntrance()
{
    auto entrance = std::make_unique<Entrance>(Entrance{posix::ForkLocalFd([this] { return openSocket(); }), nullptr});
    if (entrance->socket.isValid())
        m_announced = ChannelChanges::announce(ChannelDirectory::makeRoot(m_environment.root()).get());
    return entrance;
}

posix::UniqueFd ChannelListener::openSocket()
{
    const QByteArray root = m_environment.root();
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
        const auto directory = ChannelDirectory::make(root, m_channel);
        posix::UniqueFd socket = directory ? directory->listenAs(m_name) : posix::UniqueFd();
        if (!socket.isValid())
            continue;
        m_file = directory->fileOf(m_name);
        return socket;
    }
    return {};
}

void ChannelListener::enterLoop()
{
    if (m_watch)
        return;
    m_watch = &ListenerWatch::ofThisThread();
    m_watch->add(*this);
    startAccepting();
    watchFile();
    if (m_watchId == posix::DirectoryWatch::kUnwatched || !isListening())
        m_watch->checkSoon();
}

void ChannelListener::startAccepting()
{
    if (!m_entrance->socket.isValid() || m_entrance->acceptor)
        return;
    const auto accept = [this, entrance = m_entrance.get()] { return acceptNext(*entrance); };
    m_entrance->acceptor = std::make_unique<posix::Acceptor>(m_entrance->socket.get(), accept, this);
}

void ChannelListener::watchFile()
{
    const QByteArray root = m_environment.root();
    m_watch->files().remove(std::exchange(m_watchId, posix::DirectoryWatch::kUnwatched));
    m_watch->files().addPath(ChannelDirectory::path(root, m_channel));
    if (const auto directory = ChannelDirectory::open(root, m_channel))
        m_watchId = m_watch->files().addFile(directory->fd(), m_name);
}

void ChannelListener::leaveWatch()
{
    if (!m_watch)
        return;
    m_watch->files().remove(m_watchId);
    m_watch->remove(*this);
    forgetWatch();
}

void ChannelListener::forgetWatch()
{
    m_watch = nullptr;
    m_watchId = posix::DirectoryWatch::kUnwatched;
}

bool ChannelListener::restore()
{
    const bool isFound = isListening();
    auto entrance = isFound ? nullptr : makeEntrance();
    if (entrance && entrance->socket.isValid()) {
        while (m_oldEntrance && acceptNext(*m_oldEntrance)) {
        }
        m_oldEntrance = std::exchange(m_entrance, std::move(entrance));
        startAccepting();
    }
    if (!isFound || m_watchId == posix::DirectoryWatch::kUnwatched)
        watchFile();
    return m_watchId != posix::DirectoryWatch::kUnwatched;
}

bool ChannelListener::event(QEvent* event)
{
    if (event->type() == QEvent::ThreadChange) {
        leaveWatch();
        QMetaObject::invokeMethod(this, &ChannelListener::enterLoop, Qt::QueuedConnection);
    }
    return QObject::event(event);
}

/// False, with errno set, when there is none.
bool ChannelListener::acceptNext(Entrance& entrance)
{
    posix::ForkLocalFd connection([&] { return posix::acceptConnection(entrance.socket.get()); });
    if (!connection.isValid())
        return false;
    if (const std::optional<ucred> peer = posix::trustedPeerOf(connection.get()))
        new ChannelConnection(std::move(connection), peer->pid, m_receive, *this);
    return true;
}

} // namespace zyn
