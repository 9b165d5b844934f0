// Notices the end of a service.
#include "tools/commands/ServiceWatch.h"

#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QObject>

#include <sys/syscall.h>
#include <unistd.h>

namespace zyn::tool {
namespace {

/// The process that serves at @p path, as a descriptor that becomes readable when it ends.
posix::UniqueFd serverOf(const QByteArray& path)
{
    const posix::UniqueFd connection = posix::connectUnixAtOnce(path);
    const auto peer = posix::trustedPeerOf(connection.get());
    return peer && peer->pid > 0 ? posix::UniqueFd(static_cast<int>(::syscall(SYS_pidfd_open, peer->pid, 0)))
                                 : posix::UniqueFd();
}

} // namespace

void ServiceWatch::start()
{
    if (m_end && m_end->isEnabled())
        return;
    m_end.reset();
    m_process = serverOf(m_path);
    if (!m_process.isValid())
        return;
    m_end = std::make_unique<QSocketNotifier>(m_process.get(), QSocketNotifier::Read);
    QObject::connect(m_end.get(), &QSocketNotifier::activated, m_end.get(), [this] {
        m_end->setEnabled(false);
        m_ended();
    });
}

} // namespace zyn::tool
