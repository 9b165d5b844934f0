// What a program shows, kept apart from what the library traces.
#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>

#include <utility>

namespace zyn::handset {

/// Lets standard output, descriptor 1, lead nowhere.
void silenceStandardOutput();

/**
 * Standard output of a program that shows something there.
 *
 * The library writes trace text without line ends to descriptor 1. While an output lives that descriptor leads nowhere,
 * or to standard error after showTrace(); write() uses the real standard output, which only the output knows.
 */
class Output
{
public:
    Output();

    /// Lets the library's trace text through, to standard error.
    void showTrace();

    /// Writes @p text as UTF-8, at once.
    void write(const QString& text);

    /// The real standard output.
    int descriptor() const { return m_output.handle(); }
    bool isTerminal() const;
    /// Whether colours are welcome: on a terminal, unless NO_COLOR is set and not empty.
    bool isColourful() const;

    /// Whether everything could be written.
    bool isValid() const { return m_valid; }
    /// Why it could not.
    QString errorString() const;
    /// The exit code of a program that has done its work: failure, and told in the log, unless everything could be
    /// written.
    int exitCode() const;

protected:
    /// Whether trace text may have come since this was last asked.
    bool takeTraced() { return std::exchange(m_traced, false); }

private:
    QFile m_output;
    bool m_valid = false;
    bool m_traced = false;
};

} // namespace zyn::handset
