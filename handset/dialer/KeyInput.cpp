// The keys that a user presses.
#include "handset/dialer/KeyInput.h"

#include <array>
#include <cerrno>
#include <span>

#include <unistd.h>

namespace zyn::handset {

KeyInput::KeyInput()
    : m_readable(STDIN_FILENO, QSocketNotifier::Read)
{
    connect(&m_readable, &QSocketNotifier::activated, this, &KeyInput::read);
    termios before = {};
    if (::tcgetattr(STDIN_FILENO, &before) != 0)
        return;
    m_before = before;
    termios keyByKey = before;
    keyByKey.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    ::tcsetattr(STDIN_FILENO, TCSANOW, &keyByKey);
}

KeyInput::~KeyInput()
{
    if (m_before)
        ::tcsetattr(STDIN_FILENO, TCSANOW, &*m_before);
}

void KeyInput::read()
{
    std::array<char, 256> bytes;
    const ssize_t n = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (n < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (n <= 0) {
        m_readable.setEnabled(false);
        Q_EMIT ended();
        return;
    }
    constexpr char kEndOfInput = 4; // Ctrl+D, which a terminal that hands over each key does not turn into an end
    for (const char key : std::span(bytes).first(static_cast<size_t>(n))) {
        if (m_before && key == kEndOfInput)
            Q_EMIT ended();
        else
            Q_EMIT pressed(key);
    }
}

} // namespace zyn::handset
