// Where the listeners of a channel are found.
#include "platform/qcop/ChannelDirectory_p.h"

#include "platform/posix/PrivateDirectory_p.h"
#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Well below the longest file name, which is 255 bytes.
constexpr qsizetype kFileNameLimit = 200;
constexpr mode_t kOwnUserOnly = 0600;
/// Begins the file name of a channel whose own name does not fit; never occurs in one that does.
constexpr char kHashMark = '=';

/// The channel's name as a file name: percent-encoded, the dot too, which may hide a file or leave the
/// directory.
QByteArray fileName(const QCString& channel)
{
    QByteArray encoded = channel.toPercentEncoding({}, ".");
    if (encoded.size() <= kFileNameLimit)
        return encoded;
    return kHashMark + QCryptographicHash::hash(channel, QCryptographicHash::Sha256).toHex();
}

bool isHidden(const QByteArray& name)
{
    return name.startsWith('.');
}

/// Without slashes at the end, which would make open() follow a symbolic link.
QByteArray cleanPath(const QByteArray& path)
{
    return QFile::encodeName(QDir::cleanPath(QFile::decodeName(path)));
}

} // namespace

namespace zyn {

ChannelEnvironment ChannelEnvironment::current()
{
    return {qgetenv("ZYN_QCOP_PATH"), qgetenv("XDG_RUNTIME_DIR")};
}

QByteArray ChannelEnvironment::root() const
{
    if (!channelPath.isEmpty())
        return channelPath.startsWith('/') ? cleanPath(channelPath) : QByteArray();
    if (!runtimePath.isEmpty()) {
        const QByteArray path = cleanPath(runtimePath);
        const bool isUsable = path.startsWith('/') && posix::openPrivateDirectory(AT_FDCWD, path).isValid();
        return isUsable ? path + "/zynqcop" : QByteArray();
    }
    return "/tmp/zynqcop-" + QByteArray::number(::geteuid());
}

ChannelDirectory::ChannelDirectory(posix::UniqueFd root, posix::UniqueFd fd)
    : m_root(std::move(root))
    , m_fd(std::move(fd))
{}

std::optional<ChannelDirectory> ChannelDirectory::open(const QByteArray& root, const QCString& channel)
{
    ChannelDirectory directory(posix::openPrivateDirectory(AT_FDCWD, root), {});
    directory.m_fd = posix::openPrivateDirectory(directory.root(), fileName(channel));
    if (!directory.m_fd.isValid())
        return std::nullopt;
    return directory;
}

std::optional<ChannelDirectory> ChannelDirectory::make(const QByteArray& root, const QCString& channel)
{
    posix::makePrivateDirectory(posix::makePrivateDirectory(AT_FDCWD, root).get(), fileName(channel));
    return open(root, channel);
}

QList<QCString> ChannelDirectory::channels(const QByteArray& root)
{
    QList<QCString> result;
    const posix::UniqueFd directory = posix::openPrivateDirectory(AT_FDCWD, root);
    for (const QByteArray& name : posix::entries(directory.get(), S_IFDIR).value_or(QList<QByteArray>())) {
        const QCString channel = QCString::fromPercentEncoding(name);
        if (fileName(channel) == name)
            result.append(channel);
    }
    std::sort(result.begin(), result.end());
    return result;
}

QByteArray ChannelDirectory::path(const QByteArray& root, const QCString& channel)
{
    return root + '/' + fileName(channel);
}

std::optional<QList<QByteArray>> ChannelDirectory::listeners() const
{
    auto names = posix::entries(fd(), S_IFSOCK);
    if (names)
        names->removeIf(&isHidden);
    return names;
}

posix::UniqueFd ChannelDirectory::listenAs(const QByteArray& name) const
{
    // A sender that met the socket between bind and listen would be refused, and take it for a dead one.
    const QByteArray hidden = '.' + name;
    removeStillborn();
    posix::UniqueFd socket = posix::listenUnix(posix::pathThrough(fd(), hidden), kOwnUserOnly);
    if (!socket.isValid() || ::renameat(fd(), hidden.constData(), fd(), name.constData()) != 0) {
        remove(hidden);
        return {};
    }
    return socket;
}

posix::UniqueFd ChannelDirectory::connectTo(const QByteArray& name) const
{
    return posix::connectUnixAtOnce(posix::pathThrough(fd(), name));
}

void ChannelDirectory::remove(const QByteArray& name) const
{
    ::unlinkat(fd(), name.constData(), 0);
}

void ChannelDirectory::removeStillborn() const
{
    for (const QByteArray& name : posix::entries(fd(), S_IFSOCK).value_or(QList<QByteArray>())) {
        // A refused connection does not tell: a living process may be about to listen.
        const pid_t process = owner(name.sliced(1));
        if (isHidden(name) && process > 0 && ::kill(process, 0) != 0 && errno == ESRCH)
            remove(name);
    }
}

QByteArray ChannelDirectory::newName()
{
    return QByteArray::number(::getpid()) + '-' + QByteArray::number(QRandomGenerator::system()->generate64(), 16);
}

pid_t ChannelDirectory::owner(const QByteArray& name)
{
    return name.split('-').first().toInt();
}

} // namespace zyn
