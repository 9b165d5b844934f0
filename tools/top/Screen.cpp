// The terminal that zynphone top draws on: a canvas of cells, the signals of the terminal, and the screen.
#include "tools/top/Screen.h"

#include "handset/common/Text.h"
#include "platform/posix/UnixSocket_p.h"
#include "tools/zynphone/Console.h"

#include <QtCore/QList>

#include <algorithm>
#include <array>
#include <csignal>
#include <initializer_list>
#include <utility>

#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <unistd.h>
#include <wchar.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zyn::tool {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
/// More marks than any script puts on one letter.
constexpr qsizetype kMaxGlyphLength = 8;

/// A character with the marks on it, and how many places it takes.
struct Glyph
{
    QString text;
    int width;
};

std::vector<Glyph> glyphsOf(const QString& text)
{
    std::vector<Glyph> glyphs;
    for (char32_t code : handset::jsonEscaped(text).toUcs4()) {
        const int width = ::wcwidth(static_cast<wchar_t>(code));
        if (width > 0)
            glyphs.push_back({QString::fromUcs4(&code, 1), width});
        else if (width < 0 || glyphs.empty())
            glyphs.push_back({QString::fromUcs4(&kReplacement, 1), 1});
        else if (glyphs.back().text.size() < kMaxGlyphLength)
            glyphs.back().text += QString::fromUcs4(&code, 1);
    }
    return glyphs;
}

int widthOf(const std::vector<Glyph>& glyphs)
{
    int width = 0;
    for (const Glyph& glyph : glyphs)
        width += glyph.width;
    return width;
}

void elide(std::vector<Glyph>& glyphs, int limit)
{
    int width = widthOf(glyphs);
    if (width <= limit)
        return;
    while (!glyphs.empty() && width >= limit) {
        width -= glyphs.back().width;
        glyphs.pop_back();
    }
    glyphs.push_back({u"\u2026"_s, 1});
}

sigset_t setOf(std::initializer_list<int> numbers)
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : numbers)
        sigaddset(&signals, number);
    return signals;
}

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
class FrameDrawing
{
public:
    explicit FrameDrawing(bool inColour)
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

void drawRow(FrameDrawing& drawing, const Canvas& shown, const Canvas& canvas, int row)
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

Canvas::Canvas(int columns, int rows)
    : m_columns(std::max(columns, 0))
    , m_rows(std::max(rows, 0))
    , m_cells(static_cast<size_t>(m_columns) * static_cast<size_t>(m_rows))
{}

void Canvas::put(int row, int column, int width, const QString& text, Style style)
{
    const int limit = std::min(width, m_columns - column);
    if (row < 0 || row >= m_rows || column < 0 || limit <= 0)
        return;
    std::vector<Glyph> glyphs = glyphsOf(text);
    elide(glyphs, limit);
    for (const Glyph& glyph : glyphs) {
        m_cells[index(row, column++)] = {glyph.text, style};
        for (int half = 1; half < glyph.width; ++half)
            m_cells[index(row, column++)] = {QString(), style};
    }
}

TerminalSignals::TerminalSignals(std::function<void(int)> handler)
    : m_handler(std::move(handler))
{
    const sigset_t signals = setOf({SIGHUP, SIGQUIT, SIGTSTP, SIGCONT, SIGWINCH});
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    m_signals.reset(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    m_notifier = std::make_unique<QSocketNotifier>(m_signals.get(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { deliver(); });
}

void TerminalSignals::deliver()
{
    signalfd_siginfo info = {};
    while (posix::retry([&] { return ::read(m_signals.get(), &info, sizeof info); }) == ssize_t{sizeof info})
        m_handler(static_cast<int>(info.ssi_signo));
}

void TerminalSignals::stop()
{
    const sigset_t signal = setOf({SIGTSTP});
    // Pending while it is blocked; the process stops where it is unblocked.
    ::raise(SIGTSTP);
    ::sigprocmask(SIG_UNBLOCK, &signal, nullptr);
    ::sigprocmask(SIG_BLOCK, &signal, nullptr);
}

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
    invalidate();
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

bool Screen::hasRoom(std::chrono::milliseconds timeout) const
{
    return posix::waitUntilWritable(m_console.descriptor(), posix::Clock::now() + timeout);
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
    FrameDrawing drawing(m_inColour);
    for (int row = 0; row < canvas.rows(); ++row)
        drawRow(drawing, *m_shown, canvas, row);
    text += drawing.text();
    if (!text.isEmpty())
        m_console.write(text);
    m_shown = canvas;
    return true;
}

} // namespace zyn::tool
