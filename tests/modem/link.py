"""The lines that lead to a modem: sockets on which it answers AT commands, as it should or as it is told to."""

import asyncio
import contextlib
import re
import time
from dataclasses import dataclass

from at import ERROR, OK, Terminal

LONGEST_LINE = 4096
NOISE = b"\r\n+CLCC: 1,9,77,,\"\x00\xff\r\n+CREG: x,\xfe\r\n\x01\x02"


@dataclass
class Fault:
    """How commands that begin with some text are answered, all of them or the next only."""
    command: str # "*" is any
    kind: str
    argument: str
    once: bool

    def concerns(self, line):
        return self.command == "*" or line.upper().startswith(self.command)


def lines_of(answer):
    return "".join(f"\r\n{line}\r\n" for line in answer).encode("latin-1", "replace")


class Gone(Exception):
    """The modem closes the connection."""


class Exchange:
    """Gives a modem's answers to any number of connections, and says to all what it says by itself."""

    def __init__(self, modem, traffic=None):
        self.terminal = Terminal(modem, self.say)
        self.faults = []
        self.addresses = [] # ("tcp", port) or ("unix", path)
        self._servers = []
        self._writers = set()
        self._traffic = traffic
        self._began = time.monotonic()

    def trace(self, direction, text):
        if self._traffic:
            self._traffic.write(f"{time.monotonic() - self._began:9.3f} {direction} {text}\n")
            self._traffic.flush()

    async def open(self):
        for kind, where in self.addresses:
            if kind == "tcp":
                self._servers.append(await asyncio.start_server(self._serve, "127.0.0.1", where))
            else:
                self._servers.append(await asyncio.start_unix_server(self._serve, where))

    @property
    def is_open(self):
        return bool(self._servers)

    def close(self):
        for server in self._servers:
            server.close()
        self._servers.clear()
        for writer in self._writers:
            writer.transport.abort()

    def say(self, line):
        """What comes of a command comes after its answer."""
        asyncio.get_running_loop().call_soon(self._write, line)

    def _write(self, line):
        self.trace("<", line)
        for writer in self._writers:
            writer.write(lines_of([line]))

    async def _serve(self, reader, writer):
        self._writers.add(writer)
        self.trace("-", "connected")
        # The other side may end in the middle of anything.
        with contextlib.suppress(Gone, OSError, asyncio.IncompleteReadError, asyncio.LimitOverrunError):
            while True:
                line = (await reader.readuntil(b"\r"))[:-1]
                if len(line) > LONGEST_LINE:
                    break
                if self.terminal.echo:
                    writer.write(line + b"\r")
                await self._answer(line.decode("latin-1").strip("\n \0\x1b"), writer)
        self._writers.discard(writer)
        self.trace("-", "disconnected")
        writer.close()

    async def _answer(self, line, writer):
        match = re.match(r"[Aa][Tt]", line)
        if not match:
            return
        self.trace(">", line)
        command = line[match.end():]
        fault = self._fault_of(command)
        if fault is None:
            answer = lines_of(self.terminal.execute(command))
        else:
            answer = await FAULT_KINDS[fault.kind].answer(self.terminal, command, fault.argument)
        self.trace("<", answer.decode("latin-1").strip().replace("\r\n\r\n", " | "))
        writer.write(answer)
        if fault and fault.kind == "close":
            raise Gone

    def _fault_of(self, command):
        fault = next((fault for fault in self.faults if fault.concerns(command)), None)
        if fault and fault.once:
            self.faults.remove(fault)
        return fault


async def _late(terminal, command, argument):
    await asyncio.sleep(int(argument) / 1000)
    return lines_of(terminal.execute(command))


async def _slow(terminal, command, argument):
    answer = lines_of(terminal.execute(command))
    await asyncio.sleep(int(argument) / 1000)
    return answer


async def _half(terminal, command, _):
    answer = lines_of(terminal.execute(command))
    return answer[:len(answer) // 2]


def _always(answer):
    async def give(*_):
        return answer
    return give


async def _told(_terminal, _command, argument):
    return lines_of(argument.split("|"))


@dataclass
class FaultKind:
    answer: object
    argument: str # what it must look like
    help: str


FAULT_KINDS = {
    "late": FaultKind(_late, r"\d{1,6}", "MS: does it, and answers, that much later; what follows waits"),
    "slow": FaultKind(_slow, r"\d{1,6}", "MS: does it, and answers that much later; what follows waits"),
    "never": FaultKind(_always(b""), "", "neither does it nor answers"),
    "error": FaultKind(_always(lines_of([ERROR])), "", "answers ERROR and does nothing"),
    "ok": FaultKind(_always(lines_of([OK])), "", "answers OK and does nothing"),
    "garbage": FaultKind(_always(NOISE), "", "answers noise without an end"),
    "close": FaultKind(_half, "", "does it, sends half of the answer and closes the connection"),
    "answer": FaultKind(_told, ".+", "LINE[|LINE...]: answers these lines and does nothing"),
}
