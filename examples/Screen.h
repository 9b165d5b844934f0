// The screen of an example: standard output in place of a handset's display.
#pragma once

#include <QtCore/QString>

#include <cstdio>
#include <cstdlib>

#include <unistd.h>

/**
 * Standard output, for the example alone.
 *
 * The library also traces to standard output, without line ends. A product sends that to its log; here it is discarded.
 * Make the screen first in main().
 */
class Screen
{
public:
    Screen()
        : m_file(::fdopen(::dup(STDOUT_FILENO), "w"))
    {
        if (!m_file || !std::freopen("/dev/null", "w", stdout))
            giveUp();
    }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen() { std::fclose(m_file); }

    /// Shows @p line at once. Ends the example if that fails.
    void show(const QString& line)
    {
        if (std::fprintf(m_file, "%s\n", qUtf8Printable(line)) < 0 || std::fflush(m_file) != 0)
            giveUp();
    }

private:
    [[noreturn]] static void giveUp()
    {
        std::perror("screen");
        std::exit(EXIT_FAILURE);
    }

    std::FILE* const m_file;
};
