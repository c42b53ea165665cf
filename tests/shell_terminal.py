#!/usr/bin/env python3
"""The shell as somebody meets it who sits at a terminal: help, Tab, the arrows, and how it ends.

Usage: shell_terminal.py PROGRAM
"""
import os
import pty
import select
import signal
import sys
import tempfile
import time

PROMPT = b"orvanverb~ "


class Terminal:
    def __init__(self, program, environment):
        self.process, self.master = pty.fork()
        if self.process == 0:
            os.environ.update(environment)
            os.execv(program, [program, "shell"])
        self.said = b""
        self.wait(PROMPT)

    def wait(self, text):
        """What is said until a text comes, the text included."""
        end = time.monotonic() + 30
        while text not in self.said:
            ready, _, _ = select.select([self.master], [], [], max(0, end - time.monotonic()))
            assert ready, f"no {text!r} in {self.said!r}"
            self.said += os.read(self.master, 4096)
        heard, self.said = self.said.split(text, 1)
        return heard + text

    def type(self, keys):
        os.write(self.master, keys)

    def status(self, key=b""):
        """Of the program, which is to end by itself: the number of a signal, negative, or its status.

        @param key  that ends it, pressed again and again: a Ctrl-D between the prompt and the change of the terminal's mode
                    is one for the terminal, which leaves a letter in the line
        """
        end = time.monotonic() + 30
        try:
            while time.monotonic() < end:
                self.type(key)
                if select.select([self.master], [], [], 0.2)[0]:
                    os.read(self.master, 4096)
        except OSError:  # its side of the terminal is closed
            pass
        assert time.monotonic() < end, "it doesn't end"
        return os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])


def main():
    program = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory() as state:
        environment = {"XDG_STATE_HOME": state, "TERM": "xterm"}
        terminal = Terminal(program, environment)
        terminal.type(b"help\r")
        assert b"Messages to the object" in terminal.wait(b"arrows")
        terminal.wait(PROMPT)
        terminal.type(b":g\ttr\t")  # one word fits, then four do
        terminal.wait(b"et tr")
        terminal.type(b"\t0\r")
        heard = terminal.wait(b"tr0 1.995000")
        assert b"trl" in heard and b"trm" in heard, heard
        terminal.wait(PROMPT)
        terminal.type(b"source 1 az\t\t")
        terminal.wait(b"azim++")
        terminal.type(b"\x01# \r")  # to the beginning: the line becomes a comment
        # The list has written the prompt anew: the next one is behind this answer.
        terminal.type(b":get gain\r")
        terminal.wait(b"gain 0.000000")
        terminal.wait(PROMPT)
        assert terminal.status(b"\x15\x04") == 0  # on an emptied line

        # The next one knows what was typed, and what ends it leaves that whole.
        up = b"\x1b[A"
        for ending, earlier in (signal.SIGINT, 3 * up), (signal.SIGTERM, up), (signal.SIGHUP, up):
            terminal = Terminal(program, environment)
            terminal.type(earlier + b"\r")
            terminal.wait(b"tr0 1.995000")
            terminal.wait(PROMPT)
            terminal.type(b"tr0 2")
            terminal.type(b"\x03") if ending == signal.SIGINT else os.kill(terminal.process, ending)
            assert terminal.status() == -ending, ending

        # Nowhere to keep it: no reason not to work.
        terminal = Terminal(program, {"XDG_STATE_HOME": "/proc/none", "TERM": "dumb"})
        terminal.type(b":get gain\r")
        terminal.wait(b"gain 0.000000")
        terminal.wait(PROMPT)
        terminal.type(b":quit\r")
        assert terminal.status() == 0


if __name__ == "__main__":
    main()
