// The other end of a command socket, played by a thread that follows a script.
#pragma once

#include "platform/CommandFrame_p.h"
#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>

#include <atomic>
#include <thread>

#include <sys/socket.h>

/// Listens on a path, takes one connection, reads the greeting and one command, sends the scripted bytes and closes.
class ScriptedService
{
public:
    /// What it does when it has answered.
    enum class End {
        Close,
        ReadOn, ///< reads whatever the client sends until that closes
    };

    /// @param frames  how many frames to read before answering
    ScriptedService(const QByteArray& path, const QByteArray& answer, int frames = 2, End end = End::Close)
        : m_path(path)
        , m_answer(answer)
        , m_frames(frames)
        , m_end(end)
        , m_listener(zyn::posix::unixSocket())
    {
        const zyn::posix::UnixAddress address = zyn::posix::unixAddress(path);
        QFile::remove(QFile::decodeName(path));
        if (::bind(m_listener.get(), address.get(), address.length) != 0 || ::listen(m_listener.get(), 1) != 0)
            qFatal("cannot listen on %s", path.constData());
        m_thread = std::thread([this] {
            serve();
            m_isDone = true;
        });
    }
    ScriptedService(const ScriptedService&) = delete;
    ScriptedService& operator=(const ScriptedService&) = delete;
    ~ScriptedService()
    {
        if (m_thread.joinable())
            m_thread.join();
        QFile::remove(QFile::decodeName(m_path));
    }

    /// All bytes that the client sent, once it has closed or been answered.
    QByteArray received()
    {
        m_thread.join();
        return m_received;
    }

    /// Whether it has closed its end of the connection.
    bool isDone() const { return m_isDone; }

    static QByteArray frame(int32_t code, const QByteArray& data = {})
    {
        const auto header = zyn::CommandFrameHeader{code, static_cast<int32_t>(data.size())}.encode();
        return QByteArray(reinterpret_cast<const char*>(header.data()), qsizetype(header.size())) + data;
    }

private:
    using Clock = zyn::posix::Clock;

    static Clock::time_point soon() { return Clock::now() + std::chrono::seconds(10); }

    void serve()
    {
        if (!zyn::posix::waitUntilReadable(m_listener.get(), soon()))
            return;
        const zyn::posix::UniqueFd client(::accept(m_listener.get(), nullptr, nullptr));
        for (int i = 0; i < m_frames; ++i) {
            zyn::CommandFrameHeader::Bytes bytes;
            if (!zyn::posix::receiveAll(client.get(), bytes, soon()))
                return;
            const auto header = zyn::CommandFrameHeader::decode(bytes);
            QByteArray data(header ? header->dataLength : 0, '\0');
            if (!zyn::posix::receiveAll(client.get(),
                                        std::as_writable_bytes(std::span(data.data(), size_t(data.size()))), soon()))
                return;
            m_received += QByteArray(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size())) + data;
        }
        zyn::posix::sendAll(client.get(), std::as_bytes(std::span(m_answer.constData(), size_t(m_answer.size()))), {},
                            soon());
        std::byte byte{};
        while (m_end == End::ReadOn && zyn::posix::receiveAll(client.get(), std::span(&byte, 1), soon()))
            m_received += static_cast<char>(byte);
    }

    QByteArray m_path;
    QByteArray m_answer;
    int m_frames;
    End m_end;
    zyn::posix::UniqueFd m_listener;
    std::atomic<bool> m_isDone = false;
    QByteArray m_received;
    std::thread m_thread;
};
