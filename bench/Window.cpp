// What the handset on the screen costs, beside a window of Qt Quick with nothing in it.
#include "bench/Window.h"

#include "bench/Bench.h"
#include "bench/Child.h"
#include "bench/Processes.h"
#include "bench/Report.h"
#include "bench/Sampler.h"
#include "bench/Service.h"
#include "platform/QCopChannel.h"
#include "utility/PHONE_Msg.h"
#include "utility/message/Message_p.h"
#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <chrono>
#include <list>
#include <thread>

using namespace Qt::StringLiterals;

namespace bench {
namespace {

constexpr int kMeasuredFrames = 11;
constexpr int kMessagesEachSecond = 1000;
/// By then a window does nothing any more that it does after its start; threads that have nothing to do end after 30 s.
constexpr std::chrono::seconds kWindowSettling{35};
constexpr int kFrameLimit = 30'000; // milliseconds

/// A window without a screen, drawn by the processor. It ends with the object.
class WindowProcess : public QProcess
{
public:
    explicit WindowProcess(const QStringList& words, const QString& logged = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QT_LOGGING_RULES"_s, logged);
        environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        environment.insert(u"QT_QUICK_BACKEND"_s, u"software"_s);
        setProcessEnvironment(environment);
        setStandardOutputFile(nullDevice());
        setReadChannel(StandardError);
        if (logged.isEmpty())
            setStandardErrorFile(nullDevice());
        start(words.first(), words.mid(1));
        require(waitForStarted(), "a program with a window");
    }
    ~WindowProcess() override
    {
        kill();
        waitForFinished();
    }
    WindowProcess(const WindowProcess&) = delete;
    WindowProcess& operator=(const WindowProcess&) = delete;

    pid_t id() const { return static_cast<pid_t>(processId()); }
};

/// How many nanoseconds it takes until a program has drawn its first frame, as Qt Quick itself tells it.
double firstFrame(const QStringList& words)
{
    const int64_t start = now();
    WindowProcess window(words, u"qt.scenegraph.time.renderloop=true"_s);
    for (QByteArray log; !log.contains("rendered"); log += window.readAllStandardError())
        require(window.waitForReadyRead(kFrameLimit), "the first frame of a window");
    return static_cast<double>(now() - start);
}

double medianFrame(const QStringList& words)
{
    std::vector<double> taken;
    taken.reserve(kMeasuredFrames);
    for (int i = 0; i < kMeasuredFrames; ++i)
        taken.push_back(firstFrame(words));
    return summary(taken).median;
}

/// How many milliseconds in a second @p process computes meanwhile.
template<typename Meanwhile>
double computing(pid_t process, int seconds, Meanwhile meanwhile)
{
    const double before = processorTime(process);
    meanwhile();
    return (processorTime(process) - before) / seconds;
}

void waitFor(int seconds)
{
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
}

/// Sends states of the battery, each another one than the last, evenly.
void sendStates(int seconds)
{
    const QByteArray name = zyn::phoneMessage(PHONE_Msg::PHONE_MSG_BATTERY_VALUE_CHANGE_S).name;
    auto next = std::chrono::steady_clock::now();
    for (int sent = 0; sent < seconds * kMessagesEachSecond; ++sent) {
        require(QCopChannel::send(zyn::kPhoneChannel, name, QByteArray(1, static_cast<char>(sent % 100))),
                "a status message");
        std::this_thread::sleep_until(next += std::chrono::seconds(1) / kMessagesEachSecond);
    }
}

QString row(const QString& name, const QStringList& words, int seconds)
{
    std::fprintf(stderr, "bench: watches %s\n", qPrintable(name));
    const double frame = medianFrame(words);
    const WindowProcess window(words);
    std::this_thread::sleep_for(kWindowSettling);
    const qint64 memory = privateMemory(window.id());
    const qint64 before = wakeUps(window.id());
    const double idle = computing(window.id(), seconds, [seconds] { waitFor(seconds); });
    const qint64 woken = wakeUps(window.id()) - before;
    const double busy = computing(window.id(), seconds, [seconds] { sendStates(seconds); });
    return u"| %1 | %2 | %3 MiB | %4 | %5 ms | %6 ms |\n"_s.arg(name, duration(frame))
        .arg(static_cast<double>(memory) / 1024, 0, 'f', 1)
        .arg(woken)
        .arg(idle, 0, 'f', 1)
        .arg(busy, 0, 'f', 1);
}

} // namespace

QString measureWindow(int seconds)
{
    const QString handset = QString::fromStdString(program("zyn-handset"));
    require(QFileInfo(handset).isExecutable(), "zyn-handset, for which Qt Quick is needed,");
    const QTemporaryDir directory;
    const QByteArray path = directory.path().toLocal8Bit();
    for (const char* const variable : {"ZYN_QCOP_PATH", "ZYN_APP_WRITE_PATH", "ZYN_LOCAL_APP_WRITE_PATH"})
        qputenv(variable, path);
    std::list<Service> services;
    for (const char* const name : {"zyn-recentcalld", "zyn-phoned", "zyn-favourites"})
        services.emplace_back(name, path);
    return u"| Window | First frame | Private memory | Wake-ups in %1 s, idle | Computing in a second, idle "
           "| and while %2 status messages come |\n|---|---|---|---|---|---|\n"_s.arg(seconds)
               .arg(kMessagesEachSecond)
           + row(u"a line of text"_s, {QString::fromStdString(program("zyn-bare-window"))}, seconds)
           + row(u"`zyn-handset`"_s, {handset, u"--no-services"_s}, seconds);
}

} // namespace bench
