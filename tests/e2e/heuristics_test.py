#!/usr/bin/env python3
"""Heuristics by word, the passes and their relaxation, and threads over the first moves."""

import glob
import os
import unittest

from program import LOYD_3, LOYD_5, REGISTER_6, ProgramTest

EDGE = "SH_KEEPKINGONTHEEDGE"
# LOYD_5 with the colours swapped.
LOYD_5_BLACK = "5K1k/4P3/q7/8/8/8/8/8 b - -"
FINAL_PASS_NOTE = (
    "NOTE: Pass without heuristics is currently switched off (see heuristics selection dialog box)"
)
RELAXATION_NOTE = (
    "\t* there was only one pass with heuristcs "
    "(relaxation of heuristics was switched off by user's request)\n"
)


class Passes(ProgramTest):
    def solve(self, fen, moves, *arguments):
        result = self.run_program(
            "solve", fen, "--moves", str(moves), "--threads", "1", "--json", *arguments
        )
        self.assertEqual(result.err, "")
        return result.json()[0], result.code

    def names(self, record, field="passes"):
        return [(row["name"], row["heuristics"]) for row in record[field]]

    def test_auto_is_the_default(self):
        default, _ = self.solve(LOYD_5, 5)
        auto, _ = self.solve(LOYD_5, 5, "--heuristics", "auto")
        for record in (default, auto):
            record.pop("ms")
            for row in record["passes"]:
                row.pop("ms")
        self.assertEqual(default, auto)
        self.assertEqual(
            [row["heuristic"] for row in auto["selection"]["heuristics"]], ["SH_3MOVESTOMATE"]
        )

    def test_off_searches_without_heuristics(self):
        off, _ = self.solve(LOYD_5, 5, "--heuristics", "off")
        self.assertEqual(self.names(off), [("2", "")])
        self.assertEqual(off["proof"], {"name": "2", "heuristics": ""})
        self.assertIsNone(off["selection"])

    def test_a_word_of_the_user_is_not_chosen(self):
        record, _ = self.solve(LOYD_5, 5, "--heuristics", EDGE)
        self.assertIsNone(record["selection"])

    def test_short_tasks_and_defences_are_not_analysed(self):
        short, _ = self.solve("4brrb/8/2p4P/7Q/3p1kpP/3P1pN1/5K2/8 w - - 0 1", 2)
        self.assertIsNone(short["selection"])
        result = self.run_program(
            "solve", "8/8/8/8/8/6Q1/4p3/5k1K b - -", "--half-moves", "4", "--json"
        )
        self.assertIsNone(result.json()[0]["selection"])

    def test_the_choice_is_explained(self):
        result = self.run_program(
            "solve", REGISTER_6, "--moves", "6", "--threads", "1", "--explain"
        )
        lines = result.out.splitlines()
        chosen = [line for line in lines if line.startswith("Chosen")]
        self.assertEqual(len(chosen), 1, result.out)
        self.assertRegex(chosen[0], r"^Chosen   (SH_\w+|nothing: )")
        self.assertTrue(any(line.startswith("Trials   SH_") for line in lines), result.out)
        self.assertTrue(any(line.startswith("Plan     ") for line in lines), result.out)
        polish = self.run_program(
            "--language", "pl", "solve", REGISTER_6, "--moves", "6", "--threads", "1", "--explain"
        )
        self.assertRegex(polish.out, "Wybór    (SH_|nic: )")

    def test_trials_are_told_with_their_work(self):
        record, _ = self.solve(REGISTER_6, 6)
        selection = record["selection"]
        self.assertTrue(selection["trials"])
        for trial in selection["trials"]:
            self.assertIn(trial["outcome"], ["mate", "failed", "no mate", "limit"])
            self.assertEqual(trial["halfMoves"], 11)
            self.assertLessEqual(trial["madeMoves"], 2 * trial["limit"])
        work = sum(trial["madeMoves"] for trial in selection["trials"])
        self.assertLessEqual(work, selection["madeMoves"])
        self.assertLess(selection["madeMoves"], record["madeMoves"])
        if selection["trials"][-1]["outcome"] == "mate":
            self.assertEqual(
                record["proof"]["heuristics"].split(",  QuickMode")[0],
                selection["trials"][-1]["heuristics"],
            )

    def test_the_squares_of_a_choice_for_black_are_those_of_the_user(self):
        white, _ = self.solve(LOYD_5, 5)
        black, _ = self.solve(LOYD_5_BLACK, 5)
        self.assertEqual(white["selection"], black["selection"])

    def test_the_parts_of_a_choice_may_be_switched_off(self):
        record, _ = self.solve(LOYD_5, 4, "--no-relax", "--no-final-pass")
        self.assertEqual(record["verdict"], "doubtful")
        self.assertEqual(len(record["passes"]), 1)
        result = self.run_program(
            "solve", LOYD_5, "--moves", "5", "--heuristics", "off", "--no-relax"
        )
        self.assertEqual(result.code, 2)
        self.assertIn("--heuristics off", result.err)

    def test_positions_of_a_file_are_chosen_for_too(self):
        line = f"{LOYD_5} dm 5;"
        auto = self.run_program("epd", "-", "--json", stdin=line).json()[0]
        off = self.run_program("epd", "-", "--json", "--heuristics", "off", stdin=line).json()[0]
        word = self.run_program("epd", "-", "--json", "--heuristics", EDGE, stdin=line).json()[0]
        self.assertEqual([auto["verdict"], off["verdict"], word["verdict"]], ["mate"] * 3)
        self.assertTrue(auto["selection"]["heuristics"])
        self.assertIsNone(off["selection"])
        bad = self.run_program("epd", "-", "--heuristics", "SH_NONE", stdin=line)
        self.assertEqual((bad.code, bad.out), (3, ""))

    def test_the_pass_that_proved_the_mate_is_told(self):
        record, code = self.solve(LOYD_5, 5, "--heuristics", EDGE)
        self.assertEqual((record["verdict"], code), ("mate", 0))
        self.assertEqual(record["passes"][-1]["verdict"], "mate")
        last = record["passes"][-1]
        self.assertEqual(
            record["proof"], {"name": last["name"], "heuristics": last["heuristics"]}
        )
        self.assertEqual(len(record["mainLine"]), 9)

    def test_a_pass_with_heuristics_never_says_no_mate(self):
        record, code = self.solve(LOYD_5, 4, "--heuristics", "SH_AREKINGSNEAR, " + EDGE)
        self.assertEqual((record["verdict"], code), ("no mate", 1))
        self.assertEqual([row["verdict"] for row in record["passes"][:-1]][0], "doubtful")
        for row in record["passes"][:-1]:
            self.assertIn(row["verdict"], ("doubtful", "mate"))
        self.assertEqual(record["passes"][-1]["name"], "2")
        self.assertEqual(record["passes"][-1]["verdict"], "no mate")

    def test_passes_that_were_run_are_those_that_were_planned(self):
        record, _ = self.solve(
            LOYD_5, 4, "--heuristics", "SH_SWEEPINGWHITEROOK, SH_AREKINGSNEAR"
        )
        self.assertEqual(
            self.names(record),
            [
                ("1a", "SH_AREKINGSNEAR, SH_SWEEPINGWHITEROOK,  QuickMode"),
                ("1b", "SH_AREKINGSNEAR,  QuickMode"),
                ("2", ""),
            ],
        )
        self.assertEqual(self.names(record, "plan"), self.names(record))

    def test_forced_mates_have_passes_of_their_own(self):
        # A mate in 3 with quiet moves that threaten nothing; too few figures for a pass by time.
        fen = "8/8/8/8/8/8/8/k1K4R w - -"
        rows = [
            ("CheckOnly", ["CheckOnly"]),
            ("#1", ["#1"]),
            ("#1-Custom", ["#1-Custom", "#1"]),
            ("#5-Preliminary", ["#5-Preliminary", "#5"]),
            ("#2+-Preliminary-Custom", ["#2+-Preliminary-Custom", "#2+-Custom", "#2+"]),
        ]
        for text, passes in rows:
            with self.subTest(text):
                record, _ = self.solve(fen, 3, "--heuristics", f"SH_FINDFORCEDMATE({text})", "--all")
                edge = "SH_KEEPKINGWITHINEXTEDGE, "
                words = [
                    (edge if "Preliminary" in word else "")
                    + f"SH_FINDFORCEDMATE({word}),  QuickMode"
                    for word in passes
                ]
                names = [(f"1{'abc'[i]}", word) for i, word in enumerate(words)] + [("2", "")]
                self.assertEqual(self.names(record, "plan"), names)
                self.assertEqual(self.names(record), names)
                self.assertEqual(record["verdict"], "mate")

    def test_forced_mates_leave_quiet_first_moves_in_doubt(self):
        record, code = self.solve(
            LOYD_5, 5, "--heuristics", "SH_FINDFORCEDMATE", "--no-relax", "--no-final-pass"
        )
        self.assertEqual((record["verdict"], code), ("doubtful", 4))

    def test_without_relaxation_there_is_one_pass_with_heuristics(self):
        word = "SH_SWEEPINGWHITEROOK, SH_AREKINGSNEAR"
        record, _ = self.solve(LOYD_5, 4, "--heuristics", word, "--no-relax")
        self.assertEqual([row["name"] for row in record["passes"]], ["1a", "2"])
        result = self.run_program(
            "solve", LOYD_5, "--moves", "4", "--heuristics", word, "--no-relax"
        )
        self.assertIn(RELAXATION_NOTE, result.out)

    def test_without_the_final_pass_no_mate_is_not_said(self):
        arguments = ("--heuristics", "SH_AREKINGSNEAR", "--no-final-pass")
        record, code = self.solve(LOYD_5, 4, *arguments)
        self.assertEqual((record["verdict"], code), ("doubtful", 4))
        self.assertEqual([row["name"] for row in record["passes"]], ["1a"])
        result = self.run_program("solve", LOYD_5, "--moves", "4", *arguments)
        self.assertIn("doubtful " + FINAL_PASS_NOTE, result.out)
        self.assertNotIn(RELAXATION_NOTE, result.out)

    def test_explain_shows_the_plan(self):
        result = self.run_program(
            "solve", LOYD_5, "--moves", "5", "--heuristics", EDGE, "--explain"
        )
        self.assertEqual(result.code, 0)
        self.assertRegex(result.out, r"(?m)^Plan +1a +SH_KEEPKINGONTHEEDGE,  QuickMode$")
        self.assertRegex(result.out, r"(?m)^ +2 +-$")
        self.assertRegex(result.out, r"(?m)^Proof +2 +-$")
        without = self.run_program("solve", LOYD_5, "--moves", "5", "--heuristics", EDGE)
        self.assertNotIn("Plan", without.out)

    def test_answers_do_not_hang_on_the_word(self):
        for word in ("off", EDGE, "SH_DONTLETKINGMOVE", "SH_ASSERTBLACKKINGSURROUNDED(strict)"):
            for fen, moves in ((LOYD_3, 3), (LOYD_5, 5), (REGISTER_6, 6)):
                record, _ = self.solve(fen, moves, "--all", "--heuristics", word)
                self.assertEqual(len(record["keys"]), 1, (word, fen))
                self.assertTrue(record["complete"])

    def test_squares_are_those_of_the_user(self):
        word = "SH_DONTLETFIGUREUNBLOCK(E7)"
        record, _ = self.solve(LOYD_5_BLACK, 5, "--heuristics", word)
        self.assertEqual(record["verdict"], "mate")
        self.assertEqual(
            record["passes"][0]["heuristics"], "SH_DONTLETFIGUREUNBLOCK(E7),  QuickMode"
        )
        mirrored, _ = self.solve(LOYD_5, 5, "--heuristics", "SH_DONTLETFIGUREUNBLOCK(E2)")
        self.assertEqual(
            [row["madeMoves"] for row in record["passes"]],
            [row["madeMoves"] for row in mirrored["passes"]],
        )

    def test_the_relaxations_have_a_log(self):
        self.run_program("options", "set", "TryRelaxSpecialHeuristicsLog", "1")
        self.solve(LOYD_5, 4, "--heuristics", "SH_AREKINGSNEAR")
        (name,) = glob.glob(os.path.join(self.folder, "home", "TryRelaxSpecialHeuristics.log"))
        with open(name, encoding="utf-8") as file:
            lines = file.read().splitlines()
        self.assertRegex(lines[0], r"^\d+-\d\d-\d\d \d\d:\d\d:\d\d BEFORE th=0 SH_AREKINGSNEAR")
        self.assertRegex(lines[1], r"^\d+-\d\d-\d\d \d\d:\d\d:\d\d AFTER  th=0 $")

    def test_bad_words_are_refused(self):
        for word, words in (
            ("SH_FOO", ["Character 0", "SH_FOO"]),
            (EDGE + ", SH_BAR", ["Character 22", "SH_BAR"]),
            ("SH_KEEPKINGNEARCORNER(9S)", ["9S", "SH_KEEPKINGNEARCORNER", "1 to 5"]),
            (EDGE + "(", ["Character 20", "bracket"]),
            ("SH_KEYSQUARE(J9)", ["J9"]),
            ("SH_DONTLETKINGMOVE, SH_KEEPKINGWITHINEXTEDGE", ["Conflict of heuristics"]),
        ):
            with self.subTest(word):
                self.assert_refused(
                    3, words, "solve", LOYD_5, "--moves", "5", "--heuristics", word
                )

    def test_wrong_usage_is_refused(self):
        for words, *arguments in (
            ("--no-relax", "--no-relax", "--heuristics", "off"),
            ("--no-final-pass", "--no-final-pass", "--heuristics", "off"),
            ("--tries", "--heuristics", EDGE, "--no-final-pass", "--tries"),
        ):
            with self.subTest(arguments):
                self.assert_refused(2, words, "solve", LOYD_5, "--moves", "5", *arguments)


class Threads(ProgramTest):
    def test_answers_do_not_hang_on_the_threads(self):
        answers = set()
        for threads in ("1", "2", "4^1", "64"):
            result = self.run_program(
                "solve", REGISTER_6, "--moves", "6", "--all", "--threads", threads, "--json"
            )
            record = result.json()[0]
            answers.add((record["verdict"], tuple(key["uci"] for key in record["keys"])))
            self.assertLessEqual(record["threads"], int(threads.split("^")[0]))
        self.assertEqual(len(answers), 1)

    def test_each_thread_has_a_log(self):
        self.run_program(
            "solve", LOYD_3, "--moves", "3", "--all", "--threads", "2", "--log-moves"
        )
        logs = glob.glob(os.path.join(self.folder, "home", "MovesLogger_problem1_thread*.log"))
        self.assertIn(len(logs), (1, 2))

    def test_wrong_numbers_are_refused(self):
        for threads in ("0", "65", "x", "", "-1", "2^2", "2^", "2^x"):
            with self.subTest(threads):
                self.assert_refused(
                    2, "--threads", "solve", LOYD_5, "--moves", "5", "--threads=" + threads
                )


if __name__ == "__main__":
    unittest.main()
