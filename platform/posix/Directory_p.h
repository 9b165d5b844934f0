// Directories: those that belong to this user alone, and what is in them.
#pragma once

#include "platform/posix/File_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <chrono>
#include <optional>

#include <sys/types.h>

namespace zyn::posix {

/// Opens the directory @p path for use as a parent. Refused when it is somebody else's, a symbolic link, or open to
/// anybody but its owner; errno is ENOENT only when it is missing.
UniqueFd openPrivateDirectory(const QByteArray& path);
/// The same of the entry @p name of the directory @p parent.
UniqueFd openPrivateDirectory(int parent, const QByteArray& name);

/// @{ The same; a missing directory is made first, with mode 0700, in a parent that exists.
UniqueFd makePrivateDirectory(const QByteArray& path);
UniqueFd makePrivateDirectory(int parent, const QByteArray& name);
/// @}

/// The directory in which @p path is.
QByteArray parentOf(const QByteArray& path);

/// Makes the directory @p path, and those above it, on disk, for this user alone; true also when it is there.
bool makeDirectories(const QByteArray& path);

enum class EntryType { Directory, File, Socket };

/// The names of the entries of @p type in @p directory, hidden ones too; nothing if they could not all be read.
std::optional<QList<QByteArray>> entries(int directory, EntryType type);

/// The status of an entry of a directory.
struct EntryStatus
{
    FileId id;
    mode_t permissions;
    std::chrono::seconds age; ///< since its last change of any kind; negative when the clock was set back
};

/// That of the entry @p name of @p directory, of a link itself; nothing if there is no such entry.
std::optional<EntryStatus> entryStatus(int directory, const QByteArray& name);

/// Sets the permissions of the entry @p name of @p directory, which this process has open; false on failure.
bool setEntryMode(int directory, const QByteArray& name, mode_t mode);

/// @{ Remove the entry @p name of @p directory, if that can be: who must know looks whether it is there.
void removeEntry(int directory, const QByteArray& name);
void removeEmptyDirectory(int directory, const QByteArray& name);
/// @}

/// Where the link @p name in @p directory leads, at most its first 255 bytes; empty when there is no link.
QByteArray linkTarget(int directory, const QByteArray& name);

/// Makes the link @p name in @p directory, instead of another, but of nothing else; whether it was made.
bool replaceLink(int directory, const QByteArray& name, const QByteArray& target);

/// The path by which the open directory @p directory is found now; empty when the kernel does not know.
QByteArray pathOf(int directory);

/// A path to @p name in the open directory @p directory, or to the directory itself, however long its own path is.
QByteArray pathThrough(int directory, const QByteArray& name = {});

} // namespace zyn::posix
