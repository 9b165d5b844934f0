"""The telephony stacks, and the battery: how each is started, and what makes it ready."""

import contextlib
import re

from control import number_in, one_of
from daemons import PYTHON, Daemon, RigError, call, until


class Ofono:
    PORT = 12345
    NAME = "org.ofono"
    MODEM = "/phonesim"

    def __init__(self, modem, place, logs):
        self.modem = modem
        self.addresses = [("tcp", self.PORT)]
        configuration = place / "phonesim.conf"
        configuration.write_text(f"[phonesim]\nAddress=127.0.0.1\nPort={self.PORT}\n", encoding="ascii")
        self.daemon = Daemon(self.NAME, ["ofonod", "-n", "-d"], logs, {"OFONO_PHONESIM_CONFIG": str(configuration)})
        self.helpers = ()

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

    def __init__(self, modem, place, logs):
        self.modem = modem
        self._port = str(place / "modem")
        self.addresses = [("unix", self._port)]
        self.daemon = Daemon(self.NAME, ["ModemManager", "--test-enable", "--test-no-udev", "--test-no-suspend-resume",
                                         "--test-no-qrtr", "--debug"], logs)
        self._police = Daemon("org.freedesktop.PolicyKit1", [PYTHON, "-m", "dbusmock", "--template", "polkitd"], logs)
        self.helpers = (self._police,)
        self._path = None

    async def prepare(self):
        """ModemManager asks whether callers may do what they ask for."""
        await self._police.ensure()
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
