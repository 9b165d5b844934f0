// How far a verb has come that takes its time.
#include "tools/zynphone/Progress.h"

#include <chrono>
#include <cstdio>
#include <utility>

#include <unistd.h>

using namespace std::chrono_literals;

namespace zyn::tool {
namespace {

constexpr auto kBeforeFirst = 1s;
constexpr auto kBetween = 200ms;

/// Goes to the line's beginning and clears it.
constexpr char kStartAfresh[] = "\r\033[K";

void writeToTerminal(const QByteArray& bytes)
{
    std::fputs(bytes.constData(), stderr);
    std::fflush(stderr);
}

} // namespace

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

} // namespace zyn::tool
