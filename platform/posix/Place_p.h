// Files found without following links that somebody else has laid.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>

#include <optional>

#include <fcntl.h>
#include <sys/types.h>

namespace zyn::posix {

/// Where a file is or would be: its directory, open, and its name there. What happens to the path later changes
/// nothing.
struct Place
{
    UniqueFd directory; ///< for use as a parent
    QByteArray name;
};

/// What is to happen to a link that is the last name of a path.
enum class LastLink { Follow, Keep };

/**
 * Finds the place that @p path names; the file itself may be missing, its directory not.
 *
 * Links that this user or root made are followed, on the way and, unless it is kept, at the end, also where the last
 * one leads to nothing. Any other is refused with errno EACCES: where it leads may be changed by its owner at any
 * moment.
 */
std::optional<Place> placeOf(const QByteArray& path, LastLink last = LastLink::Follow);

/// Opens the file @p name in @p directory, but no link. Never waits for the other end of a FIFO.
UniqueFd openAt(int directory, const QByteArray& name, int flags, mode_t mode = 0);
/// The same of a place, where a link may have come meanwhile.
UniqueFd openAt(const Place& place, int flags = O_RDONLY);
/// That for reading and writing.
UniqueFd openForChanging(const Place& place);

/// Opens @p path, which is not created, as placeOf() finds it.
UniqueFd openTrusted(const QByteArray& path, int flags = O_RDONLY);

/// Makes the directory @p path in one that exists; false when it cannot be made, also as something has its name.
bool makeDirectory(const QByteArray& path, mode_t mode);

/// Removes the file or the link @p path.
bool removeFile(const QByteArray& path);

} // namespace zyn::posix
