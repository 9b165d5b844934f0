"""Processes on a bus, and how to ask them something."""

import asyncio
import os
import signal

from control import ControlError

START_LIMIT = 20 # seconds
POLL = 0.02 # seconds
PYTHON = "/usr/bin/python3" # the one with Debian's modules


class RigError(ControlError):
    """Something of the stack does not do what it should."""


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

    async def ensure(self):
        """That it runs."""
        if self.runs:
            self.signal(signal.SIGCONT)
        else:
            await self.start()

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
