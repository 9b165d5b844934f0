// Standard output of a program, kept free of the library's trace text.
#pragma once

#include <QtCore/QFile>
#include <QtCore/QSocketNotifier>
#include <QtCore/QString>

#include <functional>
#include <memory>
#include <utility>

namespace zyn::handset {

/// Redirects standard output, descriptor 1, to /dev/null.
void silenceStandardOutput();

/**
 * Standard output of a program that shows something there.
 *
 * The library writes trace text without line ends to descriptor 1. While an Output lives, that descriptor leads to
 * /dev/null, or to standard error after showTrace(); write() uses the real standard output, which only the Output
 * knows.
 */
class Output
{
public:
    Output();

    /// Redirects the library's trace text to standard error.
    void showTrace();

    /// Writes @p text as UTF-8, at once.
    void write(const QString& text);

    /// The real standard output.
    int descriptor() const { return m_output.handle(); }
    bool isTerminal() const;
    /// Whether to use colours: on a terminal, unless NO_COLOR is set and not empty.
    bool isColourful() const;

    /// Calls @p lost in the event loop, at most once: when a write has failed, or the last reader of a pipe has gone,
    /// so that the next one would. Made in a thread with an event loop.
    void whenLost(std::function<void()> lost);

    /// Whether all writes have succeeded, and further ones may.
    bool isValid() const { return m_valid; }
    /// Why a write failed.
    QString errorString() const;
    /// EXIT_SUCCESS if all writes have succeeded, otherwise EXIT_FAILURE, which is logged.
    int exitCode() const;

protected:
    /// Whether trace text may have been written since the last call.
    bool fetchTraced() { return std::exchange(m_traced, false); }

private:
    void lose();

    QFile m_output;
    std::function<void()> m_lost;
    std::unique_ptr<QSocketNotifier> m_reader; ///< becomes active when a pipe's last reader goes
    bool m_valid = false;
    bool m_traced = false;
};

} // namespace zyn::handset
