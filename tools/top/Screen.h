// The terminal that zynphone top draws on: a canvas of cells, the signals of the terminal, and the screen.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QSocketNotifier>
#include <QtCore/QString>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <termios.h>

namespace zyn::tool {

using namespace Qt::StringLiterals;

class Console;

enum class Style : uint8_t { Plain, Title, Label, Alert };

/// One place of the screen.
struct Cell
{
    QString text = u" "_s; ///< one character with its marks; empty in the second half of a wide one
    Style style = Style::Plain;

    bool operator==(const Cell&) const = default;
};

/// A screen in memory, blank when it is made.
class Canvas
{
public:
    Canvas(int columns, int rows);

    int columns() const { return m_columns; }
    int rows() const { return m_rows; }
    const Cell& at(int row, int column) const { return m_cells[index(row, column)]; }

    /// Writes @p text, of which every character that does not just show is escaped, from @p column on into at most @p
    /// width places of a row; an ellipsis stands for what does not fit. What lies outside is left out.
    void put(int row, int column, int width, const QString& text, Style style = Style::Plain);

private:
    size_t index(int row, int column) const
    {
        return static_cast<size_t>(row) * static_cast<size_t>(m_columns) + static_cast<size_t>(column);
    }

    int m_columns;
    int m_rows;
    std::vector<Cell> m_cells;
};

/// Delivers SIGHUP, SIGQUIT, SIGTSTP, SIGCONT and SIGWINCH in the event loop. A program without further threads has
/// one.
class TerminalSignals
{
public:
    explicit TerminalSignals(std::function<void(int signal)> handler);

    /// Stops the process, as SIGTSTP would have if it were not caught, until it is told to go on.
    static void stop();

private:
    void deliver();

    std::function<void(int)> m_handler;
    posix::UniqueFd m_signals;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

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
    /// Shows @p canvas: where the size is the same, only the cells that differ from what is shown are written. False
    /// when the terminal takes no output just now, and was not waited for.
    bool show(const Canvas& canvas);
    /// Takes for granted no longer what the terminal shows.
    void invalidate() { m_shown.reset(); }

private:
    bool hasRoom(std::chrono::milliseconds timeout) const;

    Console& m_console;
    const bool m_inColour;
    bool m_isTaken = false;
    bool m_isEntered = false;          ///< whether the other screen is shown
    std::optional<termios> m_keyboard; ///< as it was found
    std::optional<Canvas> m_shown;
};

} // namespace zyn::tool
