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
}

/**
 * A listener on a channel: while it exists it is handed every message that any process of the user sends on it.
 *
 * Channel and message names are compared byte for byte and end at their first NUL. The processes find each other in the
 * directory that ZYN_QCOP_PATH names, else in "zynqcop" under XDG_RUNTIME_DIR, else in "/tmp/zynqcop-" and the user's
 * number; it must belong to the user alone (mode 0700, no symbolic link), and is made when missing. A variable that is
 * set and not empty is binding: a relative path, or an XDG_RUNTIME_DIR that is missing or not the user's alone, is
 * refused, with no other place instead.
 *
 * A listener whose socket or directory somebody removes makes them again, as soon as its event loop runs and there is a
 * place for them, and one that could not be set up is set up when it can be. Who has sent to it before reaches it
 * meanwhile, too.
 *
 * A child made by fork() without exec has its parent's listeners only as objects that receive nothing, writes none of
 * what its parent sent, and may send and listen itself.
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
     * One thread's messages reach a listener in the order sent, those of its last objects' destructors too, and of
     * static ones in the thread that ends the process. Each message is written at once; but within an event loop of
     * Qt's GLib dispatcher, what follows the first 16 messages of a turn on a channel is written when the turn ends. A
     * listener for which 16 MiB wait in this thread's memory misses what does not fit; it still gets, in order, what
     * was accepted before.
     *
     * What listeners have not read yet follows from the thread's event loop, or with its later messages on any channel.
     * A thread that ends, and in exit() the thread that calls it, waits for them at most 2 seconds; what other threads
     * still have pending at exit is lost, as everything is with _exit() or a signal.
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
    QCString m_channel;
    std::unique_ptr<zyn::ChannelListener> m_listener;
};
