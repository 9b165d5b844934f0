// The files of the store directory: their header, and how they are opened, read and created.
#include "recentcall/utility/store/StoreFile_p.h"

#include "platform/posix/File_p.h"
#include "platform/posix/StagedFile_p.h"

#include <QtCore/QFile>

#include <algorithm>
#include <cerrno>
#include <span>
#include <utility>

namespace zyn {
namespace {

/// What is known of a store file. One that is missing or cannot be inspected may become valid, or be full of calls.
enum class State { Unknown, Invalid, Valid };

std::span<const std::byte> contentsOf(const QByteArray& image)
{
    return std::as_bytes(std::span(image.constData(), static_cast<size_t>(image.size())));
}

std::span<std::byte> bufferOf(QByteArray& image)
{
    return std::as_writable_bytes(std::span(image.data(), static_cast<size_t>(image.size())));
}

State stateOf(int fd, qint64 size)
{
    const std::optional<qint64> found = posix::regularFileSize(fd);
    if (!found)
        return State::Unknown;
    if (*found != size)
        return State::Invalid;
    StoreFileHeader header{0, 0};
    const ssize_t length = posix::readAt(fd, std::as_writable_bytes(std::span(&header, 1)), 0);
    if (length < 0)
        return State::Unknown;
    return length == ssize_t{sizeof header} && header.isValid() ? State::Valid : State::Invalid;
}

/// Writes @p contents, which begin with a header, at the start of @p fd. When not all of it can be written, an attempt
/// with the header alone shows how far it would get.
CreateResult writeContents(int fd, const QByteArray& contents)
{
    if (posix::writeAt(fd, contentsOf(contents), 0))
        return CreateResult::Done;
    return posix::writeAt(fd, contentsOf(contents).first(sizeof(StoreFileHeader)), 0) ? CreateResult::CannotWriteData
                                                                                      : CreateResult::CannotWriteHeader;
}

/// Writes into @p fd what differs between @p written and @p blank.
bool applyChanges(int fd, const QByteArray& blank, const QByteArray& written)
{
    for (qsizetype i = 0; i < std::min(blank.size(), written.size()); ++i) {
        if (blank.at(i) != written.at(i) && !posix::writeAt(fd, contentsOf(written).subspan(size_t(i), 1), off_t{i}))
            return false;
    }
    return true;
}

/// Whether a file beside another cannot be created because that is not permitted, or because its longer name has no
/// room. After any other error, such as a lack of space, overwriting the old file would fail too.
bool isForbidden(int error)
{
    return error == EACCES || error == EPERM || error == ENAMETOOLONG;
}

/// Writes @p contents over the open file @p fd, which others may see half-written: for a directory that takes no new
/// file. What cannot be written whole is undone.
CreateResult overwrite(int fd, const QByteArray& contents)
{
    // A file with a second name may be somebody else's, linked here so that we overwrite it.
    const std::optional<qint64> size = posix::soleFileSize(fd);
    if (!size)
        return CreateResult::CannotOpen;
    QByteArray old(contents.size(), Qt::Uninitialized);
    const ssize_t length = posix::readAt(fd, bufferOf(old), 0);
    if (length < 0)
        return CreateResult::CannotOpen;
    old.truncate(length);
    const CreateResult result = writeContents(fd, contents);
    if (result == CreateResult::Done && posix::resize(fd, contents.size()))
        return result;
    if (posix::writeAt(fd, contentsOf(old), 0) && posix::resize(fd, *size))
        posix::sync(fd);
    return result == CreateResult::Done ? CreateResult::CannotWriteData : result;
}

/// Replaces the file @p invalid, unless somebody else has replaced it since it was inspected: their file may hold
/// calls, so it is put back, along with what was written into ours in between.
bool replaceInvalidFile(posix::UniqueFd invalid, const QByteArray& contents, posix::StagedFile& staged)
{
    staged.copyOwnership(invalid.get());
    if (!staged.exchange())
        return false;
    if (staged.isExchangedFor(invalid.get()) && stateOf(invalid.get(), contents.size()) != State::Valid)
        return true;
    invalid.reset(); // there may be no more than this one
    const posix::UniqueFd theirs = staged.openExchanged();
    if (!staged.exchange())
        return false;
    if (stateOf(theirs.get(), contents.size()) != State::Valid || !posix::soleFileSize(theirs.get()))
        return false;
    return applyChanges(theirs.get(), contents, posix::readWhole(staged.fd(), contents.size()).value_or(contents));
}

/// Whether another user has made @p directory where everybody may make files.
bool isOthersDirectory(QByteArrayView directory)
{
    // Nobody else can take a directory of ours from its place in /tmp: one look is enough, and spares each operation a
    // system call. The hash, and no text, so that it outlives static objects.
    thread_local size_t ownDirectory = 0;
    const size_t hash = qHash(directory) | 1;
    if (ownDirectory == hash)
        return false;
    const QByteArray path = directory.toByteArray();
    const bool isOthers = posix::isTakenByOthers(path);
    if (!isOthers && posix::ownerOf(path))
        ownDirectory = hash;
    return isOthers;
}

/// The directory of the store file @p path.
QByteArrayView directoryOf(const QByteArray& path)
{
    return QByteArrayView(path).first(std::max<qsizetype>(path.lastIndexOf('/'), 0));
}

} // namespace

QByteArray storeDirectoryPath()
{
    return storeFilePath("");
}

QByteArray storeFilePath(QByteArrayView name)
{
    const QByteArray variable = qgetenv("ZYN_LOCAL_APP_WRITE_PATH");
    const QByteArrayView dataDirectory = QByteArrayView(variable).trimmed();
    const QByteArrayView parts[] = {dataDirectory.isEmpty() ? QByteArrayView("/tmp") : dataDirectory, "/phone", name};
    qsizetype size = 0;
    for (const QByteArrayView part : parts)
        size += part.size();
    QByteArray path(size, Qt::Uninitialized);
    char* end = path.data();
    for (const QByteArrayView part : parts)
        end = std::copy(part.begin(), part.end(), end);
    return path;
}

QString storePath(const QString& name)
{
    return QFile::decodeName(storeDirectoryPath()) + u'/' + name;
}

void makeStoreDirectory()
{
    constexpr mode_t kDirectoryMode = 0777; // less the process's umask
    posix::makeDirectory(storeDirectoryPath(), kDirectoryMode);
}

bool isStoreOthers()
{
    return isOthersDirectory(storeDirectoryPath());
}

bool isStoreFile(const QByteArray& path, qint64 size)
{
    const posix::UniqueFd fd = posix::openTrusted(path);
    return stateOf(fd.get(), size) == State::Valid;
}

posix::UniqueFd openStoreFile(const QByteArray& path, posix::Access access)
{
    if (access == posix::Access::Change && isOthersDirectory(directoryOf(path)))
        return {};
    posix::UniqueFd fd = posix::openTrusted(path, access);
    if (!fd.isValid())
        makeStoreDirectory();
    return fd;
}

std::optional<QByteArray> readStoreFile(const QByteArray& path, qint64 size)
{
    const posix::UniqueFd fd = posix::openTrusted(path);
    if (!fd.isValid()) {
        makeStoreDirectory();
        return std::nullopt;
    }
    QByteArray image(static_cast<qsizetype>(size), Qt::Uninitialized);
    const ssize_t length = posix::readAt(fd.get(), bufferOf(image), 0);
    if (length < 0)
        return std::nullopt;
    image.truncate(length);
    return image;
}

CreateResult createStoreFile(const QByteArray& path, const QByteArray& contents)
{
    const std::optional<posix::PathAt> place =
        isOthersDirectory(directoryOf(path)) ? std::nullopt : posix::resolve(path);
    if (!place)
        return CreateResult::CannotOpen;
    posix::StagedFile staged(*place);
    const int problem = errno;
    const CreateResult written = staged.isValid() ? writeContents(staged.fd(), contents) : CreateResult::CannotOpen;
    const bool isStaged = written == CreateResult::Done;
    if (isStaged && staged.moveIn())
        return CreateResult::Done;
    const State state = stateOf(posix::openAt(*place, posix::Access::Read).get(), contents.size());
    if (state == State::Valid)
        return CreateResult::Done;
    posix::UniqueFd invalid =
        state == State::Invalid ? posix::openAt(*place, posix::Access::Change) : posix::UniqueFd();
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
    if (const std::optional<posix::PathAt> place = posix::resolve(path))
        posix::removeLeftovers(*place);
}

} // namespace zyn
