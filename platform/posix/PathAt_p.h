// Paths that only this user and root can lead elsewhere. A path is a name as the system has it (QFile::encodeName()).
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>

#include <optional>

#include <sys/types.h>

namespace zyn::posix {

/// Whether files and processes of @p user are this process's business: its own, and root's.
bool isTrustedUser(uid_t user);

/// The user as whom this process acts.
uid_t currentUser();

/// The name of @p user, or the number of one without a name.
QByteArray userName(uid_t user);

/// The owner of @p path, of a link itself and not its target; nothing if there is no such name.
std::optional<uid_t> ownerOf(const QByteArray& path);

/// Removes the file @p path if it belongs to neither this user nor root; a directory that is not empty is renamed
/// instead. Whether the name was cleared.
bool clearOfOthers(const QByteArray& path);

/// Whether somebody else, neither this user nor root, has made @p path in a directory where everybody may make files,
/// such as /tmp: perhaps because we would look there. The name itself counts, not where a link leads.
bool isTakenByOthers(const QByteArray& path);

/// Where a file is or would be: its directory, open, and its name there. What happens to the path later changes
/// nothing.
struct PathAt
{
    UniqueFd directory; ///< for use as a parent
    QByteArray name;
};

/// What is to happen to a link that is the last name of a path.
enum class LastLink { Follow, Keep };

/// What an existing file is opened for.
enum class Access { Read, Change };

/**
 * Finds where @p path leads; the file itself may be missing, its directory not.
 *
 * Links that this user or root made are followed, on the way and, unless it is kept, at the end, also where the last
 * one leads to nothing. Any other is refused with errno EACCES: its owner may change at any moment where it leads.
 */
std::optional<PathAt> resolve(const QByteArray& path, LastLink last = LastLink::Follow);

/// Opens the file at @p path; refuses a link that has appeared there since. Never waits for the other end of a
/// FIFO.
UniqueFd openAt(const PathAt& path, Access access = Access::Read);
/// The same of the file @p name in @p directory, with open()'s own flags.
UniqueFd openAt(int directory, const QByteArray& name, int flags, mode_t mode = 0);

/// Opens @p path, which is not created, as resolve() finds it.
UniqueFd openTrusted(const QByteArray& path, Access access = Access::Read);

/// Whether @p path, as resolve() finds it, is a directory.
bool isDirectory(const QByteArray& path);

/// Makes the directory @p path in one that exists; false when it cannot be made, also as something has its name.
bool makeDirectory(const QByteArray& path, mode_t mode);

/// Gives the directory @p path, but nothing else of that name, the permissions @p mode.
bool setDirectoryMode(const QByteArray& path, mode_t mode);

/// Removes the file or the link @p path.
bool removeFile(const QByteArray& path);

} // namespace zyn::posix
