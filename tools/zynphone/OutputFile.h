// A file that the tool writes.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zyn::tool {

/// Makes @p contents what the file @p path holds, whole or not at all; it keeps owner and permissions. A device or a
/// pipe is written to. A failure that names the file when it cannot.
void writeFile(const QString& path, const QByteArray& contents);

/// The same of what must be a regular file or missing.
void replaceFile(const QString& path, const QByteArray& contents);

} // namespace zyn::tool
