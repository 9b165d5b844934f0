"""Runs a command beside a telephony stack of its own, as scripts/with-modem starts it.

Everything is in new mount, network and process namespaces, whose first process this is: the kernel ends whatever is
left when it ends, however it ends.
"""

import argparse
import asyncio
import contextlib
import ctypes
import fcntl
import os
import re
import signal
import socket
import struct
import sys
from pathlib import Path

from control import Control, ControlError, number_in, one_of
from link import Exchange
from model import Modem

FAILED, SKIPPED = 125, 77 # exit codes
PLACE = Path("/run/zyn-modem")
COVERED = ("/run", "/var/lib/ofono") # with empty file systems
START_LIMIT = 20 # seconds
GRACE = 5 # seconds for a command that is asked to end
POLL = 0.02 # seconds
PYTHON = "/usr/bin/python3" # the one with Debian's modules
ENDING = (signal.SIGTERM, signal.SIGHUP)

BUS_CONFIGURATION = f"""<busconfig>
  <type>system</type>
  <listen>unix:path={PLACE}/bus</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow receive_sender="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
  </policy>
</busconfig>
"""


class RigError(ControlError):
    """Something of the stack does not do what it should."""


# The place.

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


def raise_loopback():
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as any_socket:
        request = fcntl.ioctl(any_socket, SIOCGIFFLAGS, struct.pack("16sH22x", b"lo", 0))
        flags = struct.unpack("16sH22x", request)[1] | IFF_UP
        fcntl.ioctl(any_socket, SIOCSIFFLAGS, struct.pack("16sH22x", b"lo", flags))


# Processes.

async def run(*command):
    """The output of a short command."""
    process = await asyncio.create_subprocess_exec(*command, stdout=asyncio.subprocess.PIPE,
                                                   stderr=asyncio.subprocess.PIPE, start_new_session=True)
    output, errors = await process.communicate()
    if process.returncode != 0:
        raise RigError(f"{command[0]}: {errors.decode().strip()}")
    return output.decode()


async def call(name, path, method, *arguments):
    return await run("gdbus", "call", "--system", "--timeout", "10", "--dest", name, "--object-path", path,
                     "--method", method, *arguments)


async def until(condition, what):
    """Waits until a coroutine function returns true. Errors of D-Bus are a no."""
    why = ""
    end = asyncio.get_running_loop().time() + START_LIMIT
    while asyncio.get_running_loop().time() < end:
        try:
            if await condition():
                return
        except RigError as error:
            why = f": {error}"
        await asyncio.sleep(POLL)
    raise RigError(f"{what} within {START_LIMIT} seconds{why}")


class Daemon:
    """A process on the bus that can be killed and started again."""

    def __init__(self, bus_name, command, logs, environment=None):
        self.bus_name = bus_name
        self.command = command
        self.name = command[0] if command[0] != PYTHON else command[-1]
        self.log = logs / f"{self.name}.log"
        self._environment = environment or {}
        self._process = None

    @property
    def runs(self):
        return self._process is not None and self._process.returncode is None

    async def start(self):
        if self.runs:
            raise ControlError(f"{self.name} runs")
        with open(self.log, "ab") as log:
            self._process = await asyncio.create_subprocess_exec(
                *self.command, stdin=asyncio.subprocess.DEVNULL, stdout=log, stderr=log, start_new_session=True,
                env=os.environ | self._environment)
        await until(self._is_on_bus, f"{self.name} is not on the bus")

    async def _is_on_bus(self):
        if not self.runs:
            raise RigError(f"{self.name} has ended")
        await run("gdbus", "wait", "--system", "--timeout", "1", self.bus_name)
        return True

    async def end(self, number):
        self.signal(number)
        await self._process.wait()

    def signal(self, number):
        if not self.runs:
            raise ControlError(f"{self.name} does not run")
        self._process.send_signal(number)

    def state(self):
        if self._process is None:
            return ["never started"]
        return ["runs" if self.runs else f"ended {self._process.returncode}"]


# The stacks.

class Ofono:
    PORT = 12345
    NAME = "org.ofono"
    MODEM = "/phonesim"

    def __init__(self, modem, logs):
        self.modem = modem
        self.addresses = [("tcp", self.PORT)]
        configuration = PLACE / "phonesim.conf"
        configuration.write_text(f"[phonesim]\nAddress=127.0.0.1\nPort={self.PORT}\n", encoding="ascii")
        self.daemon = Daemon(self.NAME, ["ofonod", "-n", "-d"], logs, {"OFONO_PHONESIM_CONFIG": str(configuration)})
        self.others = []

    async def prepare(self):
        pass

    async def bring_up(self):
        for name in ("Powered", "Online"):
            await until(lambda name=name: self._switch(name), f"{name} cannot be set")
        if self.modem.registered:
            await until(self._is_registered, "it does not register")

    async def _switch(self, name):
        await call(self.NAME, self.MODEM, "org.ofono.Modem.SetProperty", name, "<true>")
        return True

    async def _is_registered(self):
        properties = await call(self.NAME, self.MODEM, "org.ofono.NetworkRegistration.GetProperties")
        return "'Status': <'registered'>" in properties or "'Status': <'roaming'>" in properties


class ModemManager:
    NAME = "org.freedesktop.ModemManager1"
    ROOT = "/org/freedesktop/ModemManager1"
    FAILED, LOCKED, DISABLED, REGISTERED = -1, 2, 3, 8 # states of a modem

    def __init__(self, modem, logs):
        self.modem = modem
        self._port = str(PLACE / "modem")
        self.addresses = [("unix", self._port)]
        self.daemon = Daemon(self.NAME, ["ModemManager", "--test-enable", "--test-no-udev", "--test-no-suspend-resume",
                                         "--test-no-qrtr", "--debug"], logs)
        self._police = Daemon("org.freedesktop.PolicyKit1", [PYTHON, "-m", "dbusmock", "--template", "polkitd"], logs)
        self.others = [self._police]
        self._path = None

    async def prepare(self):
        """ModemManager asks whether callers may do what they ask for."""
        await self._police.start()
        await call(self._police.bus_name, "/org/freedesktop/PolicyKit1/Authority",
                   "org.freedesktop.DBus.Mock.AllowUnknown", "true")

    async def bring_up(self):
        """Gives it the modem, in the place of the one that it had."""
        earlier = await self._modems()
        await self._set_ports([self._port])
        await until(lambda: self._find(earlier), "it does not take the modem")
        await until(self._is_probed, "it does not know the modem")
        if await self._state() >= self.DISABLED:
            await until(self._enable, "it cannot be enabled")
            if self.modem.registered:
                await until(self._is_registered, "it does not register")

    async def unplug(self):
        """Takes the modem away as udev does. It is refused to have none, and gone nevertheless."""
        with contextlib.suppress(RigError):
            await self._set_ports([])
        await until(self._is_gone, "it does not let the modem go")

    async def _set_ports(self, ports):
        await call(self.NAME, self.ROOT, "org.freedesktop.ModemManager1.Test.SetProfile", "zyn", "generic",
                   f"@as {ports}")

    async def _modems(self):
        """Of those that went, objects without an interface stay."""
        objects = await call(self.NAME, self.ROOT, "org.freedesktop.DBus.ObjectManager.GetManagedObjects")
        return re.findall(rf"'({self.ROOT}/Modem/\d+)': {{'", objects)

    async def _find(self, earlier):
        self._path = next((path for path in await self._modems() if path not in earlier), None)
        return self._path

    async def _is_gone(self):
        return not await self._modems()

    async def _state(self):
        state = await call(self.NAME, self._path, "org.freedesktop.DBus.Properties.Get",
                           "org.freedesktop.ModemManager1.Modem", "State")
        return int(re.search(r"-?\d+", state)[0])

    async def _is_probed(self):
        return await self._state() in (self.FAILED, self.LOCKED) or await self._state() >= self.DISABLED

    async def _enable(self):
        await call(self.NAME, self._path, "org.freedesktop.ModemManager1.Modem.Enable", "true")
        return True

    async def _is_registered(self):
        return await self._state() == self.REGISTERED


STACKS = {"ofono": Ofono, "modemmanager": ModemManager}


class Battery:
    """UPower, as dbusmock plays it."""
    NAME = "org.freedesktop.UPower"
    MANAGER = "/org/freedesktop/UPower"
    DEVICE = "/org/freedesktop/UPower/devices/DisplayDevice"
    STATES = {"charging": 1, "discharging": 2, "empty": 3, "full": 4}
    WARNINGS = {"none": 1, "low": 3, "critical": 4, "action": 5}

    def __init__(self, logs):
        self.daemon = Daemon(self.NAME, [PYTHON, "-m", "dbusmock", "--template", "upower"], logs)

    async def bring_up(self):
        await self.set("80", "discharging", "none")

    async def set(self, percent, state="discharging", warning="none"):
        present = percent != "absent"
        await self._show({
            "Type": "uint32 2", "IsPresent": str(present).lower(),
            "Percentage": f"{number_in(percent, 0, 100) if present else 0}.0",
            "State": f"uint32 {self.STATES[one_of(state, list(self.STATES))]}",
            "WarningLevel": f"uint32 {self.WARNINGS[one_of(warning, list(self.WARNINGS))]}"})
        await call(self.NAME, self.MANAGER, "org.freedesktop.DBus.Properties.Set", self.NAME, "OnBattery",
                   f"<{str(present and state in ('discharging', 'empty')).lower()}>")

    async def _show(self, properties):
        told = ", ".join(f"'{name}': <{value}>" for name, value in properties.items())
        await call(self.NAME, self.MANAGER, "org.freedesktop.DBus.Mock.SetDeviceProperties", self.DEVICE, f"{{{told}}}")


class Rig:
    def __init__(self, options):
        self.options = options
        PLACE.mkdir()
        self.logs = Path(options.logs) if options.logs else PLACE
        self.logs.mkdir(parents=True, exist_ok=True)
        self.modem = Modem()
        self.exchange = Exchange(self.modem, open(self.logs / "traffic.log", "w", encoding="utf-8"))
        self.control = Control(self.modem, self.exchange)
        self.stack = STACKS[options.stack](self.modem, self.logs)
        self.battery = Battery(self.logs)
        self.exchange.addresses = self.stack.addresses
        self._add_words()

    def _add_words(self):
        for name, what in (("daemon", self.stack), ("upower", self.battery)):
            self.control.add(name, "start|ready|kill|stop|freeze|thaw|state",
                             f"{what.daemon.name}: starts it until it is ready; only makes it ready, as after "
                             "come-back; sends it a signal; tells whether it runs",
                             lambda verb, what=what: self._manage(what, verb))
        if hasattr(self.stack, "unplug"):
            self.control.add("unplug", "", "the modem vanishes, and the daemon notices; it is back by come-back and "
                             "daemon ready", self._unplug)
        self.control.add("bus", "kill|start", "the system bus: ends it; starts it, and the daemons anew", self._manage_bus)
        self.control.add("battery", "PERCENT|absent [charging|discharging|full|empty] [none|low|critical|action]",
                         "what UPower says: discharging, no warning", self._set_battery)

    async def _set_battery(self, *words):
        await self.battery.set(*words)

    async def _unplug(self):
        await self.control.obey("vanish")
        await self.stack.unplug()

    async def _manage(self, what, verb):
        verbs = {"start": lambda: self._start(what), "ready": what.bring_up, "state": what.daemon.state,
                 "kill": lambda: what.daemon.end(signal.SIGKILL), "stop": lambda: what.daemon.end(signal.SIGTERM),
                 "freeze": lambda: what.daemon.signal(signal.SIGSTOP),
                 "thaw": lambda: what.daemon.signal(signal.SIGCONT)}
        answer = verbs[one_of(verb, list(verbs))]()
        return await answer if asyncio.iscoroutine(answer) else answer

    async def _manage_bus(self, verb):
        if one_of(verb, ["kill", "start"]) == "kill":
            self._bus.kill()
            await self._bus.wait()
            return
        for daemon in (self.stack.daemon, *self.stack.others, self.battery.daemon):
            if daemon.runs: # some end with the bus
                await daemon.end(signal.SIGKILL)
        await self._start_bus()
        await self._start_all()

    async def _start(self, what):
        await what.daemon.start()
        await what.bring_up()

    async def start(self):
        for line in self.options.steer:
            *_, result = await self.control.obey(line)
            if result != "ok":
                raise RigError(f"{line}: {result.removeprefix('error ')}")
        await self._start_bus()
        await self.exchange.open()
        os.environ["ZYN_MODEM_STACK"] = self.options.stack
        os.environ["ZYN_MODEM_CONTROL"] = str(PLACE / "control")
        os.environ["PATH"] = f"{Path(__file__).parent}:{os.environ['PATH']}"
        self._server = await self.control.listen(PLACE / "control")
        await self._start_all()

    async def _start_all(self):
        await asyncio.gather(self._start(self.battery), self._start_stack())

    async def _start_stack(self):
        await self.stack.prepare()
        await self._start(self.stack)

    async def _start_bus(self):
        configuration = PLACE / "bus.conf"
        configuration.write_text(BUS_CONFIGURATION, encoding="ascii")
        with open(self.logs / "dbus-daemon.log", "ab") as log:
            self._bus = await asyncio.create_subprocess_exec(
                "dbus-daemon", f"--config-file={configuration}", "--nofork", "--nopidfile", "--print-address",
                stdin=asyncio.subprocess.DEVNULL, stdout=asyncio.subprocess.PIPE, stderr=log, start_new_session=True)
        if not await self._bus.stdout.readline():
            raise RigError("dbus-daemon does not start")
        os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={PLACE}/bus"

    async def run_command(self):
        """The exit code of the command, as a shell has it."""
        try:
            command = await asyncio.create_subprocess_exec(*self.options.command)
        except OSError as error:
            print(f"with-modem: {self.options.command[0]}: {error.strerror}", file=sys.stderr)
            return 127 if isinstance(error, FileNotFoundError) else 126
        for number in ENDING:
            asyncio.get_running_loop().add_signal_handler(number, self._end_command, command, number)
        status = await command.wait()
        return status if status >= 0 else 128 - status

    def _end_command(self, command, number):
        command.send_signal(number)
        asyncio.get_running_loop().call_later(GRACE, command.kill)

    def tell_logs(self):
        for log in sorted(self.logs.glob("*.log")):
            lines = log.read_text("utf-8", "replace").splitlines()[-10:]
            print(f"--- {log.name}", *lines, sep="\n", file=sys.stderr)


async def inside(options):
    rig = None
    starting = asyncio.current_task()
    for number in ENDING:
        asyncio.get_running_loop().add_signal_handler(number, starting.cancel)
    signal.pthread_sigmask(signal.SIG_UNBLOCK, ENDING)
    try:
        rig = Rig(options)
        await rig.start()
    except (ControlError, OSError) as error:
        print(f"with-modem: {error}", file=sys.stderr)
        if rig:
            rig.tell_logs()
        return FAILED
    except asyncio.CancelledError:
        return 128 + signal.SIGTERM
    return await rig.run_command()


def first_process(options):
    libc.prctl(PR_SET_PDEATHSIG, signal.SIGKILL)
    try:
        cover()
        raise_loopback()
    except OSError as error:
        print(f"with-modem: the kernel allows no place of its own here ({error.strerror}): skipped", file=sys.stderr)
        return SKIPPED
    return asyncio.run(inside(options))


def let_command_decide(*_):
    """Of a terminal's interrupt, which the command gets, too. Ignoring it would make the command ignore it."""


def main(options):
    try:
        succeed(libc.unshare(CLONE_NEWNS | CLONE_NEWPID | CLONE_NEWNET))
    except OSError as error:
        print(f"with-modem: the kernel allows no namespaces here ({error.strerror}): skipped", file=sys.stderr)
        return SKIPPED
    signal.signal(signal.SIGINT, let_command_decide)
    signal.pthread_sigmask(signal.SIG_BLOCK, ENDING) # until somebody handles them: a first process ignores them
    child = os.fork()
    if child == 0:
        return first_process(options)
    for number in ENDING:
        signal.signal(number, lambda number, _: os.kill(child, number))
    signal.pthread_sigmask(signal.SIG_UNBLOCK, ENDING)
    return os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])


def parsed(stack, *arguments):
    parser = argparse.ArgumentParser(prog="with-modem", usage="with-modem --help tells it", add_help=False)
    parser.add_argument("--steer", action="append", default=[])
    parser.add_argument("--logs")
    parser.add_argument("command", nargs=argparse.REMAINDER)
    options = parser.parse_args(arguments, argparse.Namespace(stack=stack))
    if options.command[:1] == ["--"]:
        del options.command[0]
    if not options.command:
        parser.error("no command")
    return options


if __name__ == "__main__":
    status = main(parsed(*sys.argv[1:]))
    sys.stdout.flush()
    os._exit(status if status >= 0 else 128 - status)
