// Texts as a terminal shows them.
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace zyn::handset {

/// @p text with every character that is not printable written as \xNN, or \uNNNN: stored and received text must not
/// steer a terminal.
QString printable(const QString& text);

/// The same with \uNNNN for all of them, as JSON takes it in a text.
QString jsonEscaped(const QString& text);

/// The whole number that all of @p text is; a NUL does not end it, as it would end a conversion.
std::optional<int> wholeNumber(const QString& text);

/// The lines of @p rows, their cells aligned two blanks apart.
QString alignedLines(const QList<QStringList>& rows);

/// A duration in seconds as h:mm:ss; a record may hold any number.
QString durationText(int seconds);

} // namespace zyn::handset
