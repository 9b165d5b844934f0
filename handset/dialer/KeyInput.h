// Reads standard input key by key, from a terminal or a pipe.
#pragma once

#include "handset/dialer/KeyDecoder.h"

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <optional>

#include <termios.h>

namespace zyn::handset {

/// Standard input, key by key. A terminal delivers each key at once; the destructor restores its settings.
class KeyInput : public QObject
{
    Q_OBJECT

public:
    KeyInput();
    ~KeyInput() override;

Q_SIGNALS:
    /// @param key  a byte, or the whole sequence that a terminal sends for a key
    void pressed(const QByteArray& key);
    /// The input has ended.
    void ended();

private:
    void read();
    void handleByte(char byte);
    void finishKey();

    QSocketNotifier m_readable;
    const std::optional<termios> m_before; ///< the settings to restore; unset if standard input is not a terminal
    KeyDecoder m_decoder;
    QTimer m_pause; ///< expires if the rest of a key does not come
};

} // namespace zyn::handset
