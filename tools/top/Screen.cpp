// The terminal as a screen that is drawn, and left as it was.
#include "tools/top/Screen.h"

#include "platform/posix/UnixSocket_p.h"
#include "tools/zynphone/Console.h"

#include <array>
#include <chrono>
#include <utility>

#include <sys/ioctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zyn::tool {
namespace {

// The other screen, and the cursor.
constexpr QLatin1String kEnter("\033[?1049h\033[?25l");
constexpr QLatin1String kLeave("\033[0m\033[?25h\033[?1049l");
constexpr QLatin1String kClear("\033[0m\033[2J");

/// What a terminal that does not know its size is taken for.
constexpr winsize kUsualSize{.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
/// No terminal is larger; whoever sets a size may set any.
constexpr int kMaxSize = 1000;

/// How long a terminal that takes no output is waited for before it is given back without a word.
constexpr std::chrono::milliseconds kLeaveTime = 200ms;

/// By style.
constexpr std::array<const char*, 4> kStyles{"\033[0m", "\033[0;1m", "\033[0;36m", "\033[0;1;31m"};

/// Writes the cells that have changed, moving the cursor from one run of them to the next.
class Drawing
{
public:
    explicit Drawing(bool inColour)
        : m_inColour(inColour)
    {}

    void moveTo(int row, int column) { m_text += u"\033[%1;%2H"_s.arg(row + 1).arg(column + 1); }
    void write(const Cell& cell)
    {
        if (m_inColour && std::exchange(m_style, cell.style) != cell.style)
            m_text += QLatin1String(kStyles.at(static_cast<size_t>(cell.style)));
        m_text += cell.text;
    }
    QString text() const { return m_style == Style::Plain ? m_text : m_text + QLatin1String(kStyles[0]); }

private:
    const bool m_inColour;
    Style m_style = Style::Plain;
    QString m_text;
};

void drawRow(Drawing& drawing, const Canvas& shown, const Canvas& canvas, int row)
{
    bool inRun = false;
    for (int column = 0; column < canvas.columns(); ++column) {
        const Cell& cell = canvas.at(row, column);
        const bool isNew = cell != shown.at(row, column);
        if (isNew && !inRun)
            drawing.moveTo(row, column);
        if (isNew)
            drawing.write(cell);
        inRun = isNew;
    }
}

} // namespace

Screen::Screen(Console& console)
    : m_console(console)
    , m_inColour(console.isColourful())
{
    enter();
}

void Screen::enter()
{
    if (std::exchange(m_isTaken, true))
        return;
    termios keyboard = {};
    if (::isatty(STDIN_FILENO) == 1 && ::tcgetattr(STDIN_FILENO, &keyboard) == 0) {
        m_keyboard = keyboard;
        keyboard.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        ::tcsetattr(STDIN_FILENO, TCSANOW, &keyboard);
    }
    forget();
}

void Screen::leave()
{
    if (!std::exchange(m_isTaken, false))
        return;
    if (std::exchange(m_isEntered, false) && hasRoom(kLeaveTime))
        m_console.write(kLeave);
    if (const auto keyboard = std::exchange(m_keyboard, std::nullopt))
        ::tcsetattr(STDIN_FILENO, TCSANOW, &*keyboard);
}

Canvas Screen::blank() const
{
    winsize size = {};
    if (::ioctl(m_console.descriptor(), TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0)
        size = kUsualSize;
    return Canvas(std::min(int{size.ws_col}, kMaxSize), std::min(int{size.ws_row}, kMaxSize));
}

bool Screen::hasRoom(std::chrono::milliseconds patience) const
{
    return posix::waitUntilWritable(m_console.descriptor(), posix::Clock::now() + patience);
}

bool Screen::show(const Canvas& canvas)
{
    if (!m_isTaken)
        return true;
    if (!hasRoom(0ms))
        return false;
    QString text;
    if (!std::exchange(m_isEntered, true))
        text = kEnter;
    if (!m_shown || m_shown->columns() != canvas.columns() || m_shown->rows() != canvas.rows()) {
        text += kClear;
        m_shown.emplace(canvas.columns(), canvas.rows());
    }
    Drawing drawing(m_inColour);
    for (int row = 0; row < canvas.rows(); ++row)
        drawRow(drawing, *m_shown, canvas, row);
    text += drawing.text();
    if (!text.isEmpty())
        m_console.write(text);
    m_shown = canvas;
    return true;
}

} // namespace zyn::tool
