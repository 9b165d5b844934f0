// Lock files, and who holds them.
#include "platform/posix/FileLock_p.h"

#include "platform/posix/File_p.h"
#include "platform/posix/Place_p.h"

#include <QtCore/QList>

#include <array>
#include <cerrno>
#include <span>

#include <unistd.h>

namespace zyn::posix {
namespace {

constexpr qint64 kSizeLimit = 4096;

QByteArray hostName()
{
    std::array<char, 256> name = {};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? QByteArray(name.data()) : QByteArray();
}

/// Whether @p path is that of nothing, or of something of this user's or root's.
bool isOfTrustedOwner(const QByteArray& path)
{
    const std::optional<uid_t> owner = ownerOf(path);
    return !owner || isTrustedUser(*owner);
}

} // namespace

bool FileLock::take(const QByteArray& path, LockOwner owner)
{
    release();
    if (owner == LockOwner::Trusted && !isOfTrustedOwner(path)) {
        errno = EPERM;
        return false;
    }
    m_path = path;
    m_fd = lockFile(path);
    return isHeld();
}

bool FileLock::isInPlace() const
{
    return isHeld() && isNamed(m_fd.get(), m_path);
}

void FileLock::sign(const QByteArray& program) const
{
    // What a predecessor has left is longer, maybe.
    if (::ftruncate(m_fd.get(), 0) != 0)
        return;
    const QByteArray text = QByteArray::number(::getpid()) + '\n' + program + '\n' + hostName() + '\n';
    writeAt(m_fd.get(), std::as_bytes(std::span(text.constData(), static_cast<size_t>(text.size()))), 0);
}

void FileLock::release()
{
    if (isInPlace())
        ::unlink(m_path.constData());
    m_fd.reset();
}

std::optional<LockHolder> readLockHolder(const QByteArray& path)
{
    const QList<QByteArray> lines = readWhole(path, kSizeLimit).value_or(QByteArray()).split('\n');
    bool isNumber = false;
    const qint64 process = lines.first().toLongLong(&isNumber);
    if (!isNumber || lines.size() < 2)
        return std::nullopt;
    return LockHolder{process, lines.at(1)};
}

} // namespace zyn::posix
