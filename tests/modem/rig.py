"""Runs a command beside a telephony stack of its own, as scripts/with-modem starts it."""

import argparse
import asyncio
import os
import shutil
import signal
import sys
from pathlib import Path

import place
from control import Control, ControlError, one_of
from daemons import Daemon, RigError
from link import Exchange
from model import Modem
from stacks import STACKS, Battery

FAILED, SKIPPED = 125, 77 # exit codes
PLACE = Path("/run/zyn-modem")
GRACE = 5 # seconds for a command that is asked to end

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


class Rig:
    def __init__(self, options):
        self.options = options
        PLACE.mkdir()
        self.logs = Path(options.logs) if options.logs else PLACE
        self.logs.mkdir(parents=True, exist_ok=True)
        self.modem = Modem()
        self.exchange = Exchange(self.modem, open(self.logs / "traffic.log", "w", encoding="utf-8"))
        self.control = Control(self.modem, self.exchange)
        self.stack = STACKS[options.stack](self.modem, PLACE, self.logs)
        self.battery = Battery(self.logs)
        self.exchange.addresses = self.stack.addresses
        configuration = PLACE / "bus.conf"
        configuration.write_text(BUS_CONFIGURATION, encoding="ascii")
        self.bus = Daemon("org.freedesktop.DBus", ["dbus-daemon", f"--config-file={configuration}", "--nofork",
                                                   "--nopidfile"], self.logs)
        self._server = None
        self._add_words()

    def _add_words(self):
        for name, what in (("daemon", self.stack), ("upower", self.battery)):
            self.control.add(name, "start|ready|kill|stop|freeze|thaw|state",
                             f"{what.daemon.name}: starts it until it is ready; only makes it ready, as after "
                             "come-back; sends it a signal; tells whether it runs",
                             lambda verb, what=what: self._manage(what, verb))
        self.control.add("bus", "start|kill", "ends the bus with all that is on it but the command; starts all again",
                         self._manage_bus)
        if hasattr(self.stack, "unplug"):
            self.control.add("unplug", "", "the modem vanishes, and the daemon notices; it is back by come-back and "
                             "daemon ready", self._unplug)
        self.control.add("battery", "PERCENT|absent [charging|discharging|full|empty] [none|low|critical|action]",
                         "what UPower says: discharging, no warning", self._set_battery)
        self.control.add("reset", "", "everything is as at the start, with a daemon that is started anew", self._reset)

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
        if one_of(verb, ["start", "kill"]) == "start":
            await self._start_daemons()
        else:
            await self.bus.end(signal.SIGKILL)
            for daemon in (self.stack.daemon, *self.stack.helpers, self.battery.daemon):
                if daemon.runs:
                    await daemon.end(signal.SIGKILL)

    async def _reset(self):
        if self.stack.daemon.runs:
            await self.stack.daemon.end(signal.SIGKILL)
        for remembered in Path(place.MEMORY).iterdir():
            shutil.rmtree(remembered)
        self.control.reset()
        if not self.exchange.is_open:
            await self.exchange.open()
        await self._start_daemons()

    async def _start(self, what):
        await what.daemon.start()
        await what.bring_up()

    async def _start_daemons(self):
        """Those that do not run; the others are made ready."""
        await self.bus.ensure()
        await asyncio.gather(self._ensure_battery(), self._ensure_stack())

    async def _ensure_battery(self):
        await self.battery.daemon.ensure()
        await self.battery.bring_up()

    async def _ensure_stack(self):
        await self.stack.prepare()
        await self.stack.daemon.ensure()
        await self.stack.bring_up()

    async def start(self):
        for line in self.options.steer:
            *_, result = await self.control.obey(line)
            if result != "ok":
                raise RigError(f"{line}: {result.removeprefix('error ')}")
        os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={PLACE}/bus"
        os.environ["ZYN_MODEM_STACK"] = self.options.stack
        os.environ["ZYN_MODEM_CONTROL"] = str(PLACE / "control")
        os.environ["PATH"] = f"{Path(__file__).parent}:{os.environ['PATH']}"
        await self.exchange.open()
        self._server = await self.control.listen(PLACE / "control")
        await self._start_daemons()

    async def run_command(self):
        """The exit code of the command, as a shell has it."""
        try:
            command = await asyncio.create_subprocess_exec(*self.options.command)
        except OSError as error:
            print(f"with-modem: {self.options.command[0]}: {error.strerror}", file=sys.stderr)
            return 127 if isinstance(error, FileNotFoundError) else 126
        for number in place.ENDING:
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
    for number in place.ENDING:
        asyncio.get_running_loop().add_signal_handler(number, starting.cancel)
    signal.pthread_sigmask(signal.SIG_UNBLOCK, place.ENDING)
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


def parsed(stack, *arguments):
    parser = argparse.ArgumentParser(prog="with-modem", add_help=False, usage=(
        "with-modem ofono|modemmanager [--steer LINE] [--logs FOLDER] [--] COMMAND [ARG...]"))
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
    given = parsed(*sys.argv[1:])
    try:
        exit_code = place.run_inside(lambda: asyncio.run(inside(given)))
    except place.Impossible as why:
        print(f"with-modem: {why}: skipped", file=sys.stderr)
        exit_code = SKIPPED
    os._exit(exit_code) # both processes end here
