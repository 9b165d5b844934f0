// Unix-domain stream sockets: connecting, and moving whole blocks with a limit on the time.
#include "platform/posix/UnixSocket_p.h"

#include "platform/posix/PathAt_p.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zyn::posix {
namespace {

using namespace std::chrono;

timeval toTimeval(milliseconds time)
{
    timeval value = {};
    value.tv_sec = static_cast<decltype(value.tv_sec)>(time.count() / 1000);
    value.tv_usec = static_cast<decltype(value.tv_usec)>(time.count() % 1000 * 1000);
    return value;
}

/// Whether a transfer that failed with errno may succeed later. A kernel short of memory is one that is full.
bool isPassing()
{
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == ENOBUFS || errno == ENOMEM;
}

bool waitFor(int fd, short events, Clock::time_point deadline)
{
    // poll() would skip a negative descriptor and only wait.
    while (fd >= 0) {
        const auto left = ceil<milliseconds>(deadline - Clock::now()).count();
        pollfd entry = {fd, events, 0};
        const int ready = ::poll(&entry, 1, static_cast<int>(std::clamp<decltype(left)>(left, 0, 60'000)));
        if (ready > 0)
            return true;
        if ((ready < 0 && errno != EINTR) || Clock::now() >= deadline)
            return false;
    }
    return false;
}

/// The same after a transfer that moved nothing. The kernel may call a socket ready, and have no memory for it each
/// time.
bool waitAgainFor(int fd, short events, Clock::time_point deadline)
{
    return Clock::now() < deadline && waitFor(fd, events, deadline);
}

} // namespace

iovec toIovec(std::span<const std::byte> bytes)
{
    return {const_cast<std::byte*>(bytes.data()), bytes.size()};
}

UnixAddress unixAddress(const QByteArray& path)
{
    UnixAddress result = {};
    const size_t length = static_cast<size_t>(std::min(path.size(), kUnixPathLimit));
    result.address.sun_family = AF_UNIX;
    std::memcpy(result.address.sun_path, path.constData(), length);
    result.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + length);
    return result;
}

UniqueFd unixSocket(int flags)
{
    return UniqueFd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
}

void limitSends(int fd, milliseconds timeout)
{
    const timeval limit = toTimeval(timeout);
    ::setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

void setBufferSizes(int fd, int toSend, int received)
{
    ::setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &toSend, sizeof toSend);
    ::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &received, sizeof received);
}

void dropOnClose(int fd)
{
    const linger atOnce = {1, 0};
    ::setsockopt(fd, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

UniqueFd connectUnix(const QByteArray& path, milliseconds timeout)
{
    UniqueFd fd = unixSocket();
    if (!fd.isValid() || path.size() > kUnixPathLimit)
        return {};
    limitSends(fd.get(), timeout);
    const UnixAddress address = unixAddress(path);
    const auto deadline = Clock::now() + timeout;
    while (::connect(fd.get(), address.get(), address.length) != 0) {
        // Each call waits for the whole timeout again: signals that keep coming must not make it endless.
        if (errno != EINTR || Clock::now() >= deadline)
            return {};
    }
    return fd;
}

UniqueFd connectUnixAtOnce(const QByteArray& path)
{
    UniqueFd fd = unixSocket(SOCK_NONBLOCK);
    const UnixAddress address = unixAddress(path);
    if (fd.isValid() && ::connect(fd.get(), address.get(), address.length) != 0) {
        const int error = errno;
        fd.reset();
        errno = error;
    }
    return fd;
}

bool isServed(const QByteArray& path)
{
    return connectUnixAtOnce(path).isValid() || errno == EAGAIN;
}

bool isBound(const QByteArray& path)
{
    // The kernel finds the socket first, and then refuses one of another type.
    const UniqueFd fd(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const UnixAddress address = unixAddress(path);
    return !fd.isValid() || ::connect(fd.get(), address.get(), address.length) == 0
           || (errno != ECONNREFUSED && errno != ENOENT);
}

bool isServedByTrusted(const QByteArray& path)
{
    const UniqueFd connection = connectUnixAtOnce(path);
    if (connection.isValid())
        return isPeerTrusted(connection.get());
    const std::optional<uid_t> owner = errno == EAGAIN ? ownerOf(path) : std::nullopt;
    return owner && isTrustedUser(*owner);
}

UniqueFd listenUnix(const QByteArray& path, mode_t mode)
{
    UniqueFd fd = unixSocket(SOCK_NONBLOCK);
    const UnixAddress address = unixAddress(path);
    // The socket's file gets the mode that the socket has when it is bound: it is never open to more users than meant.
    if (!fd.isValid() || ::fchmod(fd.get(), mode) != 0)
        return {};
    if (::bind(fd.get(), address.get(), address.length) != 0 || ::listen(fd.get(), SOMAXCONN) != 0)
        return {};
    return fd;
}

std::optional<FileId> ownSocketId(const QByteArray& path)
{
    struct stat status = {};
    const bool isOwn =
        ::lstat(path.constData(), &status) == 0 && S_ISSOCK(status.st_mode) && status.st_uid == currentUser();
    return isOwn ? std::optional(FileId{status.st_dev, status.st_ino}) : std::nullopt;
}

UniqueFd acceptConnection(int listener)
{
    return UniqueFd(retry([&] { return ::accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC); }));
}

std::optional<ucred> peerOf(int fd)
{
    ucred peer = {};
    socklen_t length = sizeof peer;
    if (::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &length) != 0 || length != sizeof peer)
        return std::nullopt;
    return peer;
}

std::optional<ucred> trustedPeerOf(int fd)
{
    const std::optional<ucred> peer = peerOf(fd);
    return peer && isTrustedUser(peer->uid) ? peer : std::nullopt;
}

bool isPeerTrusted(int fd)
{
    return trustedPeerOf(fd).has_value();
}

bool waitUntilReadable(int fd, Clock::time_point deadline)
{
    return waitFor(fd, POLLIN, deadline);
}

bool waitUntilWritable(int fd, Clock::time_point deadline)
{
    return waitFor(fd, POLLOUT, deadline);
}

bool waitUntilClosed(int fd, Clock::time_point deadline)
{
    return waitFor(fd, 0, deadline);
}

void waitUntilAnyWritable(std::span<const int> descriptors, milliseconds timeout)
{
    std::vector<pollfd> waiting;
    for (const int fd : descriptors)
        waiting.push_back({fd, POLLOUT, 0});
    ::poll(waiting.data(), waiting.size(), static_cast<int>(timeout.count()));
}

ssize_t sendSome(int fd, std::span<iovec> blocks)
{
    msghdr message = {};
    message.msg_iov = blocks.data();
    message.msg_iovlen = blocks.size();
    const ssize_t n = retry([&] { return ::sendmsg(fd, &message, MSG_NOSIGNAL | MSG_DONTWAIT); });
    return n < 0 && isPassing() ? 0 : n;
}

ssize_t sendSome(int fd, std::span<const std::byte> bytes)
{
    const ssize_t n = retry([&] { return ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT); });
    return n < 0 && isPassing() ? 0 : n;
}

void sendUnsent(int fd, QByteArray& unsent)
{
    while (!unsent.isEmpty()) {
        const auto size = static_cast<size_t>(unsent.size());
        const ssize_t n = sendSome(fd, std::as_bytes(std::span(unsent.constData(), size)));
        if (n == 0)
            return;
        unsent.remove(0, n < 0 ? unsent.size() : n);
    }
}

bool isAllReceived(int fd)
{
    int unread = 0;
    return ::ioctl(fd, SIOCOUTQ, &unread) != 0 || unread == 0;
}

ssize_t receiveSome(int fd, std::span<std::byte> buffer)
{
    const ssize_t n = retry([&] { return ::recv(fd, buffer.data(), buffer.size(), MSG_DONTWAIT); });
    return n < 0 && !isPassing() ? 0 : n;
}

bool sendAll(int fd, std::span<const std::byte> first, std::span<const std::byte> second, Clock::time_point deadline)
{
    while (!first.empty() || !second.empty()) {
        std::array<iovec, 2> blocks{toIovec(first), toIovec(second)};
        const ssize_t n = sendSome(fd, blocks);
        if (n < 0 || (n == 0 && !waitAgainFor(fd, POLLOUT, deadline)))
            return false;
        const size_t fromFirst = std::min(first.size(), static_cast<size_t>(n));
        first = first.subspan(fromFirst);
        second = second.subspan(static_cast<size_t>(n) - fromFirst);
    }
    return true;
}

void shutDown(int fd)
{
    ::shutdown(fd, SHUT_RDWR);
}

void endSending(int fd)
{
    ::shutdown(fd, SHUT_WR);
}

Delivery deliveryOn(int fd)
{
    std::byte answer{};
    const ssize_t n = retry([&] { return ::recv(fd, &answer, 1, MSG_DONTWAIT); });
    if (n >= 0)
        return Delivery::Read;
    // A peer that closes, or dies, with something unread resets the connection.
    if (!isPassing())
        return Delivery::Lost;
    int unread = 0;
    return ::ioctl(fd, SIOCOUTQ, &unread) == 0 && unread == 0 ? Delivery::Read : Delivery::Pending;
}

bool receiveAll(int fd, std::span<std::byte> buffer, Clock::time_point deadline)
{
    while (!buffer.empty()) {
        const ssize_t n = receiveSome(fd, buffer);
        if (n == 0 || (n < 0 && !waitAgainFor(fd, POLLIN, deadline)))
            return false;
        buffer = buffer.subspan(static_cast<size_t>(std::max<ssize_t>(n, 0)));
    }
    return true;
}

} // namespace zyn::posix
