// The directory of a channel: senders find its listeners there.
#include "platform/qcop/ChannelDirectory_p.h"

#include "platform/posix/Directory_p.h"
#include "platform/posix/PathAt_p.h"
#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRandomGenerator>

#include <algorithm>
#include <atomic>
#include <chrono>

namespace zyn {
namespace {

/// Well below the longest file name, which is 255 bytes.
constexpr qsizetype kFileNameLimit = 200;
/// The modes of a listener's socket: being made, which nobody but its owner may connect to either, and made.
constexpr mode_t kUnfinished = 0200;
constexpr mode_t kFinished = 0600;
/// An unfinished socket is nobody's for a moment while it is bound, after which it seems dead only when it is.
constexpr std::chrono::seconds kUnfinishedTime{10};
/// How often a process checks all listeners for dead ones at most.
constexpr std::chrono::seconds kCleanInterval{1};
/// Begins the file name of a channel whose own name does not fit; never occurs in one that does.
constexpr char kHashMark = '=';
constexpr char kEncodingMark = '%';

/// The channel's name as a file name: percent-encoded, the dot too, which may hide a file or leave the directory.
QByteArray fileName(const QByteArray& channel)
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

/// The root of a user who has no directory for such things: a name that anybody may take first.
QByteArray sharedRoot()
{
    return "/tmp/zynqcop-" + QByteArray::number(posix::currentUser());
}

} // namespace

ChannelEnvironment ChannelEnvironment::current()
{
    QByteArray path = qgetenv("ZYN_QCOP_PATH");
    return path.isEmpty() ? ChannelEnvironment{{}, qgetenv("XDG_RUNTIME_DIR")} : ChannelEnvironment{path, {}};
}

QByteArray ChannelEnvironment::root() const
{
    if (!channelPath.isEmpty())
        return channelPath.startsWith('/') ? cleanPath(channelPath) : QByteArray();
    if (!runtimePath.isEmpty()) {
        const QByteArray path = cleanPath(runtimePath);
        const bool isUsable = path.startsWith('/') && posix::openPrivateDirectory(path).isValid();
        return isUsable ? path + "/zynqcop" : QByteArray();
    }
    return sharedRoot();
}

ChannelDirectory::ChannelDirectory(posix::UniqueFd root, QByteArray name)
    : m_root(std::move(root))
    , m_name(std::move(name))
    , m_fd(posix::openPrivateDirectory(m_root.get(), m_name))
{}

std::optional<ChannelDirectory> ChannelDirectory::openEntry(posix::UniqueFd root, QByteArray name)
{
    ChannelDirectory directory(std::move(root), std::move(name));
    if (!directory.m_fd.isValid())
        return std::nullopt;
    return directory;
}

std::optional<ChannelDirectory> ChannelDirectory::open(const QByteArray& root, const QByteArray& channel)
{
    return open(posix::openPrivateDirectory(root), channel);
}

std::optional<ChannelDirectory> ChannelDirectory::open(posix::UniqueFd root, const QByteArray& channel)
{
    if (!root.isValid())
        return std::nullopt;
    return openEntry(std::move(root), fileName(channel));
}

std::optional<ChannelDirectory> ChannelDirectory::make(const QByteArray& root, const QByteArray& channel)
{
    posix::UniqueFd fd = makeRoot(root);
    posix::makePrivateDirectory(fd.get(), fileName(channel));
    return open(std::move(fd), channel);
}

posix::UniqueFd ChannelDirectory::makeRoot(const QByteArray& root)
{
    posix::UniqueFd fd = posix::makePrivateDirectory(root);
    // Only root can clear it.
    if (!fd.isValid() && root == sharedRoot() && posix::clearOfOthers(root))
        fd = posix::makePrivateDirectory(root);
    return fd;
}

QList<QByteArray> ChannelDirectory::channels(const QByteArray& root)
{
    QList<QByteArray> result;
    const posix::UniqueFd directory = posix::openPrivateDirectory(root);
    for (const QByteArray& name :
         posix::entries(directory.get(), posix::EntryType::Directory).value_or(QList<QByteArray>())) {
        const QByteArray channel = QByteArray::fromPercentEncoding(name);
        if (fileName(channel) == name)
            result.append(channel);
    }
    std::sort(result.begin(), result.end());
    return result;
}

void ChannelDirectory::clean(const QByteArray& root)
{
    static std::atomic<posix::Clock::rep> next{posix::Clock::time_point::min().time_since_epoch().count()};
    const auto now = posix::Clock::now().time_since_epoch();
    if (now.count() < next.exchange((now + kCleanInterval).count()))
        return;
    // The directory is one that the user has named: what might be something else of his stays.
    const posix::UniqueFd fd = posix::openPrivateDirectory(root);
    for (const QByteArray& entry :
         posix::entries(fd.get(), posix::EntryType::Directory).value_or(QList<QByteArray>())) {
        if (isHidden(entry))
            continue;
        const auto directory = openEntry(posix::openPrivateDirectory(root), entry);
        if (!directory)
            continue;
        bool isChannel = entry.contains(kEncodingMark) || entry.startsWith(kHashMark);
        for (const QByteArray& name : directory->listeners().value_or(QList<QByteArray>()))
            isChannel = (owner(name) > 0 && directory->removeIfDead(name)) || isChannel;
        if (isChannel)
            directory->removeIfEmpty();
    }
}

QByteArray ChannelDirectory::path(const QByteArray& root, const QByteArray& channel)
{
    return root + '/' + fileName(channel);
}

std::optional<QList<QByteArray>> ChannelDirectory::listeners() const
{
    auto names = posix::entries(fd(), posix::EntryType::Socket);
    if (names)
        names->removeIf(&isHidden);
    return names;
}

bool ChannelDirectory::isReady(const QByteArray& name) const
{
    const std::optional<posix::EntryStatus> status = posix::entryStatus(fd(), name);
    return status && status->permissions != kUnfinished;
}

posix::UniqueFd ChannelDirectory::listenAs(const QByteArray& name) const
{
    const QByteArray path = posix::pathOf(fd()) + '/' + name;
    const bool fits = path.size() <= posix::kUnixPathLimit;
    posix::UniqueFd socket = posix::listenUnix(fits ? path : posix::pathThrough(fd(), name), kUnfinished);
    // Senders notice the new mode; what was refused until then is no dead listener. Changed through the directory, it
    // also proves that the path has led nowhere else.
    if (!socket.isValid() || !posix::setEntryMode(fd(), name, kFinished)) {
        remove(name);
        return {};
    }
    return socket;
}

posix::UniqueFd ChannelDirectory::connectTo(const QByteArray& name) const
{
    return posix::connectUnixAtOnce(posix::pathThrough(fd(), name));
}

bool ChannelDirectory::removeIfDead(const QByteArray& name) const
{
    const std::optional<posix::EntryStatus> status = posix::entryStatus(fd(), name);
    if (!status)
        return false;
    // Its process's number proves nothing: in another container a living process has another number.
    const bool isUnfinished = status->permissions == kUnfinished && std::chrono::abs(status->age) < kUnfinishedTime;
    if (isUnfinished || posix::isBound(posix::pathThrough(fd(), name)))
        return false;
    remove(name);
    return true;
}

void ChannelDirectory::remove(const QByteArray& name) const
{
    posix::removeEntry(fd(), name);
}

std::optional<posix::FileId> ChannelDirectory::fileOf(const QByteArray& name) const
{
    const std::optional<posix::EntryStatus> status = posix::entryStatus(fd(), name);
    return status ? std::optional(status->id) : std::nullopt;
}

void ChannelDirectory::removeIfEmpty() const
{
    posix::removeEmptyDirectory(m_root.get(), m_name);
}

QByteArray ChannelDirectory::newName()
{
    return QByteArray::number(QCoreApplication::applicationPid()) + '-'
           + QByteArray::number(QRandomGenerator::system()->generate64(), 16);
}

pid_t ChannelDirectory::owner(const QByteArray& name)
{
    return name.split('-').first().toInt();
}

} // namespace zyn
