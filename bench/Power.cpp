// What costs though nothing happens: wake-ups and memory of idle processes, and how long programs take to start.
#include "bench/Power.h"

#include "bench/Bench.h"
#include "bench/Child.h"
#include "bench/Processes.h"
#include "bench/Report.h"
#include "bench/Sampler.h"
#include "bench/Service.h"
#include "platform/QCopChannel.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "utility/PHONE_AsyncMsgReceiver.h"
#include "utility/PHONE_MsgClient.h"
#include "utility/PHONE_VoiceCallReceiver.h"
#include "utility/message/Message_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>

#include <list>
#include <map>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace bench {
namespace {

constexpr const char* kServices[] = {"zyn-recentcalld", "zyn-phoned", "zyn-favourites"};
constexpr const char* kClients[] = {"none",
                                    "QCopChannel",
                                    "PHONE_MsgClient",
                                    "PHONE_AsyncMsgReceiver",
                                    "PHONE_VoiceCallReceiver",
                                    "RecentCall_MsgClient"};
constexpr int kMeasuredStarts = 21;
/// In seconds: by then no program does anything any more that it does after its start.
constexpr unsigned kSettling = 4;

/// An idle process, and how often it had been woken up when it was first looked at.
struct Idle
{
    QString name;
    pid_t process;
    qint64 before = 0;
};

double medianStart(const Child::Words& words)
{
    std::vector<double> taken;
    for (int i = 0; i < kMeasuredStarts; ++i) {
        const int64_t start = now();
        Child child(words);
        require(child.finish(), "a program that starts");
        taken.push_back(static_cast<double>(now() - start));
    }
    return summary(taken).median;
}

double medianReady(const char* name)
{
    std::vector<double> taken;
    for (int i = 0; i < kMeasuredStarts; ++i) {
        const QTemporaryDir directory;
        taken.push_back(Service(name, directory.path().toLocal8Bit()).readyAfter());
    }
    return summary(taken).median;
}

QString startUps()
{
    const double bare = medianStart({program("zyn-start-qt")});
    // Who is heard by nobody fails.
    const QCopChannel listener(zyn::kPhoneChannel);
    const double tool = medianStart({program("zynphone"), "status", "battery-capacity", "80"});
    QString text = u"\n| Start | Time | Beyond an application of Qt Core |\n|---|---|---|\n"_s;
    text += u"| an application of Qt Core, until it ended | %1 | |\n"_s.arg(duration(bare));
    text += u"| `zynphone status battery-capacity 80`, until it ended | %1 | %2 |\n"_s.arg(duration(tool),
                                                                                           duration(tool - bare));
    for (const char* const service : kServices)
        text += u"| `%1`, until it was ready | %2 | |\n"_s.arg(QLatin1String(service), duration(medianReady(service)));
    return text;
}

} // namespace

QString measurePower(int seconds)
{
    const QTemporaryDir directory;
    const QByteArray path = directory.path().toLocal8Bit();
    qputenv("ZYN_QCOP_PATH", path);
    const QString starts = startUps();
    std::list<Service> services;
    std::list<Child> clients;
    std::vector<Idle> all;
    for (const char* const name : kServices)
        all.push_back({u"`%1`"_s.arg(QLatin1String(name)), services.emplace_back(name, path).id()});
    for (const char* const name : kClients) {
        Child& client = clients.emplace_back(inRole({"idle", name}));
        client.line();
        all.push_back({u"an application, client: %1"_s.arg(QLatin1String(name)), client.id()});
    }
    ::sleep(kSettling);
    for (Idle& idle : all)
        idle.before = wakeUps(idle.process);
    std::fprintf(stderr, "bench: watches idle processes for %d seconds\n", seconds);
    ::sleep(static_cast<unsigned>(seconds));
    QString text = u"| Idle process | Wake-ups in %1 s | Private memory |\n|---|---|---|\n"_s.arg(seconds);
    for (const Idle& idle : all)
        text += u"| %1 | %2 | %3 KiB |\n"_s.arg(idle.name)
                    .arg(wakeUps(idle.process) - idle.before)
                    .arg(privateMemory(idle.process));
    return text + starts;
}

int idle(const std::vector<std::string>& words)
{
    using Make = std::shared_ptr<QObject> (*)();
    static const std::map<std::string, Make> kMakers = {
        {"none", []() -> std::shared_ptr<QObject> { return nullptr; }},
        {"QCopChannel", []() -> std::shared_ptr<QObject> { return std::make_shared<QCopChannel>("/ZYN/bench"); }},
        {"PHONE_MsgClient", []() -> std::shared_ptr<QObject> { return std::make_shared<PHONE_MsgClient>(); }},
        {"PHONE_AsyncMsgReceiver",
         []() -> std::shared_ptr<QObject> {
             return {PHONE_AsyncMsgReceiver::instance(), [](QObject*) {}};
         }},
        {"PHONE_VoiceCallReceiver",
         []() -> std::shared_ptr<QObject> { return std::make_shared<PHONE_VoiceCallReceiver>(); }},
        {"RecentCall_MsgClient",
         []() -> std::shared_ptr<QObject> {
             return {RecentCall_MsgClient::instance(), [](QObject*) {}};
         }},
    };
    const std::shared_ptr<QObject> client = kMakers.at(words.at(0))();
    answer("ready");
    return QCoreApplication::exec();
}

} // namespace bench
