// The socket under which a listener is found.
#include "platform/qcop/ChannelListener_p.h"

#include "platform/QCopChannel.h"
#include "platform/posix/UnixSocket_p.h"
#include "platform/qcop/ChannelConnection_p.h"
#include "platform/qcop/ListenerWatch_p.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QEvent>
#include <QtCore/QTimer>

#include <cerrno>
#include <chrono>
#include <utility>

namespace zyn {
namespace {

/// How long a process without a free descriptor waits before it accepts again.
constexpr std::chrono::milliseconds kAcceptPause{100};
/// How often a listener tries at once to register: others remove the channel's directory while it is empty.
constexpr int kAttempts = 8;

} // namespace

ChannelListener::ChannelListener(const QCString& name, QCopChannel& channel)
    : QObject(&channel)
    , m_environment(ChannelEnvironment::current())
    , m_channelName(name)
    , m_name(ChannelDirectory::newName())
    , m_channel(channel)
{
    const QByteArray root = m_environment.root();
    ChannelDirectory::clean(root);
    m_door = makeDoor();
    if (!m_door->socket.isValid())
        qWarning("QCopChannel: no listener on \"%s\" in \"%s\"", name.constData(), root.constData());
    if (QAbstractEventDispatcher::instance())
        enterLoop();
    else // messages wait in the socket until the thread has a loop
        QMetaObject::invokeMethod(this, &ChannelListener::enterLoop, Qt::QueuedConnection);
}

ChannelListener::~ChannelListener()
{
    leaveWatch();
    // A forked child's copy of the object is no listener, and the name is its parent's.
    if (!m_door->socket.isValid() || !m_door->socket.isOwn())
        return;
    if (const auto directory = ChannelDirectory::open(m_environment.root(), m_channelName)) {
        directory->remove(m_name);
        directory->removeIfEmpty();
    }
}

bool ChannelListener::isListening() const
{
    const auto directory = ChannelDirectory::open(m_environment.root(), m_channelName);
    return directory && m_door->socket.isValid() && m_door->socket.isOwn()
           && posix::entryId(directory->fd(), m_name) == m_file;
}

std::unique_ptr<ChannelListener::Door> ChannelListener::makeDoor()
{
    return std::make_unique<Door>(Door{posix::ForkLocalFd([this] { return openSocket(); }), nullptr});
}

posix::UniqueFd ChannelListener::openSocket()
{
    const QByteArray root = m_environment.root();
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const auto directory = ChannelDirectory::make(root, m_channelName);
        posix::UniqueFd socket = directory ? directory->listenAs(m_name) : posix::UniqueFd();
        if (!socket.isValid())
            continue;
        m_file = posix::entryId(directory->fd(), m_name);
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
    watchDoor();
    watchFile();
    if (m_watchId == posix::DirectoryWatch::kUnwatched || !isListening())
        m_watch->lookSoon();
}

void ChannelListener::watchDoor()
{
    if (!m_door->socket.isValid() || m_door->notifier)
        return;
    m_door->notifier = std::make_unique<QSocketNotifier>(m_door->socket.get(), QSocketNotifier::Read, this);
    connect(m_door->notifier.get(), &QSocketNotifier::activated, this, [this, door = m_door.get()] { accept(*door); });
}

void ChannelListener::watchFile()
{
    const QByteArray root = m_environment.root();
    m_watch->files().remove(std::exchange(m_watchId, posix::DirectoryWatch::kUnwatched));
    m_watch->files().addWay(ChannelDirectory::path(root, m_channelName));
    if (const auto directory = ChannelDirectory::open(root, m_channelName))
        m_watchId = m_watch->files().addFile(directory->fd(), m_name);
}

void ChannelListener::leaveWatch()
{
    if (!m_watch)
        return;
    m_watch->files().remove(std::exchange(m_watchId, posix::DirectoryWatch::kUnwatched));
    std::exchange(m_watch, nullptr)->remove(*this);
}

bool ChannelListener::look()
{
    const bool isFound = isListening();
    auto door = isFound ? nullptr : makeDoor();
    if (door && door->socket.isValid()) {
        while (m_oldDoor && acceptNext(*m_oldDoor)) {
        }
        m_oldDoor = std::exchange(m_door, std::move(door));
        watchDoor();
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

void ChannelListener::accept(Door& door)
{
    if (acceptNext(door) || errno == EAGAIN || errno == EWOULDBLOCK || errno == ECONNABORTED)
        return;
    // The socket stays readable: without a pause the loop would do nothing but fail to accept.
    QSocketNotifier* notifier = door.notifier.get();
    notifier->setEnabled(false);
    if (errno == EMFILE || errno == ENFILE || errno == ENOMEM || errno == ENOBUFS)
        QTimer::singleShot(kAcceptPause, notifier, [notifier] { notifier->setEnabled(true); });
}

/// False, and errno tells why, when there is none.
bool ChannelListener::acceptNext(Door& door)
{
    posix::ForkLocalFd connection([&] { return posix::acceptConnection(door.socket.get()); });
    if (!connection.isValid())
        return false;
    if (posix::isPeerTrusted(connection.get()))
        new ChannelConnection(std::move(connection), m_channel, this);
    return true;
}

} // namespace zyn
