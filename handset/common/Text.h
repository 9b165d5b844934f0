// Text for terminals.
#pragma once

#include <QtCore/QDateTime>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace zyn::handset {

/// @p text with each unprintable character written as \xNN or \uNNNN: stored or received text must not control a
/// terminal.
QString printable(const QString& text);

/// As printable(), but with \uNNNN only, as in JSON.
QString jsonEscaped(const QString& text);

/// All of @p text as a whole number. A NUL is invalid, though QString::toInt() ends there.
std::optional<int> wholeNumber(const QString& text);

/// @p rows as lines, their cells aligned two blanks apart.
QString alignedLines(const QList<QStringList>& rows);

/// A duration in seconds, of any sign, as h:mm:ss.
QString durationText(int seconds);

/// A moment as people read it, date and time in its own time zone. Empty for an invalid one.
QString timeText(const QDateTime& time);

/// "1 message", "2 messages" for "message".
QString counted(qsizetype number, const char* thing);

} // namespace zyn::handset
