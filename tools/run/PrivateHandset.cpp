// A handset of its own: the services, running, in a place where nobody else meets them.
#include "tools/run/PrivateHandset.h"

#include "platform/posix/UniqueFd_p.h"
#include "platform/posix/UnixSocket_p.h"
#include "tools/zynphone/ExitCode.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// How long a service may take to serve, and to end.
constexpr std::chrono::seconds kPatience{10};
constexpr int kEndTime = 5000; ///< in milliseconds
/// How much of a service's log is shown.
constexpr qsizetype kShownLines = 20;
/// The descriptor on which a service tells that it serves.
constexpr int kReadyFd = 3;

} // namespace

ChildProcess::ChildProcess(std::function<void()> prepare)
{
    setProcessChannelMode(ForwardedChannels);
    setChildProcessModifier([prepare = std::move(prepare)] {
        sigset_t none;
        sigemptyset(&none);
        ::sigprocmask(SIG_SETMASK, &none, nullptr); // this program reads its signals from a descriptor
        std::signal(SIGINT, SIG_DFL);
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (prepare)
            prepare();
    });
}

PrivateHandset::PrivateHandset(const QString& folder)
    : m_folder(folder)
{
    const QByteArray place = QFile::encodeName(folder);
    qputenv("ZYN_APP_WRITE_PATH", place);
    qputenv("ZYN_LOCAL_APP_WRITE_PATH", place);
    qputenv("ZYN_QCOP_PATH", place + "/channels");
    // The command finds the programs by their names, and is no service itself.
    qputenv("PATH", QFile::encodeName(QCoreApplication::applicationDirPath()) + ':' + qgetenv("PATH"));
    qunsetenv("NOTIFY_SOCKET");
}

PrivateHandset::~PrivateHandset()
{
    // The phone server hands its last call over before the recent-call service ends.
    for (auto service = m_services.rbegin(); service != m_services.rend(); ++service) {
        service->process->disconnect(this);
        service->process->terminate();
        if (!service->process->waitForFinished(kEndTime))
            service->process->kill();
    }
}

void PrivateHandset::start(const QString& script)
{
    startService(u"zyn-recentcalld"_s, {});
    startService(u"zyn-favourites"_s, {});
    startService(u"zyn-phoned"_s, script.isEmpty() ? QStringList() : QStringList{u"--script"_s, script});
}

void PrivateHandset::startService(const QString& name, const QStringList& options)
{
    std::array<int, 2> ends = {-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw CommandError(NotStarted, u"%1 cannot be started: no pipe can be made"_s.arg(name));
    const posix::UniqueFd ready(ends[0]);
    posix::UniqueFd told(ends[1]);
    m_services.push_back({name, std::make_unique<ChildProcess>([fd = told.get()] {
                              // A descriptor that already has the number would be closed when the program runs.
                              if (fd == kReadyFd)
                                  ::fcntl(fd, F_SETFD, 0);
                              else
                                  ::dup2(fd, kReadyFd);
                          })});
    ChildProcess& process = *m_services.back().process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(logPath(name));
    process.start(QCoreApplication::applicationDirPath() + u'/' + name,
                  options + QStringList{u"--ready-fd"_s, QString::number(kReadyFd)});
    if (!process.waitForStarted())
        throw CommandError(NotStarted, u"%1 cannot be started: %2"_s.arg(name, process.errorString()));
    told.reset();
    std::byte first = {};
    if (!posix::waitUntilReadable(ready.get(), posix::Clock::now() + kPatience)
        || ::read(ready.get(), &first, sizeof first) != 1) {
        throw CommandError(NotStarted, u"%1 does not serve"_s.arg(name));
    }
    connect(&process, &QProcess::finished, this, [this, name](int code, QProcess::ExitStatus status) {
        const QString how = status == QProcess::NormalExit ? u"with exit code %1"_s.arg(code) : u"by a signal"_s;
        Q_EMIT serviceEnded(u"%1 has ended %2"_s.arg(name, how));
    });
}

QString PrivateHandset::logPath(const QString& service) const
{
    return m_folder + u'/' + service + u".log"_s;
}

QStringList PrivateHandset::logLines() const
{
    QStringList all;
    for (const Service& service : m_services) {
        QFile log(logPath(service.name));
        if (!log.open(QIODevice::ReadOnly))
            continue;
        const QStringList lines = QString::fromUtf8(log.readAll()).split(u'\n', Qt::SkipEmptyParts);
        all += lines.mid(std::max<qsizetype>(lines.size() - kShownLines, 0));
    }
    return all;
}

} // namespace zyn::tool
