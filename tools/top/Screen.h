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

/// One cell of the screen.
struct Cell
{
    QString text = u" "_s; ///< one character with its marks; empty in the second half of a wide one
    Style style = Style::Plain;

    bool operator==(const Cell&) const = default;
};

/// A screen in memory, initially blank.
class Canvas
{
public:
    Canvas(int columns, int rows);

    int columns() const { return m_columns; }
    int rows() const { return m_rows; }
    const Cell& at(int row, int column) const { return m_cells[index(row, column)]; }

    /// Writes @p text, with unprintable characters escaped, from @p column into at most @p width cells of a row,
    /// shortened with an ellipsis. Parts outside the canvas are dropped.
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

/// Delivers SIGHUP, SIGQUIT, SIGTSTP, SIGCONT and SIGWINCH in the event loop. For single-threaded programs, one per
/// program.
class TerminalSignals
{
public:
    explicit TerminalSignals(std::function<void(int signal)> handler);

    /// Stops the process, as an uncaught SIGTSTP would, until SIGCONT.
    static void stop();

private:
    void deliver();

    std::function<void(int)> m_handler;
    posix::UniqueFd m_signals;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

/**
 * Uses the terminal behind the console: its alternate screen, without a cursor, with keys delivered as they are
 * pressed. Uses plain ANSI sequences only. The destructor restores the terminal.
 */
class Screen
{
public:
    explicit Screen(Console& console);
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen() { leave(); }

    /// @{ Enters the alternate screen, with the first output, and leaves it. Repeated calls have no effect.
    void enter();
    void leave();
    /// @}

    /// A blank canvas of the terminal's current size.
    Canvas blank() const;
    /// Shows @p canvas; only changed cells are written unless the size has changed. False if the terminal accepts no
    /// output now; this does not wait.
    bool show(const Canvas& canvas);
    /// Forces the next show() to draw everything.
    void invalidate() { m_shown.reset(); }

private:
    bool hasRoom(std::chrono::milliseconds timeout) const;

    Console& m_console;
    const bool m_inColour;
    bool m_isTaken = false;
    bool m_isEntered = false;          ///< the alternate screen is active
    std::optional<termios> m_keyboard; ///< the original mode
    std::optional<Canvas> m_shown;
};

} // namespace zyn::tool
