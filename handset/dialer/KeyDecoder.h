// Splits the bytes that a terminal sends into keys.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>

#include <chrono>
#include <optional>

namespace zyn::handset {

/**
 * Assembles the bytes that a terminal sends for a key: a single byte, or an escape sequence.
 *
 * Only time tells the Escape key from the start of a sequence, and an incomplete sequence from one that goes on. So the
 * reader calls finish() if no byte comes within timeout().
 */
class KeyDecoder
{
public:
    /// @param isTerminal  whether Escape and a character are one key, as a terminal sends it for Alt; otherwise two
    /// keys
    explicit KeyDecoder(bool isTerminal)
        : m_isTerminal(isTerminal)
    {}

    /// The keys that @p byte completes: often one; none inside a sequence; two if it ends a sequence to which it does
    /// not belong.
    QByteArrayList decode(char byte);

    /// How long to wait for the next byte of an incomplete key; nothing between keys.
    std::optional<std::chrono::milliseconds> timeout() const;

    /// Ends an incomplete key and returns its bytes; empty between keys.
    QByteArray finish();

private:
    enum class State {
        Between,
        Escape,      ///< any sequence may follow, or none
        EscapeAlone, ///< taken as a key, but the rest of a sequence may still come late
        Set,         ///< a sequence that ends with a letter or a digit
        Control,     ///< a sequence with parameters
        Text,        ///< a sequence that contains a text
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
