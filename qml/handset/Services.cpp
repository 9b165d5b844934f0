// The services that the phone needs: which of them do not run, and those that this program runs.
#include "qml/handset/Services.h"

#include "platform/posix/FileLock_p.h"
#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <algorithm>
#include <cerrno>
#include <csignal>

#include <sys/prctl.h>

using namespace Qt::StringLiterals;

namespace zyn::window {
namespace {

constexpr int kEndTime = 5000; ///< how long a service may take to end, in milliseconds

struct Kind
{
    const char* program;
    const char* name;
    bool (*runs)();
};

/// The owner of the favourites has no socket: it holds a lock as long as it runs.
bool hasOwner()
{
    posix::FileLock lock;
    return !lock.lock(QFile::encodeName(storePath(QLatin1String(kActivityLogLockName)))) && errno == EWOULDBLOCK;
}

/// In the order in which they are started: each needs those before it.
constexpr Kind kKinds[] = {
    {"zyn-recentcalld", QT_TRANSLATE_NOOP("zyn::window::Services", "the recent-call service"),
     [] { return posix::isServedByTrusted(recentcall::kSocketPath); }},
    {"zyn-favourites", QT_TRANSLATE_NOOP("zyn::window::Services", "the owner of the favourites"), &hasOwner},
    {"zyn-phoned", QT_TRANSLATE_NOOP("zyn::window::Services", "the phone server"),
     [] { return posix::isServedByTrusted(voicecall::kSocketPath); }},
};

} // namespace

struct Services::Service
{
    const char* const program;
    const char* const name;
    bool (*const runs)(); ///< whoever has started it
    QProcess process;
    bool serves = false; ///< the process has told that it does

    explicit Service(const Kind& kind)
        : program(kind.program)
        , name(kind.name)
        , runs(kind.runs)
    {}

    bool isStarted() const { return process.state() != QProcess::NotRunning; }
};

Services::Services(QObject* parent)
    : QObject(parent)
{
    for (const Kind& kind : kKinds) {
        Service& service = *m_services.emplace_back(std::make_unique<Service>(kind));
        QProcess& process = service.process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.setStandardInputFile(QProcess::nullDevice());
        process.setChildProcessModifier([] {
            // This program reads its signals from a descriptor; its services are to get theirs.
            sigset_t none;
            sigemptyset(&none);
            ::sigprocmask(SIG_SETMASK, &none, nullptr);
            ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        });
        connect(&process, &QProcess::finished, this, &Services::check);
        connect(&process, &QProcess::errorOccurred, this, &Services::check);
        connect(&process, &QProcess::readyReadStandardOutput, this, [this, &service] {
            service.process.readAllStandardOutput();
            service.serves = true;
            check();
            Q_EMIT started();
        });
    }
}

Services::~Services()
{
    // The phone server hands its last call over before the recent-call service ends.
    for (auto service = m_services.rbegin(); service != m_services.rend(); ++service) {
        QProcess& process = (*service)->process;
        process.disconnect(this);
        process.terminate();
        if (!process.waitForFinished(kEndTime))
            process.kill();
    }
}

void Services::start()
{
    for (const auto& service : m_services) {
        if (!service->isStarted() && !service->runs())
            launch(*service);
    }
    check();
}

void Services::launch(Service& service)
{
    service.serves = false;
    service.process.start(QCoreApplication::applicationDirPath() + u'/' + QLatin1String(service.program),
                          {u"--ready-fd"_s, u"1"_s});
}

void Services::check()
{
    QStringList missing;
    for (const auto& service : m_services) {
        if (!service->isStarted() && !service->runs())
            missing += tr(service->name);
    }
    const QString fault = missing.isEmpty() ? QString() : tr("Not running: %1.").arg(missing.join(u", "_s));
    if (fault == m_fault)
        return;
    m_fault = fault;
    Q_EMIT faultChanged();
}

void Services::waitUntilServed(std::chrono::milliseconds patience)
{
    const QDeadlineTimer deadline(patience);
    for (const auto& service : m_services) {
        while (service->isStarted() && !service->serves && !deadline.hasExpired())
            service->process.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
    }
}

} // namespace zyn::window
