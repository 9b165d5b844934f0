// Splits the bytes that a terminal sends into keys.
#include "handset/dialer/KeyDecoder.h"

#include <utility>

using namespace std::chrono_literals;

namespace zyn::handset {
namespace {

constexpr char kEscape = '\x1B';
constexpr char kBell = '\x07';
constexpr char kDelete = '\x7F';

/// A terminal sends a sequence at once; nobody presses two keys this fast.
constexpr auto kAtOnce = 50ms;
/// A slow line delivers a sequence in parts.
constexpr auto kSlowLine = 500ms;

/// How many bytes of a sequence are kept, for the log.
constexpr qsizetype kKept = 32;

bool isControl(char byte)
{
    return static_cast<unsigned char>(byte) < ' ' || byte == kDelete;
}

bool isWithin(char byte, char first, char last)
{
    return byte >= first && byte <= last;
}

} // namespace

QByteArrayList KeyDecoder::decode(char byte)
{
    if (m_state == State::Between)
        return begin(byte);
    if (m_state == State::EscapeAlone) {
        // No key of the dialer starts like this: it is the rest of a sequence that a slow line has split.
        if (after(byte) != State::Control)
            return begin(byte);
        m_key = QByteArray(1, kEscape);
        return enter(byte, State::Control);
    }
    const State next = m_state == State::Escape ? after(byte) : isEndedBy(byte) ? State::Between : m_state;
    if (!isNoMore(byte, next))
        return enter(byte, next);
    QByteArrayList keys{finish()};
    keys += begin(byte);
    return keys;
}

std::optional<std::chrono::milliseconds> KeyDecoder::timeout() const
{
    if (m_state == State::Between || m_state == State::EscapeAlone)
        return std::nullopt;
    return m_state == State::Control ? kSlowLine : kAtOnce;
}

QByteArray KeyDecoder::finish()
{
    m_state = m_state == State::Escape ? State::EscapeAlone : State::Between;
    return std::exchange(m_key, {});
}

/// The state after Escape and @p byte; Between if they are a whole key.
KeyDecoder::State KeyDecoder::after(char byte)
{
    constexpr QLatin1String kSets(" !\"$%&'(),-./");
    constexpr QLatin1String kTexts("]PX^_");
    if (byte == kEscape)
        return State::Escape;
    if (byte == '[' || byte == 'O')
        return State::Control;
    if (kTexts.contains(QLatin1Char(byte)))
        return State::Text;
    return kSets.contains(QLatin1Char(byte)) ? State::Set : State::Between;
}

/// Whether @p byte, which would lead to @p next, does not belong to the sequence but is a key of its own.
bool KeyDecoder::isNoMore(char byte, State next) const
{
    if (m_state == State::Escape)
        return next == State::Between && !m_isTerminal;
    return isControl(byte) && !(m_state == State::Text && byte == kBell);
}

bool KeyDecoder::isEndedBy(char byte) const
{
    switch (m_state) {
    case State::Set:
        return !isWithin(byte, ' ', '/');
    case State::Control:
        // A console sends a second bracket for its first function keys.
        return !isWithin(byte, ' ', '?') && !(byte == '[' && m_key.endsWith("\x1B["));
    default:
        return byte == kBell;
    }
}

QByteArrayList KeyDecoder::begin(char byte)
{
    m_key.clear();
    return enter(byte, byte == kEscape ? State::Escape : State::Between);
}

/// Adds @p byte to the key, which is complete if @p state is Between.
QByteArrayList KeyDecoder::enter(char byte, State state)
{
    if (m_key.size() < kKept)
        m_key += byte;
    m_state = state;
    if (state != State::Between)
        return {};
    return {std::exchange(m_key, {})};
}

} // namespace zyn::handset
