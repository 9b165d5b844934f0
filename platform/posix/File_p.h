// Files: opened without waiting, read and written whole.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>

#include <compare>
#include <cstddef>
#include <ctime>
#include <optional>
#include <span>

#include <sys/types.h>

namespace zyn::posix {

/// Opens @p path for reading. A FIFO is opened without waiting for its writer.
UniqueFd openForReading(const QByteArray& path);

/// Tells a file from every other that there is at the same time.
struct FileId
{
    dev_t device;
    ino_t number;

    bool operator==(const FileId&) const = default;
};

/// That of the file @p path, of a link itself; nothing if there is no such file.
std::optional<FileId> fileId(const QByteArray& path);
/// That of an open file.
std::optional<FileId> fileId(int fd);

/**
 * Identifies the contents of a regular file: once it is settled, other contents of the file, or of another file of its
 * name, have another version.
 */
struct FileVersion
{
    /// A point in time as file systems keep it: nobody but the clock sets the time of a file's last change.
    struct Moment
    {
        time_t seconds;
        long nanoseconds;

        auto operator<=>(const Moment&) const = default; // NOLINT(*-zero-as-null-pointer-constant): generated
    };

    FileId id;
    off_t size;
    Moment written;
    Moment changed;

    bool operator==(const FileVersion&) const = default;
};

/// That of the file @p path, links followed; nothing if it is not a regular file.
std::optional<FileVersion> fileVersion(const QByteArray& path);
/// That of an open file.
std::optional<FileVersion> fileVersion(int fd);

/// Whether a file that is changed from now on gets another version than @p version. It does not at once, as the times
/// of two changes between two ticks of the kernel's clock are the same.
bool isSettled(const FileVersion& version);

/// Whether @p path is a name of the open file @p fd.
bool isNamed(int fd, const QByteArray& path);

/// Reads into @p buffer from @p offset on; the number of bytes read, fewer only at the end of the file; -1 on an error.
ssize_t readAt(int fd, std::span<std::byte> buffer, off_t offset);

/// The same with one system call, so that nothing which is written between two comes in; fewer bytes than there are in
/// the file are rare, but possible.
ssize_t readOnceAt(int fd, std::span<std::byte> buffer, off_t offset);

/// Writes all of @p bytes at @p offset.
bool writeAt(int fd, std::span<const std::byte> bytes, off_t offset);

/// Cuts the file off, or fills it up with zeros, to @p size bytes.
bool resize(int fd, qint64 size);

/// Brings what was written to @p fd to disk; of a directory, the names in it.
bool sync(int fd);

/// The contents of a regular file of at most @p limit bytes; nothing for any other.
std::optional<QByteArray> readWhole(const QByteArray& path, qint64 limit);
/// The same of an open file.
std::optional<QByteArray> readWhole(int fd, qint64 limit);

/// The size of the open file @p fd in bytes; nothing if it is not a regular file.
std::optional<qint64> regularFileSize(int fd);
/// The same; nothing, too, if the file has another name as well.
std::optional<qint64> soleFileSize(int fd);

/// Where the open file @p fd ends, which is its size if it is regular; -1 when it has no end. The quickest way to know.
off_t endOf(int fd);

/// The offset in the open file @p fd, from @p offset on, at which there is no hole; the file's end when there is none.
off_t nextData(int fd, off_t offset);

/// Whether @p path, links followed, leads to the open file @p fd.
bool leadsTo(const QByteArray& path, int fd);

/// Whether nothing has the name @p path, not even a link; false, too, if that cannot be found out.
bool isMissing(const QByteArray& path);

} // namespace zyn::posix
