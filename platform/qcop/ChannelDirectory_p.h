// The directory of a channel: senders find its listeners there.
#pragma once

#include "platform/posix/File_p.h"

#include <QtCore/QList>

#include <optional>

#include <sys/types.h>

namespace zyn {

/// What decides where the channels of this process are.
struct ChannelEnvironment
{
    QByteArray channelPath; ///< ZYN_QCOP_PATH
    QByteArray runtimePath; ///< XDG_RUNTIME_DIR; empty where it does not count

    static ChannelEnvironment current();
    bool operator==(const ChannelEnvironment&) const = default;

    /// The directory that ZYN_QCOP_PATH names, else "zynqcop" in XDG_RUNTIME_DIR, else one named after the user in
    /// /tmp. A set variable is binding, so that no two processes with the same environment ever differ: empty when it
    /// is not absolute, or while the runtime directory is missing or not the user's alone.
    QByteArray root() const;
};

/**
 * The open directory of one channel: one socket for each of its listeners.
 *
 * A name always means the same listener, or a dead one. Sockets are reached through the open directory, which makes
 * their paths fit a socket's address however long the directory's path is, and keeps them in the directory that was
 * checked, whatever becomes of the path. They are bound by the path itself where it fits, because programs that clean
 * up look for it among the system's sockets. One that does not listen yet has mode 0200, then 0600.
 */
class ChannelDirectory
{
public:
    /// Opens the directory of @p channel under @p root; nothing when either is missing, with errno ENOENT, or may not
    /// be used.
    static std::optional<ChannelDirectory> open(const QByteArray& root, const QByteArray& channel);
    /// The same under the open directory @p root.
    static std::optional<ChannelDirectory> open(posix::UniqueFd root, const QByteArray& channel);
    /// The same; what is missing is made first.
    static std::optional<ChannelDirectory> make(const QByteArray& root, const QByteArray& channel);
    /// The directory in which the channels' are, open and made when missing; none when it may not be used.
    static posix::UniqueFd makeRoot(const QByteArray& root);
    /// The channels that have a directory, sorted, without those of names too long for a directory's.
    static QList<QByteArray> channels(const QByteArray& root);
    /// Removes what listeners under @p root have left that were killed: their sockets, and directories without any.
    /// Does so at most once a second in a process, so that thousands of listeners do not look at each other.
    static void clean(const QByteArray& root);

    /// Where the directory of @p channel under @p root is, or would be.
    static QByteArray path(const QByteArray& root, const QByteArray& channel);

    int fd() const { return m_fd.get(); }
    /// The directory in which it is.
    int root() const { return m_root.get(); }

    /// The names of the listeners, living or dead; nothing when they could not all be read.
    std::optional<QList<QByteArray>> listeners() const;
    /// Whether the listener @p name, living or dead, has begun to listen.
    bool isReady(const QByteArray& name) const;
    /// A listening socket that senders find as @p name from now on; none when it could not be made.
    posix::UniqueFd listenAs(const QByteArray& name) const;
    /// A connection to the listener @p name, made without waiting. On failure errno is the reason: ECONNREFUSED when it
    /// is dead or does not listen yet, ENOENT when it has gone, EAGAIN when too many connections wait to be accepted.
    posix::UniqueFd connectTo(const QByteArray& name) const;
    /// Removes the socket of a listener that is certainly dead; whether it was.
    bool removeIfDead(const QByteArray& name) const;
    void remove(const QByteArray& name) const;
    /// The socket's file of the listener @p name; nothing when there is none.
    std::optional<posix::FileId> fileOf(const QByteArray& name) const;
    /// Removes the directory itself, unless anything is in it.
    void removeIfEmpty() const;

    /// A new listener's name.
    static QByteArray newName();
    /// The process whose listener has or had the name @p name; 0 when no listener can have it.
    static pid_t owner(const QByteArray& name);

private:
    ChannelDirectory(posix::UniqueFd root, QByteArray name);
    static std::optional<ChannelDirectory> openEntry(posix::UniqueFd root, QByteArray name);

    posix::UniqueFd m_root;
    QByteArray m_name; ///< its file name in the root
    posix::UniqueFd m_fd;
};

} // namespace zyn
