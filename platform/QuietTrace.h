// Keeps an application's standard output free of the library's trace text.
#pragma once

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

/**
 * Sends the trace text elsewhere, and keeps standard output for the application.
 *
 * The library prints debug lines, many without a line end, in two ways: with printf() to `stdout`, and to the stream
 * of the logging library (platform/aplog.h), which is `stdout`, too, until an application sets another. Both end at
 * descriptor 1. This object leads that descriptor to another place. The application writes to output(), a stream on
 * the standard output that the process was started with; what it writes with printf(), std::cout or to descriptor 1
 * goes with the trace.
 *
 * Make it first in main(). Nothing has to be put in order at the end, so the output stays clean when the process is
 * killed. Descriptor 1 is not led back when the object ends, because the library may print until the process does.
 * Programs that the process starts inherit the place of the trace as their standard output.
 */
class QuietTrace
{
public:
    /// Appends the trace to the file @p path, which only its owner may read if it is made; by default it is discarded.
    explicit QuietTrace(const char* path = nullptr)
        : m_output(standardOutput())
    {
        const int file =
            ::open(path ? path : "/dev/null", O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR);
        lead(file, path != nullptr);
        if (file >= 0)
            ::close(file);
    }
    /// Sends the trace to the open descriptor @p descriptor, such as STDERR_FILENO, which stays open.
    explicit QuietTrace(int descriptor)
        : m_output(standardOutput())
    {
        lead(descriptor, true);
    }
    QuietTrace(const QuietTrace&) = delete;
    QuietTrace& operator=(const QuietTrace&) = delete;
    ~QuietTrace()
    {
        if (m_output)
            std::fclose(m_output);
    }

    /// Standard output, for the application alone; each line is written as it ends. Null if the place of the trace or
    /// standard output cannot be opened, as errno tells; then the trace goes where it went.
    std::FILE* output() const { return m_output; }

private:
    /// A stream on a copy of standard output; null if that is closed.
    static std::FILE* standardOutput()
    {
        constexpr int kBehindStandardStreams = 3;
        const int copy = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, kBehindStandardStreams);
        std::FILE* const stream = copy < 0 ? nullptr : ::fdopen(copy, "w");
        if (copy >= 0 && !stream)
            ::close(copy);
        if (stream)
            std::setvbuf(stream, nullptr, _IOLBF, BUFSIZ);
        return stream;
    }

    /// What is @p kept is written at once, so that a killed process leaves all of it.
    void lead(int descriptor, bool kept)
    {
        if (!m_output)
            return;
        std::fflush(stdout);
        if (::dup2(descriptor, STDOUT_FILENO) < 0) {
            std::fclose(m_output);
            m_output = nullptr;
        } else if (kept) {
            std::setvbuf(stdout, nullptr, _IONBF, 0);
        }
    }

    std::FILE* m_output;
};
