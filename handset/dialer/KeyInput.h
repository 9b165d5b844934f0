// The keys that a user presses.
#pragma once

#include "handset/dialer/KeyDecoder.h"

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <optional>

#include <termios.h>

namespace zyn::handset {

/// Standard input, key by key: a terminal hands over each key at once, and is as it was before when the object is gone.
class KeyInput : public QObject
{
    Q_OBJECT

public:
    KeyInput();
    ~KeyInput() override;

Q_SIGNALS:
    /// @param key  a byte, or the whole sequence that a terminal sends for one key
    void pressed(const QByteArray& key);
    /// There will be no more keys.
    void ended();

private:
    void read();
    void handleByte(char byte);
    void finishKey();

    QSocketNotifier m_readable;
    const std::optional<termios> m_before; ///< none when standard input is no terminal
    KeyDecoder m_decoder;
    QTimer m_pause; ///< runs out when no more of a key has come
};

} // namespace zyn::handset
