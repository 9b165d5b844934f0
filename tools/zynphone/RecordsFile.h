// A file of records: what the command line says of it, reading and writing.
#pragma once

#include "tools/zynphone/Command.h"
#include "tools/zynphone/RecordsText.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zyn::tool {

class Console;

/// The path that stands for standard input and output.
inline constexpr QLatin1String kStandardStream("-");

/// @{ Which format a file has.
QCommandLineOption formatOption();
/// The words of the option's value, and @p others.
QMap<QString, QStringList> formatWords(QMap<QString, QStringList> others = {});
/// As the option says, else as the path's ending does; CSV on standard input and output.
const RecordFormat& formatFrom(const Invocation& call, const QString& path);
/// @}

/// Reads the file, or standard input, whole, and takes it apart as records of @p schema.
ReadRecords readRecords(const RecordSchema& schema, const RecordFormat& format, const QString& path);

/// Writes @p text in place of the file @p path, whole or not at all, or to standard output.
void writeText(const QString& path, const QString& text, Console& console);

} // namespace zyn::tool
