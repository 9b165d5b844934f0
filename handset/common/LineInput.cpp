// Standard input, line by line.
#include "handset/common/LineInput.h"

#include <array>
#include <cerrno>
#include <span>
#include <utility>

#include <termios.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

/// Marks a line that was cut.
constexpr char kCut = '~';

} // namespace

LineInput::LineInput(qsizetype longestLine)
    : m_longestLine(longestLine)
    , m_readable(STDIN_FILENO, QSocketNotifier::Read)
{
    m_readable.setEnabled(false);
    connect(&m_readable, &QSocketNotifier::activated, this, &LineInput::read);
}

void LineInput::ask()
{
    if (::isatty(STDIN_FILENO) != 0)
        dropTyped();
    m_isAsked = true;
    deliver();
}

void LineInput::cancel()
{
    m_isAsked = false;
    m_readable.setEnabled(false);
}

void LineInput::read()
{
    std::array<char, 256> bytes;
    const ssize_t n = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (n < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    for (const char character : std::span(bytes).first(n > 0 ? static_cast<size_t>(n) : 0))
        append(character);
    if (n <= 0) {
        m_isAtEnd = true;
        m_lines += std::exchange(m_line, {});
    }
    deliver();
}

void LineInput::dropTyped()
{
    // Touching its terminal would stop a background process.
    const pid_t foreground = ::tcgetpgrp(STDIN_FILENO);
    if (foreground == -1 || foreground == ::getpgrp())
        ::tcflush(STDIN_FILENO, TCIFLUSH);
    m_line.clear();
    m_lines.clear();
}

void LineInput::append(char character)
{
    if (character == '\n')
        m_lines += std::exchange(m_line, {});
    else if (m_line.size() < m_longestLine)
        m_line += character;
    else
        m_line.back() = kCut;
}

void LineInput::deliver()
{
    const bool hasAnswer = m_isAsked && (m_isAtEnd || !m_lines.isEmpty());
    m_readable.setEnabled(m_isAsked && !hasAnswer);
    if (!hasAnswer)
        return;
    m_isAsked = false;
    // An empty line is not the end.
    Q_EMIT entered(m_lines.isEmpty() ? QString() : ""_L1 + QString::fromUtf8(m_lines.takeFirst()));
}

} // namespace zyn::handset
