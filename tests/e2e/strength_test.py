#!/usr/bin/env python3
"""bench/strength.py with the built program, and with stand-ins that lie or hang on."""

import os
import unittest

from program import ENDLESS, ENDLESS_MOVES, LOYD_3, LOYD_5, PROGRAM, ROOT, ProgramTest

SCRIPT = os.path.join(ROOT, "bench", "strength.py")
# Says of every position that there is no mate.
LIAR = """#!/bin/sh
echo '{"verdict":"no mate","complete":true,"keys":[],"expectedKeys":[],"madeMoves":7}'
exit 1
"""


class Strength(ProgramTest):
    def strength(self, *arguments):
        return self.run_script(SCRIPT, *arguments)

    def stand_in(self, text):
        path = self.write("stand-in", text)
        os.chmod(path, 0o755)
        return path

    def test_a_build_against_itself(self):
        cache = os.path.join(self.folder, "cache.jsonl")
        prefix = os.path.join(self.folder, "table")
        epd = self.write("a.epd", f'{LOYD_3} bm Rxg3; dm 3; id "three";\n{LOYD_5} dm 5;\n')
        claims = self.write("b.csv", f"fen;moves;author;key\n{LOYD_3} 0 1;2;Loyd;?\n")
        call = ["--build", PROGRAM, "--build", PROGRAM, "--cache", cache, epd, claims]
        code, out, err = self.strength(*call, "--all", "--max", "4", "-o", prefix)
        self.assertEqual(code, 0, out + err)
        self.assertIn("Finished by both: 2 positions", out)
        self.assertIn("b.csv #2: 0 proved, 1 refuted, 0 undecided b-2", out)
        self.assertEqual(err.count("\n"), 2, "a build is asked once for each position")
        with open(prefix + ".csv", encoding="utf-8") as file:
            lines = file.read().splitlines()
        self.assertEqual([line.split(";")[:4] for line in lines[1:]],
                         [["three", "", "3", "mate"], ["b-2", "Loyd", "2", "no mate"]])
        again = self.strength(*call, "--all", "--max", "4")
        self.assertEqual(again, (0, out, ""), "everything comes from the cache")

    def test_a_build_that_contradicts_is_an_alarm(self):
        epd = self.write("a.epd", f"{LOYD_3} dm 3;\n")
        liar = self.stand_in(LIAR)
        code, out, _ = self.strength("--build", PROGRAM, "--build", liar, epd)
        self.assertEqual(code, 1)
        self.assertIn("ALARM: 1", out)
        self.assertIn("line-1: mate and no mate", out)

    def test_a_key_that_the_file_does_not_state_is_an_alarm(self):
        epd = self.write("a.epd", f"{LOYD_3} bm Nf3; dm 3;\n")
        code, out, _ = self.strength("--build", PROGRAM, epd)
        self.assertEqual(code, 1)
        self.assertIn("finds ('g7g3',), the set states ('e1f3',)", out)

    def test_a_build_that_fails_is_an_alarm_and_is_not_kept(self):
        cache = os.path.join(self.folder, "cache.jsonl")
        epd = self.write("a.epd", f"{LOYD_3} dm 3;\n")
        broken = self.stand_in("#!/bin/sh\necho broken >&2\nexit 5\n")
        code, out, _ = self.strength("--build", broken, "--cache", cache, epd)
        self.assertEqual((code, "exit code 5 broken" in out), (1, True), out)
        self.assertFalse(os.path.exists(cache))

    def test_the_limit_leaves_a_position_undecided(self):
        epd = self.write("a.epd", f"{ENDLESS} dm {ENDLESS_MOVES};\n")
        prefix = os.path.join(self.folder, "table")
        code, out, err = self.strength("--build", PROGRAM, "--cpu", "0.1", "-o", prefix, epd)
        self.assertEqual(code, 0, out + err)
        with open(prefix + ".csv", encoding="utf-8") as file:
            cells = file.read().splitlines()[1].split(";")
        self.assertEqual((cells[3], cells[6][0]), ("undecided", ">"))
        self.assertGreater(int(cells[6][1:]), 0, "what it did until the limit is told")

    def test_a_position_without_a_king_is_refused_and_no_alarm(self):
        claims = self.write("b.csv", f"fen;moves\n{LOYD_3};3\n8/8/8/8/8/Q7/8/5k2 w - -;2\n")
        code, out, err = self.strength("--build", PROGRAM, claims)
        self.assertEqual((code, "Refused as no position: 1 b-3" in out), (0, True), out + err)

    def test_wrong_sets(self):
        bad = self.write("a.csv", "a;b\n")
        for path in (bad, os.path.join(self.folder, "missing.epd")):
            code, out, err = self.strength("--build", PROGRAM, path)
            self.assertEqual((code, out), (2, ""))
            self.assertIn(os.path.basename(path), err)


if __name__ == "__main__":
    unittest.main()
