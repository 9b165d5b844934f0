"""The AT commands of a modem: what it answers to each, and what it says by itself."""

import asyncio
import re

from model import ACTIVE, INCOMING, WAITING, Cause, Refused, Registration

RING_EVERY = 1.0 # seconds
OK, ERROR = "OK", "ERROR" # final results

_EXTENDED = re.compile(r'(\+[A-Z]+(?:=\?|\?|=)?)((?:[^;"]|"[^"]*")*);?', re.IGNORECASE)
_BASIC = re.compile(r"(&?[A-Z])(\d*(?:=\d+)?)", re.IGNORECASE)
_DIAL = re.compile(r"(\+?[0-9*#ABCD]+)([Ii]?)[Gg]?;$")
_CALLER_ID = {"#31#": "I", "*31#": "i"} # in front of a number: as these behind it
_TONE = re.compile(r"[0-9A-D*#]$")


def commands(line):
    """Takes what follows AT apart, into (name, argument). Raises ValueError where it is no command."""
    rest = line.strip()
    while rest:
        if rest[0] in "Dd":
            yield "D", rest[1:]
            return
        match = (_EXTENDED if rest[0] == "+" else _BASIC).match(rest)
        if not match:
            raise ValueError(rest)
        yield match[1].upper(), match[2]
        rest = rest[match.end():].lstrip()


def parameters(argument):
    return [quoted or plain for quoted, plain in re.findall(r'(?:^|,)\s*(?:"([^"]*)"|([^,]*))', argument)]


def address_type(number):
    return 145 if number.startswith("+") else 129


class Terminal:
    """A modem's AT commands. Several links may use one; what it says by itself goes to `say` for each line."""

    def __init__(self, modem, say):
        self.modem = modem
        self.say = say
        self.unknown = []
        self._ringing = None
        self.reset()
        modem.listeners.append(self._on_event)

    def reset(self):
        self.echo = False
        self.modes = {"+CREG": 0, "+CGREG": 0, "+CRC": 0}
        self.operator_format = 0
        self.attached = True
        self.tells_indicators = False

    @property
    def percent_shown(self):
        """Of the network's strength, by the daemon; None when it is unknown."""
        network = self.modem.network
        return network.bars * 20 if self.tells_indicators else network.percent

    def execute(self, line):
        """The lines of the answer to what follows AT; the last is the final result."""
        answer = []
        try:
            for name, argument in commands(line):
                row = TABLE.get(name)
                if row is None and name[0] in "+D":
                    self.unknown.append(name + argument)
                    return [ERROR]
                if callable(row):
                    answer += row(self, argument) or ()
                else:
                    answer += row or () # of the basic commands, those that are not listed change nothing
        except Refused as refusal:
            bare = refusal.cause == Cause.NO_SERVICE and name == "D" or name == "A"
            return ["NO CARRIER"] if bare else [f"+CME ERROR: {int(refusal.cause)}"]
        except ValueError:
            self.unknown.append(line)
            return [ERROR]
        return [*answer, OK]

    # What it says by itself.

    def _on_event(self, event, *details):
        said = _EVENTS.get(event)
        if said:
            said(self, *details)

    def _say_ring(self):
        if self._ringing:
            self._ringing.cancel()
        self._ringing = asyncio.get_running_loop().create_task(self._ring())

    async def _ring(self):
        while calls := self.modem.those(INCOMING):
            number = calls[0].number
            self.say("+CRING: VOICE" if self.modes["+CRC"] else "RING")
            self.say(f'+CLIP: "{number}",{address_type(number)},,,,{0 if number else 1}')
            await asyncio.sleep(RING_EVERY)

    def _say_waiting(self):
        number = self.modem.those(WAITING)[0].number
        self.say(f'+CCWA: "{number}",{address_type(number)},1')

    def _say_strength(self):
        # Who asked for indicators does not understand the other.
        if self.tells_indicators:
            self.say(f"+CIEV: 2,{self.modem.network.bars}")
        else:
            self.say(self._strength()[0])

    def _say_registration(self):
        for command in ("+CREG", "+CGREG"):
            if self.modes[command]:
                self.say(f"{command}: {self._registration(command)}")
        if self.tells_indicators:
            self.say(f"+CIEV: 3,{int(self.modem.registered)}")

    def _say_sim(self):
        self.say(f"+USIMSTATE: {int(self.modem.sim.present)}")

    def _say_unlocked(self):
        # oFono looks at a card again only when it comes.
        self.say("+USIMSTATE: 0")
        self.say("+USIMSTATE: 1")

    # What is asked.

    def _set_echo(self, argument):
        self.echo = argument == "1"

    def _dial(self, argument):
        match = _DIAL.match(argument)
        if not match:
            raise ValueError(argument)
        number, hides = match[1], match[2]
        for code, letter in _CALLER_ID.items():
            if number.startswith(code):
                number, hides = number.removeprefix(code), letter
        self.modem.dial(number, hides)

    def _list_calls(self, _=None):
        return [f'+CLCC: {call.index},{int(not call.outgoing)},{int(call.state)},0,0,"{call.number}",'
                f"{address_type(call.number)}" for call in self.modem.calls]

    def _send_tone(self, argument):
        tone = parameters(argument)[0]
        if not _TONE.match(tone):
            raise ValueError(argument)
        self.modem.send_tone(tone)

    def _sim_state(self, _):
        states = {"pin": "SIM PIN", "puk": "SIM PUK", "ready": "READY"}
        if self.modem.sim.state not in states:
            raise Refused(Cause.NO_SIM)
        return [f"+CPIN: {states[self.modem.sim.state]}"]

    def _enter_code(self, argument):
        codes = parameters(argument)
        self.modem.unlock({1: "pin", 2: "puk"}[min(len(codes), 2)], *codes[:2])

    def _tries_left(self, _):
        sim = self.modem.sim
        return [f"+CPINR: SIM PIN,{sim.pin_tries},{sim.PIN_TRIES}", f"+CPINR: SIM PUK,{sim.puk_tries},{sim.PUK_TRIES}"]

    def _ask_tries(self, argument):
        """A command to the card by which the tries that are left are asked, of each code."""
        sim = self.modem.sim
        tries = {"0020000100": sim.pin_tries, "002C000100": sim.puk_tries, "0020008100": 3, "002C008100": 10}
        asked = parameters(argument)[-1].upper()
        if asked not in tries:
            raise Refused(Cause.NOT_ALLOWED)
        return [f'+CSIM: 4,"63C{tries[asked]:X}"']

    def _lock(self, argument):
        facility, mode, *code = parameters(argument)
        if mode == "2":
            return [f"+CLCK: {int(facility == 'SC' and self.modem.sim.asks_for_pin)}"]
        if facility != "SC" or not code:
            raise Refused(Cause.NOT_ALLOWED)
        return self.modem.sim.set_lock(mode == "1", code[0])

    def _change_code(self, argument):
        facility, old, new = parameters(argument)[:3]
        if facility != "SC":
            raise Refused(Cause.NOT_ALLOWED)
        self.modem.sim.change_pin(old, new)

    def _imsi(self, _):
        self.modem.sim.require_ready()
        return [self.modem.sim.imsi]

    def _own_number(self, _):
        self.modem.sim.require_ready()
        number = self.modem.sim.own_number
        return [f'+CNUM: "Own","{number}",{address_type(number)}']

    def _read_file(self, argument):
        sim = self.modem.sim
        if not sim.present:
            raise Refused(Cause.NO_SIM)
        operation, number, *rest = [int(word) for word in parameters(argument)[:5] if word]
        file = sim.file(number)
        if sim.state != "ready" and number not in sim.READABLE_LOCKED:
            return ["+CRSM: 105,130"] # not without the PIN
        if file is None:
            return ["+CRSM: 148,4"] # no such file
        records, has_records = file
        contents = b"".join(records)
        if operation == 192: # its description
            length = len(records[0]) if has_records else 0
            contents = bytes.fromhex(f"0000{len(contents):04X}{number:04X}04000000000102{int(has_records):02X}"
                                     f"{length:02X}")
        elif operation == 176 and len(rest) == 3 and not has_records:
            offset = rest[0] * 256 + rest[1]
            contents = contents[offset:offset + (rest[2] or 256)]
        elif operation == 178 and rest and has_records and 0 < rest[0] <= len(records):
            contents = records[rest[0] - 1]
        else:
            return ["+CRSM: 109,0"] # no such operation
        return [f'+CRSM: 144,0,"{contents.hex().upper()}"']

    def _functionality(self, _):
        return [f"+CFUN: {self.modem.functionality}"]

    def _set_functionality(self, argument):
        self.modem.set_functionality(int(parameters(argument)[0]))
        self._say_registration()

    def _registration(self, command):
        seen = self.modem.registration
        if command == "+CGREG" and not self.attached:
            return "0"
        place = ',"00C3","0000A1B2",7' if self.modes[command] >= 2 and self.modem.registered else ""
        return f"{int(seen)}{place}"

    def _operator(self, _):
        if not self.modem.registered:
            return ["+COPS: 0"]
        network = self.modem.network
        name = network.code if self.operator_format == 2 else network.operator
        return [f'+COPS: 0,{self.operator_format},"{name}",7']

    def _operators(self, _):
        network = self.modem.network
        return [f'+COPS: (2,"{network.operator}","{network.operator}","{network.code}",7),,(0,1,2,3,4),(0,1,2)']

    def _set_operator(self, argument):
        mode, *rest = parameters(argument)
        if mode == "3" and rest:
            self.operator_format = int(rest[0])

    def _strength(self, _=None):
        strength = self.modem.network.strength
        return [f"+CSQ: {99 if strength is None else strength},99"]

    def _indicators(self, _):
        modem = self.modem
        roaming = modem.registration == Registration.ROAMING
        states = (5, modem.network.bars, modem.registered, bool(modem.those(ACTIVE)), roaming)
        return [f"+CIND: {','.join(str(int(state)) for state in states)}"]

    def _set_indicators(self, argument):
        self.tells_indicators = not argument.startswith("0")

    def _attached(self, _):
        return [f"+CGATT: {int(self.attached)}"]

    def _set_attached(self, argument):
        self.attached = argument == "1"


def _mode(command):
    def set_mode(terminal, argument):
        terminal.modes[command] = int(parameters(argument)[0])
    return set_mode


def _registration(command):
    return lambda terminal, _: [f"{command}: {terminal.modes[command]},{terminal._registration(command)}"]


_EVENTS = {
    "ring": Terminal._say_ring,
    "waiting": Terminal._say_waiting,
    "ended": lambda terminal, how: terminal.say(how),
    "strength": Terminal._say_strength,
    "registration": Terminal._say_registration,
    "sim": Terminal._say_sim,
    "unlocked": Terminal._say_unlocked,
}

_ACCEPTED = ()

# A command, and what it does or the lines of its answer.
TABLE = {
    # The modem.
    "E": Terminal._set_echo,
    "I": ["Zyn modem"],
    "+CGMI": ["Zyn"],
    "+CGMM": ["Test modem"],
    "+CGMR": ["1"],
    "+CGSN": ["490154203237518"],
    "+GCAP": ["+GCAP: +CGSM"],
    "+GMI": ["Zyn"],
    "+GMM": ["Test modem"],
    "+GMR": ["1"],
    "+GSN": ["490154203237518"],
    "+CFUN?": Terminal._functionality,
    "+CFUN=?": ["+CFUN: (0,1,4),(0-1)"],
    "+CFUN=": Terminal._set_functionality,
    "+CMEE=": _ACCEPTED,
    "+CSCS?": ['+CSCS: "GSM"'],
    "+CSCS=?": ['+CSCS: ("GSM","IRA","UCS2")'],
    "+CSCS=": _ACCEPTED,
    "+CBC": ["+CBC: 0,80"],
    # The card.
    "+CPIN?": Terminal._sim_state,
    "+CPIN=": Terminal._enter_code,
    "+CPINR": Terminal._tries_left,
    "+CPINR=": Terminal._tries_left,
    "+CSIM=": Terminal._ask_tries,
    "+CLCK=?": ['+CLCK: ("SC","FD","AO","OI","OX","AI","IR","PN","PU","PP","PC","PS")'],
    "+CLCK=": Terminal._lock,
    "+CPWD=": Terminal._change_code,
    "+CIMI": Terminal._imsi,
    "+CNUM": Terminal._own_number,
    "+CRSM=": Terminal._read_file,
    # The network.
    "+CREG=?": ["+CREG: (0-2)"],
    "+CREG?": _registration("+CREG"),
    "+CREG=": _mode("+CREG"),
    "+CGREG=?": ["+CGREG: (0-2)"],
    "+CGREG?": _registration("+CGREG"),
    "+CGREG=": _mode("+CGREG"),
    "+COPS?": Terminal._operator,
    "+COPS=?": Terminal._operators,
    "+COPS=": Terminal._set_operator,
    "+CSQ=?": ["+CSQ: (0-31,99),(99)"],
    "+CSQ": Terminal._strength,
    "+CIND=?": ['+CIND: ("battchg",(0-5)),("signal",(0-5)),("service",(0,1)),("call",(0,1)),("roam",(0,1))'],
    "+CIND?": Terminal._indicators,
    "+CIND=": _ACCEPTED,
    "+CMER=?": ["+CMER: (0-3),(0),(0),(0-1),(0)"],
    "+CMER=": Terminal._set_indicators,
    "+CGATT?": Terminal._attached,
    "+CGATT=": Terminal._set_attached,
    "+CGDCONT=?": ['+CGDCONT: (1-11),"IP",,,(0-2),(0-4)', '+CGDCONT: (1-11),"IPV4V6",,,(0-2),(0-4)'],
    "+CGDCONT?": _ACCEPTED,
    "+CGACT?": _ACCEPTED,
    "+CGEREP=?": ["+CGEREP: (0-2),(0,1)"],
    "+CGEREP=": _ACCEPTED,
    # Calls.
    "D": Terminal._dial,
    "A": lambda terminal, _: terminal.modem.answer(),
    "H": lambda terminal, _: terminal.modem.hang_up(),
    "+CHUP": lambda terminal, _: terminal.modem.hang_up(),
    "+CHLD=?": ["+CHLD: (0,1,1x,2,2x,3)"],
    "+CHLD=": lambda terminal, argument: terminal.modem.supplement(argument),
    "+CLCC=?": _ACCEPTED,
    "+CLCC": Terminal._list_calls,
    "+VTS=": Terminal._send_tone,
    "+VTD?": ["+VTD: 1"],
    "+VTD=": _ACCEPTED,
    "+CRC=": _mode("+CRC"),
    "+CEER": ["+CEER: Normal call clearing"],
    "+CLIP?": ["+CLIP: 1,1"],
    "+CLIP=": _ACCEPTED,
    "+CLIR?": ["+CLIR: 0,4"],
    "+CLIR=": _ACCEPTED,
    "+COLP?": ["+COLP: 1,1"],
    "+COLP=": _ACCEPTED,
    "+CDIP=": _ACCEPTED,
    "+CNAP=": _ACCEPTED,
    "+CCWA=": lambda _, argument: ["+CCWA: 1,1"] if argument.startswith("1,2") else (),
    "+CSSN=": _ACCEPTED,
    "+CMUT?": ["+CMUT: 0"],
    "+CMUT=": _ACCEPTED,
    "+CLVL?": ["+CLVL: 3"],
    "+CLVL=?": ["+CLVL: (0-5)"],
    "+CLVL=": _ACCEPTED,
}
