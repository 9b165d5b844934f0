// Accepts the connections to a listening socket as they come.
#include "platform/posix/Acceptor_p.h"

#include <cerrno>
#include <chrono>
#include <utility>

namespace zyn::posix {
namespace {

constexpr std::chrono::milliseconds kAcceptPause{100};

/// Whether no other connection can follow: the socket was shut down, or this is a forked child, which has no socket.
bool isFinal(int error)
{
    return error == EINVAL || error == ENOTSOCK || error == EBADF;
}

} // namespace

Acceptor::Acceptor(int listener, std::function<bool()> accept, QObject* parent)
    : QObject(parent)
    , m_accept(std::move(accept))
    , m_notifier(listener, QSocketNotifier::Read, this)
    , m_pause(this)
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(kAcceptPause);
    m_pause.callOnTimeout(this, [this] { setEnabled(true); });
    connect(&m_notifier, &QSocketNotifier::activated, this, &Acceptor::acceptNext);
}

void Acceptor::setEnabled(bool isEnabled)
{
    m_pause.stop();
    m_notifier.setEnabled(isEnabled);
}

void Acceptor::acceptNext()
{
    if (m_accept() || errno == EAGAIN || errno == EWOULDBLOCK || errno == ECONNABORTED)
        return;
    m_notifier.setEnabled(false);
    if (!isFinal(errno))
        m_pause.start();
}

} // namespace zyn::posix
