// Notices programs that begin to listen on a channel.
#include "handset/phone_server/NewListeners.h"

#include "platform/qcop/ChannelDirectory_p.h"

#include <QtCore/QFile>

namespace zyn::handset {
namespace {

/// A program that begins makes its listeners one right after the other: they get one answer.
constexpr std::chrono::milliseconds kGatherTime{20};
/// The channel's directory is made again by this process's own listener when somebody has removed it.
constexpr std::chrono::seconds kRetryTime{1};

} // namespace

NewListeners::NewListeners(const QByteArray& channel)
    : m_channel(channel)
    , m_root(ChannelEnvironment::current().root())
{
    m_gathering.setSingleShot(true);
    m_gathering.callOnTimeout(this, [this] { Q_EMIT came(m_lastCame); });
    m_retry.setSingleShot(true);
    m_retry.callOnTimeout(this, &NewListeners::watch);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &NewListeners::watch);
    watch();
    m_gathering.stop();
}

/// Looks after the directory is watched: nobody can come in between.
void NewListeners::watch()
{
    const QString path = QFile::decodeName(ChannelDirectory::path(m_root, m_channel));
    const bool isWatched = m_watcher.directories().contains(path) || m_watcher.addPath(path);
    if (look()) {
        m_lastCame = std::chrono::steady_clock::now();
        if (!m_gathering.isActive())
            m_gathering.start(kGatherTime);
    }
    if (!isWatched)
        m_retry.start(kRetryTime);
}

/// Whether there is a listener that has not been there before.
bool NewListeners::look()
{
    QSet<QByteArray> present;
    if (const auto directory = ChannelDirectory::open(m_root, m_channel)) {
        for (const QByteArray& name : directory->listeners().value_or(QList<QByteArray>())) {
            if (directory->isReady(name))
                present += name;
        }
    }
    const bool isAnyNew = !m_known.contains(present);
    m_known = present;
    return isAnyNew;
}

} // namespace zyn::handset
