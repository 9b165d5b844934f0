// What a dialer makes of its keys.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zyn::handset {

class Output;

/**
 * Collects the keys of a number, and asks for the call.
 *
 * While the keypad is locked, or no SIM card is ready, a key counts only where it may lead to an emergency number or to
 * a control code that is allowed then, and only an emergency number is called. For each key a line is shown: the key,
 * what has become of it, and the text so far.
 */
class Dialer
{
public:
    explicit Dialer(Output& output)
        : m_output(output)
    {}

    /// @param key  a byte, or an escape sequence, which is no key of a handset; empty for none
    void press(const QByteArray& key);

    /// The keys and what they do, for people.
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
