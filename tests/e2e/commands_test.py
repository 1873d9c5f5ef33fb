#!/usr/bin/env python3
"""The other commands: help, version, perft, position, epd, bench, options."""

import os
import unittest

from program import ENDLESS, ENDLESS_MOVES, LOYD_3, LOYD_5, ROOT, ProgramTest

START = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -"
COMMANDS = ["solve", "epd", "batch", "perft", "position", "options", "cp", "bench"]


class Help(ProgramTest):
    def test_no_arguments_print_the_short_help(self):
        result = self.run_program()
        self.assertEqual((result.code, result.err), (0, ""))
        for command in COMMANDS:
            self.assertIn(f"\n  {command} ", result.out)
        self.assertEqual(self.run_program("--help").out, result.out)

    def test_help_of_each_command(self):
        for command in COMMANDS:
            result = self.run_program(command, "--help")
            self.assertEqual((result.code, result.err), (0, ""))
            self.assertIn(f"quillmere {command}", result.out)

    def test_commands_of_the_future_are_not_listed(self):
        out = self.run_program().out
        for command in ("table", "uci"):
            self.assertNotIn(f"\n  {command} ", out)

    def test_version(self):
        self.assertRegex(self.run_program("--version").out, r"^quillmere \d+\.\d+\.\d+\n$")

    def test_help_in_each_language(self):
        self.assertIn("Polecenia:", self.run_program("--language", "pl").out)
        self.assertIn("Команди:", self.run_program("--language", "uk").out)


class Perft(ProgramTest):
    def test_counts(self):
        self.assertEqual(self.run_program("perft", START, "3").out, "8902\n")
        self.assertEqual(self.run_program("perft", START, "0").out, "1\n")
        kiwi = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -"
        self.assertEqual(self.run_program("perft", kiwi, "3").out, "97862\n")

    def test_side_as_given(self):
        self.assertEqual(self.run_program("perft", LOYD_5.replace(" w", " b"), "1").out, "6\n")

    def test_divide_adds_up(self):
        (record,) = self.run_program("perft", START, "3", "--divide", "--json").json()
        self.assertEqual(record["nodes"], 8902)
        self.assertEqual(len(record["divide"]), 20)
        self.assertEqual(sum(row["nodes"] for row in record["divide"]), 8902)
        text = self.run_program("perft", START, "2", "--divide").out.splitlines()
        self.assertEqual(text[-1], "400")
        self.assertIn("Nb1-c3     20", text)

    def test_derived_rights_differ_from_the_text(self):
        denied = self.run_program("perft", "4k3/8/8/8/8/8/8/4K2R w - -", "1")
        given = self.run_program("perft", "4k3/8/8/8/8/8/8/4K2R w K -", "1")
        self.assertEqual(denied.out, given.out)
        self.assertTrue(denied.err.startswith("Note: "))


class Position(ProgramTest):
    def test_json(self):
        (record,) = self.run_program("position", START, "--json").json()
        self.assertEqual(record["legalMoves"], 20)
        self.assertEqual(record["rights"], "KQkq")
        self.assertEqual(record["state"], "open")
        self.assertEqual(record["white"], {"Q": 1, "R": 2, "B": 2, "N": 2, "P": 8})
        self.assertEqual(record["material"], "KQRRBBNNPPPPPPPPvKQRRBBNNPPPPPPPP")
        self.assertEqual(len(record["id"]), 32)
        self.assertEqual(record["fen"], START.replace("-", "- 0 1"))

    def test_states(self):
        rows = [
            ("7k/6Q1/6K1/8/8/8/8/8 b - -", "mate", 0, "g7"),
            ("7k/5Q2/6K1/8/8/8/8/8 b - -", "stalemate", 0, "none"),
            ("7k/8/6K1/8/8/8/8/7R b - -", "check", 1, "h1"),
            ("7k/8/6K1/8/8/8/1B6/7R b - -", "check", 1, "double"),
            (LOYD_5, "open", None, "none"),
        ]
        for fen, state, moves, check in rows:
            with self.subTest(fen=fen):
                (record,) = self.run_program("position", fen, "--json").json()
                self.assertEqual((record["state"], record["check"]), (state, check))
                if moves is not None:
                    self.assertEqual(record["legalMoves"], moves)

    def test_text(self):
        out = self.run_program("position", "7k/5Q2/6K1/8/8/8/8/8 b - -").out
        self.assertIn("8 | . . . . . . . k |", out)
        self.assertRegex(out, r"(?m)^State +Stalemate$")
        self.assertRegex(out, r"(?m)^Material +KQvK$")


class Epd(ProgramTest):
    LINES = "\n".join(
        [
            f'{LOYD_3} bm Rxg3; dm 3; id "good"; c0 "Loyd, 1859"; acd 3;',
            f'{LOYD_3} bm #2; id "none";',
            f'{LOYD_3} bm Ra7; dm 3; id "key";',
            f'{LOYD_3} dm 4; id "long";',
            '4n3/5Bpp/6P1/8/5k1K/7P/6r1/8 b - - 0 1 bm Rxg6; dm 3; id "black";',
        ]
    )

    def test_comparison(self):
        path = self.write("list.epd", self.LINES)
        result = self.run_program("epd", path, "--json")
        records = {record["id"]: record for record in result.json()}
        self.assertEqual(list(records), ["good", "none", "key", "long", "black"])
        self.assertEqual(
            {name: record["comparison"] for name, record in records.items()},
            {
                "good": "as expected",
                "none": "different",
                "key": "different",
                "long": "as expected",
                "black": "as expected",
            },
        )
        self.assertEqual(records["good"]["operations"], {"c0": "Loyd, 1859", "acd": "3"})
        self.assertEqual(records["good"]["expectedKeys"], [{"move": "Rg7:g3", "uci": "g7g3"}])
        self.assertEqual(records["black"]["keys"][0]["uci"], "g2g6")
        self.assertEqual(result.code, 1)
        self.assertIn("5 positions: 3 as expected, 2 different, 0 undecided", result.err)

    def test_text_lines(self):
        path = self.write("list.epd", self.LINES)
        lines = self.run_program("epd", path, "--deterministic").out.splitlines()
        self.assertEqual(len(lines), 5)
        self.assertRegex(lines[0], r"^good   mate        3  Rg7:g3 +\d+$")
        self.assertRegex(lines[1], r"^none   no mate     2  - +\d+  different: mate expected$")
        self.assertIn("different: Rg7-a7 expected", lines[2])

    def test_shortest(self):
        path = self.write("list.epd", self.LINES)
        result = self.run_program("epd", path, "--shortest", "--json")
        records = {record["id"]: record for record in result.json()}
        self.assertEqual(records["good"]["shorter"], "no mate")
        self.assertEqual(records["good"]["comparison"], "as expected")
        self.assertEqual(records["long"]["shorter"], "mate")
        self.assertEqual(records["long"]["comparison"], "different")
        self.assertNotIn("shorter", records["none"])

    def test_all_keys_must_be_the_stated_ones(self):
        two_keys = "k7/8/1K6/8/8/8/8/6RR w - -"
        path = self.write("keys.epd", f"{two_keys} dm 1; bm Rg8;\n{two_keys} dm 1; bm Rg8 Rh8;\n")
        result = self.run_program("epd", path, "--all", "--json")
        self.assertEqual(
            [record["comparison"] for record in result.json()], ["different", "as expected"]
        )

    def test_undecided(self):
        path = self.write("endless.epd", f"{ENDLESS} dm {ENDLESS_MOVES};\n")
        result = self.run_program("epd", path, "--nodes", "2000", "--deterministic")
        self.assertEqual(result.code, 4)
        self.assertRegex(result.out, r"^line-1  limit ")

    def test_deterministic_runs_are_equal(self):
        path = self.write("list.epd", self.LINES)
        for extra in ([], ["--json"]):
            runs = [
                self.run_program("epd", path, "--deterministic", "--jobs", jobs, *extra).out
                for jobs in ("1", "3", "3")
            ]
            self.assertEqual(runs[0], runs[1])
            self.assertEqual(runs[1], runs[2])

    def test_one_by_its_id(self):
        sample = os.path.join(ROOT, "samples", "classics.epd")
        result = self.run_program("epd", sample, "--id", "loyd-1903-3")
        self.assertEqual((result.code, result.err), (0, ""))
        self.assertIn("Loyd, Samuel, 1903\n", result.out)
        self.assertIn("5 | R B . . k . . . |\n", result.out)
        self.assertRegex(result.out, r"Key +1\.Kf1-e2!\n")
        self.assertRegex(result.out, r"Line +1\.Kf1-e2 .*#\n")

    def test_short_classics_are_as_published(self):
        with open(os.path.join(ROOT, "samples", "classics.epd"), encoding="utf-8") as file:
            lines = [line for line in file if "dm 2;" in line or "dm 3;" in line]
        path = self.write("short.epd", "".join(lines))
        result = self.run_program("epd", path, "--all", "--shortest")
        self.assertEqual(result.code, 0, result.out)
        self.assertEqual(len(result.out.splitlines()), 14)

    def test_quiet_leaves_the_summary_out(self):
        path = self.write("list.epd", self.LINES)
        self.assertEqual(self.run_program("--quiet", "epd", path).err, "")

    def test_standard_input(self):
        result = self.run_program("epd", "-", stdin=f"{LOYD_3} dm 3; bm Rxg3;")
        self.assertEqual(result.code, 0)


class Bench(ProgramTest):
    def test_signature_is_the_same_in_every_run(self):
        one = self.run_program("bench", "--suite", "short")
        two = self.run_program("bench", "--suite", "short", "--signature")
        self.assertEqual((one.code, two.code), (0, 0))
        self.assertRegex(two.out, r"^Signature: \d+ [0-9a-f]{16}\n$")
        self.assertEqual(one.out.splitlines()[-1] + "\n", two.out)

    def test_json(self):
        records = self.run_program("bench", "--suite", "short", "--json").json()
        self.assertEqual(records[-1]["nodes"], sum(record["nodes"] for record in records[:-1]))
        self.assertIn("digest", records[-1])


    def test_memory_is_taken(self):
        # So little that the register of the longer tasks overflows: the answers stay.
        one, two = (
            self.run_program("bench", "--suite", "short", "--json", *extra).json()
            for extra in ([], ["--memory", "1"])
        )
        self.assertEqual(one[-1]["digest"], two[-1]["digest"])


class Options(ProgramTest):
    def file(self):
        return os.path.join(self.folder, "home", "options.ini")

    def test_path(self):
        self.assertEqual(self.run_program("options", "path").out, self.file() + "\n")
        other = os.path.join(self.folder, "other")
        result = self.run_program("options", "path", "--home", other)
        self.assertEqual(result.out, os.path.join(other, "options.ini") + "\n")

    def test_set_is_read_back_and_keeps_what_is_foreign(self):
        os.mkdir(os.path.join(self.folder, "home"))
        with open(self.file(), "w", encoding="utf-8") as file:
            file.write("; by hand\n[other]\nkey=1\n[chess]\nMine=7\n")
        self.assertEqual(self.run_program("options", "get", "QuickMode").out, "1\n")
        result = self.run_program("options", "set", "QuickMode", "0")
        self.assertEqual((result.code, result.err), (0, ""))
        self.assertEqual(self.run_program("options", "get", "QuickMode").out, "0\n")
        with open(self.file(), encoding="utf-8") as file:
            text = file.read()
        for kept in ("; by hand", "[other]", "key", "Mine"):
            self.assertIn(kept, text)

    def test_negative_value(self):
        self.assertEqual(self.run_program("options", "set", "LichessLevels", "-1").code, 0)
        self.assertEqual(self.run_program("options", "get", "LichessLevels").out, "-1\n")

    def test_warning_about_an_option_is_a_note(self):
        self.assertEqual(self.run_program("options", "set", "LogMoves", "1").code, 0)
        result = self.run_program("perft", START, "1")
        self.assertEqual((result.code, result.out), (0, "20\n"))
        self.assertEqual(result.err.count("\n"), 1)
        self.assertIn("log of full analysis", result.err)
        self.assertEqual(self.run_program("--quiet", "perft", START, "1").err, "")
        self.assertEqual(self.run_program("options", "get", "LogMoves").err, "")

    def test_list(self):
        result = self.run_program("options")
        self.assertEqual(result.out, self.run_program("options", "list").out)
        records = self.run_program("options", "list", "--json").json()
        self.assertEqual(len(records), len(result.out.splitlines()))
        rows = {record["key"]: record for record in records}
        self.assertEqual(rows["MaxMemRatioForTempReg"]["default"], "20")
        self.assertEqual(rows["MaxMemRatioForTempReg"]["high"], 100)


class Output(ProgramTest):
    @unittest.skipUnless(os.path.exists("/dev/full"), "needs a device that is always full")
    def test_output_that_cannot_be_written_is_a_fault(self):
        import subprocess

        from program import PROGRAM

        with open("/dev/full", "w", encoding="utf-8") as full:
            result = subprocess.run(
                [PROGRAM, "--version"],
                stdout=full,
                stderr=subprocess.PIPE,
                encoding="utf-8",
                env=self.environment(),
            )
        self.assertEqual(result.returncode, 5)
        self.assertEqual(result.stderr, "quillmere: The output could not be written.\n")

    def test_locale_does_not_change_numbers(self):
        plain = self.run_program("epd", "-", "--deterministic", stdin=f"{LOYD_3} dm 3;")
        german = self.run_program(
            "epd", "-", "--deterministic", stdin=f"{LOYD_3} dm 3;", LC_NUMERIC="de_DE.UTF-8"
        )
        self.assertEqual(plain.out, german.out)


if __name__ == "__main__":
    unittest.main()
