// The keys in what a terminal sends.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>

#include <chrono>
#include <optional>

namespace zyn::handset {

/**
 * Puts together what a terminal sends for one key: a byte, or an escape sequence.
 *
 * Only time tells the Escape key from the beginning of a sequence, and a sequence that has broken off from one that
 * goes on: whoever reads calls finish() when nothing has come for as long as timeout() says.
 */
class KeyDecoder
{
public:
    /// @param isTerminal  a terminal puts Escape before what is pressed with Alt; elsewhere it is a key of its own
    /// there
    explicit KeyDecoder(bool isTerminal)
        : m_isTerminal(isTerminal)
    {}

    /// The keys that are whole with @p byte: often one, none when it goes on, two when it is none of the sequence
    /// before.
    QByteArrayList decode(char byte);

    /// How long to wait for the next byte of the key that has begun; nothing when none has.
    std::optional<std::chrono::milliseconds> timeout() const;

    /// The key that has begun, as far as it goes; empty when none has.
    QByteArray finish();

private:
    enum class State {
        Between,
        Escape,      ///< all or nothing may follow
        EscapeAlone, ///< a key, unless what follows late shows that it was none
        Set,         ///< a sequence that ends with a letter or a digit
        Control,     ///< a sequence with parameters
        Text,        ///< a sequence that holds a text
    };

    static State after(char byte);
    bool isEndedBy(char byte) const;
    bool isNoMore(char byte, State next) const;
    QByteArrayList begin(char byte);
    QByteArrayList enter(char byte, State state);

    const bool m_isTerminal;
    State m_state = State::Between;
    QByteArray m_key;
};

} // namespace zyn::handset
