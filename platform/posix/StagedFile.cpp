// Files that come into being whole and at once: written under a name of their own, then renamed.
#include "platform/posix/StagedFile_p.h"

#include "platform/posix/Directory_p.h"
#include "platform/posix/File_p.h"

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
constexpr mode_t kKeptPermissions = 0777;

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

StagedFile::StagedFile(const PathAt& path)
    : m_path(path)
    , m_name(path.name + kStagedInfix + QByteArray::number(::getpid()))
{
    removeLeftovers(path);
    m_fd = openAt(path.directory.get(), m_name, O_RDWR | O_CREAT | O_EXCL, kNewFileMode);
    m_isNamed = m_fd.isValid();
    if (m_isNamed)
        canLock(m_fd.get());
}

StagedFile::~StagedFile()
{
    if (m_isNamed)
        ::unlinkat(m_path.directory.get(), m_name.constData(), 0);
}

void StagedFile::copyOwnership(int other) const
{
    struct stat status = {};
    if (::fstat(other, &status) != 0)
        return;
    [[maybe_unused]] const int result = ::fchown(m_fd.get(), status.st_uid, status.st_gid);
    ::fchmod(m_fd.get(), status.st_mode & kKeptPermissions);
}

bool StagedFile::moveIn()
{
    const int directory = m_path.directory.get();
    const char* to = m_path.name.constData();
    if (::renameat2(directory, m_name.constData(), directory, to, RENAME_NOREPLACE) == 0) {
        m_isNamed = false;
        return true;
    }
    // File systems that cannot rename this way can link, which never replaces; the name goes with the object.
    return isUnsupported() && ::linkat(directory, m_name.constData(), directory, to, 0) == 0;
}

bool StagedFile::moveOver()
{
    const int directory = m_path.directory.get();
    m_isNamed = ::renameat(directory, m_name.constData(), directory, m_path.name.constData()) != 0;
    return !m_isNamed;
}

bool StagedFile::exchange()
{
    const int directory = m_path.directory.get();
    return ::renameat2(directory, m_name.constData(), directory, m_path.name.constData(), RENAME_EXCHANGE) == 0
           || (isUnsupported() && moveOver());
}

UniqueFd StagedFile::openExchanged() const
{
    return openAt(m_path.directory.get(), m_name, O_RDWR);
}

bool StagedFile::isExchangedFor(int fd) const
{
    if (!m_isNamed)
        return true;
    const std::optional<EntryStatus> exchanged = entryStatus(m_path.directory.get(), m_name);
    return exchanged && fileId(fd) == exchanged->id;
}

bool replaceFile(const PathAt& path, const QByteArray& contents)
{
    const int parent = path.directory.get();
    struct stat status = {};
    const bool isThere = ::fstatat(parent, path.name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    if (!isThere && errno != ENOENT)
        return false;
    if (isThere && !S_ISREG(status.st_mode)) {
        errno = EEXIST;
        return false;
    }
    const UniqueFd old = isThere ? openAt(parent, path.name, O_WRONLY) : UniqueFd();
    if (isThere && !old.isValid())
        return false;
    // One that may not be read cannot be synchronised either.
    const UniqueFd directory = openAt(parent, ".", O_RDONLY | O_DIRECTORY);
    if (!directory.isValid() && errno != EACCES)
        return false;
    StagedFile staged(path);
    if (!staged.isValid())
        return false;
    if (isThere && !isTakenByOthers(pathThrough(parent, path.name)))
        staged.copyOwnership(old.get());
    return writeWhole(staged.fd(), contents) && staged.moveOver() && (!directory.isValid() || sync(directory.get()));
}

bool replaceFile(const QByteArray& path, const QByteArray& contents)
{
    const std::optional<PathAt> found = resolve(path);
    return found && replaceFile(*found, contents);
}

bool createFile(const QByteArray& path, const QByteArray& contents, int model)
{
    const std::optional<PathAt> found = resolve(path, LastLink::Keep);
    if (!found)
        return false;
    StagedFile staged(*found);
    if (!staged.isValid())
        return false;
    staged.copyOwnership(model);
    return writeWhole(staged.fd(), contents) && staged.moveIn();
}

void removeLeftovers(const PathAt& path)
{
    const QByteArray prefix = path.name + kStagedInfix;
    for (const QByteArray& name : entries(path.directory.get(), EntryType::File).value_or(QList<QByteArray>())) {
        if (!name.startsWith(prefix) || !isNobodyElses(name.sliced(prefix.size())))
            continue;
        // Only the lock proves it: in another container a living process has another number.
        const UniqueFd fd = openAt(path.directory.get(), name, O_RDONLY);
        if (fd.isValid() && canLock(fd.get()))
            ::unlinkat(path.directory.get(), name.constData(), 0);
    }
}

void removeTemporaryFiles(const PathAt& path)
{
    constexpr qsizetype kLetters = 6;
    const int directory = path.directory.get();
    const QByteArray prefix = path.name + '.';
    for (const QByteArray& name : entries(directory, EntryType::File).value_or(QList<QByteArray>())) {
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
