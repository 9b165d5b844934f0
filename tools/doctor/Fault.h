// Why a directory or a file cannot be used.
#pragma once

#include "tools/zynphone/Finding.h"

#include <QtCore/QByteArray>

#include <optional>

namespace zyn::tool {

/// Whether anything of that name exists, be it a link that leads nowhere or out of this user's reach.
bool exists(const QByteArray& path);

/// The directory that @p path lies in.
QByteArray parentOf(const QByteArray& path);

/// @p path, or the nearest directory above it that exists; a file where one is in the way.
QByteArray existingPart(QByteArray path);

/// Why @p path is no directory that is this user's alone, as channels need it; nothing when it is one.
std::optional<Finding> privateDirectoryFault(const QByteArray& path);

/// Why @p path is no directory in which this user may make files; nothing when it is one.
std::optional<Finding> writableDirectoryFault(const QByteArray& path);

/// Why @p path is no file that this user may read, and write when @p isWritten is set; nothing when it is one.
std::optional<Finding> fileFault(const QByteArray& path, bool isWritten);

/// @p path as a word of a shell's command line.
QString shellWord(const QByteArray& path);

} // namespace zyn::tool
