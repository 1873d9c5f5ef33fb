#!/usr/bin/env python3
"""Wrong usage and bad input: one line that names place and reason, the exit code, no output."""

import os
import unittest

from program import LOYD_5, ProgramTest


# Megabytes that no machine has.
TOO_MUCH = "999999999999"


class BadFen(ProgramTest):
    ROWS = [
        ("", "empty"),
        ("8/8/8/8/8/Q7/4p3 w - -", "7 ranks"),
        ("8/8/8/8/8/Q7/4p3/5k1K/8 w - -", "more than 8 ranks"),
        ("8/8/8/8/8/Q7/4p3/5k1 w - -", ["rank 1", "7 files"]),
        ("8/8/8/8/8/Q7/4p3/5k1KK w - -", ["rank 1", "character 22"]),
        ("8/8/8/8/8/Q9/4p3/5k1K w - -", ["rank 3", "9"]),
        ("8/8/8/x7/8/Q7/4p3/5k1K w - -", ["rank 5", "character 7", "'x'"]),
        ("8/8/8/8/8/Q7/8/4pk1K w - -", ["pawn", "e1"]),
        ("8/8/8/8/8/Q7/4p3/5k2 w - -", ["white kings", "0"]),
        ("8/8/8/8/8/Q7/4p3/7K w - -", ["black kings", "0"]),
        ("8/8/8/8/8/Q7/8/5kK1 w - -", ["g1", "f1", "side by side"]),
        ("r6K/8/8/8/8/8/8/R6k w - -", "Both kings attacked"),
        ("8/8/8/8/8/8/8/Q4k1K w - -", ["black king", "f1", "in check"]),
        ("8/8/8/8/8/8/8/q4K1k b - -", ["white king", "f1", "in check"]),
        ("8/8/8/8/8/Q7/4p3/5k1K x - -", ["field 2", "'x'"]),
        ("8/8/8/8/8/Q7/4p3/5k1K w KX -", ["field 3", "'KX'"]),
        ("8/8/8/8/8/Q7/4p3/5k1K w - e5", ["field 4", "'e5'"]),
        ("8/8/8/8/8/Q7/4p3/5k1K w - - a 1", ["field 5", "'a'"]),
        ("8/8/8/8/8/Q7/4p3/5k1K w - - 0 1 2", "'2'"),
    ]

    def test_solve(self):
        for fen, words in self.ROWS:
            with self.subTest(fen=fen):
                self.assert_refused(3, words, "solve", fen, "--moves", "2")

    def test_solve_json_prints_nothing_either(self):
        for fen, words in self.ROWS:
            with self.subTest(fen=fen):
                self.assert_refused(3, words, "solve", fen, "--moves", "2", "--json")

    def test_position_and_perft(self):
        for fen, words in self.ROWS:
            with self.subTest(fen=fen):
                self.assert_refused(3, words, "position", fen)
                self.assert_refused(3, words, "perft", fen, "2")

    def test_standard_input_names_its_line(self):
        self.assert_refused(
            3, ["line 3", "7 files"], "solve", "-", "--moves", "2",
            stdin=f"# list\n{LOYD_5}\n8/8/8/8/8/Q7/4p3/5k1 w\n",
        )
        self.assert_refused(3, "no position", "solve", "-", "--moves", "2", stdin="\n# none\n")


class BadEpd(ProgramTest):
    ROWS = [
        (f"{LOYD_5} dm 5; bm Qd5;", ["'Qd5'", "not possible"]),
        (f"{LOYD_5} dm 5; bm Qf9;", ["'Qf9'", "no move"]),
        ("4k3/8/8/8/8/8/8/R3K2R w KQ - dm 5; bm Kg1;", "'Kg1'"),
        ("7k/7p/8/8/8/8/1K6/R6R w - - dm 5; bm Rd1;", ["several", "Ra1-d1"]),
        (f"{LOYD_5} bm Qf8+;", "dm n"),
        (f"{LOYD_5} dm 0;", "'0'"),
        (f"{LOYD_5} dm 5; bm #4;", "contradict"),
        (f"{LOYD_5} dm 5; dm 5;", "twice"),
        (f'{LOYD_5} dm 5; id "a;', "quotation"),
        (f"{LOYD_5} dm 5; %;", "'%'"),
        ("8/8/8/8/8/Q7/4p3/5k1K w", "fields"),
        ("8/8/8/8/8/Q7/4p3/5k1 w - - dm 5;", "7 files"),
    ]

    def test_each_names_file_line_and_reason(self):
        for line, words in self.ROWS:
            with self.subTest(line=line):
                path = self.write("bad.epd", f"# head\n{LOYD_5} dm 5;\n\n{line}\n")
                words = [words] if isinstance(words, str) else words
                self.assert_refused(3, [f"{path}:4: ", *words], "epd", path)

    def test_missing_file(self):
        path = os.path.join(self.folder, "missing.epd")
        self.assert_refused(3, [path, "No such file"], "epd", path)

    def test_folder_instead_of_file(self):
        self.assert_refused(3, self.folder, "epd", self.folder)

    def test_file_without_positions(self):
        path = self.write("empty.epd", "# nothing\n")
        self.assert_refused(3, path, "epd", path)

    def test_unknown_id(self):
        path = self.write("one.epd", f'{LOYD_5} dm 5; id "a";\n')
        self.assert_refused(3, ["'b'", path], "epd", path, "--id", "b")

    def test_name_with_a_line_end_stays_one_line(self):
        self.assert_refused(3, "No such file", "epd", "missing\nfile.epd")


class NoFolder(ProgramTest):
    """Nothing names a folder for the files of the program, not even HOME."""

    HOMELESS = dict(QUILLMERE_HOME="", XDG_CONFIG_HOME="", HOME="")

    def test_what_needs_a_folder_says_so(self):
        for arguments in (
            ["options", "set", "QuickMode", "0"],
            ["options", "path"],
            ["solve", LOYD_5, "--moves", "2", "--log-moves"],
        ):
            with self.subTest(arguments=arguments):
                self.assert_refused(3, ["no folder", "--home"], *arguments, **self.HOMELESS)

    def test_the_rest_works_with_defaults(self):
        result = self.run_program("options", "get", "QuickMode", **self.HOMELESS)
        self.assertEqual((result.code, result.out), (0, "1\n"))
        result = self.run_program("solve", LOYD_5, "--moves", "6", **self.HOMELESS)
        self.assertEqual((result.code, result.err), (0, ""))


class BadOptions(ProgramTest):
    def test_value_out_of_range(self):
        self.assert_refused(
            3, ["MaxMemRatioForTempReg", "101"], "options", "set", "MaxMemRatioForTempReg", "101"
        )
        self.assertFalse(os.path.exists(os.path.join(self.folder, "home", "options.ini")))

    def test_value_that_is_no_number(self):
        self.assert_refused(3, ["QuickMode", "yes"], "options", "set", "QuickMode", "yes")

    def test_unknown_key(self):
        self.assert_refused(3, "NoSuchKey", "options", "get", "NoSuchKey")
        self.assert_refused(3, "NoSuchKey", "options", "set", "NoSuchKey", "1")

    def test_wrong_words(self):
        self.assert_refused(2, "'sit'", "options", "sit")
        self.assert_refused(2, "KEY", "options", "get")
        self.assert_refused(2, "VALUE", "options", "set", "QuickMode")
        self.assert_refused(2, "'2'", "options", "get", "QuickMode", "2")
        self.assert_refused(2, "'x'", "options", "path", "x")


class WrongUsage(ProgramTest):
    ROWS = [
        (["solve", LOYD_5, "--moves", "0"], ["--moves", "'0'", "1 to"]),
        (["solve", LOYD_5, "--moves", "-1"], ["--moves", "'-1'"]),
        (["solve", LOYD_5, "--moves", "two"], ["--moves", "'two'"]),
        (["solve", LOYD_5, "--moves", "1001"], ["--moves", "'1001'"]),
        (["solve", LOYD_5, "--moves"], ["--moves"]),
        (["solve", LOYD_5], ["--moves N"]),
        (["solve", "--moves", "2"], ["FEN"]),
        (["solve", LOYD_5, "--half-moves", "0"], ["--half-moves", "'0'"]),
        (["solve", LOYD_5, "--half-moves", "4"], ["--half-moves 4", "even"]),
        (["solve", LOYD_5, "--half-moves", "5", "--moves", "2"], ["contradict"]),
        (["solve", LOYD_5, "--moves", "2", "--time", "-1"], ["--time", "'-1'"]),
        (["solve", LOYD_5, "--moves", "2", "--time", "1,5"], ["--time", "'1,5'"]),
        (["solve", LOYD_5, "--moves", "2", "--nodes", "x"], ["--nodes", "'x'"]),
        (["solve", LOYD_5, "--moves", "2", "--memory", "0"], ["--memory", "'0'", "1 to"]),
        (["solve", LOYD_5, "--moves", "2", "--memory", "-1"], ["--memory", "'-1'"]),
        (["solve", LOYD_5, "--moves", "2", "--memory", "1.5"], ["--memory", "'1.5'"]),
        (["solve", LOYD_5, "--moves", "2", "--memory", "1G"], ["--memory", "'1G'"]),
        (["solve", LOYD_5, "--moves", "2", "--memory", ""], ["--memory", "''"]),
        (["solve", LOYD_5, "--moves", "2", "--memory"], ["--memory"]),
        (["solve", LOYD_5, "--moves", "2", "--memory", TOO_MUCH], ["--memory", TOO_MUCH]),
        (["epd", "a.epd", "--memory", "0"], ["--memory", "'0'"]),
        (["epd", "a.epd", "--memory", "-2"], ["--memory", "'-2'"]),
        (["epd", "a.epd", "--memory", TOO_MUCH], ["--memory", TOO_MUCH]),
        (["epd", "a.epd", "--time", "-1"], ["--time", "'-1'"]),
        (["epd", "a.epd", "--nodes", "-1"], ["--nodes", "'-1'"]),
        (["bench", "--memory", "0"], ["--memory", "'0'"]),
        (["bench", "--memory", TOO_MUCH], ["--memory", TOO_MUCH]),
        (["perft", LOYD_5, "2", "--memory", "1"], ["--memory", "perft --help"]),
        (["solve", LOYD_5, "--moves", "2", "--dance"], ["--dance", "solve --help"]),
        (["solve", "5K1k/4P3/q7/8/8/8/8/8 b - -", "--half-moves", "2", "--tries"], ["--tries"]),
        (["dance"], ["'dance'"]),
        (["--dance"], ["'--dance'"]),
        (["perft", LOYD_5], ["DEPTH"]),
        (["perft", LOYD_5, "-1"], ["DEPTH", "'-1'"]),
        (["perft", LOYD_5, "deep"], ["DEPTH", "'deep'"]),
        (["position"], ["FEN"]),
        (["epd"], ["FILE"]),
        (["epd", "a.epd", "b.epd"], ["'b.epd'"]),
        (["epd", "a.epd", "--jobs", "0"], ["--jobs", "'0'"]),
        (["bench", "--suite", "none"], ["--suite", "'none'", "short"]),
        (["bench", "now"], ["'now'"]),
        (["solve", LOYD_5, "--moves", "2", "--language", "de"], ["--language", "'de'"]),
    ]

    def test_each_is_refused_with_its_reason(self):
        for arguments, words in self.ROWS:
            with self.subTest(arguments=arguments):
                self.assert_refused(2, words, *arguments)

    def test_reason_comes_in_the_wished_language(self):
        polish = self.assert_refused(2, "'0'", "--language", "pl", "solve", LOYD_5, "--moves", "0")
        self.assertIn("nie jest liczbą", polish.err)
        ukrainian = self.assert_refused(2, "'dance'", "dance", "--language=uk")
        self.assertIn("Немає команди", ukrainian.err)


if __name__ == "__main__":
    unittest.main()
