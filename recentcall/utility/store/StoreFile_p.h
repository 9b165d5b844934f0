// The files of the store directory: their header, and how they are opened, read and created.
#pragma once

#include "platform/posix/PathAt_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <type_traits>

namespace zyn {

/// The bytes of a plain structure, as files and sockets hold them.
template<typename Plain>
QByteArrayView bytesOf(const Plain& plain)
{
    static_assert(std::is_trivially_copyable_v<Plain>);
    return QByteArrayView(reinterpret_cast<const char*>(&plain), static_cast<qsizetype>(sizeof plain));
}

/// The plain structure at the start of @p bytes, which must be at least as long.
template<typename Plain>
Plain toPlain(std::span<const std::byte> bytes)
{
    static_assert(std::is_trivially_copyable_v<Plain>);
    Plain plain;
    std::memcpy(static_cast<void*>(&plain), bytes.data(), sizeof plain);
    return plain;
}

/// The first 8 bytes of a store file, little-endian.
struct StoreFileHeader
{
    uint32_t magic = kMagic;     ///< bytes D0 C0 B0 A0
    uint32_t version = kVersion; ///< bytes 05 00 00 00

    static constexpr uint32_t kMagic = 0xA0B0C0D0;
    static constexpr uint32_t kVersion = 5;

    bool isValid() const { return magic == kMagic && version == kVersion; }
};
static_assert(offsetof(StoreFileHeader, magic) == 0 && offsetof(StoreFileHeader, version) == 4);
static_assert(sizeof(StoreFileHeader) == 8 && std::is_trivially_copyable_v<StoreFileHeader>);

/// Whether @p image, the bytes of a file from its start, begins with a valid header.
inline bool hasValidHeader(QByteArrayView image)
{
    StoreFileHeader header{0, 0};
    if (image.size() >= qsizetype{sizeof header})
        std::memcpy(&header, image.data(), sizeof header);
    return header.isValid();
}

/// The path of the store directory: "/phone" under the directory that the environment variable ZYN_LOCAL_APP_WRITE_PATH
/// names, with blanks around it removed, or under "/tmp" when that is unset or empty.
QByteArray storeDirectoryPath();

/// The path of a file in that directory, its name given with a leading slash.
QByteArray storeFilePath(QByteArrayView name);

/// The path of the file @p name in the store directory.
QString storePath(const QString& name);

/// Creates the store directory (one level) unless it exists, for those whom the umask lets in.
void makeStoreDirectory();

/// Whether another user has made the store directory where everybody may make files. Nothing is written there: its
/// owner could read it, and change what we believe.
bool isStoreOthers();

// A store file may be a link of this user's or of root's to a file elsewhere. Other links are not followed.

/// Whether the file at @p path can be read, has @p size bytes and begins with a valid header.
bool isStoreFile(const QByteArray& path, qint64 size);

/// @{ Both create a missing store directory for the next caller; to look for it first would cost every operation a
/// system call. Opens the store file @p path, for reading and writing unless told otherwise; never creates it.
posix::UniqueFd openStoreFile(const QByteArray& path, posix::Access access = posix::Access::Change);
/// Reads up to @p size bytes of the store file @p path; nothing when it cannot be opened or is a directory.
std::optional<QByteArray> readStoreFile(const QByteArray& path, qint64 size);
/// @}

/// Why a store file could not be created.
enum class CreateResult { Done, CannotOpen, CannotWriteHeader, CannotWriteData };

/**
 * Gives @p path the contents of a fresh store file, whole and at once, unless a valid one of that size is there.
 *
 * Several processes may do so at the same moment: a missing file is never put over one that has appeared meanwhile. An
 * invalid one is replaced only after a second check, and put back if another process was faster still; its owner and
 * permissions are kept, and it is overwritten where the directory takes no new file. A file that is not regular, may
 * not be written or cannot be inspected stays; so does an invalid file for whose successor there is no space.
 */
CreateResult createStoreFile(const QByteArray& path, const QByteArray& contents);

/// Removes what processes that were killed while they created the store file @p path have left beside it.
void removeLeftovers(const QByteArray& path);

} // namespace zyn
