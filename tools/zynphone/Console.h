// The tool's own output, apart from the library's trace text: lines, progress, and files.
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
    /// Writes @p document as one line of printable characters.
    void write(const QJsonDocument& document);
    /// Writes one line to standard error, separated from trace text without a line end.
    void writeError(const QString& line);
};

/// Terminal colours, by their escape codes.
enum class Colour { Red = 31, Green = 32, Yellow = 33 };

inline QString coloured(const QString& text, Colour colour)
{
    return u"\033[%1m%2\033[0m"_s.arg(QString::number(static_cast<int>(colour)), text);
}

/// Rewrites a progress line on standard error while it lives and the event loop runs; only on a terminal, and only
/// after the first second.
class Progress
{
public:
    /// @p text returns the line, printable characters only.
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

/// Replaces the contents of the file @p path atomically, and keeps its owner and permissions. Devices and pipes are
/// written to. Throws a failure that names the file.
void writeFile(const QString& path, const QByteArray& contents);

/// The same, but only for a regular or missing file.
void replaceFile(const QString& path, const QByteArray& contents);

} // namespace zyn::tool
