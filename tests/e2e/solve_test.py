#!/usr/bin/env python3
"""quillmere solve: text, JSON, sides, limits, languages, quiet."""

import unittest

from program import ENDLESS, ENDLESS_MOVES, LOYD_5, ProgramTest

NOTE = (
    "Note: Program does not consider additional information about castling or en passant "
    "(problems are solved in a standard way: all available castlings are treated as possible; "
    "en passant is not possible in the first move)\n"
)


def uci(moves):
    return [move["uci"] for move in moves]


class Solve(ProgramTest):
    def test_mate_as_text(self):
        result = self.run_program("solve", LOYD_5, "--moves", "5")
        self.assertEqual(result.code, 0)
        self.assertEqual(result.err, "")
        self.assertIn("Mate in 5, white to move\n", result.out)
        self.assertRegex(result.out, r"(?m)^Key +1\.Qa3-f8\+!$")
        self.assertRegex(result.out, r"(?m)^Defence +1\.Qa3-f8\+ Kf1-e1$")
        self.assertRegex(result.out, r"(?m)^Line +1\.Qa3-f8\+ Kf1-e1 2\.")
        self.assertRegex(result.out, r"(?m)^Verdict +mate$")
        self.assertRegex(result.out, r"5\.\S+#\n")

    def test_no_mate(self):
        result = self.run_program("solve", LOYD_5, "--moves", "4")
        self.assertEqual(result.code, 1)
        self.assertRegex(result.out, r"(?m)^Verdict +no mate$")

    def test_json_has_every_field(self):
        result = self.run_program("solve", LOYD_5, "--moves", "5", "--all", "--tries", "--json")
        self.assertEqual((result.code, result.err), (0, ""))
        (record,) = result.json()
        for field in (
            "schema fen halfMoves moves verdict complete keys tries mainLine selection plan passes proof nodes madeMoves ms registerElements memoryMB threads"
        ).split():
            self.assertIn(field, record)
        self.assertEqual(record["schema"], 2)
        self.assertEqual(record["fen"], "8/8/8/8/8/Q7/4p3/5k1K w - - 0 1")
        self.assertEqual((record["moves"], record["halfMoves"]), (5, 9))
        self.assertEqual((record["verdict"], record["complete"]), ("mate", True))
        self.assertEqual(
            record["keys"],
            [
                {
                    "move": "Qa3-f8",
                    "uci": "a3f8",
                    "text": "1.Qa3-f8+!",
                    "bestDefence": {"move": "Kf1-e1", "uci": "f1e1"},
                }
            ],
        )
        self.assertEqual(len(record["mainLine"]), 9)
        self.assertEqual(record["mainLine"][0], {"move": "Qa3-f8", "uci": "a3f8"})
        # In the order of generation, whatever order the search found best.
        self.assertEqual(uci(record["tries"]), ["a3a6", "a3d3", "a3f3", "a3g3"])
        for attempt in record["tries"]:
            self.assertEqual(len(attempt["refutations"]), 1)
        self.assertIn(
            {"move": "Qa3-a6", "uci": "a3a6", "refutations": [{"move": "Kf1-f2", "uci": "f1f2"}]},
            record["tries"],
        )
        self.assertEqual(record["passes"][-1]["heuristics"], "")

    def test_all_keys(self):
        two_keys = "k7/8/1K6/8/8/8/8/6RR w - -"
        (record,) = self.run_program("solve", two_keys, "--moves", "1", "--all", "--json").json()
        self.assertEqual(sorted(uci(record["keys"])), ["g1g8", "h1h8"])
        self.assertEqual([key["bestDefence"] for key in record["keys"]], [None, None])
        (record,) = self.run_program("solve", two_keys, "--moves", "1", "--json").json()
        self.assertEqual(len(record["keys"]), 1)

    def test_every_key_has_its_best_defence(self):
        fen = "8/8/2Q5/8/3N4/1pn5/3p4/4k1K1 w - -"
        arguments = ("solve", fen, "--moves", "3", "--all")
        (record,) = self.run_program(*arguments, "--json").json()
        keys = record["keys"]
        self.assertGreater(len(keys), 1)
        for key in keys:
            self.assertRegex(key["bestDefence"]["uci"], r"^[a-h][1-8][a-h][1-8][qrbn]?$")
        self.assertEqual(keys[0]["bestDefence"], record["mainLine"][1])
        text = self.run_program(*arguments).out
        rows = [key["text"].rstrip("!") + " " + key["bestDefence"]["move"] for key in keys]
        for row in rows:
            self.assertIn(" " + row, text)

    def test_fen_without_quotes(self):
        result = self.run_program("solve", *LOYD_5.split(), "--moves", "5", "--json")
        self.assertEqual(uci(result.json()[0]["keys"]), ["a3f8"])

    def test_half_moves(self):
        (record,) = self.run_program("solve", LOYD_5, "--half-moves", "9", "--json").json()
        self.assertEqual((record["moves"], record["verdict"]), (5, "mate"))


class Sides(ProgramTest):
    BLACK = "5K1k/4P3/q7/8/8/8/8/8 b - -"

    def test_black_mates_in_his_own_squares(self):
        result = self.run_program("solve", self.BLACK, "--moves", "5", "--json")
        (record,) = result.json()
        self.assertEqual((result.code, record["verdict"]), (0, "mate"))
        self.assertEqual(uci(record["keys"]), ["a6f1"])
        self.assertEqual(record["keys"][0]["text"], "1...Qa6-f1+!")
        self.assertEqual(record["keys"][0]["bestDefence"], {"move": "Kf8-e8", "uci": "f8e8"})
        self.assertEqual(record["fen"], "5K1k/4P3/q7/8/8/8/8/8 b - - 0 1")
        text = self.run_program("solve", self.BLACK, "--moves", "5").out
        self.assertIn("Mate in 5, black to move\n", text)
        self.assertRegex(text, r"Key +1\.\.\.Qa6-f1\+!\n")

    def test_odd_half_moves_for_black(self):
        (record,) = self.run_program("solve", self.BLACK, "--half-moves", "9", "--json").json()
        self.assertEqual(uci(record["keys"]), ["a6f1"])

    def test_no_side_counts_as_white(self):
        (record,) = self.run_program("solve", LOYD_5.split()[0], "--moves", "5", "--json").json()
        self.assertEqual(uci(record["keys"]), ["a3f8"])

    def test_mate_defence_that_holds(self):
        fen = "8/8/8/8/8/1KN5/2p1Q3/k7 b - -"
        result = self.run_program("solve", fen, "--half-moves", "2", "--all", "--json")
        (record,) = result.json()
        self.assertEqual((result.code, record["verdict"]), (1, "no mate"))
        self.assertEqual(uci(record["defences"]), ["c2c1n"])
        self.assertEqual(record["keys"], [])
        text = self.run_program("solve", fen, "--half-moves", "2").out
        self.assertRegex(text, r"Holds +1\.\.\.c2-c1N\+! \(first defence found\)\n")
        text = self.run_program("solve", fen, "--half-moves", "2", "--all").out
        self.assertRegex(text, r"Holds +1\.\.\.c2-c1N\+!\n")

    def test_mate_defence_that_fails(self):
        result = self.run_program(
            "solve", "7k/8/6K1/8/8/8/8/R7 b - -", "--half-moves", "2", "--json"
        )
        (record,) = result.json()
        self.assertEqual((result.code, record["verdict"]), (0, "mate"))
        self.assertEqual(record["defences"], [])
        self.assertEqual(uci(record["mainLine"]), ["h8g8", "a1a8"])


class Limits(ProgramTest):
    def test_node_limit(self):
        runs = [
            self.run_program(
                "solve",
                ENDLESS,
                *("--moves", ENDLESS_MOVES),
                *("--nodes", "5000"),
                *("--threads", "1"),
                "--json",
            )
            for _ in range(2)
        ]
        records = [run.json()[0] for run in runs]
        self.assertEqual([run.code for run in runs], [4, 4])
        self.assertEqual(records[0]["verdict"], "limit")
        self.assertEqual(records[0]["nodes"], records[1]["nodes"])

    def test_time_limit(self):
        result = self.run_program("solve", ENDLESS, "--moves", ENDLESS_MOVES, "--time", "0.2")
        self.assertEqual(result.code, 4)
        self.assertRegex(result.out, r"(?m)^Verdict +limit$")

    def test_keys_found_before_the_limit_are_told(self):
        # The first two moves uncover a mate at once; the moves of the king take far longer.
        fen = "K5bk/7p/8/8/8/8/1P6/B7 w - -"
        result = self.run_program(
            "solve", fen, "--moves", "30", "--all", "--nodes", "3000", "--json"
        )
        (record,) = result.json()
        self.assertEqual((record["verdict"], result.code), ("mate", 0))
        self.assertEqual(uci(record["keys"]), ["b2b3", "b2b4"])
        self.assertFalse(record["complete"])


class Input(ProgramTest):
    def test_list_on_standard_input(self):
        text = f"# two\n{LOYD_5}\n\n7k/8/5KQ1/8/8/8/8/8 w - -\n"
        result = self.run_program("solve", "-", "--moves", "1", "--json", stdin=text)
        verdicts = [record["verdict"] for record in result.json()]
        self.assertEqual(verdicts, ["no mate", "mate"])
        self.assertEqual(result.code, 1)

    def test_note_about_castling(self):
        fen = "4k3/8/8/8/8/8/8/4K2R w - -"
        result = self.run_program("solve", fen, "--moves", "1")
        self.assertEqual(result.err, NOTE)
        result = self.run_program("solve", "4k3/8/8/3pP3/8/8/8/4K3 w - d6", "--moves", "1")
        self.assertEqual(result.err, NOTE)
        result = self.run_program("solve", "4k3/8/8/8/8/8/8/4K2R w K -", "--moves", "1")
        self.assertEqual(result.err, "")
        result = self.run_program("--quiet", "solve", fen, "--moves", "1")
        self.assertEqual(result.err, "")


class Languages(ProgramTest):
    def test_labels_follow_but_verdicts_and_json_do_not(self):
        polish = self.run_program("--language", "pl", "solve", LOYD_5, "--moves", "5")
        self.assertIn("Mat w 5, ruch białych", polish.out)
        self.assertRegex(polish.out, r"(?m)^Wynik +mate$")
        ukrainian = self.run_program("solve", LOYD_5, "--moves", "5", "--language=uk")
        self.assertIn("Мат за 5, хід білих", ukrainian.out)
        (record,) = self.run_program(
            "solve", LOYD_5, "--moves", "5", "--json", "--language", "pl"
        ).json()
        self.assertEqual(record["verdict"], "mate")

    def test_option_file_gives_the_language(self):
        self.assertEqual(self.run_program("options", "set", "LanguageId", "0").code, 0)
        self.assertIn("ruch białych", self.run_program("solve", LOYD_5, "--moves", "2").out)
        english = self.run_program("--language", "en", "solve", LOYD_5, "--moves", "2")
        self.assertIn("white to move", english.out)


if __name__ == "__main__":
    unittest.main()
