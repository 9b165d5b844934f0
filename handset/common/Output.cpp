// Standard output of a program, kept free of the library's trace text.
#include "handset/common/Output.h"

#include "handset/common/Log.h"

#include <QtCore/QCoreApplication>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

constexpr int kFirstFreeDescriptor = 3;

/// A copy of standard output, with a number beyond those of the standard streams.
int duplicateStandardOutput()
{
    return ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, kFirstFreeDescriptor);
}

} // namespace

void silenceStandardOutput()
{
    const int nowhere = ::open("/dev/null", O_WRONLY);
    // If the process started without a standard output, open() has returned its number.
    if (nowhere == STDOUT_FILENO)
        return;
    ::dup2(nowhere, STDOUT_FILENO);
    ::close(nowhere);
}

Output::Output()
{
    m_valid = m_output.open(duplicateStandardOutput(), QIODevice::WriteOnly | QIODevice::Unbuffered,
                            QFileDevice::AutoCloseHandle);
    silenceStandardOutput();
}

void Output::showTrace()
{
    std::fflush(stdout);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    // Unbuffered, so that the trace keeps its place between the program's own lines.
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    m_traced = true;
}

QString Output::errorString() const
{
    if (descriptor() < 0)
        return qt_error_string(EBADF);
    return m_output.error() == QFileDevice::NoError ? qt_error_string(EPIPE) : m_output.errorString();
}

int Output::exitCode() const
{
    if (m_valid)
        return EXIT_SUCCESS;
    log(u"cannot write to standard output: "_s + errorString());
    return EXIT_FAILURE;
}

bool Output::isTerminal() const
{
    return ::isatty(descriptor()) == 1;
}

bool Output::isColourful() const
{
    return isTerminal() && qEnvironmentVariableIsEmpty("NO_COLOR");
}

void Output::write(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    if (m_valid && m_output.write(bytes) != bytes.size())
        lose();
}

void Output::whenLost(std::function<void()> lost)
{
    m_lost = std::move(lost);
    struct stat status = {};
    const bool isPipe = ::fstat(descriptor(), &status) == 0 && S_ISFIFO(status.st_mode);
    if (!isPipe || (::fcntl(descriptor(), F_GETFL) & O_ACCMODE) != O_WRONLY)
        return;
    m_reader = std::make_unique<QSocketNotifier>(descriptor(), QSocketNotifier::Read);
    QObject::connect(m_reader.get(), &QSocketNotifier::activated, m_reader.get(), [this] { lose(); });
}

void Output::lose()
{
    m_valid = false;
    if (m_reader)
        m_reader->setEnabled(false);
    if (m_lost)
        QMetaObject::invokeMethod(QCoreApplication::instance(), std::exchange(m_lost, nullptr), Qt::QueuedConnection);
}

} // namespace zyn::handset
