// What every store file has in common: its header, and how it comes into being.
#include "recentcall/utility/StoreFile_p.h"

#include "platform/posix/File_p.h"
#include "platform/posix/StagedFile_p.h"
#include "recentcall/utility/StoreDirectory_p.h"

#include <algorithm>
#include <cerrno>
#include <span>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using zyn::CreateResult;

namespace zyn {
namespace {

/// What is known of a store file. One that could not be looked into may be sound, and full of calls.
enum class State { Missing, Unknown, Invalid, Valid };

std::span<const std::byte> bytesOf(const QByteArray& contents)
{
    return std::as_bytes(std::span(contents.constData(), static_cast<size_t>(contents.size())));
}

State stateOf(int fd, qint64 size)
{
    struct stat status = {};
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode))
        return State::Unknown;
    if (status.st_size != size)
        return State::Invalid;
    zyn::StoreFileHeader header{0, 0};
    const ssize_t length = zyn::posix::readAt(fd, std::as_writable_bytes(std::span(&header, 1)), 0);
    if (length < 0)
        return State::Unknown;
    return length == ssize_t{sizeof header} && header.isValid() ? State::Valid : State::Invalid;
}

State stateAt(const zyn::posix::Place& place, qint64 size)
{
    const zyn::posix::UniqueFd fd = zyn::posix::openAt(place, O_RDONLY);
    if (!fd.isValid())
        return errno == ENOENT ? State::Missing : State::Unknown;
    return stateOf(fd.get(), size);
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

/// The size of a file that has one name only; one with another may be a file of somebody else, laid here to be written.
std::optional<off_t> sizeOfSole(int fd)
{
    struct stat status = {};
    return ::fstat(fd, &status) == 0 && status.st_nlink == 1 ? std::optional(status.st_size) : std::nullopt;
}

/// Writes into @p fd what differs between @p written and @p blank.
bool applyChanges(int fd, const QByteArray& blank, const QByteArray& written)
{
    for (qsizetype i = 0; i < std::min(blank.size(), written.size()); ++i) {
        if (blank.at(i) != written.at(i) && !zyn::posix::writeAt(fd, bytesOf(written).subspan(size_t(i), 1), off_t{i}))
            return false;
    }
    return true;
}

/// Whether a file beside another cannot be made for want of permission, or of room for a longer name: for want of
/// anything else, such as space, the other can be written no better.
bool isForbidden(int error)
{
    return error == EACCES || error == EPERM || error == ENAMETOOLONG;
}

/// Writes @p contents over the open file @p fd, which others may see half-written: for a directory that takes no new
/// file. What cannot be written whole is put back.
CreateResult overwrite(int fd, const QByteArray& contents)
{
    const std::optional<off_t> size = sizeOfSole(fd);
    if (!size)
        return CreateResult::CannotOpen;
    QByteArray old(contents.size(), Qt::Uninitialized);
    const ssize_t length =
        zyn::posix::readAt(fd, std::as_writable_bytes(std::span(old.data(), static_cast<size_t>(old.size()))), 0);
    if (length < 0)
        return CreateResult::CannotOpen;
    old.truncate(length);
    const CreateResult result = writeContents(fd, contents);
    if (result == CreateResult::Done && ::ftruncate(fd, off_t{contents.size()}) == 0)
        return result;
    if (zyn::posix::writeAt(fd, bytesOf(old), 0) && ::ftruncate(fd, *size) == 0)
        zyn::posix::sync(fd);
    return result == CreateResult::Done ? CreateResult::CannotWriteData : result;
}

/// Replaces the file @p invalid, unless somebody else has replaced it since it was looked at: their file may hold
/// calls, so it goes back, along with what was written into ours in between.
bool replaceInvalidFile(zyn::posix::UniqueFd invalid, const QByteArray& contents, zyn::posix::StagedFile& staged)
{
    staged.takeAfter(invalid.get());
    if (!staged.exchange())
        return false;
    if (staged.isExchangedFor(invalid.get()) && stateOf(invalid.get(), contents.size()) != State::Valid)
        return true;
    invalid.reset(); // there may be no more than this one
    const zyn::posix::UniqueFd theirs = staged.openExchanged(O_RDWR);
    if (!staged.exchange())
        return false;
    if (stateOf(theirs.get(), contents.size()) != State::Valid || !sizeOfSole(theirs.get()))
        return false;
    return applyChanges(theirs.get(), contents, zyn::posix::readWhole(staged.fd(), contents.size()).value_or(contents));
}

} // namespace

bool isStoreFile(const QByteArray& path, qint64 size)
{
    const posix::UniqueFd fd = posix::openTrusted(path, O_RDONLY);
    return stateOf(fd.get(), size) == State::Valid;
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
    const posix::UniqueFd fd = posix::openTrusted(path, O_RDONLY);
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
    const std::optional<posix::Place> place = posix::placeOf(path);
    if (!place)
        return CreateResult::CannotOpen;
    posix::StagedFile staged(*place);
    const int problem = errno;
    const CreateResult written = staged.isValid() ? writeContents(staged.fd(), contents) : CreateResult::CannotOpen;
    const bool isStaged = written == CreateResult::Done;
    if (isStaged && staged.moveIn())
        return CreateResult::Done;
    const State state = stateAt(*place, contents.size());
    if (state == State::Valid)
        return CreateResult::Done;
    posix::UniqueFd invalid = state == State::Invalid ? posix::openAt(*place, O_RDWR) : posix::UniqueFd();
    // Another process may have made it valid meanwhile.
    if (invalid.isValid() && stateOf(invalid.get(), contents.size()) == State::Valid)
        return CreateResult::Done;
    if (!invalid.isValid())
        return isStaged ? CreateResult::CannotOpen : written;
    if (!staged.isValid() && isForbidden(problem))
        return overwrite(invalid.get(), contents);
    if (!isStaged)
        return written;
    return replaceInvalidFile(std::move(invalid), contents, staged) ? CreateResult::Done : CreateResult::CannotOpen;
}

void removeLeftovers(const QByteArray& path)
{
    if (const std::optional<posix::Place> place = posix::placeOf(path))
        posix::removeLeftovers(*place);
}

} // namespace zyn
