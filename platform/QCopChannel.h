// Named message channels between the handset's processes.
#pragma once

#include "platform/QCString.h"
#include "platform/ZynExport.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QObject>

#include <memory>

namespace zyn {
class ChannelListener;
struct ChannelOrigin;
} // namespace zyn

/**
 * A listener on a channel. While it exists, it gets every message that any process of the user sends on the channel.
 *
 * Channel and message names are compared byte for byte and end at their first NUL. The processes find each other in the
 * directory that ZYN_QCOP_PATH names, else in "zynqcop" under XDG_RUNTIME_DIR, else in "/tmp/zynqcop-" and the user's
 * number. It must belong to the user alone (mode 0700, no symbolic link), and is made when missing. When one of these
 * variables is set and not empty, no other place is tried: a relative path, or an XDG_RUNTIME_DIR that is missing or
 * not the user's alone, is refused.
 *
 * When somebody removes a listener's socket or directory, the listener makes it again as soon as its event loop runs
 * and there is a place for it. Threads that have sent to it before still reach it meanwhile. A listener that could not
 * be set up is set up as soon as that is possible.
 *
 * In a child made by fork() without exec, the parent's listeners receive nothing, and messages that the parent has not
 * written yet are not sent. The child may send and listen itself.
 */
class ZYN_EXPORT QCopChannel : public QObject
{
    Q_OBJECT

public:
    /// Listens on @p channel: every message sent after the constructor has returned will be received, none sent before.
    /// A listener that cannot be set up says so on standard error, receives nothing, and tries again from its event
    /// loop. @p name becomes the object's name, and @p parent deletes it; both may be null.
    explicit QCopChannel(const QCString& channel, QObject* parent = nullptr, const char* name = nullptr);
    ~QCopChannel() override;

    /// The channel's name.
    QCString channel() const { return m_channel; }
    /// Whether senders find the listener now.
    bool isListening() const;

    /**
     * Sends a message without waiting for any listener, from any thread.
     *
     * The messages of one thread reach a listener in the order in which they were sent. This includes messages from
     * destructors of the thread's last objects and, in the thread that ends the process, of static objects. Each
     * message is written at once, with one exception: in an event loop of Qt's GLib dispatcher, the messages that
     * follow the first 16 of a turn on a channel are written when the turn ends. A listener for which 16 MiB wait in
     * this thread's memory misses messages that do not fit; it still gets, in order, the messages accepted before.
     *
     * Messages that a listener has not read yet follow from the thread's event loop, or with the thread's later
     * messages on any channel. A thread that ends, and the thread that calls exit(), wait for the listeners at most 2
     * seconds. Messages that other threads have pending at exit are lost, as are all pending ones after _exit() or a
     * signal.
     *
     * @param channel  the channel's name
     * @param message  the message's name
     * @param data     the payload, at most 16 MiB with the name
     * @return true when every listener of the channel, if there is any, got the message or will get it; false
     * for an empty name, a message that is too large, a directory that may not be used, or a listener that misses it
     */
    static bool send(const QCString& channel, const QCString& message, const QByteArray& data);
    /// Sends a message with an empty payload.
    static bool send(const QCString& channel, const QCString& message);

    /// The channels that somebody listens on, sorted, without those of very long names. One whose last listener was
    /// killed stays until somebody else comes.
    static QList<QCString> channels();

    /// Called for each message, with its name and payload, in the object's thread, from its event loop. Emits
    /// received(). It may destroy the object.
    virtual void receive(const QCString& message, const QByteArray& data);

Q_SIGNALS:
    /// A message has come; not emitted when a class overrides receive() without calling it.
    void received(const QCString& message, const QByteArray& data);

private:
    friend struct zyn::ChannelOrigin;

    QCString m_channel;
    std::unique_ptr<zyn::ChannelListener> m_listener;
};
