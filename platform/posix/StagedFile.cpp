// Files that come into being whole and at once: written under a name of their own, then renamed.
#include "platform/posix/StagedFile_p.h"

#include "platform/posix/File_p.h"
#include "platform/posix/PrivateDirectory_p.h"
#include "platform/posix/Retry_p.h"

#include <QtCore/QList>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <span>

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zyn::posix {
namespace {

constexpr mode_t kNewFileMode = 0666; // less the process's umask
constexpr mode_t kPermissions = 0777;

bool canLock(int fd)
{
    return retry([&] { return ::flock(fd, LOCK_EX | LOCK_NB); }) == 0;
}

/// Whether @p number, out of a file's name, can be that of no other process that lives.
bool isNobodyElses(const QByteArray& number)
{
    bool isNumber = false;
    const int process = number.toInt(&isNumber);
    return isNumber && process > 0 && (process == ::getpid() || (::kill(process, 0) != 0 && errno == ESRCH));
}

bool isUpper(char character)
{
    return character >= 'A' && character <= 'Z';
}

bool isLetter(char character)
{
    return isUpper(character) || (character >= 'a' && character <= 'z');
}

/// Whether @p letters look like a word: in one case, or with a capital.
bool isWord(QByteArrayView letters)
{
    const auto capitals = std::ranges::count_if(letters, isUpper);
    return capitals == 0 || capitals == letters.size() || (capitals == 1 && isUpper(letters.front()));
}

/// Whether the file system cannot rename in the way that was tried.
bool isUnsupported()
{
    return errno == EINVAL || errno == ENOSYS;
}

bool writeWhole(int fd, const QByteArray& contents)
{
    return writeAt(fd, std::as_bytes(std::span(contents.constData(), static_cast<size_t>(contents.size()))), 0)
           && sync(fd);
}

} // namespace

StagedFile::StagedFile(const Place& place)
    : m_place(place)
    , m_name(place.name + kStagedInfix + QByteArray::number(::getpid()))
{
    removeLeftovers(place);
    m_fd = openAt(place.directory.get(), m_name, O_RDWR | O_CREAT | O_EXCL, kNewFileMode);
    m_isNamed = m_fd.isValid();
    if (m_isNamed)
        canLock(m_fd.get());
}

StagedFile::~StagedFile()
{
    if (m_isNamed)
        ::unlinkat(m_place.directory.get(), m_name.constData(), 0);
}

void StagedFile::takeAfter(int other) const
{
    struct stat status = {};
    if (::fstat(other, &status) != 0)
        return;
    [[maybe_unused]] const int result = ::fchown(m_fd.get(), status.st_uid, status.st_gid);
    ::fchmod(m_fd.get(), status.st_mode & kPermissions);
}

bool StagedFile::moveIn()
{
    const int directory = m_place.directory.get();
    const char* to = m_place.name.constData();
    if (::renameat2(directory, m_name.constData(), directory, to, RENAME_NOREPLACE) == 0) {
        m_isNamed = false;
        return true;
    }
    // File systems that cannot rename this way can link, which never replaces; the name goes with the object.
    return isUnsupported() && ::linkat(directory, m_name.constData(), directory, to, 0) == 0;
}

bool StagedFile::moveOver()
{
    const int directory = m_place.directory.get();
    m_isNamed = ::renameat(directory, m_name.constData(), directory, m_place.name.constData()) != 0;
    return !m_isNamed;
}

bool StagedFile::exchange()
{
    const int directory = m_place.directory.get();
    return ::renameat2(directory, m_name.constData(), directory, m_place.name.constData(), RENAME_EXCHANGE) == 0
           || (isUnsupported() && moveOver());
}

UniqueFd StagedFile::openExchanged() const
{
    return openAt(m_place.directory.get(), m_name, O_RDWR);
}

bool StagedFile::isExchangedFor(int fd) const
{
    if (!m_isNamed)
        return true;
    const std::optional<FileId> open = fileId(fd);
    return open && entryId(m_place.directory.get(), m_name) == open;
}

bool replaceFile(const Place& place, const QByteArray& contents)
{
    const int parent = place.directory.get();
    struct stat status = {};
    const bool isThere = ::fstatat(parent, place.name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    if (!isThere && errno != ENOENT)
        return false;
    if (isThere && !S_ISREG(status.st_mode)) {
        errno = EEXIST;
        return false;
    }
    const UniqueFd old = isThere ? openAt(place, O_WRONLY) : UniqueFd();
    if (isThere && !old.isValid())
        return false;
    // One that may not be read cannot be synchronised either.
    const UniqueFd directory = openAt(parent, ".", O_RDONLY | O_DIRECTORY);
    if (!directory.isValid() && errno != EACCES)
        return false;
    StagedFile staged(place);
    if (!staged.isValid())
        return false;
    if (isThere)
        staged.takeAfter(old.get());
    return writeWhole(staged.fd(), contents) && staged.moveOver() && (!directory.isValid() || sync(directory.get()));
}

bool replaceFile(const QByteArray& path, const QByteArray& contents)
{
    const std::optional<Place> place = placeOf(path);
    return place && replaceFile(*place, contents);
}

bool createFile(const QByteArray& path, const QByteArray& contents, int model)
{
    const std::optional<Place> place = placeOf(path, LastLink::Keep);
    if (!place)
        return false;
    StagedFile staged(*place);
    if (!staged.isValid())
        return false;
    staged.takeAfter(model);
    return writeWhole(staged.fd(), contents) && staged.moveIn();
}

void removeLeftovers(const Place& place)
{
    const QByteArray prefix = place.name + kStagedInfix;
    for (const QByteArray& name : entries(place.directory.get(), S_IFREG).value_or(QList<QByteArray>())) {
        if (!name.startsWith(prefix) || !isNobodyElses(name.sliced(prefix.size())))
            continue;
        // The lock tells those that only seem to be: in another container, a process lives under another number.
        const UniqueFd fd = openAt(place.directory.get(), name, O_RDONLY);
        if (fd.isValid() && canLock(fd.get()))
            ::unlinkat(place.directory.get(), name.constData(), 0);
    }
}

void removeTemporaryFiles(const Place& place)
{
    constexpr qsizetype kLetters = 6;
    const int directory = place.directory.get();
    const QByteArray prefix = place.name + '.';
    for (const QByteArray& name : entries(directory, S_IFREG).value_or(QList<QByteArray>())) {
        if (!name.startsWith(prefix) || name.size() != prefix.size() + kLetters)
            continue;
        const QByteArrayView letters = QByteArrayView(name).last(kLetters);
        struct stat status = {};
        if (std::ranges::all_of(letters, isLetter)
            && ::fstatat(directory, name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0
            && (status.st_size == 0 || !isWord(letters)))
            ::unlinkat(directory, name.constData(), 0);
    }
}

} // namespace zyn::posix
