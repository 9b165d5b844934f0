// A place of its own for the programs of a handset.
#include "tools/run/PrivatePlace.h"

#include "platform/posix/UniqueFd_p.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "tools/zynphone/ExitCode.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr char kTmp[] = "/tmp";

/// The names in /tmp that a handset uses; channels have one for each user.
bool isOfHandset(const QByteArray& name)
{
    const QByteArray path = QByteArray(kTmp) + '/' + name;
    return path == voicecall::kSocketDirectory || QByteArray(recentcall::kSocketPath).startsWith(path + '/')
           || path == emergency::kListFile || name == "phone" || name.startsWith("zynqcop-");
}

[[noreturn]] void refuse(const char* what)
{
    throw CommandError(NotAllowed, u"no private handset: %1: %2. It takes root, or a kernel that lets users make "
                                   "namespaces: see /proc/sys/user/max_user_namespaces"_s.arg(
                                       QLatin1String(what), QString::fromLocal8Bit(std::strerror(errno))));
}

void require(bool isDone, const char* what)
{
    if (!isDone)
        refuse(what);
}

bool writeTo(const char* path, const QByteArray& text)
{
    const posix::UniqueFd fd(::open(path, O_WRONLY | O_CLOEXEC));
    return ::write(fd.get(), text.constData(), static_cast<size_t>(text.size())) == ssize_t(text.size());
}

/// Separates this process's mounts from the system's. Whoever is not root becomes a user who may, under the same
/// number.
void separateMounts()
{
    if (::unshare(CLONE_NEWNS) != 0) {
        const QByteArray user = QByteArray::number(::geteuid());
        const QByteArray group = QByteArray::number(::getegid());
        require(::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "the kernel allows no namespace");
        require(writeTo("/proc/self/setgroups", "deny") && writeTo("/proc/self/uid_map", user + ' ' + user + " 1")
                    && writeTo("/proc/self/gid_map", group + ' ' + group + " 1"),
                "the user cannot be mapped");
    }
    require(::mount(nullptr, "/", nullptr, MS_REC | MS_SLAVE, nullptr) == 0, "mounts cannot be separated");
}

/// Has the entry @p name of @p directory, which is covered, appear in /tmp.
void show(int directory, const QByteArray& name)
{
    const QByteArray place = QByteArray(kTmp) + '/' + name;
    struct stat status = {};
    if (::fstatat(directory, name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return; // gone meanwhile
    if (S_ISLNK(status.st_mode)) {
        QByteArray target(PATH_MAX, '\0');
        const ssize_t size = ::readlinkat(directory, name.constData(), target.data(), size_t(target.size()) - 1);
        if (size > 0 && ::symlink(target.constData(), place.constData()) != 0)
            refuse("a link in /tmp cannot be made");
        return;
    }
    const bool isMade = S_ISDIR(status.st_mode)
                            ? ::mkdir(place.constData(), 0700) == 0
                            : posix::UniqueFd(::open(place.constData(), O_CREAT | O_EXCL | O_CLOEXEC, 0600)).isValid();
    const QByteArray source = "/proc/self/fd/" + QByteArray::number(directory) + '/' + name;
    if (isMade && ::mount(source.constData(), place.constData(), nullptr, MS_BIND | MS_REC, nullptr) != 0)
        ::remove(place.constData()); // not for this user to see
}

} // namespace

void enterPrivatePlace()
{
    const QByteArray folder = QFile::encodeName(QDir::currentPath());
    separateMounts();
    const posix::UniqueFd tmp(::open(kTmp, O_PATH | O_DIRECTORY | O_CLOEXEC));
    const QStringList names =
        QDir(QLatin1String(kTmp)).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    require(::mount("tmpfs", kTmp, "tmpfs", MS_NOSUID | MS_NODEV, "mode=1777") == 0, "/tmp cannot be covered");
    for (const QString& entry : names) {
        const QByteArray name = QFile::encodeName(entry);
        if (!isOfHandset(name))
            show(tmp.get(), name);
    }
    // The folder, reached by what is visible now.
    if (::chdir(folder.constData()) != 0)
        refuse("the working directory cannot be entered again");
}

} // namespace zyn::tool
