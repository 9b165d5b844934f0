// A client of a command socket that sends what it likes.
#pragma once

#include "platform/posix/UnixSocket_p.h"
#include "tests/support/Process.h"
#include "tests/support/ScriptedService.h"

#include <initializer_list>

/// Numbers of 32 bits as they travel on a command socket.
inline QByteArray words(std::initializer_list<int32_t> values)
{
    return QByteArray(reinterpret_cast<const char*>(std::data(values)), qsizetype(values.size() * 4));
}

inline QByteArray frame(int32_t code, const QByteArray& data = {})
{
    return ScriptedService::frame(code, data);
}

inline bool send(const zyn::posix::UniqueFd& fd, const QByteArray& bytes)
{
    const auto block = std::as_bytes(std::span(bytes.data(), size_t(bytes.size())));
    const auto deadline = zyn::posix::Clock::now() + std::chrono::milliseconds(role::kTimeout);
    return zyn::posix::sendAll(fd.get(), block, {}, deadline);
}

/// A connection to the service at @p path on which @p bytes were sent.
inline zyn::posix::UniqueFd connectAndSend(const QString& path, const QByteArray& bytes)
{
    zyn::posix::UniqueFd fd = zyn::posix::connectUnix(path.toLatin1(), std::chrono::milliseconds(role::kTimeout));
    send(fd, bytes);
    return fd;
}

/// Whether the service closes the connection.
inline bool isClosed(const zyn::posix::UniqueFd& fd)
{
    return zyn::posix::waitUntilClosed(fd.get(), zyn::posix::Clock::now() + std::chrono::milliseconds(role::kTimeout));
}
