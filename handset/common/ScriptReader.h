// Scripts: text files with one event per line.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <chrono>
#include <functional>

namespace zyn::handset {

/// Thrown for a line that cannot be parsed; readScriptLine() adds its position.
struct ScriptError
{
    QString text;
};

/// Called with a line, stripped of trailing blanks. Throws a ScriptError if the line cannot be parsed.
using ScriptLineReader = std::function<void(const QString& line, int lineNumber)>;

/**
 * Passes line @p lineNumber of @p source to @p reader, unless it is blank or a comment, which begins with "#".
 */
bool readScriptLine(const QString& source, int lineNumber, const QString& line, const ScriptLineReader& reader);

/// The most bytes that a script has.
inline constexpr qsizetype kLargestScript = qsizetype{1024} * 1024;

/// Passes the lines of the script @p text, UTF-8, to @p reader, up to the first error, of which the ScriptError that is
/// thrown then tells the line.
void readScriptText(const QByteArray& text, const ScriptLineReader& reader);

/// Does the same with the file @p path. Returns false on an error, which is logged.
bool readScriptFile(const QString& path, const ScriptLineReader& reader);

/// The words of @p line. A word in double quotes may contain blanks or be empty.
QStringList scriptWords(const QString& line);

/// Removes the delay at the beginning of @p words, "+" and milliseconds, and returns it; 0 if there is none. Throws a
/// ScriptError for a delay that is none, or with nothing behind it.
std::chrono::milliseconds takeScriptDelay(QStringList& words);

/// The first columns of @p line, separated by two or more blanks; the last of the @p count columns is the rest.
QStringList scriptColumns(const QString& line, qsizetype count);

/// @p word as a whole number in this range. Throws a ScriptError if it is not one.
int scriptNumber(const QString& word, int lowest, int highest);

} // namespace zyn::handset
