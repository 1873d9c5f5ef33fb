#!/usr/bin/env python3
"""The option LogMoves and --log-moves: a moves log for each position in the program's folder."""

import os
import unittest

from program import ProgramTest

TWO_ROOKS = "7k/8/8/8/8/8/8/RR5K w - -"


class MovesLog(ProgramTest):
    def home(self, log_moves):
        home = os.path.join(self.folder, "home")
        os.makedirs(home)
        with open(os.path.join(home, "options.ini"), "w", encoding="utf-8") as file:
            file.write(f"[chess]\nLogMoves = {log_moves}\n")
        return home

    def logs(self, home):
        return sorted(name for name in os.listdir(home) if name.endswith(".log"))

    def test_one_file_a_position(self):
        home = self.home(1)
        stdin = f"{TWO_ROOKS}\n{TWO_ROOKS}\n"
        result = self.run_program("solve", "-", "--moves", "2", "--quiet", stdin=stdin)
        self.assertEqual((result.code, result.err), (0, ""))
        self.assertEqual(
            self.logs(home),
            ["MovesLogger_problem1_thread0.log", "MovesLogger_problem2_thread0.log"],
        )
        with open(os.path.join(home, self.logs(home)[0]), encoding="utf-8") as file:
            lines = file.read().splitlines()
        self.assertRegex(lines[0], r"^ 1\.\S+ [0-9a-zA-Z()]+ Pass 2$")
        self.assertEqual(lines[-1], " 1.mate")

    def test_epd_logs_each_record(self):
        home = self.home(1)
        epd = self.write("two.epd", f"{TWO_ROOKS} dm 2;\n{TWO_ROOKS} dm 2;\n")
        result = self.run_program("epd", epd, "--jobs", "2", "--quiet")
        self.assertEqual((result.code, result.err), (0, ""))
        self.assertEqual(len(self.logs(home)), 2)

    def test_switch_writes_what_the_option_writes(self):
        home = os.path.join(self.folder, "elsewhere", "home")
        switch = ["--log-moves", "--home", home, "--quiet"]
        self.assertEqual(
            self.run_program("solve", TWO_ROOKS, "--moves", "2", *switch).code, 0
        )
        self.assertEqual(self.logs(home), ["MovesLogger_problem1_thread0.log"])
        epd = self.write("two.epd", f"{TWO_ROOKS} dm 2;\n{TWO_ROOKS} dm 2;\n")
        other = os.path.join(self.folder, "other")
        switch[2] = other
        self.assertEqual(self.run_program("epd", epd, *switch).code, 0)
        self.assertEqual(len(self.logs(other)), 2)

        by_option = self.home(1)
        self.run_program("solve", TWO_ROOKS, "--moves", "2", "--quiet")
        texts = []
        for folder in (home, by_option):
            with open(os.path.join(folder, self.logs(folder)[0]), encoding="utf-8") as file:
                texts.append(file.read())
        self.assertEqual(texts[0], texts[1])
        self.assertIn(" 1.mate", texts[0])

    def test_switch_with_a_folder_that_cannot_be_made(self):
        blocked = os.path.join(self.write("file", ""), "home")
        self.assert_refused(
            3, [blocked], "solve", TWO_ROOKS, "--moves", "2", "--log-moves", "--home", blocked
        )

    def test_off_writes_nothing(self):
        home = self.home(0)
        self.run_program("solve", TWO_ROOKS, "--moves", "2")
        self.assertEqual(self.logs(home), [])

    def test_a_log_that_cannot_be_written_is_told_and_the_result_stands(self):
        home = self.home(1)
        os.mkdir(os.path.join(home, "MovesLogger_problem1_thread0.log"))
        result = self.run_program("solve", TWO_ROOKS, "--moves", "2")
        self.assertEqual(result.code, 0)
        self.assertRegex(result.out, r"(?m)^Verdict +mate$")
        self.assertEqual(result.err.count("MovesLogger_problem1_thread0.log"), 1)


if __name__ == "__main__":
    unittest.main()
