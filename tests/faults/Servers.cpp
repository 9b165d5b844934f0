// Servers that stall, answer in part, lie and close, for the library's own clients: each request fails as it is
// documented, in its time, leaves nothing behind, and succeeds again when the real service is there.
#include "tests/faults/Campaign.h"
#include "tests/faults/ProcessStatus.h"
#include "tests/support/Descriptors.h"
#include "tests/support/SocketClient.h"

#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/PHONE_RecentCallInterface.h"
#include "recentcall/utility/RC_Interface.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"
#include "utility/PHONE_VoiceJava.h"
#include "utility/PHONE_VoiceSTK.h"

#include <QtCore/QElapsedTimer>

#include <limits>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace faults {
namespace {

using zyn::posix::UniqueFd;

constexpr const char* kRecentCalls = zyn::recentcall::kSocketPath;
constexpr const char* kPhone = zyn::voicecall::kSocketPath;
/// How long a request may take: to send for 5 seconds, to wait for an answer for 5, and for the rest of it for 5.
constexpr qint64 kRequestTime = 15'000;
/// What the clients of this process may have in memory beyond what they had after the first round, in KiB.
constexpr qint64 kGrowth = qint64{4} * 1024;

PHONE_ENG_RecentCall record(int uid)
{
    PHONE_ENG_RecentCall call(u"112"_s, QDateTime::fromSecsSinceEpoch(1), 2);
    call.uid = uid;
    return call;
}

QByteArray bytesOf(const PHONE_ENG_RecentCall& call)
{
    return QByteArray(reinterpret_cast<const char*>(&call), sizeof call);
}

/// Fetches the calls of one list; @p most is how many it may get.
int fetch(qsizetype most)
{
    QPtrList<RC_RecordInterface> list;
    const int result = RC_Interface().getRecordList(list, RC_CALL_CATEGORY_DIALED, RC_CALL_TYPE_VOICE);
    const qsizetype count = qsizetype(list.count());
    list.setAutoDelete(true);
    return count <= most ? result : -1;
}

/// A request to the recent-call service, and what it gives when there is no answer.
struct Request
{
    const char* name;
    int (*run)();
    int failure;
    bool isList;
};

constexpr Request kRequests[] = {
    {"PHONE_RecentCall_DeleteRecord",
     [] {
         auto r = record(9);
         return PHONE_RecentCall_DeleteRecord(r);
     },
     2, false},
    {"PHONE_RecentCall_DeleteAll", [] { return PHONE_RecentCall_DeleteAll(RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE); },
     2, false},
    {"RC_Interface::deleteRecord",
     [] { return RC_Interface().deleteRecord(RC_RecordInterfaceImpl(new PHONE_ENG_RecentCall(record(9)))); }, 3, false},
    {"RC_Interface::deleteRecordAll",
     [] { return RC_Interface().deleteRecordAll(RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE); }, 3, false},
    {"PHONE_RecentCall_Interface::rc_delete", [] { return PHONE_RecentCall_Interface().rc_delete(record(9)); }, 3,
     false},
    {"PHONE_RecentCall_Interface::rc_deleteAll",
     [] { return PHONE_RecentCall_Interface().rc_deleteAll(RC_CALL_CATEGORY_MISSED); }, 3, false},
    {"RC_Interface::getRecordList", [] { return fetch(0); }, 3, true},
};

/// The requests without an answer: they succeed as soon as they are sent.
constexpr Request kAdditions[] = {
    {"PHONE_RecentCall_AddRecord",
     [] {
         auto r = record(9);
         return PHONE_RecentCall_AddRecord(r);
     },
     2, false},
    {"RC_Interface::addRecord",
     [] { return RC_Interface().addRecord(RC_RecordInterfaceImpl(new PHONE_ENG_RecentCall(record(9)))); }, 3, false},
    {"PHONE_RecentCall_Interface::rc_add", [] { return PHONE_RecentCall_Interface().rc_add(record(9)); }, 3, false},
};

QByteArray listAnswer(int32_t count)
{
    return frame(zyn::recentcall::Success, words({count, 50}) + bytesOf(record(1)) + bytesOf(record(2)));
}

/// Answers one client a byte at a time.
class DrippingService
{
public:
    DrippingService(const QByteArray& answer, std::chrono::milliseconds pause)
        : m_listener(zyn::posix::listenUnix(kRecentCalls, 0600))
        , m_thread([this, answer, pause] {
            const auto deadline = zyn::posix::Clock::now() + std::chrono::milliseconds(role::kTimeout);
            if (!zyn::posix::waitUntilReadable(m_listener.get(), deadline))
                return;
            const UniqueFd client = zyn::posix::acceptConnection(m_listener.get());
            for (const char& byte : answer) {
                if (zyn::posix::sendSome(client.get(), std::as_bytes(std::span(&byte, 1))) < 0)
                    return;
                std::this_thread::sleep_for(pause);
            }
        })
    {}
    DrippingService(const DrippingService&) = delete;
    DrippingService& operator=(const DrippingService&) = delete;
    ~DrippingService()
    {
        m_thread.join();
        QFile::remove(QLatin1String(kRecentCalls));
    }

private:
    UniqueFd m_listener;
    std::thread m_thread;
};

/// Runs the request and checks what it gives, in which time, and that it leaves no descriptor.
void expect(Campaign& campaign, const Request& request, int result, const QString& server)
{
    const qsizetype descriptors = openDescriptors();
    QElapsedTimer time;
    time.start();
    const int given = request.run();
    const QString what = u"%1, %2"_s.arg(QLatin1String(request.name), server);
    campaign.check(given == result, u"%1: %2 and not %3"_s.arg(what).arg(given).arg(result));
    campaign.check(time.elapsed() <= kRequestTime, u"%1: takes %2 ms"_s.arg(what).arg(time.elapsed()));
    // The server, in this process too, may be a little later.
    campaign.check(QTest::qWaitFor([&] { return openDescriptors() <= descriptors; }, role::kTimeout),
                   u"%1: leaves descriptors"_s.arg(what));
    campaign.operate();
    campaign.breakThings();
}

/// Servers that close at each byte of their answer, and such that lie about its length.
void answerInPart(Campaign& campaign)
{
    for (const Request& request : kRequests) {
        const QByteArray answer = request.isList ? listAnswer(2) : frame(zyn::recentcall::Success);
        const qsizetype step = request.isList ? qsizetype(campaign.length(1, 41)) : 1;
        for (qsizetype size = 0; size < answer.size(); size += step) {
            const ScriptedService service(kRecentCalls, answer.first(size));
            expect(campaign, request, request.failure, u"a server that closes after %1 bytes"_s.arg(size));
        }
        for (const int32_t length : {-1, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max(),
                                     zyn::kCommandDataLimit + 1, 4'711}) {
            const ScriptedService service(kRecentCalls, answer.first(4) + words({length}) + answer.sliced(8));
            expect(campaign, request, request.failure, u"an answer that says %1 bytes"_s.arg(length));
        }
    }
    for (const int32_t count : {-1, 0, 3, 1'000'000, std::numeric_limits<int32_t>::max()}) {
        const ScriptedService service(kRecentCalls, listAnswer(count));
        campaign.check(fetch(2) == 0, u"a list that says %1 calls gives those that are in it"_s.arg(count));
        campaign.breakThings();
    }
}

/// Servers that answer a byte at a time: in time, and too slowly.
void answerSlowly(Campaign& campaign)
{
    constexpr Request kFetch = {"RC_Interface::getRecordList", [] { return fetch(2); }, 3, true};
    {
        const DrippingService service(listAnswer(2), std::chrono::milliseconds(1));
        expect(campaign, kFetch, 0, u"a slow server"_s);
    }
    if (campaign.length(1, 0) > 0) {
        const DrippingService service(listAnswer(2), std::chrono::milliseconds(40));
        expect(campaign, kFetch, kFetch.failure, u"a server that is too slow"_s);
    }
}

/// Sends requests over a connection that the server never reads until one fails: that takes a while, the next does not.
template<typename MakeCall>
void fillConnection(std::vector<QString>& wrong, const QString& name, const MakeCall& makeCall)
{
    QElapsedTimer time;
    int result = 0;
    for (int i = 0; i < 100'000 && result == 0; ++i) {
        time.start();
        result = makeCall();
    }
    if (result != -1 || time.elapsed() > kRequestTime)
        wrong.push_back(u"%1: %2 after %3 ms"_s.arg(name).arg(result).arg(time.elapsed()));
    if (makeCall() != -1)
        wrong.push_back(u"%1: a connection that is lost is there again"_s.arg(name));
}

/// Servers that never answer, nor even accept: all clients wait at the same time.
void answerNever(Campaign& campaign)
{
    const UniqueFd calls = zyn::posix::listenUnix(kRecentCalls, 0600);
    const UniqueFd phone = zyn::posix::listenUnix(kPhone, 0600);
    const qsizetype descriptors = openDescriptors();
    std::vector<std::thread> threads;
    std::vector<std::vector<QString>> wrong(std::size(kRequests) + std::size(kAdditions) + 2);
    auto next = wrong.begin();
    QElapsedTimer time;
    time.start();
    const auto ask = [&](const Request& request, int expected) {
        threads.emplace_back([&request, expected, time, wrong = next++] {
            const int result = request.run();
            if (result != expected || time.elapsed() > kRequestTime)
                wrong->push_back(
                    u"%1: %2 after %3 ms"_s.arg(QLatin1String(request.name)).arg(result).arg(time.elapsed()));
        });
    };
    for (const Request& request : kRequests)
        ask(request, request.failure);
    for (const Request& request : kAdditions)
        ask(request, 0);
    threads.emplace_back([wrong = next++] {
        PHONE_VoiceSTK* client = PHONE_VoiceSTK_Init();
        PHONE_VoiceSTK_PARAMETER parameter = {};
        fillConnection(*wrong, u"PHONE_VOICESTK_MakeCall"_s,
                       [&] { return PHONE_VOICESTK_MakeCall(client, &parameter); });
        PHONE_VoiceSTK_DeInit(client);
    });
    threads.emplace_back([wrong = next++] {
        const int handle = PHONE_VoiceCall_Java_Init([](char) {});
        fillConnection(*wrong, u"PHONE_VoiceCall_Java_MakeCall"_s,
                       [&] { return PHONE_VoiceCall_Java_MakeCall(handle, "1", 0); });
        PHONE_VoiceCall_Java_DeInit(handle);
    });
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& client : wrong) {
        campaign.check(client.empty(),
                       u"a server that never answers: %1"_s.arg(client.empty() ? QString() : client[0]));
        campaign.operate();
        campaign.breakThings();
    }
    campaign.measure(u"never answered ms"_s, time.elapsed());
    campaign.check(QTest::qWaitFor([&] { return openDescriptors() <= descriptors; }, role::kTimeout),
                   u"descriptors are left by clients of a server that never answers"_s);
    QFile::remove(QLatin1String(kRecentCalls));
    QFile::remove(QLatin1String(kPhone));
}

/// Phone servers that close at each byte of a reply, for both kinds of clients.
void replyInPart(Campaign& campaign)
{
    const QByteArray reply = frame(zyn::voicecall::CallDialing, "more");
    for (qsizetype size = 0; size < reply.size(); ++size) {
        const ScriptedService service(kPhone, reply.first(size));
        const qsizetype descriptors = openDescriptors();
        PHONE_VoiceSTK* client = PHONE_VoiceSTK_Init();
        int replies = 0;
        if (client)
            QObject::connect(client, &PHONE_VoiceSTK::MessageReceived, client, [&] { ++replies; });
        PHONE_VoiceSTK_PARAMETER parameter = {};
        campaign.check(PHONE_VOICESTK_MakeCall(client, &parameter) == 0, u"a request is sent"_s);
        campaign.check(QTest::qWaitFor([&] { return openDescriptors() <= descriptors; }, role::kTimeout),
                       u"a connection that broke after %1 bytes is closed"_s.arg(size));
        campaign.check(PHONE_VOICESTK_MakeCall(client, &parameter) == -1 && replies == 0,
                       u"a connection that broke after %1 bytes is of no more use"_s.arg(size));
        PHONE_VoiceSTK_DeInit(client);
        campaign.operate(2);
        campaign.breakThings();
    }
}

/// The real services: everything works again.
void askServices(Campaign& campaign)
{
    ServiceProcess calls;
    ServiceProcess phone;
    campaign.check(calls.start(campaign.program("zyn-recentcalld").toLatin1().constData()),
                   u"zyn-recentcalld starts"_s);
    campaign.check(phone.start(campaign.program("zyn-phoned").toLatin1().constData()), u"zyn-phoned starts"_s);
    for (const Request& addition : kAdditions)
        campaign.check(addition.run() == 0, u"%1 works again"_s.arg(QLatin1String(addition.name)));
    for (const Request& request : kRequests) {
        const int result = request.run();
        campaign.check(result == 0 || result == 1,
                       u"%1 works again: %2"_s.arg(QLatin1String(request.name)).arg(result));
    }
    PHONE_VoiceSTK* client = PHONE_VoiceSTK_Init();
    int reply = 0;
    if (client)
        QObject::connect(client, &PHONE_VoiceSTK::MessageReceived, client, [&](int code) { reply = code; });
    PHONE_VoiceSTK_PARAMETER parameter = {};
    campaign.check(PHONE_VOICESTK_MakeCall(client, &parameter) == 0, u"a call is asked for again"_s);
    campaign.check(QTest::qWaitFor([&] { return reply == zyn::voicecall::CallFailed; }, role::kTimeout),
                   u"the phone server replies again"_s);
    PHONE_VoiceSTK_DeInit(client);
    campaign.check(calls.stop() == 0 && phone.stop() == 0, u"the services end well"_s);
}

} // namespace

void servers(Campaign& campaign)
{
    RecentCall_dataDir();
    zyn::voicecall::socketPath();
    const qint64 process = QCoreApplication::applicationPid();
    const auto rounds = int(campaign.length(10, 1));
    qint64 memory = 0;
    for (int round = 0; round < rounds; ++round) {
        answerInPart(campaign);
        replyInPart(campaign);
        answerSlowly(campaign);
        answerNever(campaign);
        askServices(campaign);
        const qint64 now = memoryOf(process, "VmRSS");
        memory = round == 0 ? now : memory;
        campaign.check(now - memory <= kGrowth, u"the clients grow by %1 KiB"_s.arg(now - memory));
        campaign.measure(u"growth KiB"_s, now - memory);
        campaign.progress(round, rounds);
    }
}

} // namespace faults
