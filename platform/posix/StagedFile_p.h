// Files that come into being whole and at once: written under a name of their own, then renamed.
#pragma once

#include "platform/posix/PathAt_p.h"

#include <QtCore/QByteArray>

namespace zyn::posix {

/// Between a file's name and the number of the process that writes it: the name under which it is written.
inline constexpr char kStagedInfix[] = ".new.";

/// A file that is written beside its place; until it is moved there it goes with the object.
class StagedFile
{
public:
    /// Makes the file beside @p path, which outlives it, after removeLeftovers().
    explicit StagedFile(const PathAt& path);
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;
    ~StagedFile();

    /// Whether it could be made; else errno is the reason, until another call.
    bool isValid() const { return m_fd.isValid(); }
    int fd() const { return m_fd.get(); }

    /// Gives it the owner and the permissions of the open file @p other, as far as this process may.
    void copyOwnership(int other) const;

    /// @{ Moves the file to its place: moveIn() only if nothing is there, moveOver() in place of whatever is there.
    bool moveIn();
    bool moveOver();
    /// @}
    /// Exchanges its name with the file at its place; where the file system cannot do that, moves over it.
    bool exchange();

    /// Opens for changes the file that an exchange has put under this file's old name.
    UniqueFd openExchanged() const;
    /// Whether that is the open file @p fd, or nothing, as this file was moved over the other.
    bool isExchangedFor(int fd) const;

private:
    const PathAt& m_path;
    const QByteArray m_name;
    UniqueFd m_fd;
    bool m_isNamed = false;
};

/**
 * Replaces the contents of the file @p path with @p contents, whole and on disk, or leaves the file as it is.
 *
 * The file keeps its owner and its permissions, as far as this process may give them. Only a regular file that may be
 * written is replaced. On failure errno is the reason.
 */
bool replaceFile(const QByteArray& path, const QByteArray& contents);
bool replaceFile(const PathAt& path, const QByteArray& contents);

/// Makes the file @p path with @p contents, whole and on disk, and with the owner and the permissions of the open file
/// @p model; false, with errno EEXIST, when anything has that name.
bool createFile(const QByteArray& path, const QByteArray& contents, int model);

/// Removes the staged files that killed processes have left for @p path.
void removeLeftovers(const PathAt& path);

/**
 * Removes what killed writers of earlier versions have left beside @p path, under its name with a dot and six random
 * letters. Nobody may be writing there.
 *
 * Somebody may have given a copy such a name, too: one that is a word, of one case or with a capital, goes only when it
 * is empty.
 */
void removeTemporaryFiles(const PathAt& path);

} // namespace zyn::posix
