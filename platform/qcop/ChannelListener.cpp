// The socket under which a listener is found.
#include "platform/qcop/ChannelListener_p.h"

#include "platform/QCopChannel.h"
#include "platform/posix/UnixSocket_p.h"
#include "platform/qcop/ChannelConnection_p.h"
#include "platform/qcop/ChannelDirectory_p.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QTimer>

#include <cerrno>
#include <chrono>

namespace {

/// How long a process without a free descriptor waits before it accepts again.
constexpr std::chrono::milliseconds kAcceptPause{100};

zyn::posix::UniqueFd listenOn(const QByteArray& root, const QCString& channel, const QByteArray& name)
{
    if (const auto directory = zyn::ChannelDirectory::make(root, channel))
        return directory->listenAs(name);
    return {};
}

} // namespace

namespace zyn {

ChannelListener::ChannelListener(const QCString& name, QCopChannel& channel)
    : QObject(&channel)
    , m_root(ChannelEnvironment::current().root())
    , m_channelName(name)
    , m_name(ChannelDirectory::newName())
    , m_channel(channel)
    , m_socket([this] { return listenOn(m_root, m_channelName, m_name); })
{
    if (!m_socket.isValid())
        qWarning("QCopChannel: no listener on \"%s\" in \"%s\"", name.constData(), m_root.constData());
    else if (QAbstractEventDispatcher::instance())
        watch();
    else // messages wait in the socket until the thread has a loop
        QMetaObject::invokeMethod(this, &ChannelListener::watch, Qt::QueuedConnection);
}

ChannelListener::~ChannelListener()
{
    // A forked child's copy of the object is no listener, and the name is its parent's.
    if (!m_socket.isValid() || !m_socket.isOwn())
        return;
    if (const auto directory = ChannelDirectory::open(m_root, m_channelName))
        directory->remove(m_name);
}

void ChannelListener::watch()
{
    m_notifier = std::make_unique<QSocketNotifier>(m_socket.get(), QSocketNotifier::Read, this);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &ChannelListener::accept);
}

void ChannelListener::accept()
{
    posix::ForkLocalFd connection([this] { return posix::acceptConnection(m_socket.get()); });
    if (connection.isValid()) {
        if (posix::isPeerTrusted(connection.get()))
            new ChannelConnection(std::move(connection), m_channel, this);
        return;
    }
    if (errno == EAGAIN || errno == EWOULDBLOCK || errno == ECONNABORTED)
        return;
    // The socket stays readable: without a pause the loop would do nothing but fail to accept.
    m_notifier->setEnabled(false);
    if (errno == EMFILE || errno == ENFILE || errno == ENOMEM || errno == ENOBUFS)
        QTimer::singleShot(kAcceptPause, m_notifier.get(), [this] { m_notifier->setEnabled(true); });
}

} // namespace zyn
