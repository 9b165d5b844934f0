// Scripts: text files with one event per line.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

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

/// Reads the lines of the file @p path, UTF-8 of at most 1 MiB, up to the first error. Returns false on an error, which
/// is logged.
bool readScriptFile(const QString& path, const ScriptLineReader& reader);

/// The words of @p line. A word in double quotes may contain blanks or be empty.
QStringList scriptWords(const QString& line);

/// The first columns of @p line, separated by two or more blanks; the last of the @p count columns is the rest.
QStringList scriptColumns(const QString& line, qsizetype count);

/// @p word as a whole number in this range. Throws a ScriptError if it is not one.
int scriptNumber(const QString& word, int lowest, int highest);

} // namespace zyn::handset
