// Preloaded into the ARM programs under qemu: what Qt asks of the kernel and qemu does not pass on as it
// should.
#define _GNU_SOURCE // NOLINT(bugprone-reserved-identifier): the C library's own switch for clone() and RTLD_NEXT
#include <dlfcn.h>
#include <fcntl.h>
#include <sched.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

typedef int Clone(int (*run)(void*), void* stack, int flags, void* argument, ...);
typedef int OpenAt(int folder, const char* path, int flags, ...);
typedef ssize_t Readlink(const char* path, char* buffer, size_t size);

// An ARM program may start programs of this machine, which can load none of this.
__attribute__((constructor)) static void hide(void)
{
    unsetenv("LD_PRELOAD");
}

// QProcess starts programs by CLONE_PIDFD, which qemu refuses, while it knows pidfd_open().
int clone(int (*run)(void*), void* stack, int flags, void* argument, ...)
{
    va_list rest;
    va_start(rest, argument);
    int* const out = va_arg(rest, int*); // for the descriptor, or else for the number
    void* const tls = va_arg(rest, void*);
    void* const child = va_arg(rest, void*);
    va_end(rest);

    Clone* const next = (Clone*)dlsym(RTLD_NEXT, "clone");
    if (!(flags & CLONE_PIDFD))
        return next(run, stack, flags, argument, out, tls, child);
    const int process = next(run, stack, flags & ~CLONE_PIDFD, argument, NULL, tls, child);
    if (process > 0)
        *out = (int)syscall(SYS_pidfd_open, process, 0);
    return process;
}

// To qemu the folder of the libraries is the root too, since it is there: what is opened from it would be found
// below that folder. It has no such link to the root.
static int open_below(const char* function, int folder, const char* path, int flags, mode_t mode)
{
    OpenAt* const next = (OpenAt*)dlsym(RTLD_NEXT, function);
    return next(folder, strcmp(path, "/") == 0 ? "/proc/self/root" : path, flags, mode);
}

// The name is one or the other, depending on whether file offsets have 64 bits anyway.
int openat(int folder, const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = va_arg(rest, mode_t);
    va_end(rest);
    return open_below("openat", folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = va_arg(rest, mode_t);
    va_end(rest);
    return open_below("openat64", folder, path, flags, mode);
}

// The process whose program the link is, such as /proc/12/exe; 0 when it is another link.
static long process_of(const char* path)
{
    static const char folder[] = "/proc/";
    if (strncmp(path, folder, strlen(folder)) != 0)
        return 0;
    char* rest = NULL;
    const long process = strtol(path + strlen(folder), &rest, 10);
    return process > 0 && strcmp(rest, "/exe") == 0 ? process : 0;
}

// QLockFile takes a lock for abandoned when its holder is another program by now: to others, each is qemu. The
// program is the first argument that the kernel gives qemu.
ssize_t readlink(const char* path, char* buffer, size_t size)
{
    Readlink* const next = (Readlink*)dlsym(RTLD_NEXT, "readlink");
    const ssize_t length = next(path, buffer, size);
    const long process = length > 0 ? process_of(path) : 0;
    if (process == 0 || !memmem(buffer, (size_t)length, "/qemu-a", 7))
        return length;

    char name[64];
    char line[4096] = {0};
    snprintf(name, sizeof name, "/proc/%ld/cmdline", process);
    const int fd = open(name, O_RDONLY | O_CLOEXEC);
    const ssize_t read_length = fd < 0 ? 0 : read(fd, line, sizeof line - 1);
    if (fd >= 0)
        close(fd);
    const char* const program = line + strlen(line) + 1;
    if (program >= line + read_length)
        return length;
    const size_t program_length = strnlen(program, (size_t)(line + read_length - program));
    if (program_length == 0 || program_length > size)
        return length;
    memcpy(buffer, program, program_length);
    return (ssize_t)program_length;
}
