// Commands on a socket, and the connection under them. Signals interrupt every wait.
#include "platform/CommandFrame_p.h"
#include "platform/Socket_Command.h"
#include "support/Descriptors.h"
#include "support/SocketClient.h"

#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <atomic>
#include <climits>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/time.h>

using namespace std::chrono_literals;
using zyn::kCommandDataLimit;
using zyn::posix::Clock;
using zyn::posix::connectUnix;
using zyn::posix::retry;
using zyn::posix::UniqueFd;

namespace {

constexpr uid_t kNobody = 65534;
/// For what comes at once, unless the machine is busy.
constexpr auto kTimeout = 20s;

using Command = std::unique_ptr<UTIL_CommandBody>;

Command command(int32_t code, const QByteArray& data)
{
    auto result = std::make_unique<UTIL_CommandBody>();
    result->commandId = code;
    result->dataLength = int32_t(data.size());
    if (result->AllocateDataBuffer())
        std::copy(data.begin(), data.end(), result->dataBuffer());
    return result;
}

QByteArray header(int32_t code, int32_t length)
{
    const auto bytes = zyn::CommandFrameHeader{code, length}.encode();
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size()));
}

/// The next command on @p socket as the bytes of its frame; null when there is none.
QByteArray read(const UniqueFd& socket)
{
    const Command command(Socket_ReadCommand(socket.get()));
    if (!command)
        return {};
    return frame(command->commandId, QByteArray(command->dataBuffer(), command->dataLength));
}

/// The next @p size bytes; none when the peer closes before.
QByteArray receive(const UniqueFd& socket, qsizetype size)
{
    QByteArray bytes(size, '\0');
    const auto block = std::as_writable_bytes(std::span(bytes.data(), size_t(size)));
    return zyn::posix::receiveAll(socket.get(), block, Clock::now() + kTimeout) ? bytes : QByteArray();
}

std::atomic<int> s_signals = 0;

void waitForASignal()
{
    for (const int before = s_signals; s_signals == before;)
        std::this_thread::yield();
}

} // namespace

class tst_Socket_Command : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        struct sigaction action = {};
        action.sa_handler = [](int) { ++s_signals; };
        const itimerval often = {{0, 4000}, {0, 4000}};
        QVERIFY(::sigaction(SIGALRM, &action, nullptr) == 0);
        QVERIFY(::setitimer(ITIMER_REAL, &often, nullptr) == 0);
    }
    void init()
    {
        m_descriptors = openDescriptors();
        int pair[2];
        QVERIFY(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) == 0);
        m_near.reset(pair[0]);
        m_far.reset(pair[1]);
    }
    void cleanup()
    {
        m_near.reset();
        m_far.reset();
        QCOMPARE(openDescriptors(), m_descriptors);
    }

    void carriesEveryCommandWhole();
    void holdsLengthsToTheData();
    void failsWhenThePeerCloses();
    void givesUpASilentPeer();
    void connectsOrFails();
    void trustsItsUserAndRoot();

private:
    UniqueFd listenAt(const QByteArray& name) const { return zyn::posix::listenUnix(path(name), 0600); }
    QByteArray path(const QByteArray& name) const { return QFile::encodeName(m_directory.path()) + '/' + name; }

    QTemporaryDir m_directory;
    UniqueFd m_near;
    UniqueFd m_far;
    qsizetype m_descriptors = 0;
};

void tst_Socket_Command::carriesEveryCommandWhole()
{
    QCOMPARE(Socket_WriteCommand(m_near.get(), command(0x01020304, "abc").get()), 0);
    QCOMPARE(Socket_WriteCommand(m_near.get(), command(-2, {}).get()), 0);
    QCOMPARE(receive(m_far, 19).toHex(' '), "04 03 02 01 03 00 00 00 61 62 63 fe ff ff ff 00 00 00 00");

    struct Row
    {
        int size;  // of the data in bytes
        int piece; // how many bytes come at a time, with a signal before each
        int flags; // of the socket
    };
    for (const auto& [size, piece, flags] :
         {Row{0, 1, 0}, Row{4, 1, O_NONBLOCK}, Row{8 + 50 * 228, 501, 0}, Row{kCommandDataLimit, 50'001, O_NONBLOCK}}) {
        QVERIFY(retry([&, flags = flags] { return ::fcntl(m_near.get(), F_SETFL, flags); }) == 0);
        QByteArray data;
        for (int i = 0; i < size; ++i)
            data += char(i * 31LL % 251);
        const QByteArray whole = frame(size - 4, data);
        // The peer takes the frame in pieces, and sends it back so.
        auto peer = std::async(std::launch::async, [this, piece = piece, total = whole.size()] {
            QByteArray received;
            for (qsizetype i = 0; i < total; i += piece, waitForASignal())
                received += receive(m_far, std::min<qsizetype>(piece, total - i));
            for (qsizetype i = 0; i < total; i += piece, waitForASignal())
                send(m_far, received.mid(i, piece));
            return received;
        });
        QCOMPARE(Socket_WriteCommand(m_near.get(), command(size - 4, data).get()), 0);
        QVERIFY(read(m_near) == whole);
        QVERIFY(peer.get() == whole);
    }
}

void tst_Socket_Command::holdsLengthsToTheData()
{
    // Lengths said of the 4 bytes "data".
    for (const int length : {4, 2, 0, 5, -1, INT_MIN, kCommandDataLimit + 1, INT_MAX}) {
        cleanup();
        init();
        const QByteArray expected = length <= 4 && length >= 0 ? frame(1, QByteArray("data").first(length)) : "";
        const Command body = command(1, "data");
        body->dataLength = length;
        QCOMPARE(Socket_WriteCommand(m_near.get(), body.get()), expected.isEmpty() ? -1 : 0);
        QVERIFY(send(m_near, header(1, length) + "data"));
        QCOMPARE(body->AllocateDataBuffer(), length >= 0 && length <= kCommandDataLimit);
        QCOMPARE(body->dataBuffer() != nullptr, length >= 0 && length <= kCommandDataLimit);
        m_near.reset();
        if (!expected.isEmpty())
            QCOMPARE(read(m_far), expected); // the written one; the other was made up
        QCOMPARE(read(m_far), expected);
    }
    for (qsizetype length = 0; length < 12; ++length) { // of a frame that is cut short
        cleanup();
        init();
        QVERIFY(send(m_far, frame(1, "data").first(length)));
        m_far.reset();
        QCOMPARE(read(m_near), QByteArray());
    }
}

void tst_Socket_Command::failsWhenThePeerCloses()
{
    // Writing to it would end the process if the signal were let through.
    auto peer = std::async(std::launch::async, [&] {
        receive(m_far, 1000);
        m_far.reset();
    });
    QCOMPARE(Socket_WriteCommand(m_near.get(), command(1, QByteArray(kCommandDataLimit, 'x')).get()), -1);
    peer.get();
    // Without a peer or a socket it fails at once: waiting each time would outlast what the test is given.
    const UniqueFd file(retry([] { return ::open("/dev/zero", O_RDWR | O_CLOEXEC); }));
    QVERIFY(file.isValid());
    for (int i = 0; i < 200; ++i) {
        QCOMPARE(Socket_WriteCommand(m_near.get(), nullptr), -1);
        for (const int fd : {m_near.get(), -1, INT_MAX, file.get()}) {
            QCOMPARE(Socket_WriteCommand(fd, command(1, "data").get()), -1);
            QVERIFY(!Socket_ReadCommand(fd));
        }
    }
}

void tst_Socket_Command::givesUpASilentPeer()
{
    const UniqueFd listener = listenAt("silent");
    const UniqueFd client = connectUnix(path("silent"), kTimeout);
    const UniqueFd server = zyn::posix::acceptConnection(listener.get());
    QVERIFY(send(server, frame(1, "data").chopped(1)));
    // All three at the same time: a frame that stops, one that never begins, and a peer that takes nothing.
    const auto begin = Clock::now();
    auto stops = std::async(std::launch::async, [&] { return read(client); });
    auto neverBegins = std::async(std::launch::async, [&] { return read(server); });
    QCOMPARE(Socket_WriteCommand(m_near.get(), command(1, QByteArray(kCommandDataLimit, 'x')).get()), -1);
    QCOMPARE(stops.get() + neverBegins.get(), QByteArray());
    QVERIFY2(Clock::now() - begin >= zyn::kCommandTimeout, "gave up too early");
}

void tst_Socket_Command::connectsOrFails()
{
    QVERIFY(!connectUnix(path("missing"), kTimeout).isValid());
    listenAt("dead"); // closed at once; its file stays
    QVERIFY(!connectUnix(path("dead"), kTimeout).isValid());

    const QByteArray longest(zyn::posix::kUnixPathLimit - path({}).size(), 'x');
    const UniqueFd listener = listenAt(longest);
    QVERIFY(::listen(listener.get(), 0) == 0);
    QVERIFY2(!connectUnix(path(longest + 'x'), kTimeout).isValid(), "connected to a server of a shorter name");

    // Nobody accepts: each takes a place of the backlog, until one has to wait.
    std::vector<UniqueFd> clients;
    clients.push_back(connectUnix(path(longest), 19'900ms));
    QVERIFY(clients.back().isValid());
    timeval sends = {};
    socklen_t size = sizeof sends;
    QVERIFY(::getsockopt(clients.back().get(), SOL_SOCKET, SO_SNDTIMEO, &sends, &size) == 0);
    QCOMPARE(sends.tv_sec * 1000 + sends.tv_usec / 1000, 19'900);
    while (clients.back().isValid() && clients.size() < 20)
        clients.push_back(connectUnix(path(longest), 50ms));
    QVERIFY(!clients.back().isValid());
}

void tst_Socket_Command::trustsItsUserAndRoot()
{
    using zyn::posix::isPeerTrusted;
    QVERIFY(isPeerTrusted(m_near.get()) && !isPeerTrusted(-1));
    if (::chmod(path({}).constData(), 0777) != 0 || ::seteuid(kNobody) != 0)
        QSKIP("only root can be somebody else");
    const bool trustsRoot = isPeerTrusted(m_near.get());
    const UniqueFd listener = listenAt("nobody");
    QVERIFY(::seteuid(0) == 0);
    QVERIFY(trustsRoot);
    const UniqueFd client = connectUnix(path("nobody"), kTimeout);
    QVERIFY(client.isValid() && !isPeerTrusted(client.get()));
}

QTEST_APPLESS_MAIN(tst_Socket_Command)
#include "tst_Socket_Command.moc"
