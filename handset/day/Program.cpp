// One of the programs that take part in a day: its process and the lines that it prints.
#include "handset/day/Program.h"

#include <csignal>

#include <sys/prctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

constexpr int kTimeout = 5000; ///< how long a program may take to end, in milliseconds

} // namespace

Program::Program()
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    // Ctrl+C reaches the player only, which ends the programs. If the player is killed, the kernel ends them.
    m_process.setChildProcessModifier([] {
        ::setpgid(0, 0);
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    });
    connect(&m_process, &QProcess::readyRead, this, &Program::read);
    connect(&m_process, &QProcess::finished, this, &Program::read);
    connect(&m_process, &QProcess::errorOccurred, this, &Program::changed);
}

Program::~Program()
{
    m_process.disconnect(this);
    sendSignal(SIGTERM);
    if (!m_process.waitForFinished(kTimeout))
        m_process.kill();
}

void Program::start(const QString& command)
{
    QStringList words = QProcess::splitCommand(command);
    words.replaceInStrings(u"''"_s, QString());
    const QString program = words.takeFirst();
    m_prefix = program + u": "_s;
    m_process.start(program, words);
}

void Program::sendSignal(int signal)
{
    if (m_process.processId() > 0)
        ::kill(static_cast<pid_t>(m_process.processId()), signal);
}

int Program::exitCode() const
{
    const bool hasExited =
        m_process.exitStatus() == QProcess::NormalExit && m_process.error() == QProcess::UnknownError;
    return hasExited ? m_process.exitCode() : -1;
}

void Program::read()
{
    while (m_process.canReadLine() || (!isRunning() && m_process.bytesAvailable() > 0)) {
        QString line = QString::fromUtf8(m_process.readLine()).trimmed();
        if (line.startsWith(m_prefix))
            line.remove(0, m_prefix.size());
        if (!line.isEmpty())
            m_lines += line;
    }
    Q_EMIT changed();
}

} // namespace zyn::handset
