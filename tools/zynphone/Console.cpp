// The tool's own output, apart from the library's trace text: lines, progress, and files.
#include "tools/zynphone/Console.h"

#include "platform/posix/StagedFile_p.h"
#include "tools/zynphone/ExitCode.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <utility>

#include <unistd.h>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr auto kBeforeFirst = 1s;
constexpr auto kBetween = 200ms;

/// Moves to the beginning of the line and clears it.
constexpr char kStartAfresh[] = "\r\033[K";

void writeToTerminal(const QByteArray& bytes)
{
    std::fputs(bytes.constData(), stderr);
    std::fflush(stderr);
}

void requireDone(bool isDone, const QString& path, const QString& why)
{
    if (!isDone)
        throw tool::failure(u"cannot write %1: %2"_s.arg(path, why));
}

} // namespace

void Console::write(const QJsonDocument& document)
{
    // JSON does not escape the characters from 127 on.
    write(jsonEscaped(QString::fromUtf8(document.toJson(QJsonDocument::Compact))) + u'\n');
}

void Console::writeError(const QString& line)
{
    if (fetchTraced())
        std::fputc('\n', stderr);
    std::fputs((printable(line) + u'\n').toUtf8().constData(), stderr);
}

Progress::Progress(std::function<QString()> text)
    : m_text(std::move(text))
{
    QObject::connect(&m_timer, &QTimer::timeout, [this] { show(); });
    if (::isatty(STDERR_FILENO) == 1)
        m_timer.start(kBeforeFirst);
}

Progress::~Progress()
{
    if (m_isShown)
        writeToTerminal(kStartAfresh);
}

void Progress::show()
{
    m_timer.setInterval(kBetween);
    m_isShown = true;
    writeToTerminal(kStartAfresh + m_text().toUtf8());
}

void writeFile(const QString& path, const QByteArray& contents)
{
    // A rename would replace a device or a pipe by a file.
    const QFileInfo place(path);
    if (place.exists() && !place.isFile()) {
        QFile file(path);
        const bool isDone = file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.flush();
        requireDone(isDone, path, file.errorString());
    } else {
        replaceFile(path, contents);
    }
}

void replaceFile(const QString& path, const QByteArray& contents)
{
    const bool isDone = posix::replaceFile(QFile::encodeName(path), contents);
    requireDone(isDone, path, qt_error_string(errno));
}

} // namespace zyn::tool
