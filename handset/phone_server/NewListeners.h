// Notices programs that begin to listen on a channel.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QObject>
#include <QtCore/QSet>
#include <QtCore/QTimer>

#include <chrono>

namespace zyn::handset {

/// Tells when a listener comes to a channel on which this process listens too. Costs nothing while none does.
class NewListeners : public QObject
{
    Q_OBJECT

public:
    /// Those that listen on @p channel already are not new.
    explicit NewListeners(const QByteArray& channel);

Q_SIGNALS:
    /// One or more listeners have come, the last of them at @p time at the latest: what was sent since has reached it.
    void came(std::chrono::steady_clock::time_point time);

private:
    void watch();
    bool look();

    const QByteArray m_channel;
    const QByteArray m_root;
    QFileSystemWatcher m_watcher;
    QSet<QByteArray> m_known;
    std::chrono::steady_clock::time_point m_lastCame;
    QTimer m_gathering; ///< runs while a program may make more of them
    QTimer m_retry;     ///< runs while the channel's directory cannot be watched
};

} // namespace zyn::handset
