// Prints a day as it is played: who says what to whom, and which checks pass.
#include "handset/day/View.h"

#include <cstdio>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

constexpr int kMarkWidth = 4;
constexpr int kTimeWidth = 7;

/// @{ Escape sequences of a terminal.
constexpr char kBold[] = "\033[1m";
constexpr char kFaint[] = "\033[2m";
constexpr char kRed[] = "\033[1;31m";
constexpr char kGreen[] = "\033[32m";
constexpr char kBlue[] = "\033[34m";
constexpr char kReset[] = "\033[0m";
constexpr char kPlain[] = "";
/// @}

/// Whether the user's terminal shows more than ASCII.
bool hasUtf8Locale()
{
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        if (const QByteArray value = qgetenv(name).toUpper(); !value.isEmpty())
            return value.contains("UTF-8") || value.contains("UTF8");
    }
    return false;
}

} // namespace

View::View(qsizetype longestName)
    : m_nameWidth(static_cast<int>(longestName))
    , m_isColoured(::isatty(STDOUT_FILENO) == 1 && qEnvironmentVariableIsEmpty("NO_COLOR"))
    , m_arrow(m_isColoured && hasUtf8Locale() ? u" → "_s : u" -> "_s)
{
    m_time.start();
}

void View::chapter(const QString& title)
{
    write(kPlain, QString());
    write(kBold, title);
}

void View::act(const QString& from, const QString& to, const QString& what)
{
    write({kPlain, QString(), kBold}, from, to, what);
}

void View::check(bool holds, const QString& from, const QString& to, const QString& what)
{
    ++m_checks;
    m_held += holds ? 1 : 0;
    write(holds ? Row{kGreen, u"ok"_s, kPlain} : Row{kRed, u"OFF"_s, kRed}, from, to, what);
}

void View::explain(const QString& text)
{
    write(kRed, QString(kMarkWidth + kTimeWidth + 2, u' ') + text);
}

bool View::conclude()
{
    const bool holds = m_held == m_checks;
    write(kPlain, QString());
    write(holds ? kBold : kRed, u"%1 of %2 checks held."_s.arg(m_held).arg(m_checks));
    if (std::ferror(stdout) == 0)
        return holds;
    std::fputs("zyn-day: cannot write to standard output\n", stderr);
    return false;
}

void View::write(const Row& row, const QString& from, const QString& to, const QString& what)
{
    const QString time = QString::number(static_cast<double>(m_time.elapsed()) / 1000, 'f', 3);
    write(kPlain, painted(row.markColour, row.mark.leftJustified(kMarkWidth))
                      + painted(kFaint, time.rightJustified(kTimeWidth)) + u"  "_s
                      + painted(kBlue, from.leftJustified(m_nameWidth)) + m_arrow
                      + painted(kBlue, to.leftJustified(m_nameWidth)) + u"  "_s + painted(row.textColour, what));
}

void View::write(const char* colour, const QString& line)
{
    std::printf("%s\n", painted(colour, line).toUtf8().constData());
    std::fflush(stdout);
}

QString View::painted(const char* colour, const QString& text) const
{
    return m_isColoured && colour != kPlain ? QLatin1String(colour) + text + QLatin1String(kReset) : text;
}

} // namespace zyn::handset
