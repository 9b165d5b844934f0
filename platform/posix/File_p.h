// Files: opened without waiting, read and written whole.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>

#include <cstddef>
#include <optional>
#include <span>

#include <sys/types.h>

namespace zyn::posix {

// Paths are names as the system has them, as QFile::encodeName() gives them.

/// Opens @p path for reading. A FIFO is opened without waiting for its writer.
UniqueFd openForReading(const QByteArray& path);

/// Opens @p path for reading and writing; never creates it.
UniqueFd openForChanging(const QByteArray& path);

/// Creates @p path for writing; fails when anything of that name exists.
UniqueFd createNew(const QByteArray& path);

/**
 * Locks the file @p path, created for this user alone when it is missing, for as long as the descriptor is open.
 *
 * None, with errno EWOULDBLOCK, while another process holds the lock. The kernel ends the lock of a process that dies;
 * no name or number of a process decides. Whoever holds the lock may remove the file.
 */
UniqueFd lockFile(const QByteArray& path);

/// Reads into @p buffer from @p offset on; the number of bytes read, fewer only at the end of the file; -1 on an error.
ssize_t readAt(int fd, std::span<std::byte> buffer, off_t offset);

/// Writes all of @p bytes at @p offset.
bool writeAt(int fd, std::span<const std::byte> bytes, off_t offset);

/// Brings what was written to @p fd to disk; of a directory, the names in it.
bool sync(int fd);

/// The contents of a regular file of at most @p limit bytes; nothing for any other.
std::optional<QByteArray> readWhole(const QByteArray& path, qint64 limit);

/// How many bytes the open file @p fd has; nothing when it is no regular file.
std::optional<qint64> regularFileSize(int fd);

/// Whether @p path, links followed, leads to the open file @p fd.
bool leadsTo(const QByteArray& path, int fd);

/// Lets two files change their names with each other at once; where the file system cannot do that, @p first takes the
/// place of @p second.
bool exchangeNames(const QByteArray& first, const QByteArray& second);

/// Whether there is no file @p path, nor a link to one; false, too, when that cannot be told.
bool isMissing(const QByteArray& path);

/// Gives the file @p from the name @p to, unless anything has that name already.
bool renameWithoutReplacing(const QByteArray& from, const QByteArray& to);

} // namespace zyn::posix
