// A thousand clients at once on each socket of the services, a part of them hostile: the honest ones are served, and
// when all have gone, a service is what it was.
#include "tests/faults/Campaign.h"
#include "tests/faults/ProcessStatus.h"
#include "tests/faults/Service.h"
#include "tests/support/SocketClient.h"

#include "handset/phone_server/PhoneControl.h"
#include "recentcall/utility/RC_Interface.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"

#include <QtCore/QHash>

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace faults {
namespace {

using std::chrono::milliseconds;
using zyn::CommandFrameHeader;
using zyn::posix::Clock;
using zyn::posix::UniqueFd;

constexpr int kClients = 1000;
/// How many of the honest clients have a call logged: fewer than a list holds.
constexpr int kCallers = 40;
/// What a service may take for one client, in KiB: the longest answer, twice while it is put together, and its records.
constexpr qint64 kMemoryOfClient = 80;
/// Descriptors of a service that are no clients and may come after its start: those of channels, an event loop's.
constexpr qint64 kDescriptorsOfItsOwn = 6;
/// What a service may keep of the second crowd and all that follow, in KiB, beyond what it kept of the first: no more
/// than a busy one takes for a crowd, as the allocator keeps it for the next one.
constexpr qint64 kKept = qint64{12} * 1024;
constexpr auto kTurn = 10ms;

/// A socket, and what its clients say and hear.
struct Door
{
    const char* name;
    const char* program;
    QByteArray path;
    QByteArray greeting;
    QByteArray request;
    bool (*isAnswer)(const CommandFrameHeader& header, const QByteArray& data);
};

bool isListAnswer(const CommandFrameHeader& header, const QByteArray& data)
{
    constexpr qsizetype kHeader = sizeof(zyn::recentcall::ListHeader);
    if (header.code != zyn::recentcall::Success || data.size() < kHeader)
        return false;
    const auto count = qFromLittleEndian<qint32>(data.constData());
    return data.size() == kHeader + count * qsizetype{sizeof(PHONE_ENG_RecentCall)};
}

bool isCallAnswer(const CommandFrameHeader& header, const QByteArray& data)
{
    return (header.code == zyn::voicecall::CallDialing || header.code == zyn::voicecall::CallFailed) && data.isEmpty();
}

bool isControlAnswer(const CommandFrameHeader& header, const QByteArray& data)
{
    return header.code == zyn::phonecontrol::Calls && data.startsWith('[') && data.endsWith(']');
}

std::vector<Door> doors()
{
    using namespace zyn::voicecall;
    return {
        {"recent calls", "zyn-recentcalld", zyn::recentcall::kSocketPath, frame(0, words({0})),
         frame(zyn::recentcall::ListRecords, words({RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE})), isListAnswer},
        {"phone", "zyn-phoned", kSocketPath, frame(PHONE_VOICECALL_CMD_REGISTER, words({Java})),
         frame(PHONE_VOICECALL_CMD_MAKE_CALL, words({7}) + QByteArray("0301112222").leftJustified(44, '\0')),
         isCallAnswer},
        {"control",
         "zyn-phoned",
         zyn::phonecontrol::kSocketPath,
         {},
         frame(zyn::phonecontrol::ListCalls),
         isControlAnswer},
    };
}

// Who is hostile.

QByteArray saysNothing(const Door& /*door*/, QRandomGenerator& /*random*/)
{
    return {};
}

QByteArray saysHalf(const Door& door, QRandomGenerator& random)
{
    const QByteArray& cut = !door.greeting.isEmpty() && random.bounded(2) == 0 ? door.greeting : door.request;
    const QByteArray before = &cut == &door.greeting ? QByteArray() : door.greeting;
    return before + cut.first(1 + random.bounded(int(cut.size()) - 1));
}

QByteArray lies(const Door& door, QRandomGenerator& random)
{
    constexpr int32_t kLengths[] = {-1, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max(),
                                    zyn::kCommandDataLimit, zyn::kCommandDataLimit + 1};
    return door.greeting + door.request.first(4) + words({kLengths[random.bounded(int(std::size(kLengths)))]})
           + QByteArray(64, '\0');
}

QByteArray saysNoise(const Door& /*door*/, QRandomGenerator& random)
{
    QByteArray noise(1 + random.bounded(500), '\xff');
    std::generate(noise.begin() + 1, noise.end(), [&] { return char(random.bounded(256)); });
    return noise;
}

QByteArray greets(const Door& door, QRandomGenerator& /*random*/)
{
    return door.greeting;
}

/// A kind of client.
struct Kind
{
    const char* name;
    int count;
    QByteArray (*says)(const Door& door, QRandomGenerator& random);
    bool isEndless; ///< goes on with requests for as long as the service takes them
    bool reads;
};

constexpr Kind kHostile[] = {
    {"that are silent", 100, saysNothing, false, false},
    {"with half a command", 100, saysHalf, false, false},
    {"that lie about lengths", 100, lies, false, false},
    {"that send noise", 50, saysNoise, false, false},
    {"that flood", 20, greets, true, true},
    {"that never read", 100, greets, true, false},
};

/// A client that the service may drop.
struct Hostile
{
    const Kind* kind;
    UniqueFd connection;
};

struct Honest
{
    UniqueFd connection;
    Clock::time_point start;
    QByteArray received;
    std::optional<milliseconds> served; ///< after so long
    bool isWrong = false;
};

/// Sends what fits at once.
void sendAtOnce(int connection, const QByteArray& bytes)
{
    ::send(connection, bytes.constData(), size_t(bytes.size()), MSG_DONTWAIT | MSG_NOSIGNAL);
}

/// Floods a service from a thread of its own, until the end of the object.
class Flood
{
public:
    Flood(const std::vector<Hostile>& clients, const QByteArray& request)
        : m_thread([this, &clients, &request] {
            std::vector<pollfd> waiting;
            std::vector<bool> reads;
            for (const Hostile& client : clients) {
                if (!client.kind->isEndless)
                    continue;
                waiting.push_back({client.connection.get(), short(POLLOUT | (client.kind->reads ? POLLIN : 0)), 0});
                reads.push_back(client.kind->reads);
            }
            while (!m_isOver && ::poll(waiting.data(), waiting.size(), int(kTurn.count())) >= 0) {
                for (size_t i = 0; i < waiting.size(); ++i)
                    goOn(waiting[i], request, reads[i]);
            }
        })
    {}
    Flood(const Flood&) = delete;
    Flood& operator=(const Flood&) = delete;
    ~Flood()
    {
        m_isOver = true;
        m_thread.join();
    }

private:
    /// A connection that the service has closed is not looked at again.
    static void goOn(pollfd& client, const QByteArray& request, bool reads)
    {
        std::array<char, 65536> answers;
        if ((client.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0)
            client.fd = -1;
        else if ((client.revents & POLLOUT) != 0)
            sendAtOnce(client.fd, request);
        while (reads && ::recv(client.fd, answers.data(), answers.size(), MSG_DONTWAIT) > 0) {
        }
    }

    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

/// The clients of one door, all there at the same time.
class Crowd
{
public:
    Crowd(Campaign& campaign, const Door& door)
        : m_campaign(campaign)
        , m_door(door)
    {
        connectAll();
        m_flood.emplace(m_hostile, m_door.request);
    }

    /// Waits until the honest ones are served; the longest time that it took.
    milliseconds serve();
    /// Waits until the service has dropped those whom it need not keep.
    void seeOff();
    /// The numbers of the calls that honest clients have had logged.
    const QStringList& logged() const { return m_logged; }

private:
    void connectAll();
    void connectOne(const Kind* kind);
    QByteArray said();
    void hear(Honest& client);
    QString at() const { return u" ("_s + QLatin1String(m_door.name) + u')'; }

    Campaign& m_campaign;
    const Door& m_door;
    std::vector<Hostile> m_hostile;
    std::vector<Honest> m_honest;
    QStringList m_logged;
    std::optional<Flood> m_flood;
};

void Crowd::connectAll()
{
    std::vector<const Kind*> kinds(kClients, nullptr);
    auto next = kinds.begin();
    for (const Kind& kind : kHostile)
        next = std::fill_n(next, kind.count, &kind);
    std::shuffle(kinds.begin(), kinds.end(), m_campaign.random());
    for (const Kind* kind : kinds)
        connectOne(kind);
}

void Crowd::connectOne(const Kind* kind)
{
    const auto start = Clock::now();
    UniqueFd connection = zyn::posix::connectUnix(m_door.path, kPatience);
    if (!m_campaign.check(connection.isValid(), u"a client cannot connect"_s + at()))
        return;
    sendAtOnce(connection.get(), kind ? kind->says(m_door, m_campaign.random()) : said());
    if (kind) {
        m_hostile.push_back({kind, std::move(connection)});
        m_campaign.breakThings();
    } else {
        m_honest.push_back({std::move(connection), start, {}, {}});
        m_campaign.operate();
    }
}

/// What an honest client says.
QByteArray Crowd::said()
{
    if (m_door.isAnswer != isListAnswer || m_logged.size() == kCallers)
        return m_door.greeting + m_door.request;
    m_logged.append(u"0308%1"_s.arg(m_logged.size(), 4, 10, QChar(u'0')));
    PHONE_ENG_RecentCall call(m_logged.back(), QDateTime::fromSecsSinceEpoch(1'700'000'000), 0);
    call.category = RC_CALL_CATEGORY_MISSED;
    call.callType = RC_CALL_TYPE_VOICE;
    return zyn::recentcall::addRequest(call) + m_door.request;
}

/// Takes what has come for a client: the first answer is the one that it waits for.
void Crowd::hear(Honest& client)
{
    std::array<char, 65536> bytes;
    const ssize_t size = ::recv(client.connection.get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (size == 0 || (size < 0 && errno != EAGAIN)) {
        client.isWrong = true;
        return;
    }
    client.received += QByteArrayView(bytes.data(), std::max<ssize_t>(size, 0)).toByteArray();
    if (client.received.size() < qsizetype{CommandFrameHeader::kSize})
        return;
    const auto header =
        CommandFrameHeader::decode(std::as_bytes(std::span(client.received.constData(), CommandFrameHeader::kSize))
                                       .first<CommandFrameHeader::kSize>());
    const QByteArray data = client.received.sliced(CommandFrameHeader::kSize);
    if (header && data.size() < header->dataLength)
        return;
    client.isWrong = !header || !m_door.isAnswer(*header, data.first(header->dataLength));
    client.served = std::chrono::duration_cast<milliseconds>(Clock::now() - client.start);
}

milliseconds Crowd::serve()
{
    const auto deadline = Clock::now() + kPatience;
    milliseconds longest{};
    const auto isWaiting = [](const Honest& client) { return !client.served && !client.isWrong; };
    while (std::ranges::any_of(m_honest, isWaiting) && Clock::now() < deadline) {
        std::vector<pollfd> waiting;
        std::vector<Honest*> asked;
        for (Honest& client : m_honest) {
            if (isWaiting(client)) {
                waiting.push_back({client.connection.get(), POLLIN, 0});
                asked.push_back(&client);
            }
        }
        ::poll(waiting.data(), waiting.size(), int(kTurn.count()));
        for (size_t i = 0; i < waiting.size(); ++i) {
            if (waiting[i].revents != 0)
                hear(*asked.at(i));
        }
    }
    for (const Honest& client : m_honest) {
        m_campaign.check(!client.isWrong, u"an honest client gets a wrong answer, or none"_s + at());
        m_campaign.check(client.served || client.isWrong, u"an honest client is not served"_s + at());
        longest = std::max(longest, client.served.value_or(longest));
    }
    return longest;
}

void Crowd::seeOff()
{
    const auto deadline = Clock::now() + 2 * kPatience;
    std::map<const Kind*, int> left;
    for (const Hostile& client : m_hostile) {
        if (!(client.kind->isEndless && client.kind->reads)
            && !zyn::posix::waitUntilClosed(client.connection.get(), deadline))
            ++left[client.kind];
    }
    for (const Kind& kind : kHostile)
        m_campaign.check(left[&kind] == 0,
                         u"%1 clients %2 are still there%3"_s.arg(left[&kind]).arg(QLatin1String(kind.name), at()));
}

QStringList loggedNumbers()
{
    QPtrList<RC_RecordInterface> list;
    list.setAutoDelete(true);
    RC_Interface().getRecordList(list, RC_CALL_CATEGORY_MISSED, RC_CALL_TYPE_VOICE);
    QStringList numbers;
    for (const RC_RecordInterface* call : list)
        numbers += call->getPhoneNumber();
    numbers.sort();
    return numbers;
}

/// A crowd comes to a door, is served, which @p onServed is told, and goes.
void visit(Campaign& campaign, const Door& door, const std::function<void(milliseconds longest)>& onServed)
{
    Crowd crowd(campaign, door);
    onServed(crowd.serve());
    crowd.seeOff();
    if (crowd.logged().isEmpty())
        return;
    campaign.check(loggedNumbers() == crowd.logged(), u"calls of honest clients are lost"_s);
    RC_Interface().deleteRecordAll(RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE);
}

} // namespace

void clients(Campaign& campaign)
{
    rlimit limit = {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit raised = {limit.rlim_max, limit.rlim_max};
    if (limit.rlim_max < rlim_t{2} * kClients || ::setrlimit(RLIMIT_NOFILE, &raised) != 0) {
        campaign.skip(u"a process has at most %1 descriptors"_s.arg(qint64(limit.rlim_max)));
        return;
    }
    const QStringList patience{u"--patience"_s, QString::number(campaign.length(10'000, 500))};
    std::map<QByteArray, Process> services;
    std::map<QByteArray, qint64> descriptors; ///< at most, when no client is there
    std::map<QByteArray, qint64> kept;        ///< of the first crowd
    const std::vector<Door> all = doors();
    for (const Door& door : all) {
        Process& service = services[door.program];
        campaign.check(service.id() > 0 || service.start(campaign.program(door.program), patience),
                       QLatin1String(door.program) + u" does not start"_s);
        descriptors[door.program] = descriptorsOf(service.id()) + kDescriptorsOfItsOwn;
    }
    QHash<QString, qint64> most;
    const auto measure = [&](const char* what, QLatin1String unit, qint64 value) {
        const QString name = u"%1, %2"_s.arg(QLatin1String(what), unit);
        most[name] = std::max(most.value(name), value);
        campaign.measure(name, most.value(name));
    };
    const qint64 rounds = campaign.length(10, 1);
    for (qint64 round = 0; round < rounds; ++round) {
        for (const Door& door : all) {
            const pid_t service = services[door.program].id();
            const qint64 memory = memoryOf(service, "RssAnon");
            visit(campaign, door, [&](milliseconds longest) {
                const qint64 growth = memoryOf(service, "RssAnon") - memory;
                measure(door.name, "longest ms"_L1, longest.count());
                measure(door.name, "KiB for a crowd"_L1, growth);
                campaign.check(growth <= kClients * kMemoryOfClient,
                               u"%1 KiB for a crowd (%2)"_s.arg(growth).arg(QLatin1String(door.name)));
            });
            campaign.check(comesTrue([&] { return descriptorsOf(service) <= descriptors[door.program]; }),
                           u"%1 descriptors are left (%2)"_s.arg(descriptorsOf(service)).arg(QLatin1String(door.name)));
        }
        for (const auto& [program, service] : services) {
            const qint64 now = memoryOf(service.id(), "RssAnon");
            const qint64 first = kept.emplace(program, now).first->second;
            measure(program, "KiB kept"_L1, now - first);
            campaign.check(
                now <= first + kKept,
                u"%1 keeps %2 KiB, and kept %3 of the first crowd"_s.arg(QLatin1String(program)).arg(now).arg(first));
        }
        campaign.progress(round + 1, rounds);
    }
    for (auto& [program, service] : services)
        campaign.check(service.stop(), QLatin1String(program) + u" does not end well"_s);
}

} // namespace faults
