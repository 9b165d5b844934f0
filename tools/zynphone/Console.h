// The tool's own output, kept apart from what the library traces: lines, progress, and files.
#pragma once

#include "handset/common/Output.h"
#include "handset/common/Text.h"

#include <QtCore/QByteArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QString>
#include <QtCore/QTimer>

#include <functional>

namespace zyn::tool {

using namespace Qt::StringLiterals;

using handset::jsonEscaped;
using handset::printable;

/// Standard output and standard error of the tool.
class Console : public handset::Output
{
public:
    using Output::write;
    /// Writes @p document on one line; only printable characters come out.
    void write(const QJsonDocument& document);
    /// Writes one line to standard error, apart from trace text that may stand there without a line end.
    void writeError(const QString& line);
};

/// The number by which a terminal knows the colour of a text.
enum class Colour { Red = 31, Green = 32, Yellow = 33 };

inline QString coloured(const QString& text, Colour colour)
{
    return u"\033[%1m%2\033[0m"_s.arg(QString::number(static_cast<int>(colour)), text);
}

/// While it lives and the event loop runs, a line on standard error that is written over and over; only on a terminal,
/// and only once a second has passed.
class Progress
{
public:
    /// @p text gives what the line says, printable characters only.
    explicit Progress(std::function<QString()> text);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

private:
    void show();

    const std::function<QString()> m_text;
    QTimer m_timer;
    bool m_isShown = false;
};

/// Makes @p contents what the file @p path holds, whole or not at all; it keeps owner and permissions. A device or a
/// pipe is written to. A failure that names the file when it cannot.
void writeFile(const QString& path, const QByteArray& contents);

/// The same of what must be a regular file or missing.
void replaceFile(const QString& path, const QByteArray& contents);

} // namespace zyn::tool
