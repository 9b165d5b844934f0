// Scripts: texts with a line for each thing that happens.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

namespace zyn::handset {

/// Thrown where a line cannot be understood; readScriptLine() adds where it stands.
struct ScriptError
{
    QString text;
};

/// What becomes of a line, without the blanks at its end. Throws a ScriptError when it cannot be understood.
using ScriptLineReader = std::function<void(const QString& line, int lineNumber)>;

/**
 * Reads line @p lineNumber of @p source with @p reader, unless it is blank or a comment, which begins with "#".
 *
 * False when it cannot be understood; the log says where it stands and why.
 */
bool readScriptLine(const QString& source, int lineNumber, const QString& line, const ScriptLineReader& reader);

/// Reads the lines of the file @p path, in UTF-8 and of at most 1 MiB, up to the first that cannot be understood. False
/// when there is one, or when the file cannot be read; the log says which.
bool readScriptFile(const QString& path, const ScriptLineReader& reader);

/// The words of @p line. One in double quotes may hold blanks, or nothing.
QStringList scriptWords(const QString& line);

/// The first columns of @p line, which two blanks or more separate; the last of @p count takes the rest.
QStringList scriptColumns(const QString& line, qsizetype count);

/// The whole number that @p word stands for.
int scriptNumber(const QString& word, int lowest, int highest);

} // namespace zyn::handset
