// Texts for the fixed-width fields of records.
#pragma once

#include "tools/zynphone/ExitCode.h"

#include <QtCore/QDateTime>
#include <QtCore/QString>

#include <algorithm>
#include <cstdint>

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

/// The seconds since 1970 of @p time, which is what @p text says; a usage error when a record does not hold them.
inline int32_t secondsOf(const QDateTime& time, const QString& text)
{
    const qint64 seconds = time.toSecsSinceEpoch();
    if (seconds != static_cast<int32_t>(seconds))
        throw usageError(QStringLiteral("'%1' is not within 1901-12-13T20:45:52Z and 2038-01-19T03:14:07Z").arg(text));
    return static_cast<int32_t>(seconds);
}

} // namespace zyn::tool
