// Unix-domain stream sockets: connecting, and moving whole blocks with a limit on the time.
#pragma once

#include "platform/posix/File_p.h"
#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>

#include <sys/socket.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <sys/un.h>

namespace zyn::posix {

using Clock = std::chrono::steady_clock;

/// A Unix socket's address: the length counts the family and the path's characters, without the NUL.
struct UnixAddress
{
    sockaddr_un address;
    socklen_t length;

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address); }
};

/// The longest path that an address holds with its NUL.
inline constexpr qsizetype kUnixPathLimit = sizeof(sockaddr_un::sun_path) - 1;

/// The address of @p path, of which at most kUnixPathLimit characters count.
UnixAddress unixAddress(const QByteArray& path);

/// A new stream socket, closed on exec; @p flags may add SOCK_NONBLOCK.
UniqueFd unixSocket(int flags = 0);

/// Limits to @p timeout how long the socket waits to connect, and to send.
void limitSends(int fd, std::chrono::milliseconds timeout);

/// How many bytes the kernel keeps for the socket in each direction. A kernel that refuses changes no result.
void setBufferSizes(int fd, int toSend, int received);

/// The socket's close waits for nothing, and drops what was not received.
void dropOnClose(int fd);

/**
 * Connects to the stream socket at @p path.
 *
 * A server whose full backlog keeps the connection waiting is given up after @p timeout. The socket keeps that timeout
 * for its sends. A path above kUnixPathLimit names no server.
 */
UniqueFd connectUnix(const QByteArray& path, std::chrono::milliseconds timeout);

/// Connects without waiting. On failure errno is the reason: EAGAIN for a server whose backlog is full.
UniqueFd connectUnixAtOnce(const QByteArray& path);

/// Whether a process listens at @p path, even one too busy to accept a connection. Does not wait.
bool isServed(const QByteArray& path);

/// The same of this user's and root's processes. Where a busy one cannot be asked, the socket's owner decides.
bool isServedByTrusted(const QByteArray& path);

/// Whether the socket at @p path is one of a process that lives, though it may not listen yet. Its process notices
/// nothing. False only when there is nobody: not for want of a descriptor or of a right.
bool isBound(const QByteArray& path);

/// Listens at @p path, which must not exist, with the permissions @p mode and the longest backlog there is. Accepting
/// from it never waits.
UniqueFd listenUnix(const QByteArray& path, mode_t mode);

/// The file of the socket at @p path; nothing if another user has put something in its place.
std::optional<FileId> ownSocketId(const QByteArray& path);

/// The next connection that waits at @p listener, non-blocking; none when none waits or errno names a shortage.
UniqueFd acceptConnection(int listener);

/// The process at the other end of a connection; nothing when the kernel does not know.
std::optional<ucred> peerOf(int fd);

/// The process at the other end if it runs as this process's user or as root.
std::optional<ucred> trustedPeerOf(int fd);
/// Whether there is such a process.
bool isPeerTrusted(int fd);

/// @{ Waits until @p fd can be read from, can be written to, or is closed by its peer, which ends the first two as
/// well; false when @p deadline has passed first, and at once for a negative descriptor.
bool waitUntilReadable(int fd, Clock::time_point deadline);
bool waitUntilWritable(int fd, Clock::time_point deadline);
bool waitUntilClosed(int fd, Clock::time_point deadline);
/// @}

/// Waits until one of @p descriptors can be written to, at most for @p timeout. Negative ones are passed over.
void waitUntilAnyWritable(std::span<const int> descriptors, std::chrono::milliseconds timeout);

/// The block as a part of a transfer, which only reads it.
iovec toIovec(std::span<const std::byte> bytes);

/// Sends as much of @p blocks as the socket takes at once: the number of bytes, 0 when it is full, -1 when the
/// connection is lost.
ssize_t sendSome(int fd, std::span<iovec> blocks);
ssize_t sendSome(int fd, std::span<const std::byte> bytes);

/// Sends as much of @p unsent as the socket takes at once, and removes that; all of it when the connection is lost,
/// which whoever reads from it notices.
void sendUnsent(int fd, QByteArray& unsent);

/// Whether the peer has received all that was sent over @p fd, or never will.
bool isAllReceived(int fd);

/// Receives what has come, at most @p buffer: the number of bytes, 0 at the connection's end, -1 when nothing is there.
ssize_t receiveSome(int fd, std::span<std::byte> buffer);

/// Sends the two blocks one after the other, whole, before @p deadline. A closed peer is a failure, never a signal.
bool sendAll(int fd, std::span<const std::byte> first, std::span<const std::byte> second, Clock::time_point deadline);

/// Ends both directions of a connection whose descriptor stays open. What has arrived can still be read, then the end.
void shutDown(int fd);

/// Ends the sending direction: the peer reads what was sent, then the end.
void endSending(int fd);

/// What has become of what was sent on a connection.
enum class Delivery {
    Pending, ///< the peer has yet to read some of it
    Read,    ///< the peer has read all of it
    Lost,    ///< the connection ended before the peer had read it
};

/// How far a peer that has nothing to say has read. Its end, or anything it says, makes @p fd readable.
Delivery deliveryOn(int fd);

/// Fills @p buffer before @p deadline; false when the peer closes or stays silent first.
bool receiveAll(int fd, std::span<std::byte> buffer, Clock::time_point deadline);

} // namespace zyn::posix
