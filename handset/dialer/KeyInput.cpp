// Reads standard input key by key, from a terminal or a pipe.
#include "handset/dialer/KeyInput.h"

#include "platform/posix/UnixSocket_p.h"

#include <array>
#include <cerrno>
#include <span>

#include <unistd.h>

namespace zyn::handset {
namespace {

std::optional<termios> terminalSettings()
{
    termios settings = {};
    return ::tcgetattr(STDIN_FILENO, &settings) == 0 ? std::optional(settings) : std::nullopt;
}

} // namespace

KeyInput::KeyInput()
    : m_readable(STDIN_FILENO, QSocketNotifier::Read)
    , m_before(terminalSettings())
    , m_decoder(m_before.has_value())
{
    m_pause.setSingleShot(true);
    connect(&m_readable, &QSocketNotifier::activated, this, &KeyInput::read);
    connect(&m_pause, &QTimer::timeout, this, &KeyInput::finishKey);
    if (!m_before)
        return;
    termios keyByKey = *m_before;
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
    for (const char byte : std::span(bytes).first(n > 0 ? static_cast<size_t>(n) : 0))
        handleByte(byte);
    const auto timeout = m_decoder.timeout();
    if (n > 0 && timeout) {
        m_pause.start(*timeout);
        return;
    }
    m_pause.stop();
    if (n > 0)
        return;
    m_readable.setEnabled(false);
    finishKey();
    Q_EMIT ended();
}

void KeyInput::handleByte(char byte)
{
    constexpr char kEndOfInput = 4; // Ctrl+D, which a terminal in this mode passes on as a byte
    for (const QByteArray& key : m_decoder.decode(byte)) {
        if (m_before && key == QByteArrayView(&kEndOfInput, 1))
            Q_EMIT ended();
        else
            Q_EMIT pressed(key);
    }
}

void KeyInput::finishKey()
{
    // If this process was held up, the rest may have arrived in time and be waiting to be read.
    if (m_readable.isEnabled() && posix::waitUntilReadable(STDIN_FILENO, posix::Clock::now())) {
        read();
        return;
    }
    if (const QByteArray key = m_decoder.finish(); !key.isEmpty())
        Q_EMIT pressed(key);
}

} // namespace zyn::handset
