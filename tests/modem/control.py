"""The words by which a modem is steered, one line each, and the socket that takes them.

An answer is any number of lines, then "ok" or "error" and why.
"""

import asyncio
import contextlib
import inspect
import re
import shlex
import textwrap
from dataclasses import dataclass

from link import FAULT_KINDS, Fault
from model import ACTIVE, ALERTING, DIALING, CallState, Refused, Registration

PATIENCE = 5000 # milliseconds, of await


class ControlError(Exception):
    pass


@dataclass
class Word:
    usage: str
    help: str
    act: object # of the arguments; returns the lines of its answer or None, perhaps later


def number_in(text, lowest, highest):
    if not re.fullmatch(r"\d{1,9}", text) or not lowest <= int(text) <= highest:
        raise ControlError(f"{text} is no number from {lowest} to {highest}")
    return int(text)


def one_of(text, choices):
    if text not in choices:
        raise ControlError(f"{text} is none of {', '.join(choices)}")
    return text


def matching(pattern, text, what):
    if not re.fullmatch(pattern, text):
        raise ControlError(f"{text} is no {what}")
    return text


class Control:
    """Steers a modem and the exchange that it is connected to. Others may add words."""

    def __init__(self, modem, exchange):
        self.modem = modem
        self.exchange = exchange
        self.words = {}
        self._seen = 0 # lines of the log that await has passed
        self._logged = asyncio.Condition()
        modem.listeners.append(self._on_event)
        self._add_words()

    def reset(self):
        """The modem is as at the start. It must not be in use."""
        self.modem.reset()
        self.exchange.terminal.reset()
        self.exchange.faults.clear()
        self._seen = 0

    def add(self, name, usage, help_text, act):
        self.words[name] = Word(usage, help_text, act)

    def _add_words(self):
        for name, usage, help_text, act in (
                ("ring", "NUMBER|withheld", "somebody calls", self._ring),
                ("remote-alert", "", "the telephone of who is called rings", lambda: self._progress(ALERTING)),
                ("remote-answer", "", "who is called answers", lambda: self._progress(ACTIVE)),
                ("remote-hangup", "[INDEX]", "the other side ends a call, or all", self._remote_end),
                ("busy", "", "who is called is busy", lambda: self._fail("BUSY")),
                ("no-answer", "", "who is called does not answer", lambda: self._fail("NO ANSWER")),
                ("network-end", "", "the network breaks off what is dialled", lambda: self._fail("NO CARRIER")),
                ("calls", "", "lists the calls: INDEX in|out STATE NUMBER", self._list_calls),
                ("strength", "PERCENT|unknown", "how well the network is received; tells what the daemon will show",
                 self._strength),
                ("operator", "CODE NAME", "the network's code, of 5 or 6 digits, and name", self._operator),
                ("register", "|".join(_REGISTRATIONS), "whether the network takes the modem", self._register),
                ("sim", "in|out", "puts the card in or takes it out", self._sim),
                ("pin", "CODE|off", "the card has this PIN, and asks for it from now on", self._pin),
                ("puk", "CODE", "the card has this PUK, and asks for it from now on", self._puk),
                ("card", "imsi|number|provider|emergency VALUE", "what is written on the card, which is put in again",
                 self._card),
                ("vanish", "", "the modem closes all connections and takes none", self._vanish),
                ("come-back", "", "the modem is there again", self._come_back),
                ("fault", "[once] COMMAND KIND [ARGUMENT]", "answers AT commands that begin so wrongly; any: *",
                 self._fault),
                ("no-faults", "", "answers as it should", self.exchange.faults.clear),
                ("say", "LINE", "the modem says a line by itself", self.exchange.say),
                ("log", "", "lists what network and card saw: dial NUMBER [hide|show] [emergency], answer, hangup, "
                 "chld OPERATION, tone TONE, pin CODE right|wrong, puk ...", lambda: self.modem.log),
                ("await", "TEXT [MS]", "waits until the log has a further line that begins so", self._await),
                ("forget", "", "the log begins anew", self._forget),
                ("unknown", "", "lists AT commands that were not understood", lambda: self.exchange.terminal.unknown),
                ("help", "", "lists the words", self._help)):
            self.add(name, usage, help_text, act)

    async def obey(self, line):
        """The lines of the answer."""
        try:
            name, *arguments = shlex.split(line) or [""]
            word = self.words.get(name)
            if word is None:
                raise ControlError(f"no such word: {name}; help lists them")
            try:
                inspect.signature(word.act).bind(*arguments)
            except TypeError:
                raise ControlError(f"usage: {name} {word.usage}".rstrip()) from None
            answer = word.act(*arguments)
            if inspect.isawaitable(answer):
                answer = await answer
            return [*(answer or ()), "ok"]
        except Refused as refusal:
            return [f"error the modem cannot do that now ({refusal})"]
        except (ControlError, OSError, ValueError) as error:
            return [f"error {error}"]

    def _help(self):
        rows = [(f"{name} {word.usage}", word.help) for name, word in self.words.items()]
        rows += [(f"fault COMMAND {name}", kind.help) for name, kind in FAULT_KINDS.items()]
        for usage, text in rows:
            yield usage.rstrip()
            yield from textwrap.wrap(text, 100, initial_indent="    ", subsequent_indent="    ")

    # Calls.

    def _ring(self, number):
        self.modem.ring("" if number == "withheld" else matching(r"\+?[0-9*#]{1,40}", number, "number"))

    def _progress(self, state):
        self.modem.remote_progress(state)

    def _remote_end(self, index=None):
        chosen = [call for call in self.modem.calls if index in (None, str(call.index))]
        self.modem.remote_end("NO CARRIER", chosen)

    def _fail(self, how):
        self.modem.remote_end(how, self.modem.those(DIALING, ALERTING))

    def _list_calls(self):
        return [f"{call.index} {'out' if call.outgoing else 'in'} {CallState(call.state).name.lower()} "
                f"{call.number or 'withheld'}" for call in self.modem.calls]

    # The network.

    def _strength(self, percent):
        network = self.modem.network
        if percent == "unknown":
            network.strength = None
        else:
            network.set_percent(number_in(percent, 0, 100))
        self.modem.tell("strength")
        shown = self.exchange.terminal.percent_shown
        return ["unknown" if shown is None else str(shown)]

    def _operator(self, code, name):
        self.modem.set_operator(matching(r"\d{5,6}", code, "code of a network"),
                                matching(r'[^"\r\n]{0,64}', name, "name of a network"))

    def _register(self, how):
        self.modem.set_registration(_REGISTRATIONS[one_of(how, list(_REGISTRATIONS))])

    # The card.

    def _sim(self, where):
        {"in": self.modem.insert_sim, "out": self.modem.remove_sim}[one_of(where, ["in", "out"])]()

    def _pin(self, code):
        sim = self.modem.sim
        sim.pin_tries = sim.PIN_TRIES
        sim.asks_for_pin = code != "off"
        if sim.asks_for_pin:
            sim.pin = matching(r"\d{4,8}", code, "PIN")
        self.modem.restart_sim()

    def _puk(self, code):
        sim = self.modem.sim
        sim.puk, sim.pin_tries, sim.puk_tries = matching(r"\d{8}", code, "PUK"), 0, sim.PUK_TRIES
        self.modem.restart_sim()

    def _card(self, what, *values):
        sim = self.modem.sim
        value = " ".join(values)
        if one_of(what, ["imsi", "number", "provider", "emergency"]) == "imsi":
            sim.imsi = matching(r"\d{15}", value, "IMSI")
        elif what == "number":
            sim.own_number = matching(r"\+\d{3,20}", value, "number")
        elif what == "provider":
            sim.provider = matching(r"[ -~]{0,16}", value, "name of 16 letters")
        else:
            sim.emergency_numbers = [matching(r"\d{2,6}", number, "emergency number") for number in values]
        self.modem.restart_sim()

    # The modem.

    def _vanish(self):
        if not self.exchange.is_open:
            raise ControlError("it is not there")
        self.exchange.close()
        self.modem.calls.clear()

    async def _come_back(self):
        if self.exchange.is_open:
            raise ControlError("it is there")
        self.modem.sim.restart()
        await self.exchange.open()

    def _fault(self, *words):
        once = words[:1] == ("once",)
        command, kind, *argument = words[once:] if len(words) >= 2 + once else ("", "")
        if not command:
            raise ControlError(f"usage: fault {self.words['fault'].usage}")
        known = FAULT_KINDS[one_of(kind, list(FAULT_KINDS))]
        told = " ".join(argument)
        if not re.fullmatch(known.argument, told):
            raise ControlError(f"{kind} {known.help}")
        self.exchange.faults.append(Fault(command.upper().removeprefix("AT"), kind, told, once))

    # What was seen.

    def _on_event(self, event, *_):
        if event == "logged":
            asyncio.get_running_loop().create_task(self._wake())

    async def _wake(self):
        async with self._logged:
            self._logged.notify_all()

    def _has_further(self, text):
        for position in range(self._seen, len(self.modem.log)):
            if self.modem.log[position].startswith(text):
                self._seen = position + 1
                return True
        return False

    def _forget(self):
        self.modem.log.clear()
        self._seen = 0

    async def _await(self, text, patience=str(PATIENCE)):
        limit = number_in(patience, 0, 600_000) / 1000
        async with self._logged:
            try:
                await asyncio.wait_for(self._logged.wait_for(lambda: self._has_further(text)), limit)
            except TimeoutError:
                raise ControlError(f"the log has no further {text} after {patience} ms") from None
        return [self.modem.log[self._seen - 1]]

    # The channel.

    async def serve(self, reader, writer):
        """Obeys the lines of a client, one after the other, until it closes."""
        with contextlib.suppress(OSError, ValueError): # a client that goes, or whose line has no end
            while line := await reader.readline():
                self.exchange.trace("*", line.decode("utf-8", "replace").strip())
                answer = await self.obey(line.decode("utf-8", "replace"))
                writer.write("".join(f"{text}\n" for text in answer).encode())
                await writer.drain()
        writer.close()

    async def listen(self, path):
        return await asyncio.start_unix_server(self.serve, path)


_REGISTRATIONS = {"home": Registration.HOME, "roaming": Registration.ROAMING, "searching": Registration.SEARCHING,
                  "denied": Registration.DENIED, "none": Registration.NONE, "unknown": Registration.UNKNOWN}
