// Colours on a terminal.
#pragma once

#include <QtCore/QString>

namespace zyn::tool {

/// The number by which a terminal knows the colour of a text.
enum class Colour { Red = 31, Green = 32, Yellow = 33 };

inline QString coloured(const QString& text, Colour colour)
{
    return QStringLiteral("\033[%1m%2\033[0m").arg(QString::number(static_cast<int>(colour)), text);
}

} // namespace zyn::tool
