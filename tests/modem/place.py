"""A place of its own for a process: new mount, network and process namespaces. The kernel ends whatever is left there
when their first process ends."""

import ctypes
import fcntl
import os
import signal
import socket
import struct

MEMORY = "/var/lib/ofono" # of daemons
COVERED = ("/run", MEMORY) # with empty file systems
ENDING = (signal.SIGTERM, signal.SIGHUP)

libc = ctypes.CDLL(None, use_errno=True)
CLONE_NEWNS, CLONE_NEWPID, CLONE_NEWNET = 0x00020000, 0x20000000, 0x40000000
MS_REC, MS_PRIVATE = 0x4000, 0x40000
PR_SET_PDEATHSIG = 1
SIOCGIFFLAGS, SIOCSIFFLAGS, IFF_UP = 0x8913, 0x8914, 1


def succeed(result):
    if result != 0:
        raise OSError(ctypes.get_errno(), os.strerror(ctypes.get_errno()))


def mount(kind, target, flags=0):
    succeed(libc.mount(kind, os.fsencode(target), kind, ctypes.c_ulong(flags), None))


def cover():
    """An empty file system over what daemons write to, or over the folder in which they would make it."""
    mount(None, "/", MS_REC | MS_PRIVATE)
    mount(b"proc", "/proc")
    for path in COVERED:
        mount(b"tmpfs", path if os.path.isdir(path) else os.path.dirname(path))
        os.makedirs(path, exist_ok=True)


def raise_loopback():
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as any_socket:
        request = fcntl.ioctl(any_socket, SIOCGIFFLAGS, struct.pack("16sH22x", b"lo", 0))
        flags = struct.unpack("16sH22x", request)[1] | IFF_UP
        fcntl.ioctl(any_socket, SIOCSIFFLAGS, struct.pack("16sH22x", b"lo", flags))


class Impossible(Exception):
    """The kernel allows no such place."""


def let_others_decide(*_):
    """Of a terminal's interrupt, which the command gets, too. Ignoring it would make the command ignore it."""


def _furnish():
    libc.prctl(PR_SET_PDEATHSIG, signal.SIGKILL)
    try:
        cover()
        raise_loopback()
    except OSError as error:
        raise Impossible(f"the kernel allows no place of its own here ({error.strerror})") from None


def run_inside(main):
    """Runs a function as the first process, with the signals of ENDING blocked, and returns its exit code."""
    try:
        succeed(libc.unshare(CLONE_NEWNS | CLONE_NEWPID | CLONE_NEWNET))
    except OSError as error:
        raise Impossible(f"the kernel allows no namespaces here ({error.strerror})") from None
    signal.signal(signal.SIGINT, let_others_decide)
    signal.pthread_sigmask(signal.SIG_BLOCK, ENDING) # until somebody handles them: a first process ignores them
    child = os.fork()
    if child == 0:
        _furnish()
        return main()
    for number in ENDING:
        signal.signal(number, lambda number, _: os.kill(child, number))
    signal.pthread_sigmask(signal.SIG_UNBLOCK, ENDING)
    status = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])
    return status if status >= 0 else 128 - status
