#!/usr/bin/env python3
"""--quick-mate-depth: its range, and that answers do not depend on it."""

import os
import unittest

from program import LOYD_5, ROOT, ProgramTest

OUT_OF_RANGE = "Value of depth for quicker mate is out of range."
SAMPLE = os.path.join(ROOT, "tests/data/batch.cp")
SUITE = os.path.join(ROOT, "samples/classics.epd")


class QuickMateDepth(ProgramTest):
    def test_a_depth_out_of_range_is_refused_by_every_command(self):
        for arguments in (("solve", LOYD_5, "--moves", "5"), ("epd", SUITE), ("batch", SAMPLE)):
            for value in ("0", "17", "-3", "99999999999999999999"):
                with self.subTest(command=arguments[0], value=value):
                    result = self.run_program(*arguments, "--quick-mate-depth=" + value)
                    self.assertEqual((result.code, result.out), (2, ""))
                    self.assertIn(OUT_OF_RANGE, result.err)

    def test_what_is_no_number_is_told_with_the_range(self):
        result = self.run_program("solve", LOYD_5, "--moves", "5", "--quick-mate-depth", "x")
        self.assertEqual((result.code, result.out), (2, ""))
        self.assertIn("--quick-mate-depth", result.err)
        self.assertIn("16", result.err)

    def test_answers_do_not_depend_on_the_depth(self):
        keys = set()
        work = set()
        for depth in (None, 1, 2, 3, 16):
            option = () if depth is None else ("--quick-mate-depth", str(depth))
            result = self.run_program(
                "solve", LOYD_5, "--moves", "5", "--all", "--threads", "1", "--json", *option
            )
            record = result.json()[0]
            self.assertEqual((result.code, record["verdict"]), (0, "mate"))
            keys.add(str([key["move"] for key in record["keys"]]))
            work.add(record["madeMoves"])
        self.assertEqual(len(keys), 1)
        self.assertGreater(len(work), 2, "the depth makes no difference to the search")


if __name__ == "__main__":
    unittest.main()
