// At the doors: every operation on every path.
#include "platform/posix/UnixSocket_p.h"
#include "tests/faults/intruder/Attacks.h"
#include "tests/faults/intruder/Evidence.h"

#include <QtCore/QFile>

#include <cerrno>
#include <csignal>
#include <cstdio>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/ptrace.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using zyn::posix::UniqueFd;

namespace intruder {
namespace {

bool connects(const QByteArray& path)
{
    const zyn::posix::UnixAddress address = zyn::posix::unixAddress(path);
    for (const int type : {SOCK_DGRAM, SOCK_STREAM, SOCK_SEQPACKET}) {
        const UniqueFd fd(::socket(AF_UNIX, type | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        if (::connect(fd.get(), address.get(), address.length) == 0 || errno == EPROTOTYPE)
            return true;
    }
    return false;
}

bool binds(const QByteArray& path)
{
    const bool isBound = zyn::posix::listenUnix(path, 0666).isValid();
    if (isBound)
        ::unlink(path.constData());
    return isBound;
}

bool locks(const QByteArray& path)
{
    const UniqueFd fd(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    return fd.isValid() && (::flock(fd.get(), LOCK_EX | LOCK_NB) == 0 || errno == EWOULDBLOCK);
}

bool watches(const QByteArray& path)
{
    const UniqueFd fd(::inotify_init1(IN_CLOEXEC));
    return ::inotify_add_watch(fd.get(), path.constData(), IN_ALL_EVENTS) >= 0;
}

bool lists(const QByteArray& path)
{
    DIR* const stream = ::opendir(path.constData());
    return stream && ::closedir(stream) == 0;
}

bool makesFile(const QByteArray& path)
{
    const QByteArray inside = path + "/intruders";
    return isOpened(inside, O_WRONLY | O_CREAT | O_EXCL) && ::unlink(inside.constData()) == 0;
}

bool makesLink(const QByteArray& path)
{
    const QByteArray inside = path + "/intruders";
    return ::symlink(kPrecious.constData(), inside.constData()) == 0 && ::unlink(inside.constData()) == 0;
}

struct Operation
{
    const char* name;
    const char* kinds; ///< of files: d directory, f regular, s socket, and others
    bool (*attempt)(const QByteArray& path);
};

/// Those that leave nothing behind when they succeed come first.
const Operation kOperations[] = {
    {"list", "d", &lists},
    {"enter", "d", [](const QByteArray& path) { return ::chdir(path.constData()) == 0 && ::chdir("/") == 0; }},
    {"read", "dfl", [](const QByteArray& path) { return isOpened(path, O_RDONLY); }},
    {"write", "f", [](const QByteArray& path) { return isOpened(path, O_WRONLY); }},
    {"change", "f", [](const QByteArray& path) { return isOpened(path, O_RDWR | O_APPEND); }},
    {"truncate", "f", [](const QByteArray& path) { return ::truncate(path.constData(), 0) == 0; }},
    {"connect", "s", &connects},
    {"lock", "df", &locks},
    {"watch", "df", &watches},
    {"make-file", "d", &makesFile},
    {"make-link", "d", &makesLink},
    {"make-socket", "d", [](const QByteArray& path) { return binds(path + "/intruders"); }},
    {"touch", "dfs", [](const QByteArray& path) { return ::utimensat(AT_FDCWD, path.constData(), nullptr, 0) == 0; }},
    {"set-attribute", "df",
     [](const QByteArray& path) { return ::setxattr(path.constData(), "user.intruder", "x", 1, 0) == 0; }},
    {"open up", "dfs", [](const QByteArray& path) { return ::chmod(path.constData(), 0777) == 0; }},
    {"take over", "dfsl", [](const QByteArray& path) { return ::lchown(path.constData(), kIntruder, kIntruder) == 0; }},
    {"link", "fsl",
     [](const QByteArray& path) {
         return ::linkat(AT_FDCWD, path.constData(), AT_FDCWD, (kLair + "/link").constData(), 0) == 0;
     }},
    {"replace", "fsl",
     [](const QByteArray& path) { return ::rename((kLair + "/bait").constData(), path.constData()) == 0; }},
    {"rename", "dfsl",
     [](const QByteArray& path) { return ::rename(path.constData(), (kLair + "/loot").constData()) == 0; }},
    {"remove", "dfsl",
     [](const QByteArray& path) { return ::unlink(path.constData()) == 0 || ::rmdir(path.constData()) == 0; }},

};

void tell(int out, const QByteArray& operation, const QByteArray& path, bool hasSucceeded)
{
    say(out, operation + '\t' + path + '\t' + (hasSucceeded ? '1' : '0'));
}

/// A process of the first user: looked into, and told to end.
void attackProcess(int out, pid_t process)
{
    const QByteArray folder = "/proc/" + QByteArray::number(process) + '/';
    for (const char* file : {"mem", "environ", "maps", "auxv", "stack", "syscall", "fd/0", "fd/3", "cwd/x", "io"})
        tell(out, "read", folder + file, isOpened(folder + file, O_RDONLY));
    for (const int signal : {0, SIGTERM, SIGKILL, SIGSTOP, SIGUSR1})
        tell(out, "signal", folder, ::kill(process, signal) == 0);
    tell(out, "trace", folder, ::ptrace(PTRACE_SEIZE, process, nullptr, nullptr) == 0);
    char byte = 0;
    const iovec here = {&byte, 1};
    const iovec there = {&byte, 1}; // which need not be anything there: to be let in is enough
    const bool isIn = ::process_vm_readv(process, &here, 1, &there, 1, 0) == 1 || errno != EPERM;
    tell(out, "look into", folder, isIn);
}

/// The number that the channels' processes share.
void attackSegments(int out, const QList<int>& segments)
{
    for (const int id : segments) {
        const QByteArray name = "/proc/sysvipc/shm:" + QByteArray::number(id);
        shmid_ds status = {};
        const auto isAttached = [id](int flags) {
            return reinterpret_cast<intptr_t>(::shmat(id, nullptr, flags)) != -1;
        };
        tell(out, "read", name, isAttached(SHM_RDONLY));
        tell(out, "write", name, isAttached(0));
        tell(out, "inspect", name, ::shmctl(id, IPC_STAT, &status) == 0);
        tell(out, "take over", name, ::shmctl(id, IPC_SET, &status) == 0);
        tell(out, "remove", name, ::shmctl(id, IPC_RMID, nullptr) == 0);
    }
}

/// The segments that @p handset's processes have made or use.
QList<int> segmentsOf(const Place& place)
{
    QList<int> ids;
    const QByteArray target = QFile::symLinkTarget(QFile::decodeName(place.channels() + "/.zyn-changes")).toLatin1();
    const QByteArray name = target.mid(target.lastIndexOf('/') + 1).split('-').first();
    bool isNumber = false;
    const int id = name.toInt(&isNumber);
    if (isNumber)
        ids.append(id);
    return ids;
}

} // namespace

void attackDoors(const Place& place, const Handset& handset)
{
    QList<pid_t> processes;
    for (const auto& [name, program] : handset.all())
        processes.append(program->id());
    const QList<QByteArray> paths = allPaths();
    const QList<int> segments = segmentsOf(place);
    report.check(!segments.isEmpty(), u"the channels have no shared number to attack"_s);
    QMap<QByteArray, char> kinds;
    for (const QByteArray& path : paths)
        kinds[path] = kindOf(path);
    Intruder intruder([&](int out, int) {
        for (const Operation& operation : kOperations) {
            for (const QByteArray& path : paths) {
                if (!QByteArray(operation.kinds).contains(kinds[path]))
                    continue;
                isOpened(kLair + "/bait", O_WRONLY | O_CREAT);
                tell(out, operation.name, path, operation.attempt(path));
            }
        }
        attackSegments(out, segments);
        for (const pid_t process : processes)
            attackProcess(out, process);
    });
    noteLines(intruder.lines());
}

} // namespace intruder
