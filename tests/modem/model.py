"""What a modem has: a SIM card, a network that it is registered with, and calls. It knows nothing of AT commands."""

import enum
from dataclasses import dataclass


class Cause(enum.IntEnum):
    """Why the modem refuses something; the numbers are those of +CME ERROR."""
    NOT_ALLOWED = 3
    NO_SIM = 10
    PIN_NEEDED = 11
    PUK_NEEDED = 12
    WRONG_CODE = 16
    NO_SERVICE = 30


class Refused(Exception):
    def __init__(self, cause):
        super().__init__(cause.name)
        self.cause = cause


class CallState(enum.IntEnum):
    """The numbers are those of +CLCC."""
    ACTIVE = 0
    HELD = 1
    DIALING = 2
    ALERTING = 3
    INCOMING = 4
    WAITING = 5


ACTIVE, HELD, DIALING, ALERTING, INCOMING, WAITING = CallState
ON_THE_LINE = (ACTIVE, DIALING, ALERTING)


class Registration(enum.IntEnum):
    """The numbers are those of +CREG."""
    NONE = 0
    HOME = 1
    SEARCHING = 2
    DENIED = 3
    UNKNOWN = 4
    ROAMING = 5


@dataclass
class Call:
    index: int
    outgoing: bool
    state: CallState
    number: str # empty when the caller withholds it


def swapped_digits(digits, length):
    """Digits as SIM files have them: two in a byte, the second first, filled with F to a number of bytes."""
    padded = digits.ljust(2 * length, "F")
    return bytes.fromhex("".join(padded[i + 1] + padded[i] for i in range(0, 2 * length, 2)))


class Sim:
    PIN_TRIES = 3
    PUK_TRIES = 10

    def __init__(self):
        self.present = True
        self.pin = "1234"
        self.puk = "87654321"
        self.asks_for_pin = False
        self.imsi = "262011234567890"
        self.iccid = "8949010000000012345"
        self.own_number = "+4930987654"
        self.provider = "Zyn Card"
        self.emergency_numbers = ["112", "911", "118"]
        self.pin_tries = self.PIN_TRIES
        self.puk_tries = self.PUK_TRIES
        self.unlocked = True

    @property
    def state(self):
        """One of absent, puk, pin, ready."""
        if not self.present:
            return "absent"
        if self.pin_tries == 0:
            return "puk"
        return "ready" if self.unlocked else "pin"

    def require_ready(self):
        causes = {"absent": Cause.NO_SIM, "puk": Cause.PUK_NEEDED, "pin": Cause.PIN_NEEDED}
        if self.state in causes:
            raise Refused(causes[self.state])

    def restart(self):
        """What a card forgets when it loses its power."""
        self.unlocked = not self.asks_for_pin

    def check_pin(self, code):
        if self.state in ("absent", "puk"):
            self.require_ready()
        if code != self.pin:
            self.pin_tries -= 1
            self.unlocked = self.unlocked and self.pin_tries > 0
            raise Refused(Cause.WRONG_CODE)
        self.pin_tries = self.PIN_TRIES

    def enter_pin(self, code):
        self.check_pin(code)
        self.unlocked = True

    def enter_puk(self, puk, new_pin):
        if self.state != "puk" or self.puk_tries == 0:
            raise Refused(Cause.NOT_ALLOWED)
        if puk != self.puk:
            self.puk_tries -= 1
            raise Refused(Cause.WRONG_CODE)
        self.pin, self.pin_tries, self.puk_tries, self.unlocked = new_pin, self.PIN_TRIES, self.PUK_TRIES, True

    def set_lock(self, wanted, code):
        self.check_pin(code)
        self.asks_for_pin = wanted

    def change_pin(self, old, new):
        self.check_pin(old)
        self.pin = new

    READABLE_LOCKED = (0x2FE2, 0x6FB7) # without a PIN, too: the card's number, the emergency numbers

    def file(self, number):
        """The records of a file and whether they are records or just bytes; None when there is none."""
        own = self.own_number.lstrip("+")
        files = {
            0x2FE2: ([swapped_digits(self.iccid, 10)], False),
            0x6F07: ([b"\x08" + swapped_digits("9" + self.imsi, 8)], False),
            0x6F38: ([bytes.fromhex("FF33FFFFFF03000FFF3FFFFF")], False), # the services, all that matter
            0x6F40: ([b"Own".ljust(14, b"\xff") + bytes([len(own) // 2 + 2, 0x91]) + swapped_digits(own, 10)
                      + b"\xff\xff"], True),
            0x6F46: ([b"\x01" + self.provider.encode("ascii", "replace")[:16].ljust(16, b"\xff")], False),
            0x6FAD: ([bytes([0, 0, 0, 2])], False), # the network's code has two digits
            0x6FAE: ([b"\x03"], False), # phase 2+
            0x6FB7: ([b"".join(swapped_digits(n, 3) for n in self.emergency_numbers[:5]).ljust(15, b"\xff")], False),
        }
        return None if number == 0x6F46 and not self.provider else files.get(number)


class Network:
    """What there is around the modem, whether or not its card and its radio let it see that."""

    BEST_STRENGTH = 31 # of +CSQ

    def __init__(self):
        self.registration = Registration.HOME
        self.operator = "Zyn Net"
        self.code = "26201"
        self.strength = 20 # to BEST_STRENGTH; None when unknown

    @property
    def percent(self):
        """The strength as daemons count it that ask for it."""
        return None if self.strength is None else self.strength * 100 // self.BEST_STRENGTH

    def set_percent(self, percent):
        self.strength = next(n for n in range(self.BEST_STRENGTH + 1) if n * 100 // self.BEST_STRENGTH >= percent)

    @property
    def bars(self):
        """From 0 to 5, as +CIND counts."""
        return 0 if self.strength is None else min(5, (self.strength + 3) // 6)


class Modem:
    """Tells its listeners "ring", "waiting", "ended TEXT", "strength", "registration", "sim" and "unlocked"; logs
    what the network and the card see."""

    FULL = 1 # of +CFUN
    ALWAYS_EMERGENCY = ("112", "911")
    EMERGENCY_WITHOUT_CARD = ("112", "911", "000", "08", "110", "118", "119", "999")

    def __init__(self):
        self.listeners = []
        self.reset()

    def reset(self):
        """As it was at the start, and tells nobody."""
        self.sim = Sim()
        self.network = Network()
        self.functionality = self.FULL
        self.calls = []
        self.log = []

    def tell(self, event, *details):
        for listener in list(self.listeners):
            listener(event, *details)

    def note(self, line):
        self.log.append(line)
        self.tell("logged")

    # The network.

    @property
    def registration(self):
        """As the modem sees it."""
        if self.functionality != self.FULL or self.sim.state != "ready":
            return Registration.NONE
        return self.network.registration

    @property
    def registered(self):
        return self.registration in (Registration.HOME, Registration.ROAMING)

    def set_registration(self, registration):
        self.network.registration = registration
        self.tell("registration")

    def set_operator(self, code, name):
        self.network.code, self.network.operator = code, name
        self.tell("registration")

    def set_functionality(self, functionality):
        if functionality != self.FULL:
            self.calls.clear()
        if functionality == 0:
            self.sim.restart()
        self.functionality = functionality

    # The card.

    def insert_sim(self):
        self.sim.present = True
        self.sim.restart()
        self.tell("sim")
        self.tell("registration")

    def remove_sim(self):
        self.sim.present = False
        self.tell("sim")
        self.tell("registration")

    def restart_sim(self):
        """Takes a card that is there out, and puts it in."""
        if self.sim.present:
            self.remove_sim()
            self.insert_sim()

    def unlock(self, what, *codes):
        """Enters the codes of a PIN or PUK, and notes how that went."""
        act = {"pin": self.sim.enter_pin, "puk": self.sim.enter_puk}[what]
        try:
            act(*codes)
        except Refused:
            self.note(f"{what} {' '.join(codes)} wrong")
            raise
        self.note(f"{what} {' '.join(codes)} right")
        self.tell("unlocked")
        self.tell("registration")

    # Calls, as the user of the modem makes and ends them.

    def is_emergency(self, number):
        card = self.sim.emergency_numbers if self.sim.present else []
        usual = self.ALWAYS_EMERGENCY if self.sim.state == "ready" else self.EMERGENCY_WITHOUT_CARD
        return number in card or number in usual

    def those(self, *states):
        return [call for call in self.calls if call.state in states]

    def _move(self, calls, state):
        for call in calls:
            call.state = state

    def _drop(self, calls):
        self.calls = [call for call in self.calls if call not in calls]

    def _add(self, outgoing, state, number):
        index = next(i for i in range(1, len(self.calls) + 2) if all(call.index != i for call in self.calls))
        self.calls.append(Call(index, outgoing, state, number))
        self.calls.sort(key=lambda call: call.index)
        return self.calls

    def dial(self, number, suffix):
        emergency = self.is_emergency(number)
        self.note(f"dial {number}" + {"I": " hide", "i": " show", "": ""}[suffix] + " emergency" * emergency)
        if self.functionality != self.FULL or not (emergency or self.registered):
            raise Refused(Cause.NO_SERVICE)
        if self.those(DIALING, ALERTING, INCOMING) or self.those(ACTIVE) and self.those(HELD):
            raise Refused(Cause.NOT_ALLOWED)
        self._move(self.those(ACTIVE), HELD)
        self._add(True, DIALING, number)

    def answer(self):
        self.note("answer")
        if not self.those(INCOMING):
            raise Refused(Cause.NOT_ALLOWED)
        self._move(self.those(INCOMING), ACTIVE)

    def hang_up(self):
        ended = self.those(*ON_THE_LINE, INCOMING)
        if ended: # daemons also do it to be sure
            self.note("hangup")
        self._drop(ended)

    def send_tone(self, tone):
        self.note(f"tone {tone}")
        if not self.those(ACTIVE):
            raise Refused(Cause.NOT_ALLOWED)

    def supplement(self, operation):
        """The operations of +CHLD: which calls are ended, held or answered."""
        self.note(f"chld {operation}")
        one = [call for call in self.calls if operation[1:] == str(call.index)]
        if operation == "0":
            self._drop(self.those(WAITING, INCOMING) or self.those(HELD))
        elif operation == "1":
            self._drop(self.those(*ON_THE_LINE))
            self._move(self.those(WAITING) or self.those(HELD), ACTIVE)
        elif operation == "2":
            held, waiting = self.those(HELD), self.those(WAITING)
            self._move(self.those(ACTIVE), HELD)
            self._move(waiting or held, ACTIVE)
        elif operation == "3":
            self._move(self.those(HELD), ACTIVE)
        elif operation[:1] == "1" and one:
            self._drop(one)
        elif operation[:1] == "2" and one:
            self._move(self.those(ACTIVE), HELD)
            self._move(one, ACTIVE)
        else:
            raise Refused(Cause.NOT_ALLOWED)

    # Calls, as the network and the other side bring and end them.

    def ring(self, number):
        waiting = bool(self.those(ACTIVE, HELD))
        if self.those(INCOMING, WAITING) or not self.registered:
            raise Refused(Cause.NOT_ALLOWED)
        self._add(False, WAITING if waiting else INCOMING, number)
        self.tell("waiting" if waiting else "ring")

    def remote_progress(self, state):
        going_out = self.those(DIALING, ALERTING)
        if not going_out:
            raise Refused(Cause.NOT_ALLOWED)
        self._move(going_out, state)

    def remote_end(self, how, calls):
        if not calls:
            raise Refused(Cause.NOT_ALLOWED)
        self._drop(calls)
        self.tell("ended", how)
