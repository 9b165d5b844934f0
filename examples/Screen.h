// The screen of an example: standard output in place of a handset's display.
#pragma once

#include <QtCore/QString>

#include <platform/QuietTrace.h>

#include <cstdio>
#include <cstdlib>

/**
 * Standard output, for the example alone. A product sends the library's trace to its log; here it is discarded.
 *
 * Make the screen first in main().
 */
class Screen
{
public:
    Screen()
    {
        if (!m_trace.output())
            giveUp();
    }

    /// Shows @p line at once. Ends the example if that fails.
    void show(const QString& line)
    {
        if (std::fprintf(m_trace.output(), "%s\n", qUtf8Printable(line)) < 0 || std::fflush(m_trace.output()) != 0)
            giveUp();
    }

private:
    [[noreturn]] static void giveUp()
    {
        std::perror("screen");
        std::exit(EXIT_FAILURE);
    }

    QuietTrace m_trace;
};
