// Texts that are cut where they would be too long.
#pragma once

#include <QtCore/QString>

namespace zyn::tool {

/// @p text, with an ellipsis for what is behind @p limit characters, at least 1, that one included.
inline QString elided(const QString& text, qsizetype limit)
{
    if (text.size() <= limit)
        return text;
    qsizetype kept = limit - 1;
    // Half of a pair shows nothing.
    if (kept > 0 && text[kept - 1].isHighSurrogate())
        --kept;
    return text.left(kept) + QChar(u'\u2026');
}

} // namespace zyn::tool
