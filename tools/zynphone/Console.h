// The tool's own output, kept apart from what the library traces.
#pragma once

#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QString>

namespace zyn::tool {

/// @p text with its control characters written as \xNN: stored and received text must not steer a terminal.
QString printable(const QString& text);

/**
 * Standard output and standard error of the tool.
 *
 * The library writes trace text without line ends to descriptor 1. While a console lives that descriptor
 * leads nowhere, or to standard error after showTrace(); write() uses the real standard output, which only
 * the console knows.
 */
class Console
{
public:
    Console();

    /// Lets the library's trace text through, to standard error.
    void showTrace();

    /// Writes @p text as UTF-8, at once.
    void write(const QString& text);
    /// Writes @p document on one line; only printable characters come out.
    void write(const QJsonDocument& document);
    /// Writes one line to standard error, apart from trace text that may stand there without a line end.
    void writeError(const QString& line);

    /// The real standard output.
    int descriptor() const { return m_output.handle(); }
    bool isTerminal() const;
    /// Whether colours are welcome: on a terminal, unless NO_COLOR is set and not empty.
    bool isColourful() const;

    /// Whether everything could be written to standard output.
    bool isSound() const { return m_sound; }

private:
    void write(const QByteArray& bytes);

    QFile m_output;
    bool m_sound = false;
    bool m_traced = false;
};

} // namespace zyn::tool
