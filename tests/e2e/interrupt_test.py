#!/usr/bin/env python3
"""Ctrl-C, the polite request to end, and the terminal: progress, colours."""

import fcntl
import json
import os
import pty
import re
import signal
import struct
import subprocess
import termios
import unittest

from program import ENDLESS, ENDLESS_MOVES, LOYD_3, LOYD_5, PATIENCE, PROGRAM, ProgramTest

ENDLESS_SOLVE = [PROGRAM, "solve", ENDLESS, "--moves", ENDLESS_MOVES]
# What the progress says once the search runs: of the passes, and of what "auto" does before them.
RUNS = {"off": "first move ", "auto": "Initial position type check..."}


class Terminal:
    """Runs the program with standard error, or all of its streams, on a terminal of its own."""

    def __init__(self, arguments, environment, output_too=False, columns=0):
        self.master, slave = pty.openpty()
        if columns:
            fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        self.process = subprocess.Popen(
            arguments,
            stdin=subprocess.DEVNULL,
            stdout=slave if output_too else subprocess.PIPE,
            stderr=slave,
            env=environment,
        )
        os.close(slave)
        self.text = ""

    def read_until(self, words):
        while words not in self.text:
            try:
                block = os.read(self.master, 4096)
            except OSError:
                block = b""
            if not block:
                break
            self.text += block.decode("utf-8", "replace")
        return words in self.text

    def close(self):
        output = self.process.stdout.read().decode() if self.process.stdout else ""
        while True:
            try:
                block = os.read(self.master, 4096)
            except OSError:
                break
            if not block:
                break
            self.text += block.decode("utf-8", "replace")
        if self.process.stdout:
            self.process.stdout.close()
        os.close(self.master)
        return self.process.wait(PATIENCE), output


class Interrupt(ProgramTest):
    # Progress on the terminal says that the search runs, so no test waits for a fixed time.
    def start(self, *extra, heuristics="off"):
        call = ENDLESS_SOLVE + ["--heuristics", heuristics, *extra]
        terminal = Terminal(call, self.environment())
        self.assertTrue(terminal.read_until(RUNS[heuristics]), terminal.text)
        return terminal

    def test_ctrl_c_tells_what_is_known(self):
        for heuristics in RUNS:
            for wish in (signal.SIGINT, signal.SIGTERM):
                with self.subTest(heuristics=heuristics, wish=wish):
                    terminal = self.start(heuristics=heuristics)
                    terminal.process.send_signal(wish)
                    code, output = terminal.close()
                    self.assertEqual(code, 130)
                    self.assertRegex(output, r"(?m)^Verdict +stopped$")

    def test_ctrl_c_with_json_is_still_json(self):
        terminal = self.start("--json")
        terminal.process.send_signal(signal.SIGINT)
        code, output = terminal.close()
        self.assertEqual(code, 130)
        self.assertEqual(json.loads(output)["verdict"], "stopped")

    def test_batch_tells_the_positions_that_were_begun(self):
        path = self.write("list.epd", f"{LOYD_3} dm 3;\n" + f"{ENDLESS} dm {ENDLESS_MOVES};\n" * 3)
        call = [PROGRAM, "epd", path, "--deterministic", "--heuristics", "off"]
        terminal = Terminal(call, self.environment())
        self.assertTrue(terminal.read_until("first move "), terminal.text)
        # The first line may still be on its way; the second position never ends.
        while b"line-1" not in (line := terminal.process.stdout.readline()):
            self.assertTrue(line)
        terminal.process.send_signal(signal.SIGINT)
        code, output = terminal.close()
        self.assertEqual(code, 130)
        self.assertRegex(output, r"^line-2  stopped ")
        self.assertNotIn("line-3", output)

    def test_perft_ends_at_once(self):
        start = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -"
        process = subprocess.Popen(
            [PROGRAM, "perft", start, "30"],
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            env=self.environment(),
        )
        process.send_signal(signal.SIGINT)
        output, _ = process.communicate(timeout=PATIENCE)
        self.assertEqual((process.returncode, output), (-signal.SIGINT, b""))


class Progress(ProgramTest):
    def test_only_on_a_terminal(self):
        result = self.run_program(
            "solve", ENDLESS, "--moves", ENDLESS_MOVES, "--nodes", "300000", "--heuristics", "off"
        )
        self.assertEqual(result.err, "")

    def test_line_is_taken_away_at_the_end(self):
        terminal = Terminal(
            ENDLESS_SOLVE + ["--time", "1", "--heuristics", "off"], self.environment()
        )
        code, _ = terminal.close()
        self.assertEqual(code, 4)
        self.assertIn("first move ", terminal.text)
        self.assertIn("nodes", terminal.text)
        self.assertTrue(terminal.text.endswith("\r\x1b[K"), repr(terminal.text))

    def test_line_never_goes_on_in_the_next_row(self):
        columns = 40
        terminal = Terminal(
            ENDLESS_SOLVE + ["--time", "1", "--heuristics", "off"],
            self.environment(),
            columns=columns,
        )
        terminal.close()
        lines = [line for line in re.split(r"\r\x1b\[K", terminal.text) if line]
        self.assertGreater(len(lines), 0)
        for line in lines:
            self.assertIn("first move", line)
            self.assertLess(len(line), columns)

    def test_the_choice_of_heuristics_is_told(self):
        terminal = Terminal(ENDLESS_SOLVE + ["--time", "1"], self.environment())
        code, _ = terminal.close()
        self.assertEqual(code, 4)
        self.assertIn(RUNS["auto"], terminal.text)

    def test_switched_off(self):
        for switch in ("--no-progress", "--quiet"):
            terminal = Terminal(ENDLESS_SOLVE + ["--time", "1", switch], self.environment())
            code, _ = terminal.close()
            self.assertEqual((code, terminal.text), (4, ""))


class Colour(ProgramTest):
    SOLVE = [PROGRAM, "--no-progress", "solve", LOYD_5, "--moves", "5"]

    def test_only_on_a_terminal_and_without_no_color(self):
        terminal = Terminal(self.SOLVE, self.environment(), output_too=True)
        terminal.close()
        self.assertIn("\x1b[1m", terminal.text)
        terminal = Terminal(self.SOLVE, self.environment(NO_COLOR="1"), output_too=True)
        terminal.close()
        self.assertNotIn("\x1b", terminal.text)
        self.assertNotIn("\x1b", self.run_program(*self.SOLVE[1:]).out)


if __name__ == "__main__":
    unittest.main()
