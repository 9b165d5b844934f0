// The tool's own output, kept apart from what the library traces.
#include "tools/zynphone/Console.h"

#include "tools/zynphone/JsonText.h"

#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int kFirstFreeDescriptor = 3;

/// A copy of standard output, on no descriptor that anybody takes for a standard one.
int takeStandardOutput()
{
    return ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, kFirstFreeDescriptor);
}

void silenceStandardOutput()
{
    const int nowhere = ::open("/dev/null", O_WRONLY);
    // When the tool was started without a standard output, this is the descriptor already.
    if (nowhere == STDOUT_FILENO)
        return;
    ::dup2(nowhere, STDOUT_FILENO);
    ::close(nowhere);
}

} // namespace

namespace zyn::tool {

QString printable(const QString& text)
{
    QString result;
    for (const QChar character : text) {
        if (character.category() == QChar::Other_Control)
            result += QStringLiteral("\\x%1").arg(int{character.unicode()}, 2, 16, QLatin1Char('0'));
        else
            result += character;
    }
    return result;
}

Console::Console()
{
    m_sound =
        m_output.open(takeStandardOutput(), QIODevice::WriteOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle);
    silenceStandardOutput();
}

void Console::showTrace()
{
    std::fflush(stdout);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    // Otherwise the trace would come after the tool's own lines.
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    m_traced = true;
}

void Console::write(const QString& text)
{
    write(text.toUtf8());
}

void Console::write(const QJsonDocument& document)
{
    // JSON allows all characters from 127 on as they are.
    write(jsonEscaped(QString::fromUtf8(document.toJson(QJsonDocument::Compact))) + QLatin1Char('\n'));
}

void Console::write(const QByteArray& bytes)
{
    m_sound = m_sound && m_output.write(bytes) == bytes.size();
}

bool Console::isTerminal() const
{
    return ::isatty(descriptor()) == 1;
}

bool Console::isColourful() const
{
    return isTerminal() && qEnvironmentVariableIsEmpty("NO_COLOR");
}

void Console::writeError(const QString& line)
{
    if (std::exchange(m_traced, false))
        std::fputc('\n', stderr);
    std::fputs((printable(line) + QLatin1Char('\n')).toUtf8().constData(), stderr);
}

} // namespace zyn::tool
