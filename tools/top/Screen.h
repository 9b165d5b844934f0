// The terminal as a screen that is drawn, and left as it was.
#pragma once

#include "tools/top/Canvas.h"

#include <chrono>
#include <optional>

#include <termios.h>

namespace zyn::tool {

class Console;

/**
 * Takes the terminal behind the console: its other screen, without a cursor, and keys as they are pressed.
 *
 * Only plain ANSI sequences are used. The destructor gives the terminal back.
 */
class Screen
{
public:
    explicit Screen(Console& console);
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen() { leave(); }

    /// @{ Takes the terminal, whose other screen comes with what is shown first, and gives it back. Doing so again
    /// changes nothing.
    void enter();
    void leave();
    /// @}

    /// A blank canvas of the terminal's present size.
    Canvas blank() const;
    /// Shows @p canvas: where the size is the same, only the cells that differ from what is shown are written.
    /// False when the terminal takes no output just now, and was not waited for.
    bool show(const Canvas& canvas);
    /// Takes for granted no longer what the terminal shows.
    void forget() { m_shown.reset(); }

private:
    bool hasRoom(std::chrono::milliseconds patience) const;

    Console& m_console;
    const bool m_inColour;
    bool m_isTaken = false;
    bool m_isEntered = false;          ///< whether the other screen is shown
    std::optional<termios> m_keyboard; ///< as it was found
    std::optional<Canvas> m_shown;
};

} // namespace zyn::tool
