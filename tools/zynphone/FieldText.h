// Texts for the fixed-width fields of records.
#pragma once

#include "tools/zynphone/ExitCode.h"

#include <QtCore/QString>

#include <algorithm>

namespace zyn::tool {

/// @p text, of @p what, which its field takes as Latin-1 and holds whole; a usage error when it does not.
inline QString latin1Field(const QString& text, const QString& what, qsizetype limit)
{
    if (std::ranges::any_of(text, [](QChar character) { return character.unicode() > 0xFF; }))
        throw usageError(QStringLiteral("the %1 holds characters that are not Latin-1").arg(what));
    if (text.size() > limit)
        throw usageError(
            QStringLiteral("the %1 has %2 characters; at most %3 fit").arg(what).arg(text.size()).arg(limit));
    return text;
}

} // namespace zyn::tool
