// Directories that belong to this user alone.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <optional>

#include <sys/types.h>

namespace zyn::posix {

/// Opens the directory @p name, a path or an entry of the directory @p parent, for use as a parent. Refused
/// when it is somebody else's, a symbolic link, or open to anybody but its owner.
UniqueFd openPrivateDirectory(int parent, const QByteArray& name);

/// The same; a missing directory is made first, with mode 0700, in a parent that exists.
UniqueFd makePrivateDirectory(int parent, const QByteArray& name);

/// The names in @p directory of the file type @p type (S_IFDIR, S_IFSOCK, ...), hidden ones too; nothing when
/// they could not all be read.
std::optional<QList<QByteArray>> entries(int directory, mode_t type);

/// A path to @p name in the open directory @p directory, however long the directory's own path is.
QByteArray pathThrough(int directory, const QByteArray& name);

} // namespace zyn::posix
