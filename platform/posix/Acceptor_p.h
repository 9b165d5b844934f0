// Accepts the connections to a listening socket as they come.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <functional>

namespace zyn::posix {

/// Has a connection accepted whenever one waits. While the process is short of descriptors or memory, clients wait in
/// the backlog for a moment: without a pause the loop would do nothing but fail to accept.
class Acceptor : public QObject
{
public:
    /// Calls @p accept when a connection waits at @p listener: false, with errno set, when it could not be accepted.
    Acceptor(int listener, std::function<bool()> accept, QObject* parent = nullptr);

    /// Whether connections are accepted, as they are at first. True also ends a pause.
    void setEnabled(bool isEnabled);

private:
    void acceptNext();

    const std::function<bool()> m_accept;
    QSocketNotifier m_notifier;
    QTimer m_pause;
};

} // namespace zyn::posix
