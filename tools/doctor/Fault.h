// Why a directory or a file cannot be used.
#pragma once

#include "tools/zynphone/Finding.h"

#include <QtCore/QByteArray>

#include <optional>

namespace zyn::tool {

/// Whether a file of that name exists, even a dangling link.
bool exists(const QByteArray& path);

/// The parent directory of @p path.
QByteArray parentOf(const QByteArray& path);

/// @p path, or its nearest existing parent, which may be a file.
QByteArray existingPart(QByteArray path);

/// Why @p path is not a private directory of this user, as channels require; unset if it is.
std::optional<Finding> privateDirectoryFault(const QByteArray& path);

/// Why this user cannot create files in the directory @p path; unset if it is possible.
std::optional<Finding> writableDirectoryFault(const QByteArray& path);

/// Why this user cannot read the file @p path, or write it if @p isWritten is set; unset if it is possible.
std::optional<Finding> fileFault(const QByteArray& path, bool isWritten);

/// @p path quoted for a shell.
QString shellWord(const QByteArray& path);

} // namespace zyn::tool
