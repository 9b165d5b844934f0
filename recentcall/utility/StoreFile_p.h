// What every store file has in common: its header, and how it comes into being.
#pragma once

#include "platform/posix/UniqueFd_p.h"
#include "recentcall/utility/PlainBytes_p.h"

#include <QtCore/QByteArray>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <type_traits>

namespace zyn {

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

// A store file may be kept elsewhere, by a link of this user's or of root's. Other links lead nowhere.

/// Whether the file at @p path can be read, has @p size bytes and begins with a valid header.
bool isStoreFile(const QByteArray& path, qint64 size);

/// @{ A store directory that is missing is made for whoever comes next; to look for it before would cost every
/// operation a system call. Opens the store file @p path for reading and writing; never creates it.
posix::UniqueFd openStoreFile(const QByteArray& path);
/// What the store file @p path holds, up to @p size bytes; nothing when it cannot be opened, or is a directory.
std::optional<QByteArray> readStoreFile(const QByteArray& path, qint64 size);
/// @}

/// What keeps a store file from being made.
enum class CreateResult { Done, CannotOpen, CannotWriteHeader, CannotWriteData };

/**
 * Gives @p path the contents of a fresh store file, whole and at once, unless a valid one of that size is there.
 *
 * Several processes may do so at the same moment: a missing file is never put over one that appeared meanwhile, and an
 * invalid one is replaced only after looking again, and given back if another process was faster still. It keeps its
 * owner and permissions, and is overwritten where the directory takes no new file. What is no regular file, may not be
 * written, or cannot be looked into, stays; so does an invalid file for whose successor there is no space.
 */
CreateResult createStoreFile(const QByteArray& path, const QByteArray& contents);

/// Removes what processes that were killed while they made the store file @p path have left beside it.
void removeLeftovers(const QByteArray& path);

} // namespace zyn
