// Messages from one process to listeners that are processes too.
#include "bench/Channels.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QSocketNotifier>

#include <algorithm>
#include <array>
#include <list>
#include <optional>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace bench {
namespace {

int newMemory()
{
    const int memory = ::memfd_create("bench", 0);
    require(::ftruncate(memory, sizeof(Board)) == 0, "memory for a board");
    return memory;
}

Board& boardIn(int memory)
{
    void* const board = ::mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE, MAP_SHARED, memory, 0);
    require(board != MAP_FAILED, "a board");
    return *static_cast<Board*>(board);
}

} // namespace

/// What sender and listeners share: a board in memory, and a pipe in which listeners say that they have heard all.
struct Shared
{
    Shared()
        : memory(newMemory())
        , board(boardIn(memory))
    {
        require(::pipe(done.data()) == 0, "a pipe");
    }
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;
    ~Shared()
    {
        ::munmap(&board, sizeof board);
        ::close(memory);
        ::close(done[0]);
        ::close(done[1]);
    }

    const int memory;
    Board& board;
    std::array<int, 2> done = {-1, -1};
};

namespace {

std::optional<Kind> kindOf(const std::string& name)
{
    for (const auto& kinds : {ourTransports(), peerTransports()}) {
        for (const Kind& kind : kinds) {
            if (kind.name == name)
                return kind;
        }
    }
    return std::nullopt;
}

/// Sends turn after turn, each when all listeners have heard the one before.
class Sender
{
public:
    Sender(Transport& transport, Board& board, int done, Traffic traffic)
        : m_transport(transport)
        , m_board(board)
        , m_done(done)
        , m_traffic(traffic)
    {}

    void sendTurn()
    {
        m_board.expected.store(m_traffic.burst, std::memory_order_release);
        m_left = m_traffic.listeners;
        m_start = now();
        for (int i = 0; i < m_traffic.burst; ++i)
            m_transport.send();
        m_transport.flush();
    }

    /// Reads what listeners have said; whether all have heard the turn.
    bool noteHeard()
    {
        std::array<char, Board::kListeners> words = {};
        m_left -= static_cast<int>(std::max(::read(m_done, words.data(), words.size()), ssize_t{0}));
        if (m_left > 0)
            return false;
        int64_t last = 0;
        for (int i = 0; i < m_traffic.listeners; ++i)
            last = std::max(last, m_board.heardAt[i].load(std::memory_order_acquire));
        m_taken.push_back(static_cast<double>(last - m_start) / m_traffic.burst);
        return true;
    }

    bool hasMoreTurns() const { return m_taken.size() < static_cast<size_t>(m_traffic.turns); }

    /// Answers with the median of the turns, and forgets them.
    void report()
    {
        std::ranges::sort(m_taken);
        answer(std::to_string(m_taken[m_taken.size() / 2]));
        m_taken.clear();
    }

private:
    Transport& m_transport;
    Board& m_board;
    int m_done;
    Traffic m_traffic;
    int m_left = 0;
    int64_t m_start = 0;
    std::vector<double> m_taken;
};

/// Sends from the event loop: an order, or the word of the last listener, begins the next turn.
void sendFromLoop(Sender& sender, int done)
{
    QSocketNotifier orders(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&orders, &QSocketNotifier::activated, &orders,
                     [&] { nextOrder().empty() ? QCoreApplication::quit() : sender.sendTurn(); });
    QSocketNotifier words(done, QSocketNotifier::Read);
    QObject::connect(&words, &QSocketNotifier::activated, &words, [&] {
        if (sender.noteHeard())
            sender.hasMoreTurns() ? sender.sendTurn() : sender.report();
    });
    QCoreApplication::exec();
}

/// Sends outside of any loop, which runs only for what listeners could not take at once.
void sendWithoutLoop(Sender& sender, int done)
{
    bool isHeard = false;
    QSocketNotifier words(done, QSocketNotifier::Read);
    QObject::connect(&words, &QSocketNotifier::activated, &words, [&] { isHeard = sender.noteHeard(); });
    while (!nextOrder().empty()) {
        while (sender.hasMoreTurns()) {
            sender.sendTurn();
            isHeard = false;
            while (!isHeard) // NOLINT(clang-diagnostic-for-loop-analysis): the slot above sets it
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        sender.report();
    }
}

/// A sender and its audience.
class Session
{
public:
    Session(const QByteArray& directory, const Kind& kind, const Traffic& traffic)
        : m_audience(directory, kind.name, traffic.listeners)
        , m_sender(
              inRole({"sender", kind.name, std::to_string(m_audience.shared().memory),
                      std::to_string(m_audience.shared().done[0]), std::to_string(traffic.listeners),
                      traffic.isInLoop ? "loop" : "", std::to_string(traffic.burst), std::to_string(traffic.turns)}))
    {
        m_sender.line();
    }

    double sample() const
    {
        m_sender.tell("go");
        return std::stod(m_sender.line());
    }

private:
    Audience m_audience;
    Child m_sender;
};

constexpr int kTurns = 200;
constexpr int kMany = 20'000;
/// How many messages of a peer that takes ten times as long, and more, tell as much.
constexpr int kFewer = 20;

/// A row with ours, the bare sockets that @p limit names, and the peers.
Row row(const char* name, double goal, const char* limit, const Traffic& traffic)
{
    Row result{.name = name, .goal = goal, .base = kLimit, .columns = {}};
    for (const Kind& kind : ourTransports()) {
        if (kind.shown == std::string(kOurs) || kind.name == std::string(limit))
            result.columns.push_back({kind.shown, exchange(kind, traffic)});
    }
    const std::vector<Kind> installed = peerTransports();
    for (const char* const peer : peerNames()) {
        const auto kind =
            std::ranges::find_if(installed, [&](const Kind& one) { return one.shown == std::string(peer); });
        Traffic less = traffic;
        if (kind != installed.end() && kind->isSlow && traffic.burst > 1)
            less.burst /= kFewer;
        result.columns.push_back({peer, kind == installed.end() ? nullptr : exchange(*kind, less)});
    }
    return result;
}

} // namespace

Audience::Audience(const QByteArray& directory, const std::string& kind, int listeners)
    : m_shared(std::make_unique<Shared>())
{
    qputenv("ZYN_QCOP_PATH", directory);
    if (kindOf(kind).value().needsBus)
        startBus(directory.toStdString());
    for (int i = 0; i < listeners; ++i) {
        m_listeners.emplace_back(inRole({"listener", kind, std::to_string(m_shared->memory),
                                         std::to_string(m_shared->done[1]), std::to_string(i)}));
    }
    for (const Child& listener : m_listeners)
        listener.line();
}

Audience::~Audience() = default;

void Audience::startBus(const std::string& directory)
{
    const std::string socket = directory + "/bus";
    m_bus.emplace(Child::Words{"dbus-daemon", "--session", "--nofork", "--nopidfile", "--nosyslog",
                               "--address=unix:path=" + socket},
                  Child::Log::Dropped);
    constexpr int kMost = 2000;
    constexpr int kStep = 5000; // microseconds
    for (int i = 0; i < kMost && !QFile::exists(QString::fromStdString(socket)); ++i)
        ::usleep(kStep);
}

void Audience::expect(int messages) const
{
    m_shared->board.expected.store(messages, std::memory_order_release);
}

int64_t Audience::heard() const
{
    char word = 0;
    require(::read(m_shared->done[0], &word, 1) == 1, "a listener's word");
    return m_shared->board.heardAt[0].load(std::memory_order_acquire);
}

Prepare exchange(const Kind& kind, const Traffic& traffic)
{
    return [kind, traffic](const QByteArray& directory) -> Job {
        const auto session = std::make_shared<Session>(directory, kind, traffic);
        return {.run = nullptr, .sample = [session] { return session->sample(); }};
    };
}

int listen(const std::vector<std::string>& words)
{
    const auto kind = kindOf(words.at(0));
    require(kind.has_value(), "a kind of transport");
    Ear ear(boardIn(std::stoi(words.at(1))), std::stoi(words.at(3)), std::stoi(words.at(2)));
    kind->listen(ear);
    return EXIT_SUCCESS;
}

int sendInTurns(const std::vector<std::string>& words)
{
    const auto kind = kindOf(words.at(0));
    require(kind.has_value(), "a kind of transport");
    const int done = std::stoi(words.at(2));
    const Traffic traffic{.listeners = std::stoi(words.at(3)),
                          .isInLoop = !words.at(4).empty(),
                          .burst = std::stoi(words.at(5)),
                          .turns = std::stoi(words.at(6))};
    const std::unique_ptr<Transport> transport = kind->connect(traffic.listeners);
    Sender sender(*transport, boardIn(std::stoi(words.at(1))), done, traffic);
    answer("ready");
    traffic.isInLoop ? sendFromLoop(sender, done) : sendWithoutLoop(sender, done);
    return EXIT_SUCCESS;
}

std::vector<Row> channelRows()
{
    const auto single = [](int listeners, bool isInLoop) {
        return Traffic{.listeners = listeners, .isInLoop = isInLoop, .turns = kTurns};
    };
    const auto many = [](int listeners, bool isInLoop) {
        return Traffic{.listeners = listeners, .isInLoop = isInLoop, .burst = kMany};
    };
    return {
        row("message, 1 listener, in a loop", 1.15, "socket", single(1, true)),
        row("message, 1 listener, without a loop", 1.15, "socket", single(1, false)),
        row("message, 4 listeners, in a loop", 1.15, "socket", single(4, true)),
        row("message, 16 listeners, in a loop", 1.15, "socket", single(16, true)),
        row("many messages in a loop, 1 listener", 6, "gathered", many(1, true)),
        row("many messages in a loop, 4 listeners", 3, "gathered", many(4, true)),
        row("many messages in a loop, 16 listeners", 2.5, "gathered", many(16, true)),
        row("many messages without a loop, 1 listener", 1.15, "socket", many(1, false)),
        row("many messages without a loop, 4 listeners", 1.15, "socket", many(4, false)),
        row("many messages without a loop, 16 listeners", 1.15, "socket", many(16, false)),
    };
}

} // namespace bench
