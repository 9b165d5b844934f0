// Directories that belong to this user alone.
#pragma once

#include "platform/posix/File_p.h"
#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <optional>

#include <sys/types.h>

namespace zyn::posix {

/// Opens the directory @p name, a path or an entry of the directory @p parent, for use as a parent. Refused
/// when it is somebody else's, a symbolic link, or open to anybody but its owner; errno is ENOENT only when it is
/// missing.
UniqueFd openPrivateDirectory(int parent, const QByteArray& name);

/// The same; a missing directory is made first, with mode 0700, in a parent that exists.
UniqueFd makePrivateDirectory(int parent, const QByteArray& name);

/// The names in @p directory of the file type @p type (S_IFDIR, S_IFSOCK, ...), hidden ones too; nothing when
/// they could not all be read.
std::optional<QList<QByteArray>> entries(int directory, mode_t type);

/// The file that has the name @p name in @p directory; nothing when there is none.
std::optional<FileId> entryId(int directory, const QByteArray& name);

/// The path by which the open directory @p directory is found now; empty when the kernel does not tell.
QByteArray pathOf(int directory);

/// A path to @p name in the open directory @p directory, or to the directory itself, however long its own path is.
QByteArray pathThrough(int directory, const QByteArray& name = {});

} // namespace zyn::posix
