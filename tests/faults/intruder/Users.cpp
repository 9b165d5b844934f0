// The two users: what the first has running, and the intruder's process.
#include "tests/faults/intruder/Users.h"

#include "platform/posix/UnixSocket_p.h"
#include "tests/faults/ProcessStatus.h"
#include "tests/faults/Service.h"
#include "tests/faults/intruder/Evidence.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>

#include <algorithm>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <grp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using zyn::posix::UniqueFd;

namespace intruder {

QString programs;

void become(uid_t user)
{
    if (::setgroups(0, nullptr) != 0 || ::setgid(user) != 0 || ::setuid(user) != 0)
        ::_exit(EXIT_FAILURE);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}

Program::Program(const Place& place, const QString& program, const QStringList& arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, QFile::decodeName(kHome));
    environment.remove(u"XDG_RUNTIME_DIR"_s);
    if (place.hasRuntimeDirectory)
        environment.insert(u"XDG_RUNTIME_DIR"_s, QFile::decodeName(kHome + "/runtime"));
    m_process.setProcessEnvironment(environment);
    m_process.setWorkingDirectory(u"/"_s);
    m_process.setChildProcessModifier([owner = place.owner] {
        become(owner);
        ::umask(077); // as their units have it
    });
    m_process.start(program, arguments);
}

bool Program::waitReady()
{
    const QDeadlineTimer deadline(kTimeout);
    m_process.waitForStarted(kTimeout);
    while (!m_output.contains("ready\n") && !deadline.hasExpired()) {
        if (!m_process.waitForReadyRead(int(deadline.remainingTime())) && m_process.state() == QProcess::NotRunning)
            break;
        m_output += m_process.readAllStandardOutput();
    }
    return m_output.contains("ready\n");
}

int Program::finish()
{
    return (m_process.state() == QProcess::NotRunning || m_process.waitForFinished(kTimeout))
                   && m_process.exitStatus() == QProcess::NormalExit
               ? m_process.exitCode()
               : -1;
}

int Program::end(int signal)
{
    if (m_process.state() != QProcess::NotRunning && m_process.processId() > 0)
        ::kill(pid_t(m_process.processId()), signal);
    return finish();
}

int Program::memory() const
{
    return int(std::max<qint64>(faults::memoryOf(id(), "VmHWM"), 0));
}

Answer ask(const Place& place, const QString& words)
{
    Program tool(place, programs + u"/zynphone"_s, words.split(u' '));
    const int code = tool.finish();
    return {code, tool.output() + tool.log()};
}

bool answers(const Place& place, const QString& words, const QByteArray& text)
{
    return faults::comesTrue([&] {
        const Answer answer = ask(place, words);
        return answer.code == 0 && answer.text.contains(text);
    });
}

void fill(const Place& place)
{
    makeFile(kHome + "/numbers", "112\n", place.owner, 0600);
    for (const QString& words :
         {u"emergency write 112 911"_s, u"speed-dial set 1 %1"_s.arg(QLatin1String(kSecret)),
          u"handset set sim-card 0"_s, u"phone incoming %1 Secret"_s.arg(QLatin1String(kSecret)), u"phone missed"_s}) {
        const Answer answer = ask(place, words);
        report.check(answer.code == 0, u"as the first user, %1: %2"_s.arg(words, QString::fromLocal8Bit(answer.text)));
    }
    report.check(answers(place, u"calls list"_s, kSecret), u"the first user's call is not logged"_s);
    ask(place, u"calls export --output %1"_s.arg(QFile::decodeName(kHome + "/calls.csv")));
}

Handset::Handset(const Place& place)
    : m_place(place)
{
    for (const char* service : kServices)
        start(service);
}

void Handset::start(const char* service)
{
    auto& program = m_programs[service];
    program = std::make_unique<Program>(m_place, programs + u'/' + QLatin1String(service),
                                        QStringList{u"--ready-fd"_s, u"1"_s});
    if (program->waitReady())
        m_memoryAtStart[service] = program->memory();
}

QByteArray Handset::missing()
{
    for (const auto& [name, program] : m_programs) {
        if (!program->output().contains("ready\n") || !program->isRunning())
            return name + ": " + program->log().trimmed() + (program->isRunning() ? " (and hangs)" : "");
    }
    return {};
}

int Handset::growth() const
{
    int most = 0;
    for (const auto& [name, program] : m_programs)
        most = std::max(most, program->memory() - m_memoryAtStart.value(name));
    return most;
}

Intruder::Intruder(const std::function<void(int out, int stop)>& body)
{
    int out[2];
    int stop[2];
    if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(stop, O_CLOEXEC) != 0)
        qFatal("no pipe");
    m_process = ::fork();
    if (m_process == 0) {
        ::close(out[0]);
        ::close(stop[1]);
        ::signal(SIGPIPE, SIG_IGN);
        become(kIntruder);
        ::umask(0);
        if (::chdir(kLair.constData()) != 0)
            ::_exit(EXIT_FAILURE);
        body(out[1], stop[0]);
        ::_exit(EXIT_SUCCESS);
    }
    ::close(out[1]);
    ::close(stop[0]);
    m_out = UniqueFd(out[0]);
    m_stop = UniqueFd(stop[1]);
}

Intruder::~Intruder()
{
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
}

QByteArray Intruder::line()
{
    char byte = 0;
    QByteArray text;
    while (zyn::posix::waitUntilReadable(m_out.get(), zyn::posix::Clock::now() + std::chrono::milliseconds(kTimeout))
           && ::read(m_out.get(), &byte, 1) == 1 && byte != '\n')
        text += byte;
    return text;
}

QList<QByteArray> Intruder::lines()
{
    QList<QByteArray> all;
    for (QByteArray next = line(); !next.isEmpty(); next = line())
        all.append(next);
    return all;
}

void say(int out, const QByteArray& text)
{
    const QByteArray bytes = text + '\n';
    if (::write(out, bytes.constData(), size_t(bytes.size())) < 0)
        ::_exit(EXIT_FAILURE);
}

} // namespace intruder
