// JSON of printable characters only.
#pragma once

#include <QtCore/QString>

namespace zyn::tool {

/// @p text with every character that is not printable written as \uNNNN, as JSON takes it in a text.
QString jsonEscaped(const QString& text);

} // namespace zyn::tool
