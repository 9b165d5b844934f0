// The keys that a user presses.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>

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
    void pressed(char key);
    /// There will be no more keys.
    void ended();

private:
    void read();

    QSocketNotifier m_readable;
    std::optional<termios> m_before; ///< none when standard input is no terminal
};

} // namespace zyn::handset
