#!/usr/bin/env python3
"""The command "cp": nothing of a file is lost or changed without being named."""

import json
import os
import unittest

from program import ProgramTest

PLAIN = "UTF-8\n\n1 #2\n{\n\tFEN: 4k3/8/8/8/8/8/8/4K3\n}\n"
OTHER = "UTF-8\n\n5 #2\n{\n\tFEN: 3k4/8/8/8/8/8/8/3QK3\n}\n"
COMMENTED = (
    "UTF-8\n\n1 #2\n//!VARIANTS\n//!{v} 1. Ke1-e2[a remark]\n//!ENDVARIANTS\n"
    "{\n\tFEN: 4k3/8/8/8/8/8/8/4K3\n}\n"
)
PROBLEM = {
    "schema": 1,
    "number": 1,
    "stipulation": "#2",
    "description": "",
    "board": "4k3/8/8/8/8/8/8/4K3",
}


class CpLosses(ProgramTest):
    def cp(self, *arguments):
        return self.run_program("cp", *arguments)

    def path(self, name):
        return os.path.join(self.folder, name)

    def read(self, name):
        with open(self.path(name), encoding="utf-8") as file:
            return file.read()

    def assert_save_refused(self, text):
        path = self.write("a.cp", text)
        self.assertEqual(self.cp("format", path).code, 3, text)

    def json_file(self, **fields):
        return self.write("a.json", json.dumps([{**PROBLEM, **fields}]))


class Variants(CpLosses):
    def test_words_of_any_alphabet_beside_moves_are_named(self):
        for line in ("{v} 1. Ke1-e2 ключ Ke8-e7", "ключ {v} 1. Ke1-e2"):
            self.assert_save_refused(PLAIN.replace("{\n", f"//!VARIANTS\n//!{line}\n{{\n"))

    def test_marks_of_moves_are_named(self):
        self.assert_save_refused(
            PLAIN.replace("{\n", "//!VARIANTS\n//!{v} 1. Ke1-e2 ! Ke8-e7 ?\n{\n")
        )

    def test_first_number_of_a_line_is_named(self):
        self.assert_save_refused(PLAIN.replace("{\n", "//!VARIANTS\n//!{v} 5. Ke1-e2\n{\n"))


class Conversion(CpLosses):
    def test_answer_behind_the_edge_is_no_internal_fault(self):
        path = self.write("a.cp", PLAIN.replace("\n}", "\n\tAnswer: Ke1-e9\n}"))
        result = self.cp("convert", path, self.path("a.json"), "--allow-loss")
        self.assertIn(result.code, (0, 3), result.err)

    def test_variant_that_is_no_utf8_is_no_internal_fault(self):
        path = self.path("a.cp")
        line = b"//!VARIANTS\n//!{v} 1. Ke1\xffe2\n{\n"
        with open(path, "wb") as file:
            file.write(PLAIN.encode().replace(b"{\n", line, 1))
        result = self.cp("convert", path, self.path("a.json"), "--allow-loss")
        self.assertIn(result.code, (0, 3), result.err)

    def test_material_that_is_no_word_is_told_with_its_place(self):
        for material in ("K Q", "Qq {", ""):
            path = self.json_file(requires=[material])
            result = self.cp("convert", path, self.path("a.cp"), "--allow-loss")
            self.assertEqual(result.code, 3, result.err)
            self.assertIn("requires[0]", result.err)

    def test_one_named_loss_does_not_hide_another(self):
        rows = (("//#TAGS", {"tags": ["", "a"]}), ("GUICHECK n", {"guiCheckRepeat": 5}))
        for field, fields in rows:
            path = self.json_file(schedulerLevels=3, **fields)
            result = self.cp("convert", path, self.path("a.cp"))
            self.assertIn(field, result.err)

    def test_greatest_number_is_kept_or_named(self):
        for suffix in ("epd", "pgn"):
            path = self.write("a.cp", PLAIN.replace("1 #2", "2147483647 #2"))
            there = self.cp("convert", path, self.path("a." + suffix))
            self.cp("convert", self.path("a." + suffix), self.path(suffix + ".cp"))
            if there.code == 0:
                self.assertIn("\n2147483647 #2\n", self.read(suffix + ".cp"))


class CompatibilityMode(CpLosses):
    def setUp(self):
        super().setUp()
        self.run_program("options", "set", "CommentCompatibilityMode", "1")

    def test_conversion_takes_the_comments_from_the_twin(self):
        path = self.write("a.cp", COMMENTED.replace("[a remark]", ""))
        self.write("a.cpx", COMMENTED)
        self.cp("convert", path, self.path("a.json"))
        self.assertIn("a remark", self.read("a.json"))

    def test_converted_file_is_the_one_that_is_read_afterwards(self):
        self.write("b.cp", PLAIN)
        self.write("b.cpx", PLAIN)
        new = self.json_file(description="new")
        self.assertEqual(self.cp("convert", new, self.path("b.cp"), "--force").code, 0)
        self.assertIn("new", self.cp("list", self.path("b.cp")).out)

    def test_twin_that_exists_is_not_replaced_unless_asked(self):
        path = self.write("a.cp", COMMENTED)
        self.write("o.cpx", "something else")
        self.assertEqual(self.cp("format", path, "-o", self.path("o.cp")).code, 3)
        self.assertEqual(self.read("o.cpx"), "something else")


class Encoding(CpLosses):
    def test_utf8_that_does_not_say_so_is_told_and_not_saved(self):
        path = self.write("a.cp", PLAIN.replace("UTF-8\n", "").replace("\tFEN", "D: żółw\n\tFEN"))
        self.assertIn(
            "looks like UTF-8 but does not begin with the line UTF-8", self.cp("check", path).out
        )
        self.assertEqual(self.cp("format", path).code, 3)
        self.assertEqual(self.cp("format", path, "--code-page", "UTF-8").code, 0)
        self.assertIn("żółw", self.read("a.cp"))


class Faults(CpLosses):
    def test_word_at_fault_stands_before_its_reason(self):
        path = self.write("a.cp", PLAIN.replace("{\n", "//!VARIANTS\n//!{v} 1. e4\n{\n"))
        self.assertIn("a.cp:5: 'e4': Improper string length", self.cp("check", path).err)
        path = self.write("a.cp", PLAIN.replace("\n}", "\n\tMoves: Ke1-e7\n}"))
        self.assertIn("a.cp:6: 'Ke1-e7': Illegal move", self.cp("check", path).err)


class Output(CpLosses):
    def test_comment_of_the_appended_file_does_not_keep_from_saving(self):
        path = self.write("a.cp", PLAIN)
        other = self.write("b.cp", OTHER.replace("{\n", "// a comment\n{\n"))
        self.assertEqual(self.cp("append", path, other).code, 0)
        other = self.write("b.cp", OTHER.replace("#2\n", "#3 GlobRegMB 5\n").replace("3k4", "k7"))
        self.assertEqual(self.cp("append", path, other).code, 3)

    def test_pipe_is_not_replaced_by_a_file(self):
        os.mkfifo(self.path("pipe"))
        path = self.write("a.cp", PLAIN)
        self.assertEqual(self.cp("format", path, "-o", self.path("pipe"), "--force").code, 3)
        self.assertFalse(os.path.isfile(self.path("pipe")))

    def test_comment_of_the_appended_file_is_told_with_that_file(self):
        path = self.write("a.cp", PLAIN)
        other = self.write("b.cp", OTHER.replace("{\n", "// a comment\n{\n"))
        result = self.cp("append", path, other)
        line = next(line for line in result.err.splitlines() if "comment in line" in line)
        self.assertIn("b.cp", line)


if __name__ == "__main__":
    unittest.main()
