// System calls that fail on request. What a program defines comes before the C library's, for its libraries too.
//
// The functions are those that platform/posix and Qt Core's files call, under the names by which the libraries ask for
// them; the test faults_shim compares them with what `nm -D --undefined-only` tells.
#include "tests/faults/shim/SystemCalls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/shm.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace faults::shim {
namespace {

enum class Fate { Pass, Fail, Short };

bool s_isArmed = false;
Fault s_fault;
int s_count = 0;
std::array<const char*, 4096> s_names;

struct Range
{
    uintptr_t begin;
    uintptr_t end;
};
std::vector<Range> s_callers;

/// Notes where the code of this program and of the libraries under test is. GLib's calls are its own affair, and their
/// number depends on the time.
int addCaller(dl_phdr_info* object, size_t /*size*/, void* /*data*/)
{
    const bool isProgram = object->dlpi_name[0] == '\0';
    if (!isProgram && !std::strstr(object->dlpi_name, "libzyn") && !std::strstr(object->dlpi_name, "libQt6Core"))
        return 0;
    for (int i = 0; i < object->dlpi_phnum; ++i) {
        const auto& part = object->dlpi_phdr[i];
        const auto begin = static_cast<uintptr_t>(object->dlpi_addr + part.p_vaddr);
        if (part.p_type == PT_LOAD && (part.p_flags & PF_X))
            s_callers.push_back({begin, begin + static_cast<uintptr_t>(part.p_memsz)});
    }
    return 0;
}

Fate fateOf(int error)
{
    if (error == 0)
        return Fate::Pass;
    if (error == kShort)
        return Fate::Short;
    errno = error;
    return Fate::Fail;
}

/// What becomes of a call of the function @p name, of which each has one text.
Fate fate(const char* name, const void* caller)
{
    const auto from = reinterpret_cast<uintptr_t>(caller);
    if (!s_isArmed || std::ranges::none_of(s_callers, [from](const Range& range) {
            return range.begin <= from && from < range.end;
        }))
        return Fate::Pass;
    const int call = s_count++;
    if (static_cast<size_t>(call) < s_names.size())
        s_names[static_cast<size_t>(call)] = name;
    if (call == s_fault.call)
        return fateOf(s_fault.error);
    const bool isLater = s_fault.call >= 0 && call > s_fault.call && std::strcmp(shim::name(s_fault.call), name) == 0;
    return isLater ? fateOf(s_fault.later) : Fate::Pass;
}

/// The C library's function.
template<typename Function>
Function nextOf(const char* name)
{
    void* const next = ::dlsym(RTLD_NEXT, name);
    if (!next)
        std::abort();
    Function function;
    static_assert(sizeof function == sizeof next);
    std::memcpy(&function, &next, sizeof function);
    return function;
}

/// How a part of a transfer of @p size bytes is asked for.
size_t partOf(Fate fate, size_t size)
{
    return fate == Fate::Short && size > 1 ? size / 2 : size;
}

} // namespace

void arm(const Fault& fault)
{
    if (s_callers.empty())
        ::dl_iterate_phdr(&addCaller, nullptr);
    s_fault = fault;
    s_count = 0;
    s_isArmed = true;
}

void disarm()
{
    s_isArmed = false;
}

bool isFaulty()
{
    return s_isArmed && s_fault.call >= 0;
}

int count()
{
    return std::min(s_count, static_cast<int>(s_names.size()));
}

const char* name(int call)
{
    return call < count() ? s_names[static_cast<size_t>(call)] : "";
}

} // namespace faults::shim

/// What shmat() gives when it fails.
static void* const kNoMemory = reinterpret_cast<void*>(intptr_t{-1}); // NOLINT(performance-no-int-to-ptr)

using faults::shim::fate;
using faults::shim::Fate;
using faults::shim::nextOf;
using faults::shim::partOf;

// Macros, as only they can define a function by its name and keep its caller. RESULT is what a failure returns.
#define ZYN_NEXT(name) static const auto next = nextOf<decltype(&::name)>(#name)
#define ZYN_FATE(name) fate(#name, __builtin_return_address(0))

#define ZYN_CALL_WITH(result, failure, name, parameters, arguments)                                                    \
    extern "C" result name parameters                                                                                  \
    {                                                                                                                  \
        ZYN_NEXT(name);                                                                                                \
        return ZYN_FATE(name) == Fate::Fail ? (failure) : next arguments;                                              \
    }
#define ZYN_CALL(name, parameters, arguments) ZYN_CALL_WITH(int, -1, name, parameters, arguments)

/// A failure of these comes after the work: what was open is closed.
#define ZYN_CLOSE(name, parameters, arguments)                                                                         \
    extern "C" int name parameters                                                                                     \
    {                                                                                                                  \
        ZYN_NEXT(name);                                                                                                \
        const int result = next arguments;                                                                             \
        return ZYN_FATE(name) == Fate::Fail ? -1 : result;                                                             \
    }

ZYN_CALL(accept4, (int fd, sockaddr* address, socklen_t* length, int flags), (fd, address, length, flags))
ZYN_CALL(access, (const char* path, int mode), (path, mode))
ZYN_CALL(bind, (int fd, const sockaddr* address, socklen_t length), (fd, address, length))
ZYN_CALL(chmod, (const char* path, mode_t mode), (path, mode))
ZYN_CLOSE(close, (int fd), (fd))
ZYN_CLOSE(closedir, (DIR * stream), (stream))
ZYN_CALL(connect, (int fd, const sockaddr* address, socklen_t length), (fd, address, length))
ZYN_CALL(fchmod, (int fd, mode_t mode), (fd, mode))
ZYN_CALL(fchmodat, (int fd, const char* path, mode_t mode, int flags), (fd, path, mode, flags))
ZYN_CALL(fchown, (int fd, uid_t user, gid_t group), (fd, user, group))
ZYN_CALL_WITH(DIR*, nullptr, fdopendir, (int fd), (fd))
ZYN_CALL(flock, (int fd, int operation), (fd, operation))
ZYN_CALL(fstat64, (int fd, struct stat64* status), (fd, status))
ZYN_CALL(fstatat64, (int fd, const char* path, struct stat64* status, int flags), (fd, path, status, flags))
ZYN_CALL(fsync, (int fd), (fd))
ZYN_CALL(ftruncate64, (int fd, off64_t size), (fd, size))
ZYN_CALL(getsockopt, (int fd, int level, int option, void* value, socklen_t* length),
         (fd, level, option, value, length))
ZYN_CALL(inotify_add_watch, (int fd, const char* path, uint32_t mask), (fd, path, mask))
ZYN_CALL(inotify_init1, (int flags), (flags))
ZYN_CALL(inotify_rm_watch, (int fd, int watch), (fd, watch))
ZYN_CALL(kill, (pid_t process, int signal), (process, signal))
ZYN_CALL(linkat, (int from, const char* old, int to, const char* path, int flags), (from, old, to, path, flags))
ZYN_CALL(listen, (int fd, int backlog), (fd, backlog))
ZYN_CALL_WITH(off64_t, -1, lseek64, (int fd, off64_t offset, int whence), (fd, offset, whence))
ZYN_CALL(lstat64, (const char* path, struct stat64* status), (path, status))
ZYN_CALL(madvise, (void* address, size_t length, int advice), (address, length, advice))
ZYN_CALL(mkdir, (const char* path, mode_t mode), (path, mode))
ZYN_CALL(mkdirat, (int fd, const char* path, mode_t mode), (fd, path, mode))
ZYN_CALL(nanosleep, (const timespec* time, timespec* left), (time, left))
ZYN_CALL(poll, (pollfd * entries, nfds_t count, int timeout), (entries, count, timeout))
ZYN_CALL_WITH(dirent64*, nullptr, readdir64, (DIR * stream), (stream))
ZYN_CALL_WITH(ssize_t, -1, readlink, (const char* path, char* target, size_t size), (path, target, size))
ZYN_CALL_WITH(ssize_t, -1, readlinkat, (int fd, const char* path, char* target, size_t size), (fd, path, target, size))
ZYN_CALL(rename, (const char* old, const char* path), (old, path))
ZYN_CALL(renameat, (int from, const char* old, int to, const char* path), (from, old, to, path))
ZYN_CALL(renameat2, (int from, const char* old, int to, const char* path, unsigned flags), (from, old, to, path, flags))
ZYN_CALL(rmdir, (const char* path), (path))
ZYN_CALL(setsockopt, (int fd, int level, int option, const void* value, socklen_t length),
         (fd, level, option, value, length))
ZYN_CALL_WITH(void*, kNoMemory, shmat, (int id, const void* address, int flags), (id, address, flags))
ZYN_CALL(shmget, (key_t key, size_t size, int flags), (key, size, flags))
ZYN_CALL(shutdown, (int fd, int how), (fd, how))
ZYN_CALL(socket, (int domain, int type, int protocol), (domain, type, protocol))
ZYN_CALL(stat64, (const char* path, struct stat64* status), (path, status))
ZYN_CALL(statx, (int fd, const char* path, int flags, unsigned mask, struct statx* status),
         (fd, path, flags, mask, status))
ZYN_CALL(symlinkat, (const char* target, int fd, const char* path), (target, fd, path))
ZYN_CALL(unlink, (const char* path), (path))
ZYN_CALL(unlinkat, (int fd, const char* path, int flags), (fd, path, flags))

// Those whose last arguments vary.

extern "C" int open64(const char* path, int flags, ...)
{
    ZYN_NEXT(open64);
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return ZYN_FATE(open64) == Fate::Fail ? -1 : next(path, flags, mode);
}

extern "C" int openat64(int fd, const char* path, int flags, ...)
{
    ZYN_NEXT(openat64);
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return ZYN_FATE(openat64) == Fate::Fail ? -1 : next(fd, path, flags, mode);
}

extern "C" int ioctl(int fd, unsigned long request, ...)
{
    ZYN_NEXT(ioctl);
    va_list rest;
    va_start(rest, request);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    return ZYN_FATE(ioctl) == Fate::Fail ? -1 : next(fd, request, argument);
}

/// Locks of the C++ library wait by this, too.
extern "C" long syscall(long number, ...)
{
    ZYN_NEXT(syscall);
    va_list rest;
    va_start(rest, number);
    std::array<long, 6> arguments;
    for (long& argument : arguments)
        argument = va_arg(rest, long);
    va_end(rest);
    if (number == SYS_openat2 && ZYN_FATE(openat2) == Fate::Fail)
        return -1;
    return next(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4], arguments[5]);
}

/// The memory is let go of in any case.
extern "C" int shmctl(int id, int command, shmid_ds* status)
{
    ZYN_NEXT(shmctl);
    if (command == IPC_RMID)
        return next(id, command, status);
    return ZYN_FATE(shmctl) == Fate::Fail ? -1 : next(id, command, status);
}

// Transfers.

/// What was read from a file may be less than there is, even of a short one.
extern "C" ssize_t pread64(int fd, void* buffer, size_t size, off64_t offset)
{
    ZYN_NEXT(pread64);
    const Fate what = ZYN_FATE(pread64);
    if (what == Fate::Fail)
        return -1;
    const ssize_t n = next(fd, buffer, size, offset);
    return what == Fate::Short && n > 1 ? n / 2 : n;
}

extern "C" ssize_t pwrite64(int fd, const void* bytes, size_t size, off64_t offset)
{
    ZYN_NEXT(pwrite64);
    const Fate what = ZYN_FATE(pwrite64);
    return what == Fate::Fail ? -1 : next(fd, bytes, partOf(what, size), offset);
}

extern "C" ssize_t read(int fd, void* buffer, size_t size)
{
    ZYN_NEXT(read);
    const Fate what = ZYN_FATE(read);
    return what == Fate::Fail ? -1 : next(fd, buffer, partOf(what, size));
}

extern "C" ssize_t write(int fd, const void* bytes, size_t size)
{
    ZYN_NEXT(write);
    const Fate what = ZYN_FATE(write);
    return what == Fate::Fail ? -1 : next(fd, bytes, partOf(what, size));
}

/// A byte, as nobody knows how many have come.
extern "C" ssize_t recv(int fd, void* buffer, size_t size, int flags)
{
    ZYN_NEXT(recv);
    const Fate what = ZYN_FATE(recv);
    return what == Fate::Fail ? -1 : next(fd, buffer, what == Fate::Short ? std::min<size_t>(size, 1) : size, flags);
}

extern "C" ssize_t send(int fd, const void* bytes, size_t size, int flags)
{
    ZYN_NEXT(send);
    const Fate what = ZYN_FATE(send);
    return what == Fate::Fail ? -1 : next(fd, bytes, partOf(what, size), flags);
}

/// The first block alone, or a part of an only one.
extern "C" ssize_t sendmsg(int fd, const msghdr* message, int flags)
{
    ZYN_NEXT(sendmsg);
    const Fate what = ZYN_FATE(sendmsg);
    if (what == Fate::Fail)
        return -1;
    if (what == Fate::Pass || message->msg_iovlen == 0)
        return next(fd, message, flags);
    iovec first = message->msg_iov[0];
    first.iov_len = message->msg_iovlen > 1 ? first.iov_len : partOf(what, first.iov_len);
    msghdr part = *message;
    part.msg_iov = &first;
    part.msg_iovlen = 1;
    return next(fd, &part, flags);
}
