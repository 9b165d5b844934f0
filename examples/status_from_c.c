/*
 * The battery's charge, told to all who show it, by a program without Qt and without the phone library: it has ended
 * before these would be loaded. What it writes, and where, is in docs/formats.md under "Channel frame", and in
 * docs/messages.md under "/ZYN/phone".
 *
 * On a desk: status_bar &
 *            status_from_c 80
 */
#define _POSIX_C_SOURCE 200809L

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>

/* The directory of the channel /ZYN/phone: its name, percent-encoded. */
static const char channel[] = "%2FZYN%2Fphone";

/* PHONE_MSG_BATTERY_VALUE_CHANGE_S, whose payload is a byte. */
static const char message[] = "PHONE_MSG_4";

static const char program[] = "status_from_c";

/* How long a listener that reads nothing may keep the others waiting. */
static const struct timeval patience = {.tv_sec = 1, .tv_usec = 0};

struct bytes
{
    unsigned char data[128];
    size_t size;
};

/* Appends a number of so many bytes, the least significant one first. */
static void put_number(struct bytes* bytes, size_t size, uint64_t number)
{
    for (; size > 0; --size, number >>= 8)
        bytes->data[bytes->size++] = (unsigned char)(number & 0xFF);
}

static void put_text(struct bytes* bytes, const char* text)
{
    const size_t size = strlen(text);
    memcpy(bytes->data + bytes->size, text, size);
    bytes->size += size;
}

static void put_header(struct bytes* bytes, size_t name, size_t payload)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    put_number(bytes, 4, name);
    put_number(bytes, 4, payload);
    put_number(bytes, 8, (uint64_t)now.tv_sec * 1000000000 + (uint64_t)now.tv_nsec);
}

/* What each listener gets: the introduction of this process, and the message. */
static struct bytes frames(unsigned char charge)
{
    struct bytes bytes = {.size = 0};

    put_header(&bytes, 0, 8 + strlen(program));
    put_number(&bytes, 8, (uint64_t)getpid());
    put_text(&bytes, program);

    put_header(&bytes, strlen(message), 1);
    put_text(&bytes, message);
    put_number(&bytes, 1, charge);
    return bytes;
}

/* Opens a directory that is this user's alone; in another one, others could listen. */
static int open_own(int parent, const char* path)
{
    struct stat status;
    const int fd = openat(parent, path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0 || (fstat(fd, &status) == 0 && status.st_uid == geteuid() && (status.st_mode & 077) == 0))
        return fd;
    close(fd);
    errno = EACCES;
    return -1;
}

static int open_absolute(const char* path)
{
    if (path[0] == '/')
        return open_own(AT_FDCWD, path);
    errno = EINVAL;
    return -1;
}

/* Opens the directory of all channels. The first of the two variables that is set decides where that is. */
static int open_root(void)
{
    const char* const path = getenv("ZYN_QCOP_PATH");
    const char* const runtime = getenv("XDG_RUNTIME_DIR");
    char shared[64];

    if (path && path[0])
        return open_absolute(path);
    if (runtime && runtime[0]) {
        const int parent = open_absolute(runtime);
        const int fd = parent < 0 ? -1 : open_own(parent, "zynqcop");
        const int error = parent < 0 ? EACCES : errno; /* unlike a missing directory of the channels, it is a fault */
        if (parent >= 0)
            close(parent);
        errno = error;
        return fd;
    }
    snprintf(shared, sizeof shared, "/tmp/zynqcop-%lu", (unsigned long)geteuid());
    return open_absolute(shared);
}

/* Opens the directory with the sockets of the channel's listeners. */
static DIR* open_listeners(void)
{
    const int root = open_root();
    const int fd = root < 0 ? -1 : open_own(root, channel);
    DIR* const listeners = fd < 0 ? NULL : fdopendir(fd);
    const int error = errno;
    if (root >= 0)
        close(root);
    if (fd >= 0 && !listeners)
        close(fd);
    errno = error;
    return listeners;
}

/* Tells one listener; how many were told, or -1. Nobody serves a socket that is still, or no more, a listener's. */
static int tell(int directory, const char* name, const struct bytes* bytes)
{
    struct sockaddr_un address = {.sun_family = AF_UNIX};
    int result = -1;

    /* Its path may be too long for an address; this one is not. */
    if (snprintf(address.sun_path, sizeof address.sun_path, "/proc/self/fd/%d/%s", directory, name)
        >= (int)sizeof address.sun_path)
        return 0; /* no listener's name */
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    if (fd < 0)
        return -1;
    if (setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience) == 0) {
        if (connect(fd, (const struct sockaddr*)&address, sizeof address) != 0)
            result = errno == ECONNREFUSED || errno == ENOENT ? 0 : -1;
        else if (send(fd, bytes->data, bytes->size, MSG_NOSIGNAL) == (ssize_t)bytes->size)
            result = 1;
    }
    const int error = errno;
    close(fd);
    errno = error;
    return result;
}

/* Tells all listeners; how many were told, or -1 when one was not. */
static int tell_all(DIR* listeners, const struct bytes* bytes)
{
    const struct dirent* entry = NULL;
    int told = 0;
    int failed = 0;
    while (errno = 0, (entry = readdir(listeners))) {
        if (entry->d_name[0] == '.')
            continue;
        const int result = tell(dirfd(listeners), entry->d_name, bytes);
        if (result >= 0) {
            told += result;
        } else {
            fprintf(stderr, "Cannot tell the listener %s: %s\n", entry->d_name, strerror(errno));
            failed = 1;
        }
    }
    if (errno != 0) {
        perror("Cannot read the names of all listeners");
        failed = 1;
    }
    return failed ? -1 : told;
}

int main(int argc, char** argv)
{
    char* end = NULL;
    const long charge = argc == 2 ? strtol(argv[1], &end, 10) : -1;
    if (charge < 0 || charge > 100 || end == argv[1] || *end) {
        fprintf(stderr, "usage: %s PERCENT\n", argv[0]);
        return 2;
    }
    const struct bytes bytes = frames((unsigned char)charge);
    DIR* const listeners = open_listeners();
    if (!listeners && errno != ENOENT) {
        perror("Cannot use the directory of the channels");
        return EXIT_FAILURE;
    }
    const int told = listeners ? tell_all(listeners, &bytes) : 0;
    if (listeners)
        closedir(listeners);
    if (told < 0)
        return EXIT_FAILURE;
    printf("told: %d\n", told);
    return fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
