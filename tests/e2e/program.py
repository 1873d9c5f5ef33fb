"""Runs the built program for the end-to-end tests.

The program is the one of the environment variable QUILLMERE (ctest sets it), else the release build.
Every run gets an empty home folder of its own, no terminal, and the language C.
"""

import json
import os
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
PROGRAM = os.environ.get("QUILLMERE") or os.path.join(ROOT, "build/release/cli/quillmere")
# Long enough for a sanitizer build on a busy machine; nothing is asserted about time.
PATIENCE = 300

LOYD_3 = "8/6R1/7p/5K1k/8/6p1/5bPP/4N3 w - -"
LOYD_5 = "8/8/8/8/8/Q7/4p3/5k1K w - -"
# Long enough for the register of solved positions, and solved within a moment.
REGISTER_6 = "8/4p2p/nn6/2p2N2/8/8/4NK2/7k w - -"
# No search of today ends within the life of a test.
ENDLESS = "8/Bk3p1p/1P3p2/KP2n2p/1P1p4/1Pp2p2/B1P5/7B w - -"
ENDLESS_MOVES = "270"


class Result:
    def __init__(self, completed):
        self.code = completed.returncode
        self.out = completed.stdout
        self.err = completed.stderr

    def json(self):
        return [json.loads(line) for line in self.out.splitlines()]


class ProgramTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def environment(self, **extra):
        environment = {
            name: value
            for name, value in os.environ.items()
            if name not in ("NO_COLOR", "LANG") and not name.startswith(("LC_", "QUILLMERE"))
        }
        environment.update(QUILLMERE_HOME=os.path.join(self.folder, "home"), LC_ALL="C")
        environment.update(extra)
        return environment

    def run_program(self, *arguments, stdin="", **extra):
        return Result(
            subprocess.run(
                [PROGRAM, *arguments],
                input=stdin,
                capture_output=True,
                encoding="utf-8",
                env=self.environment(**extra),
                timeout=PATIENCE,
            )
        )

    def run_script(self, script, *arguments):
        """Exit code, output and errors of a Python script of the repository."""
        done = subprocess.run(
            [sys.executable, "-B", script, *arguments],
            capture_output=True,
            encoding="utf-8",
            env=self.environment(),
            timeout=PATIENCE,
        )
        return done.returncode, done.stdout, done.stderr

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def assert_refused(self, code, words, *arguments, stdin="", **extra):
        """One line on standard error that holds the words, the exit code, nothing on output."""
        result = self.run_program(*arguments, stdin=stdin, **extra)
        where = f"{arguments}: {result.err!r}"
        self.assertEqual(result.code, code, where)
        self.assertEqual(result.out, "", where)
        self.assertEqual(result.err.count("\n"), 1, where)
        self.assertTrue(result.err.startswith("quillmere: "), where)
        for word in words if isinstance(words, (list, tuple)) else [words]:
            self.assertIn(word, result.err, where)
        return result
