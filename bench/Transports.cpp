// Our channels, and bare sockets: a write for each message, or one for as many as fit.
#include "bench/Transports.h"

#include "bench/Bench.h"
#include "bench/Child.h"
#include "platform/QCopChannel.h"

#include <QtCore/QCoreApplication>

#include <array>
#include <cstdlib>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace bench {
namespace {

constexpr char kTransportChannel[] = "/ZYN/bench";
constexpr char kMessage[] = "message";

constexpr size_t kGatheredFrames = 65'536 / kFrameSize;

void listenOn(const char* name, Ear& ear)
{
    const QCopChannel channel(name);
    QObject::connect(&channel, &QCopChannel::received, &channel, [&ear] { ear.hear(); });
    answer("ready");
    QCoreApplication::exec();
}

void listenOnChannel(Ear& ear)
{
    listenOn(kTransportChannel, ear);
}

void listenToPhone(Ear& ear)
{
    listenOn("/ZYN/phone", ear);
}

class ChannelTransport : public Transport
{
public:
    void send() override { require(QCopChannel::send(kTransportChannel, kMessage, m_payload), "send()"); }

private:
    QByteArray m_payload{kPayload};
};

sockaddr_un addressOf(const std::string& path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    require(path.size() < sizeof address.sun_path, "the length of a socket's path");
    path.copy(address.sun_path, path.size());
    return address;
}

/// Hears the frames in the first @p size bytes one by one, each of which begins with its size; how many bytes of the
/// next one are at the start of @p buffer then.
size_t hearFrames(Ear& ear, std::array<char, 65'536>& buffer, size_t size)
{
    size_t at = 0;
    for (uint32_t frame = 0; at + sizeof frame <= size; at += frame) {
        std::memcpy(&frame, &buffer[at], sizeof frame);
        require(frame == kFrameSize, "a bare frame");
        if (at + frame > size)
            break;
        ear.hear();
    }
    std::memmove(buffer.data(), &buffer[at], size - at);
    return size - at;
}

void listenOnSocket(Ear& ear)
{
    const sockaddr_un address = addressOf(socketPath(std::to_string(ear.index())));
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const auto* const plain = reinterpret_cast<const sockaddr*>(&address);
    require(::bind(listener, plain, sizeof address) == 0 && ::listen(listener, 1) == 0, "a bare socket");
    answer("ready");
    std::array<char, 65'536> buffer = {};
    for (;;) {
        const int connection = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        size_t size = 0;
        for (ssize_t length = 0; (length = ::read(connection, &buffer[size], buffer.size() - size)) > 0;)
            size = hearFrames(ear, buffer, size + static_cast<size_t>(length));
        ::close(connection);
    }
}

class SocketTransport : public Transport
{
public:
    SocketTransport(int listeners, size_t frames)
        : m_most(frames * kFrameSize)
    {
        m_buffer.reserve(m_most);
        for (int i = 0; i < listeners; ++i) {
            const sockaddr_un address = addressOf(socketPath(std::to_string(i)));
            m_connections.push_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
            require(::connect(m_connections.back(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
                    "a bare connection");
        }
    }
    void send() override
    {
        std::array<char, kFrameSize> frame = {};
        const auto size = uint32_t{kFrameSize};
        std::memcpy(frame.data(), &size, sizeof size);
        std::memcpy(&frame[kFrameSize - sizeof kPayload], kPayload, sizeof kPayload);
        m_buffer.append(frame.data(), frame.size());
        if (m_buffer.size() == m_most)
            flush();
    }
    void flush() override
    {
        for (const int connection : m_connections) {
            require(::send(connection, m_buffer.data(), m_buffer.size(), MSG_NOSIGNAL)
                        == static_cast<ssize_t>(m_buffer.size()),
                    "a bare write");
        }
        m_buffer.clear();
    }

private:
    size_t m_most;
    std::string m_buffer;
    std::vector<int> m_connections;
};

} // namespace

void Ear::hear()
{
    if (++m_heard < m_board.expected.load(std::memory_order_acquire))
        return;
    m_heard = 0;
    m_board.heardAt[m_index].store(now(), std::memory_order_release);
    require(::write(m_done, "", 1) == 1, "a listener's word");
}

std::string socketPath(const std::string& name)
{
    const char* const directory = std::getenv("ZYN_QCOP_PATH");
    require(directory, "ZYN_QCOP_PATH");
    return std::string(directory ? directory : "") + '/' + name;
}

std::vector<Kind> ourTransports()
{
    return {
        {.name = "channel",
         .listen = listenOnChannel,
         .connect = [](int) -> std::unique_ptr<Transport> { return std::make_unique<ChannelTransport>(); },
         .shown = kOurs},
        {.name = "phone", .listen = listenToPhone, .connect = nullptr}, // to hear programs that send only there
        {.name = "socket",
         .listen = listenOnSocket,
         .connect = [](int listeners) -> std::unique_ptr<Transport> {
             return std::make_unique<SocketTransport>(listeners, 1);
         },
         .shown = kLimit},
        {.name = "gathered",
         .listen = listenOnSocket,
         .connect = [](int listeners) -> std::unique_ptr<Transport> {
             return std::make_unique<SocketTransport>(listeners, kGatheredFrames);
         },
         .shown = kLimit},
    };
}

} // namespace bench
