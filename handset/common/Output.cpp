// Standard output of a program, kept free of the library's trace text.
#include "handset/common/Output.h"

#include "handset/common/Log.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
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
    return descriptor() < 0 ? qt_error_string(EBADF) : m_output.errorString();
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
    m_valid = m_valid && m_output.write(bytes) == bytes.size();
}

} // namespace zyn::handset
