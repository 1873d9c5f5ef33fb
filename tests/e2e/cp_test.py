#!/usr/bin/env python3
"""The command "cp": every part, its exit codes, and files that stay as they were."""

import os
import stat
import unittest

from program import ProgramTest

GOOD = (
    "UTF-8\n\n7 #5 NoMirror\n//#TAGS\n//#sea snake\n//!VARIANTS\n"
    "//!{Main variant} 1. Qa3-f8[the key] Kf1-e1 2. Qf8-d6\n//!ENDVARIANTS\n"
    "{\n\tDescription: Loyd\n\tFEN: 8/8/8/8/8/Q7/4p3/5k1K\n\tAnswer: Qa3-f8\n}\n"
    "9 #2\n{\n\tFEN: 6k1/8/8/8/8/8/8/K6R\n}\n"
)
# What a save loses: a word of the head line, and a comment.
LOSING = "UTF-8\n\n3 #2 GLOBREGMB 300\n// a comment\n{\n\tFEN: 6k1/8/8/8/8/8/8/1K5R\n}\n"
DOUBTFUL = (
    "UTF-8\n\n1 #2 { FEN: 6k1/8/8/8/8/8/8/K6R\n Answer: Ka1-h8 }\n"
    "2 s#3 SH_KEYLINE(Z9) { FEN: 6k1/8/8/8/8/8/8/K6R }\n"
    "3 #2 { White: Ka1 Black: Qh8 }\n"
    "4 #2\n//!VARIANTS\n//!{x} 1. Rh1-h2 Kh8-a1\n//!ENDVARIANTS\n"
    "{ White: Ka1, Rh1 Black: Kh8 }\n"
    "5 #2 { FEN: 6k1/8/8/8/8/8/8/K6R\n SWM: Rh1-a8 }\n"
    "6 #2\n//!VARIANTS\n//!{x} 1. Rh1-h2 Kg8-f8 2. Rh2-a1\n//!ENDVARIANTS\n"
    "{ FEN: 6k1/8/8/8/8/8/8/1K5R }\n"
)


class CpTest(ProgramTest):
    def read(self, path):
        with open(path, "rb") as file:
            return file.read()

    def path(self, name):
        return os.path.join(self.folder, name)

    def cp(self, *arguments, stdin="", **extra):
        return self.run_program("cp", *arguments, stdin=stdin, **extra)

    def assert_unchanged(self, path, text):
        self.assertEqual(self.read(path), text.encode())
        self.assertFalse(os.path.exists(path + ".BAK"))

    def assert_losses_refused(self, path, text, *arguments):
        result = self.cp(*arguments)
        self.assertEqual(result.code, 3, result.err)
        self.assertEqual(result.out, "")
        self.assertIn("GLOBREGMB is not written", result.err)
        self.assertIn("the comment in line 4 is not written", result.err)
        self.assertIn("--allow-loss", result.err)
        self.assert_unchanged(path, text)


class Usage(CpTest):
    def test_each_wrong_use_is_named(self):
        for words, *arguments in (
            ("none of: check, list", "nope"),
            ("FILE...", "check"),
            ("FILE OTHER", "append", "a.cp"),
            ("c.cp", "append", "a.cp", "b.cp", "c.cp"),
            ("--force", "list", "a.cp", "--force"),
            ("--tag", "check", "a.cp", "--tag", "x"),
            ("--from", "convert", "a.txt", "b.cp"),
            ("--to", "convert", "a.cp", "-"),
            ("xml", "convert", "a.cp", "-", "--to", "xml"),
        ):
            self.assert_refused(2, words, "cp", *arguments)

    def test_unreadable_files_are_named(self):
        empty = self.write("empty.cp", "")
        for words, *arguments in (
            (["Error opening file: ", "none.cp"], "check", "none.cp"),
            (["Error opening file: ", "none.cp"], "list", "none.cp"),
            (["Error opening file: ", "none.cp"], "format", "none.cp"),
            (["Error opening file: ", self.folder], "format", self.folder),
            ([empty + ": ", "File cannot be empty."], "check", empty),
            (["none.cp"], "convert", "none.cp", "-", "--to", "pgn"),
            ([empty + ": ", "File cannot be empty."], "convert", empty, "-", "--to", "pgn"),
        ):
            self.assert_refused(3, words, "cp", *arguments)


class Check(CpTest):
    def test_good_file_gives_no_line(self):
        result = self.cp("check", self.write("a.cp", GOOD))
        self.assertEqual((result.code, result.out), (0, ""))
        self.assertIn("problems: 2, warnings: 0.", result.err)

    def test_each_doubtful_thing_is_named(self):
        path = self.write("a.cp", DOUBTFUL)
        result = self.cp("check", path)
        self.assertEqual(result.code, 0, result.err)
        for line in (
            "problem 1: the answer a1h8 is no legal move.",
            "problem 2: selfmates are read and written, but not solved.",
            "problem 2: SH_KEYLINE: 'Z9'",
            "problem 2: the same position stands under number 1, with another stipulation.",
            "problem 3: the position cannot be solved: Illegal number of kings.",
            "problem 4: the position cannot be solved: FEN: white is to move",
            "problem 5: the expected first move h1a8 is no legal move.",
            "problem 5: the same position and stipulation stand under number 1.",
            "problem 6: variant 'x': half-move 3, Rh2-a1, is no legal move.",
            "if saved: Problem 2: SH_KEYLINE is not written",
            "if saved: Problem 5: EXPECTEDSORTWHITEMOVES is not written",
        ):
            self.assertIn(f"{path}: {line}", result.out)
        self.assertEqual(result.out.count("\n"), 11)

    def test_fault_has_file_and_line_and_the_other_files_are_checked(self):
        bad = self.write("bad.cp", "UTF-8\n\n1 #2\n{\n\tFEN: nonsense\n}\n")
        good = self.write("good.cp", DOUBTFUL)
        result = self.cp("check", bad, good)
        self.assertEqual(result.code, 3)
        self.assertIn(f"quillmere: {bad}:5: Improper FEN code\n", result.err)
        self.assertIn(f"{good}: problem 1: ", result.out)

    def test_problems_read_are_told_only_when_wished_but_redefinitions_always(self):
        path = self.write("a.cp", GOOD + "7 #2 { FEN: 6k1/8/8/8/8/8/8/1K5R }\n")
        warning = f"{path}: WARINING: Problem id=7 redefinition - overwriting.\n"
        quiet, verbose = self.cp("check", path), self.cp("check", path, "--verbose")
        self.assertIn(warning, quiet.err)
        self.assertIn(warning, verbose.err)
        self.assertNotIn("read from file", quiet.err)
        self.assertEqual(verbose.err.count("read from file."), 3)


class List(CpTest):
    def test_one_line_a_problem(self):
        result = self.cp("list", self.write("a.cp", GOOD))
        self.assertEqual(
            result.out,
            "     7  #5    2+2    NoMirror  Loyd\n     9  #2    2+1\n",
        )

    def test_tag_in_any_language(self):
        path = self.write("a.cp", GOOD)
        for tag, numbers in (("sea snake", [7]), ("wąż morski", [7]), ("pendulum", [])):
            for language in ("en", "pl"):
                result = self.cp("list", path, "--tag", tag, "--json", "--language", language)
                self.assertEqual([row["number"] for row in result.json()], numbers)

    def test_json_holds_every_column(self):
        row = self.cp("list", self.write("a.cp", GOOD), "--json").json()[0]
        self.assertEqual(
            row,
            {
                "schema": 2,
                "number": 7,
                "stipulation": "#5",
                "flags": ["NoMirror"],
                "description": "Loyd",
                "tags": ["sea snake"],
                "whiteMen": 2,
                "blackMen": 2,
                "board": "8/8/8/8/8/Q7/4p3/5k1K",
            },
        )


class Format(CpTest):
    def test_file_in_form_is_not_written(self):
        path = self.write("a.cp", GOOD)
        before = os.stat(path)
        result = self.cp("format", path)
        self.assertEqual((result.code, result.out), (0, ""))
        self.assertIn("already in form", result.err)
        self.assertEqual(os.stat(path).st_ino, before.st_ino)
        self.assert_unchanged(path, GOOD)

    def test_form_is_restored_with_a_backup(self):
        untidy = GOOD.replace("\t", "  ").replace("#5 NoMirror", "#5   NOMIRROR")
        path = self.write("a.cp", untidy)
        self.assertEqual(self.cp("format", path).code, 0)
        self.assertEqual(self.read(path), GOOD.encode())
        self.assertEqual(self.read(path + ".BAK"), untidy.encode())

    def test_losses_are_refused_and_named(self):
        path = self.write("a.cp", LOSING)
        self.assert_losses_refused(path, LOSING, "format", path)
        self.assert_losses_refused(path, LOSING, "format", path, "--quiet")

    def test_allowed_losses_are_told(self):
        path = self.write("a.cp", LOSING)
        result = self.cp("format", path, "--allow-loss")
        self.assertEqual(result.code, 0)
        self.assertIn("GLOBREGMB is not written", result.err)
        self.assertNotIn(b"GLOBREGMB", self.read(path))
        self.assertEqual(self.read(path + ".BAK"), LOSING.encode())

    def test_other_output_is_written_once(self):
        path, out = self.write("a.cp", LOSING), self.path("out.cp")
        self.assertEqual(self.cp("format", path, "-o", out, "--allow-loss").code, 0)
        self.assert_unchanged(path, LOSING)
        self.assert_refused(3, [out, "--force"], "cp", "format", path, "-o", out, "--allow-loss")
        self.assertEqual(self.cp("format", path, "-o", out, "--allow-loss", "--force").code, 0)
        self.assertEqual(self.cp("format", out, "-o", "-").out, self.read(out).decode())

    def test_code_page_of_an_old_file(self):
        path = self.path("old.cp")
        with open(path, "wb") as file:
            file.write("1 #2\n{\nD: Żółw\nFEN: 6k1/8/8/8/8/8/8/K6R\n}\n".encode("iso-8859-2"))
        result = self.cp("list", path, "--code-page", "iso-8859-2")
        self.assertTrue(result.out.endswith("Żółw\n"), result.out)
        self.assert_refused(3, "no-such-page", "cp", "list", path, "--code-page", "no-such-page")

    def test_code_page_of_other_formats(self):
        epd = '6k1/8/8/8/8/8/8/K6R w - - dm 2; id "1"; c0 "Żółw";\n'
        pgn = '[White "Żółw"]\n[Event "#2"]\n[FEN "6k1/8/8/8/8/8/8/K6R w - -"]\n\n*\n'
        for name, text in (("a.epd", epd), ("a.pgn", pgn)):
            for encoding, *page in (
                ("utf-8",),
                ("utf-8", "--code-page", "iso-8859-2"),
                ("iso-8859-2", "--code-page", "iso-8859-2"),
            ):
                path = self.path(name)
                with open(path, "wb") as file:
                    file.write(text.encode(encoding))
                result = self.cp("convert", path, "-", "--to", "cp", *page)
                self.assertIn("Description: Żółw\n", result.out, (name, encoding, result.err))

    @unittest.skipIf(os.geteuid() == 0, "root may write everywhere")
    def test_unwritable_file_is_named(self):
        path = self.write("a.cp", GOOD.replace("\t", " "))
        os.chmod(path, stat.S_IRUSR)
        self.assert_refused(3, ["Error saving to file", path], "cp", "format", path)

    def test_folder_that_cannot_be_made_is_named(self):
        path = self.write("a.cp", GOOD)
        out = os.path.join(path, "below", "b.cp")
        self.assert_refused(3, ["Error opening file", out], "cp", "format", path, "-o", out)


class AppendAndRemove(CpTest):
    OTHER = "UTF-8\n\n1 #3\n{\n\tFEN: 6k1/8/8/8/8/8/8/K6R\n}\n2 #2\n{\n\tFEN: 6k1/8/8/8/8/8/R7/K7\n}\n"

    def test_append_adds_new_positions(self):
        path, other = self.write("a.cp", GOOD), self.write("b.cp", self.OTHER)
        result = self.cp("append", path, other)
        self.assertEqual(result.code, 0, result.err)
        self.assertEqual(
            result.out,
            "Appended problems: 1\n"
            "Moreover some problems differ only by stipulation (#n): \n1 vs. #9\n",
        )
        self.assertEqual(
            self.read(path).decode(), GOOD + "10 #2\n{\n\tFEN: 6k1/8/8/8/8/8/R7/K7\n}\n"
        )
        self.assertEqual(self.read(path + ".BAK"), GOOD.encode())
        again = self.cp("append", path, other)
        self.assertIn("nothing changes", again.err)

    def test_remove_takes_positions_away(self):
        path, other = self.write("a.cp", GOOD), self.write("b.cp", self.OTHER)
        result = self.cp("remove", path, other)
        self.assertEqual((result.code, result.out), (0, "Removed problems: 1\n"))
        self.assertEqual(self.read(path).decode(), GOOD[: GOOD.index("9 #2")])

    def test_nothing_left_is_refused(self):
        path = self.write("a.cp", GOOD)
        self.assert_refused(3, "no problem would be left", "cp", "remove", path, path)
        self.assert_unchanged(path, GOOD)

    def test_dry_run_writes_nothing(self):
        path, other = self.write("a.cp", GOOD), self.write("b.cp", self.OTHER)
        for part, report in (("append", "Appended problems: 1\n"), ("remove", "Removed problems: 1\n")):
            result = self.cp(part, path, other, "--dry-run")
            self.assertEqual(result.code, 0)
            self.assertTrue(result.out.startswith(report), result.out)
            self.assert_unchanged(path, GOOD)

    def test_losses_are_refused_and_named(self):
        both = LOSING + self.OTHER[len("UTF-8\n\n") :]
        path, other = self.write("a.cp", both), self.write("b.cp", self.OTHER)
        third = self.write("c.cp", GOOD)
        self.assert_losses_refused(path, both, "append", path, third)
        self.assert_losses_refused(path, both, "remove", path, other)
        # The losses of what comes in count too.
        self.assert_losses_refused(third, GOOD, "append", third, path)
        self.assertEqual(self.cp("append", third, path, "--allow-loss").code, 0)

    def test_fault_of_the_other_file_leaves_the_first(self):
        path, other = self.write("a.cp", GOOD), self.write("b.cp", "UTF-8\n1 #2\n[")
        for part in ("append", "remove"):
            self.assert_refused(3, other + ":3: ", "cp", part, path, other)
            self.assert_unchanged(path, GOOD)


class Convert(CpTest):
    def test_pgn_and_json_give_the_collection_back(self):
        path = self.write("a.cp", GOOD)
        for suffix in ("pgn", "json", "jsonl"):
            middle, back = self.path("a." + suffix), self.path("back-" + suffix + ".cp")
            for source, target in ((path, middle), (middle, back)):
                result = self.cp("convert", source, target)
                self.assertEqual((result.code, result.out), (0, ""), result.err)
            self.assertEqual(self.read(back), GOOD.encode())

    def test_epd_names_what_it_cannot_hold(self):
        path = self.write("a.cp", GOOD)
        out = self.path("a.epd")
        result = self.cp("convert", path, out)
        self.assertEqual(result.code, 3)
        self.assertIn("problem 7: not kept in EPD: //!VARIANTS {Main variant}.", result.err)
        self.assertFalse(os.path.exists(out))
        self.assertEqual(self.cp("convert", path, out, "--allow-loss").code, 0)
        # The other command reads it, and solves it.
        solved = self.run_program("epd", out, "--id", "7")
        self.assertEqual(solved.code, 0, solved.err)

    def test_standard_streams(self):
        epd = "8/8/8/8/8/Q7/4p3/5k1K w - - dm 5; bm Qf8+; id \"4\";\n"
        result = self.cp("convert", "-", "-", "--from", "epd", "--to", "cp", stdin=epd)
        self.assertEqual(
            result.out,
            "UTF-8\n\n4 #5\n{\n\tFEN: 8/8/8/8/8/Q7/4p3/5k1K\n\tAnswer: Qa3-f8\n}\n",
        )
        back = self.cp("convert", "-", "-", "--from", "cp", "--to", "epd", stdin=result.out)
        self.assertEqual(back.out, epd)

    def test_existing_output_stays_without_force(self):
        path, out = self.write("a.cp", GOOD), self.write("a.pgn", "mine")
        self.assert_refused(3, [out, "--force"], "cp", "convert", path, out)
        self.assert_unchanged(out, "mine")
        self.assertEqual(self.cp("convert", path, out, "--force").code, 0)
        self.assertEqual(self.read(out + ".BAK"), b"mine")
        self.assert_refused(3, "same file", "cp", "convert", path, path, "--force")

    def test_faults_have_file_and_line_and_nothing_is_written(self):
        out = self.path("out.cp")
        for name, text, place in (
            ("a.epd", "# one\n8/8/8/8/8/Q7/4p3/5k1K w - - dm x;\n", ":2: "),
            ("a.pgn", "[Event \"?\"]\n\n1.e4\ne4 *\n", ":4: "),
            ("a.jsonl", "\n{\"schema\":1}\n", ":2: number: "),
            ("a.json", "[{\"schema\":1}]\n", ": [0].number: "),
            ("a.json", "[\n{\"schema\":1,}]\n", ":2: "),
            ("a.cp", "UTF-8\n\n1 #2\n[\n", ":4: "),
            ("b.cp", "UTF-8\n", ": The text holds no problems."),
            ("b.pgn", "", ": The text holds no problems."),
        ):
            path = self.write(name, text)
            self.assert_refused(3, path + place, "cp", "convert", path, out)
            self.assertFalse(os.path.exists(out))

    def test_notes_name_the_line_and_the_problem(self):
        path = self.write("a.epd", "5K1k/4P3/q7/8/8/8/8/8 b - - dm 5; bm Qf1+;\n")
        result = self.cp("convert", path, "-", "--to", "cp")
        self.assertEqual(result.code, 0)
        self.assertIn(f"{path}:1: problem 1: black is to move: the colours were swapped", result.err)
        self.assertIn("Answer: Qa3-f8", result.out)

    def test_unwritable_output_is_named(self):
        path = self.write("a.cp", GOOD)
        self.assert_refused(3, [path], "cp", "convert", path, os.path.join(path, "b.pgn"))
        self.assert_unchanged(path, GOOD)


if __name__ == "__main__":
    unittest.main()
