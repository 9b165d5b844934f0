// What every store file has in common: its header, and how it comes into being.
#include "recentcall/utility/StoreFile_p.h"

#include "platform/posix/File_p.h"
#include "recentcall/utility/StoreDirectory_p.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <span>

#include <sys/stat.h>
#include <unistd.h>

using zyn::CreateResult;

namespace {

constexpr mode_t kPermissions = 07777;

std::span<const std::byte> bytesOf(const QByteArray& contents)
{
    return std::as_bytes(std::span(contents.constData(), static_cast<size_t>(contents.size())));
}

/// Writes @p contents, which begin with a header, at the start of @p fd. What cannot be written whole tells by its
/// header alone how far it would come.
CreateResult writeContents(int fd, const QByteArray& contents)
{
    if (zyn::posix::writeAt(fd, bytesOf(contents), 0))
        return CreateResult::Done;
    return zyn::posix::writeAt(fd, bytesOf(contents).first(sizeof(zyn::StoreFileHeader)), 0)
               ? CreateResult::CannotWriteData
               : CreateResult::CannotWriteHeader;
}

/// A complete file under a name of its own, from which it is renamed into place; it goes with the object otherwise.
class StagedFile
{
public:
    explicit StagedFile(const QByteArray& target)
        : m_path(target + zyn::kStagedInfix + QByteArray::number(::getpid()))
    {}
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;
    ~StagedFile()
    {
        if (m_exists)
            ::unlink(m_path.constData());
    }

    CreateResult write(const QByteArray& contents)
    {
        // A file of this name can only be what a process of the same number left when it was killed.
        ::unlink(m_path.constData());
        const zyn::posix::UniqueFd fd = zyn::posix::createNew(m_path);
        m_exists = fd.isValid();
        return m_exists ? writeContents(fd.get(), contents) : CreateResult::CannotOpen;
    }

    const QByteArray& path() const { return m_path; }

    bool moveTo(const QByteArray& target)
    {
        m_exists = !zyn::posix::renameWithoutReplacing(m_path, target);
        return !m_exists;
    }
    /// Gives this file the owner and the permissions of @p target, as far as this process may.
    void takeAfter(const QByteArray& target)
    {
        struct stat status = {};
        if (::stat(target.constData(), &status) != 0)
            return;
        ::chmod(m_path.constData(), status.st_mode & kPermissions);
        [[maybe_unused]] const int result = ::chown(m_path.constData(), status.st_uid, status.st_gid);
    }

    /// Puts what @p target was in the place of this file, at once.
    bool exchangeWith(const QByteArray& target) { return zyn::posix::exchangeNames(m_path, target); }

private:
    QByteArray m_path;
    bool m_exists = false;
};

/// Writes into the file @p path what differs between @p written and @p blank.
bool applyChanges(const QByteArray& path, const QByteArray& blank, const QByteArray& written)
{
    const zyn::posix::UniqueFd fd = zyn::posix::openForChanging(path);
    for (qsizetype i = 0; i < std::min(blank.size(), written.size()); ++i) {
        if (blank.at(i) != written.at(i)
            && !zyn::posix::writeAt(fd.get(), bytesOf(written).subspan(size_t(i), 1), off_t{i}))
            return false;
    }
    return true;
}

/// Writes @p contents over the file @p path, which others may see half-written: for a directory that takes no new file.
CreateResult overwrite(const QByteArray& path, const QByteArray& contents)
{
    const zyn::posix::UniqueFd fd = zyn::posix::openForChanging(path);
    if (!fd.isValid())
        return CreateResult::CannotOpen;
    const CreateResult result = writeContents(fd.get(), contents);
    if (result == CreateResult::Done && ::ftruncate(fd.get(), off_t{contents.size()}) != 0)
        return CreateResult::CannotWriteData;
    return result;
}

/// Replaces the invalid file @p path, unless somebody else has replaced it since it was looked at: their file may hold
/// calls, so it goes back, along with what was written into ours in between.
bool replaceInvalidFile(const QByteArray& path, const QByteArray& contents, StagedFile& staged)
{
    staged.takeAfter(path);
    if (!staged.exchangeWith(path))
        return false;
    if (!zyn::isStoreFile(staged.path(), contents.size()))
        return true;
    if (!staged.exchangeWith(path))
        return false;
    return applyChanges(path, contents, zyn::posix::readWhole(staged.path(), contents.size()).value_or(contents));
}

} // namespace

namespace zyn {

bool isStoreFile(const QByteArray& path, qint64 size)
{
    const posix::UniqueFd fd = posix::openForReading(path);
    struct stat status = {};
    if (!fd.isValid() || ::fstat(fd.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size != size)
        return false;
    StoreFileHeader header{0, 0};
    return posix::readAt(fd.get(), std::as_writable_bytes(std::span(&header, 1)), 0) == ssize_t{sizeof header}
           && header.isValid();
}

posix::UniqueFd openStoreFile(const QByteArray& path)
{
    posix::UniqueFd fd = posix::openForChanging(path);
    if (!fd.isValid())
        makeStoreDirectory();
    return fd;
}

std::optional<QByteArray> readStoreFile(const QByteArray& path, qint64 size)
{
    const posix::UniqueFd fd = posix::openForReading(path);
    if (!fd.isValid()) {
        makeStoreDirectory();
        return std::nullopt;
    }
    QByteArray image(static_cast<qsizetype>(size), Qt::Uninitialized);
    const auto buffer = std::as_writable_bytes(std::span(image.data(), static_cast<size_t>(size)));
    const ssize_t length = posix::readAt(fd.get(), buffer, 0);
    if (length < 0)
        return std::nullopt;
    image.truncate(length);
    return image;
}

CreateResult createStoreFile(const QByteArray& path, const QByteArray& contents)
{
    StagedFile staged(path);
    const CreateResult written = staged.write(contents);
    const bool isStaged = written == CreateResult::Done;
    if ((isStaged && staged.moveTo(path)) || isStoreFile(path, contents.size()))
        return CreateResult::Done;
    const QFileInfo invalid(QFile::decodeName(path));
    if (!invalid.isFile() || !invalid.isWritable())
        return isStaged ? CreateResult::CannotOpen : written;
    if (!isStaged)
        return overwrite(path, contents);
    return replaceInvalidFile(path, contents, staged) ? CreateResult::Done : CreateResult::CannotOpen;
}

} // namespace zyn
