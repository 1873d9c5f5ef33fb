#!/usr/bin/env python3
"""bench/heuristics.py with the built program, and with a stand-in that lies."""

import os
import unittest

from program import LOYD_3, PROGRAM, ROOT, ProgramTest

SCRIPT = os.path.join(ROOT, "bench", "heuristics.py")
SUITE = os.path.join(ROOT, "bench", "suite", "heuristics.epd")
# The cheapest position of the suite with its heuristic.
CHEAP = "0x4000 helps"
# Says "no mate" under heuristics, and else what the program says.
LIAR = f"""#!/bin/sh
case "$*" in
*SH_*) echo '{{"verdict":"no mate","keys":[],"passes":[{{"name":"2","madeMoves":7}}]}}'; exit 1;;
*) exec '{PROGRAM}' "$@";;
esac
"""


class Heuristics(ProgramTest):
    def heuristics(self, *arguments):
        return self.run_script(SCRIPT, *arguments)

    def liar(self):
        path = self.write("liar", LIAR)
        os.chmod(path, 0o755)
        return path

    def test_one_position_of_the_suite(self):
        code, out, err = self.heuristics("--build", PROGRAM, "--id", CHEAP)
        self.assertEqual((code, err), (0, CHEAP + "\n"), out)
        (line,) = out.splitlines()[2:]
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        self.assertEqual(" ".join(cells[:2]), CHEAP)
        without, with_word = int(cells[4]), int(cells[5])
        self.assertGreaterEqual(without, 2 * with_word)
        self.assertEqual((cells[6], cells[7]), (f"{without / with_word:.2f}", "mate"))
        again = self.heuristics("--build", PROGRAM, "--id", CHEAP, "--quiet")
        self.assertEqual(again, (0, out, ""), "the same in every run")

    def test_the_program_reads_the_suite(self):
        result = self.run_program("epd", SUITE, "--id", CHEAP)
        self.assertEqual(result.code, 0, result.err)

    def test_a_heuristic_that_changes_the_answer_is_an_alarm(self):
        suite = self.write("a.epd", f'{LOYD_3} dm 3; id "0x1 costs"; c2 "SH_AREKINGSNEAR";\n')
        self.assertEqual(self.heuristics("--build", PROGRAM, suite)[0], 0)
        code, out, _ = self.heuristics("--build", self.liar(), suite)
        self.assertEqual(code, 1)
        self.assertIn("0x1 costs: SH_AREKINGSNEAR: no mate , without heuristics mate g7g3", out)

    def test_a_text_that_the_program_refuses_is_an_alarm(self):
        suite = self.write("a.epd", f'{LOYD_3} dm 3; id "0x1 costs"; c2 "SH_NONE";\n')
        code, out, _ = self.heuristics("--build", PROGRAM, suite)
        self.assertEqual((code, "failed: exit code" in out), (1, True), out)

    def test_wrong_calls(self):
        bad = self.write("a.epd", f"{LOYD_3} dm 3;\n")
        missing = os.path.join(self.folder, "missing")
        for call in (
            ["--build", PROGRAM, bad],
            ["--build", PROGRAM, missing],
            ["--build", missing],
            ["--build", PROGRAM, "--id", "0x3 helps"],
        ):
            code, out, err = self.heuristics(*call)
            self.assertEqual((code, out), (2, ""), call)
            self.assertTrue(err.startswith("heuristics.py: "), err)


if __name__ == "__main__":
    unittest.main()
