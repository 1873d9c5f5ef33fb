#!/usr/bin/env python3
"""quillmere solve FILE.cp --problem N."""

import os
import unittest

from program import ProgramTest

PROBLEMS = """UTF-8
1 #2
{
D: Schöpfer 1927
W: Qa7,Ke1,Rh1
B: Kc1
ANSWER: Qa7-f2
}
2 #2 ALLSOLUTIONS
{
W: Kg6,Ra1
B: Kg8
ANSWER: Ra1-a7
}
3 s#2
{
W: Ke1
B: Ke8
}
4
{
W: Kg6,Ra1
B: Kg8
}
5 #7
{
W: Kg6,Ra1
B: Kg8
}
6 #2
{
W: Kg6,Rg1
B: Kg8,Rh1
}
7 #2 SH_KEEPKINGONTHEEDGE(NONSENSE)
{
W: Kg6,Ra1
B: Kg8
}
8 #2
{
W: Kg6,Ra8
B: Kg8
}
9 #3 SH_KEEPKINGONTHEEDGE(STRICT)
{
FEN: 7k/7P/6BK/8/7N/8/6R1/6r1
}
10 #2 STOPONDUAL ALLSOLUTIONS
{
W: Kg6,Ra1
B: Kg8
ANSWER: Ra1-a8
}
"""


class SolveFile(ProgramTest):
    def setUp(self):
        super().setUp()
        self.file = self.write("problems.cp", PROBLEMS)

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def solve(self, problem, *options):
        return self.run_program("solve", self.file, "--problem", str(problem), *options)

    def assert_fault(self, result, code, text):
        self.assertEqual((result.code, result.out), (code, ""))
        self.assertEqual(len(result.err.splitlines()), 1)
        self.assertIn(text, result.err)

    def test_report_has_description_and_stated_answer(self):
        result = self.solve(1)
        self.assertEqual((result.code, result.err), (0, ""))
        self.assertTrue(
            result.out.startswith("Schöpfer 1927\nMate in 2, white to move\n\n"), result.out
        )
        self.assertRegex(result.out, r"(?m)^Key +1\.Qa7-f2!$")
        self.assertRegex(result.out, r"(?m)^Line +1\.Qa7-f2 Kc1-b1 2\.0-0#$")
        self.assertRegex(result.out, r"(?m)^Verdict +mate$")
        self.assertRegex(result.out, r"(?m)^Stated +Qa7-f2 \(as found\)$")

    def test_all_solutions_of_the_file_differ_from_its_answer(self):
        result = self.solve(2)
        self.assertEqual(result.code, 0)
        self.assertRegex(result.out, r"(?m)^Keys +1\.Ra1-a8#! +1\.Ra1-f1!$")
        self.assertRegex(result.out, r"(?m)^Stated +Ra1-a7 \(differs\)$")

    def test_no_mate(self):
        result = self.solve(6)
        self.assertEqual(result.code, 1)
        self.assertRegex(result.out, r"(?m)^Verdict +no mate$")
        self.assertNotIn("Stated", result.out)

    def test_json(self):
        (record,) = self.solve(1, "--json").json()
        self.assertEqual(record["problem"], 1)
        self.assertEqual(record["description"], "Schöpfer 1927")
        self.assertEqual(record["stated"], ["Qa7-f2"])
        self.assertEqual((record["agrees"], record["fromRecord"]), (True, False))
        self.assertEqual([key["uci"] for key in record["keys"]], ["a7f2"])
        (record,) = self.solve(2, "--json").json()
        self.assertIs(record["agrees"], False)
        (record,) = self.solve(6, "--json").json()
        self.assertIsNone(record["agrees"])

    def test_stop_option_ends_with_the_second_key(self):
        (record,) = self.solve(10, "--json").json()
        self.assertEqual(len(record["keys"]), 2)
        self.assertIs(record["agrees"], False)

    def test_limit_is_undecided(self):
        result = self.run_program(
            "solve",
            self.write(
                "long.cp", "1 #9\n{\nFEN: rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR\n}\n"
            ),
            "--problem",
            "1",
            "--time",
            "0.2",
            "--json",
        )
        self.assertEqual(result.code, 4)
        (record,) = result.json()
        self.assertEqual(record["verdict"], "limit")

    def test_heuristics_of_the_file_and_of_the_call(self):
        plan = [p["heuristics"] for p in self.solve(9, "--json").json()[0]["plan"]]
        self.assertTrue(plan[0].startswith("SH_DONTLETKINGMOVE"), plan)
        plan = [p["heuristics"] for p in self.solve(9, "--json", "--heuristics", "off").json()[0]["plan"]]
        self.assertEqual(plan, [""])
        plan = [p["heuristics"] for p in self.solve(9, "--json", "--no-relax").json()[0]["plan"]]
        self.assertEqual(len(plan), 2)
        fault = self.solve(1, "--no-relax", "--heuristics", "off")
        self.assert_fault(fault, 2, "--no-relax has no meaning")

    def test_bare_position_needs_a_length(self):
        self.assert_fault(self.solve(4), 2, "Problem 4 has no stipulation")
        self.assert_fault(self.solve(4, "--half-moves", "2"), 2, "--half-moves 2")
        self.assertEqual(self.solve(4, "--moves", "2").code, 0)
        self.assertEqual(self.solve(4, "--half-moves", "1").code, 0)
        self.assert_fault(self.solve(1, "--moves", "3"), 2, "has a stipulation of its own")

    def test_proved_answer_is_kept_and_found_again(self):
        first = self.solve(5)
        self.assertEqual((first.code, first.err), (0, ""))
        again = self.solve(5)
        self.assertEqual(again.code, 0)
        self.assertIn("The answer comes from the solved problems (found 2", again.err)
        key = [line for line in first.out.splitlines() if line.startswith("Key ")]
        self.assertEqual(len(key), 1)
        self.assertIn(key[0] + "\n", again.out)
        searched = self.solve(5, "--explain")
        self.assertEqual(searched.err, "")

    def test_end_is_logged(self):
        self.solve(1)
        self.solve(6)
        with open(os.path.join(self.folder, "home", "chessGUI.log"), encoding="utf-8") as file:
            lines = file.read().splitlines()
        self.assertEqual(len(lines), 2)
        self.assertRegex(
            lines[0],
            r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d, \d+: Engine has completed: 1\.Qa7-f2 \(.*, version: ",
        )
        self.assertIn("Engine has completed: Not found any solutions for #2", lines[1])

    def test_faults(self):
        self.assert_fault(self.solve(3), 3, "Problem 3 is a selfmate.")
        self.assert_fault(self.solve(99), 3, "there is no problem 99.")
        self.assert_fault(self.solve(7), 3, "The setting SH_KEEPKINGONTHEEDGE of problem 7")
        self.assert_fault(self.solve(8), 3, self.file + ": ")
        self.assert_fault(
            self.run_program("solve", self.file), 2, "Give --problem N."
        )
        self.assert_fault(
            self.run_program("solve", "8/Q7/8/8/8/8/8/2k1K2R", "--moves", "2", "--problem", "1"),
            2,
            "--problem has no meaning",
        )
        missing = os.path.join(self.folder, "missing.cp")
        self.assert_fault(self.run_program("solve", missing, "--problem", "1"), 3, missing)

    def test_fault_of_the_file_names_its_line(self):
        bad = self.write("bad.cp", "UTF-8\n1 #2\n{\nW: Ka1,\nB: Zc1\n}\n")
        result = self.run_program("solve", bad, "--problem", "1")
        self.assertEqual((result.code, result.out), (3, ""))
        self.assertRegex(result.err, r"^quillmere: .*bad\.cp:\d+: ")


if __name__ == "__main__":
    unittest.main()
