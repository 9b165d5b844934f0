// The dialer: builds a number from key presses and asks for the call.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zyn::handset {

class Output;

/**
 * Collects the keys of a number, and asks for the call.
 *
 * While the keypad is locked, or no SIM card is ready, a key is accepted only if it may lead to an emergency number or
 * to a control code that is allowed then, and only an emergency number is called. Each key prints a line: the key, how
 * it was taken, and the text so far.
 */
class Dialer
{
public:
    explicit Dialer(Output& output)
        : m_output(output)
    {}

    /// @param key  a byte, or an escape sequence, which a handset does not know and which is logged; empty for no key
    void press(const QByteArray& key);

    /// The keys and what they do, as text for --help.
    static QString help();

private:
    void add(char digit);
    void clear();
    void call();
    void hangUp();
    void show(const QString& key, const QString& verdict) const;

    Output& m_output;
    QString m_text;
};

} // namespace zyn::handset
