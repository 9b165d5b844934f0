"""The other side of the control channel: steers a modem from another process."""

import os
import socket


class Gone(Exception):
    """Nobody answers."""


class Client:
    def __init__(self, path=None):
        path = path or os.environ["ZYN_MODEM_CONTROL"]
        connection = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        try:
            connection.connect(path)
        except OSError as error:
            raise Gone(f"{path}: {error.strerror or error}") from None
        self._channel = connection.makefile("rw", encoding="utf-8", errors="replace", newline="\n")

    def obey(self, line):
        """The lines of the answer, and what is wrong or None."""
        answer = []
        try:
            self._channel.write(line.rstrip("\n") + "\n")
            self._channel.flush()
            for text in self._channel:
                text = text.rstrip("\n")
                if text == "ok":
                    return answer, None
                if text.startswith("error "):
                    return answer, text.removeprefix("error ")
                answer.append(text)
        except OSError:
            pass
        raise Gone("the modem is gone")
