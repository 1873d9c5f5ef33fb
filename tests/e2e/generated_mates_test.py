#!/usr/bin/env python3
"""tools/generate_mates.py with the built program, and the file in bench/suite that it made."""

import os
import subprocess
import sys
import unittest

from program import PATIENCE, PROGRAM, ROOT, ProgramTest

SCRIPT = os.path.join(ROOT, "tools", "generate_mates.py")
SUITE = os.path.join(ROOT, "bench", "suite", "generated.epd")


def positions_of(path):
    with open(path, encoding="utf-8") as file:
        return [line for line in file.read().splitlines() if line and line[0] != "#"]


class GeneratedMates(ProgramTest):
    def generate(self, name, *arguments):
        path = os.path.join(self.folder, name)
        command = [sys.executable, "-B", SCRIPT, "--program", PROGRAM, "-o", path, *arguments]
        subprocess.run(
            command, check=True, capture_output=True, env=self.environment(), timeout=PATIENCE
        )
        return path

    def test_every_position_is_what_it_says(self):
        path = self.generate("a.epd", "--counts", "3:3,4:1")
        self.assertEqual(len(positions_of(path)), 4)
        result = self.run_program("epd", path, "--all", "--shortest")
        self.assertEqual(result.code, 0, result.out)

    def test_a_resumed_run_makes_the_same_file(self):
        whole = self.generate("whole.epd", "--counts", "3:2,4:1", "--seed", "3")
        self.generate("part.epd", "--counts", "3:2", "--seed", "3")
        part = self.generate("part.epd", "--counts", "3:2,4:1", "--seed", "3", "--resume")
        self.assertEqual(positions_of(part), positions_of(whole))

    def test_mates_in_3_of_the_suite(self):
        lines = positions_of(SUITE)
        self.assertEqual(len({line.split()[0] for line in lines}), len(lines))
        self.assertGreaterEqual(2 * sum('c0 "quiet"' in line for line in lines), len(lines))
        short = [line for line in lines if "dm 3;" in line]
        self.assertGreater(len(short), 0)
        path = self.write("short.epd", "\n".join(short) + "\n")
        result = self.run_program("epd", path, "--all", "--shortest")
        self.assertEqual(result.code, 0, result.out)


if __name__ == "__main__":
    unittest.main()
