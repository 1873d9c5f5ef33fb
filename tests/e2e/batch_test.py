#!/usr/bin/env python3
"""The command batch: its log, JSON, JUnit, exit codes, resume after a kill, Ctrl-C."""

import json
import os
import random
import re
import signal
import stat
import subprocess
import unittest
import xml.etree.ElementTree

from interrupt_test import Terminal
from program import ENDLESS, ENDLESS_MOVES, PATIENCE, PROGRAM, ROOT, ProgramTest

COLLECTION = os.path.join(ROOT, "tests/data/batch.cp")
GOLDEN = os.path.join(ROOT, "tests/data/batch.jsonl")
SAMPLES = os.path.join(ROOT, "samples/sample_problems.cp")
GOLDEN_OF_SAMPLES = os.path.join(ROOT, "tests/data/sample_problems.jsonl")
TIMES = re.compile(r"\(\d+ msec\)")
SEED = 20261121

MATE_IN_ONE = "{\n\tFEN: k7/8/1K6/8/8/8/8/7R\n\tAnswer: %s\n}\n"
RIGHT = MATE_IN_ONE % "Rh1-h8"
WRONG = MATE_IN_ONE % "Kb6-c6"


def timeless(log):
    return TIMES.sub("(T)", log)


def blocks(log):
    """The blocks of a log: a line at the margin with the indented ones behind it, in any order."""
    return sorted(re.split(r"(?m)^(?=\S)", timeless(log)))


class Batch(ProgramTest):
    def log(self, name="RegressionTest.log"):
        with open(os.path.join(self.folder, name), encoding="utf-8") as file:
            return file.read()

    def batch(self, path, *options):
        return self.run_program(
            "batch", path, "--threads", "1", "--log", os.path.join(self.folder, "RegressionTest.log"),
            *options)


class Results(Batch):
    def test_output_is_the_log(self):
        result = self.batch(COLLECTION, "--mirror")
        self.assertEqual(result.out, self.log())
        self.assertEqual(result.code, 1)
        self.assertRegex(result.err, r"^\d+ tests: \d+ as expected, \d+ different, ")

    def test_log_lies_in_the_working_folder(self):
        path = self.write("one.cp", "1 #1\n" + RIGHT)
        subprocess.run([PROGRAM, "batch", path, "--threads", "1"], cwd=self.folder, check=True,
                       capture_output=True, env=self.environment(), timeout=PATIENCE)
        self.assertEqual(timeless(self.log()), "[SnglSolution, 1thrd(s)] Test #1 M0 ok (T).\n")
        self.assertFalse(os.path.exists(os.path.join(self.folder, "RegressionTest.log.BAK")))
        subprocess.run([PROGRAM, "batch", path, "--threads", "1"], cwd=self.folder, check=True,
                       capture_output=True, env=self.environment(), timeout=PATIENCE)
        self.assertEqual(timeless(self.log("RegressionTest.log.BAK")), timeless(self.log()))

    def check_golden(self, collection, golden):
        """With a changed search the counters change, and the file is made anew by hand with
        QUILLMERE_UPDATE_GOLDEN=1."""
        result = self.batch(collection, "--mirror", "--json", "--memory", "64",
                            "--heuristics", "off")
        rows = result.json()
        for row in rows:
            del row["ms"]
        text = "".join(json.dumps(row, ensure_ascii=False) + "\n" for row in rows)
        if os.environ.get("QUILLMERE_UPDATE_GOLDEN"):
            with open(golden, "w", encoding="utf-8") as file:
                file.write(text)
        with open(golden, encoding="utf-8") as file:
            self.assertEqual(text, file.read())
        self.assertTrue(any(row["registerElements"] > 0 for row in rows))
        return result

    def test_work_of_every_kind_of_problem_is_that_of_the_golden_file(self):
        self.check_golden(COLLECTION, GOLDEN)

    def test_samples_are_solved_as_they_state_with_the_work_of_the_golden_file(self):
        self.assertEqual(self.check_golden(SAMPLES, GOLDEN_OF_SAMPLES).code, 0)

    def test_the_choice_of_heuristics_changes_no_answer(self):
        default = self.batch(COLLECTION, "--json").json()
        auto = self.batch(COLLECTION, "--json", "--heuristics", "auto").json()
        off = self.batch(COLLECTION, "--json", "--heuristics", "off").json()
        answers = [
            [(row["problem"], row["comparison"], row["verdict"]) for row in rows]
            for rows in (default, auto, off)
        ]
        self.assertEqual(answers[0], answers[1])
        self.assertEqual(answers[0], answers[2])
        made = [[row["madeMoves"] for row in rows] for rows in (default, auto, off)]
        self.assertEqual(made[0], made[1])
        self.assertNotEqual(made[0], made[2])

    def test_mirror_pass_does_the_work_on_the_mirror_image(self):
        rows = self.batch(COLLECTION, "--mirror", "--json").json()
        plain = {row["problem"]: row for row in rows if row["pass"] == 0}
        mirrored = {row["problem"]: row for row in rows if row["pass"] == 1}
        self.assertGreater(len(mirrored), 3)
        self.assertNotIn(7, mirrored)
        for number, row in mirrored.items():
            self.assertEqual(row["comparison"], plain[number]["comparison"], number)
            self.assertEqual(row["verdict"], plain[number]["verdict"], number)
            board, image = plain[number]["fen"].split()[0], row["fen"].split()[0]
            self.assertEqual([rank[::-1] for rank in board.split("/")], image.split("/"), number)

    def test_jobs_change_nothing_but_the_order(self):
        one = self.batch(COLLECTION, "--mirror")
        log = self.log()
        two = self.batch(COLLECTION, "--mirror", "--jobs", "2")
        self.assertEqual(blocks(two.out), blocks(one.out))
        self.assertEqual(blocks(self.log()), blocks(log))
        self.assertEqual((two.code, two.err), (one.code, one.err))

    def test_junit_parses_whatever_the_texts_hold(self):
        report = os.path.join(self.folder, "report.xml")
        path = self.write(
            "odd.cp",
            "UTF-8\n1 #1\n{\n\tDescription: <&\"'> \x01 zażółć\n\tFEN: k7/8/1K6/8/8/8/8/7R\n"
            "\tAnswer: Rh1-h8\n}\n2 #1\n" + WRONG + "3 s#2\n{\n\tFEN: k7/8/1K6/8/8/8/8/7R\n}\n")
        self.assertEqual(self.batch(path, "--junit", report).code, 1)
        suite = xml.etree.ElementTree.parse(report).getroot().find("testsuite")
        self.assertEqual({key: suite.get(key) for key in ("name", "tests", "failures", "errors",
                                                          "skipped")},
                         {"name": "odd.cp", "tests": "3", "failures": "1", "errors": "0",
                          "skipped": "1"})
        cases = suite.findall("testcase")
        self.assertEqual(cases[0].get("name"), "problem 1 M0: <&\"'> \ufffd zażółć")
        self.assertEqual(cases[1].find("failure").text, "found: Rh1-h8\nshould be: Kb6-c6")
        self.assertIn("selfmate", cases[2].find("skipped").get("message"))

    def test_exit_codes(self):
        endless = f"{{\n\tFEN: {ENDLESS.split()[0]}\n}}\n"
        rows = [
            ("all right", 0, "1 #1\n" + RIGHT, []),
            ("nothing stated", 0, "1 #1\n{\n\tFEN: k7/8/1K6/8/8/8/8/7R\n}\n", []),
            ("skipped", 0, "1 s#2\n" + RIGHT, []),
            ("one wrong", 1, "1 #1\n" + RIGHT + "2 #1\n" + WRONG, []),
            ("one wrong and one undecided", 1,
             "1 #1\n" + WRONG + f"2 #{ENDLESS_MOVES}\n" + endless, ["--time", "1"]),
            ("undecided", 4, f"1 #{ENDLESS_MOVES}\n" + endless, ["--time", "1"]),
            ("faulty", 4, "1 #1\n{\n\tW: Ka1\n\tB: \n}\n", []),
            ("only the right one", 0, "1 #1\n" + RIGHT + "2 #1\n" + WRONG, ["--problem", "1"]),
            ("a range", 1, "1 #1\n" + RIGHT + "2 #1\n" + WRONG, ["--problem", "1-2"]),
        ]
        for name, code, text, options in rows:
            result = self.batch(self.write("rows.cp", text), *options)
            self.assertEqual(result.code, code, f"{name}: {result.out} {result.err}")

    def test_bad_input_is_told_with_its_place(self):
        good = self.write("good.cp", "1 #1\n" + RIGHT)
        bad = self.write("bad.cp", "1 #1\n{\n\tFEN: k7/8\n}\n")
        missing = os.path.join(self.folder, "missing.cp")
        self.assert_refused(3, "bad.cp:3: Improper FEN code", "batch", bad)
        self.assert_refused(3, "missing.cp", "batch", missing)
        self.assert_refused(3, "there is no problem 5", "batch", good, "--problem", "5")
        self.assert_refused(2, "--problem", "batch", good, "--problem", "5-x")
        self.assert_refused(2, "--problem", "batch", good, "--problem", "5-3")
        self.assert_refused(2, "--jobs", "batch", good, "--jobs", "0")
        self.assert_refused(3, "a.log", "batch", good, "--log",
                            os.path.join(self.folder, "none", "a.log"))


    def test_what_is_written_never_takes_the_place_of_the_collection(self):
        path = self.write("one.cp", "1 #1\n" + RIGHT)
        log = os.path.join(self.folder, "a.log")
        self.assert_refused(2, "--log", "batch", path, "--log", path)
        self.assert_refused(2, "--junit", "batch", path, "--log", log, "--junit",
                            os.path.join(self.folder, ".", "one.cp"))
        self.assert_refused(2, "--junit", "batch", path, "--log", log, "--junit", log)
        backup = self.write("a.log.BAK", "1 #1\n" + RIGHT)
        self.assert_refused(2, "--log", "batch", backup, "--log", log)
        with open(path, encoding="utf-8") as file:
            self.assertEqual(file.read(), "1 #1\n" + RIGHT)


class Resume(Batch):
    def results(self, log):
        """What the log tells of each test, the last telling only."""
        found = {}
        for match in re.finditer(r"(?m)^(?:\[[^\]]*\] )?(?:Test|Prob\.)( ?#\d+(?: M\d)?)(.*)\n"
                                 r"((?:\t.*\n)*)", timeless(log)):
            if not match[0].endswith("[cut]\n"):
                found[match[1]] = match[2] + match[3]
        return found

    def test_after_a_kill_at_any_moment_the_results_are_those_of_an_undisturbed_run(self):
        path = self.write(
            "many.cp",
            "".join(f"{i} #3\n{{\n\tFEN: 8/6R1/7p/5K1k/8/6p1/5bPP/4N3\n\tAnswer: "
                    f"{'Rg7:g3' if i % 3 else 'Rg7-g8'}\n}}\n" for i in range(1, 61)))
        whole = self.batch(path, "--mirror", "--quiet")
        expected = self.results(self.log())
        self.assertEqual(len(expected), 120)
        generator = random.Random(SEED)
        name = os.path.join(self.folder, "killed.log")
        command = [PROGRAM, "batch", path, "--mirror", "--threads", "1", "--log", name]
        kills = 0
        for jobs in ("1", "2"):
            if os.path.exists(name):
                os.remove(name)
            run = [*command, "--jobs", jobs]
            for attempt in range(200):
                # The first run begins a log, the others go on with it. Each is killed after some
                # lines of its output, so that no run waits for a clock.
                process = subprocess.Popen(run + (["--resume"] if attempt else []),
                                           stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                           env=self.environment())
                lines = generator.randrange(1, 40)
                for _ in range(lines):
                    if not process.stdout.readline():
                        break
                else:
                    process.kill()
                    kills += 1
                process.stdout.read()
                process.stdout.close()
                if process.wait(PATIENCE) >= 0:
                    break
            final = self.run_program(*run[1:], "--resume", "--quiet")
            self.assertEqual(final.code, whole.code)
            self.assertEqual(self.results(self.log("killed.log")), expected)
        self.assertGreater(kills, 4)

    def test_a_cut_last_line_is_ended_and_its_test_done_again(self):
        path = self.write("two.cp", "1 #1\n" + RIGHT + "2 #1\n" + RIGHT)
        log = "[SnglSolution, 1thrd(s)] Test #1 M0 ok (5 msec).\n"
        self.write("RegressionTest.log", log + "[SnglSolution, 1thrd(s)] Test #2 M0 ok (5 ms")
        result = self.batch(path, "--resume")
        self.assertEqual(timeless(result.out), "[SnglSolution, 1thrd(s)] Test #2 M0 ok (T).\n")
        self.assertEqual(
            timeless(self.log()),
            timeless(log) + "[SnglSolution, 1thrd(s)] Test #2 M0 ok (5 ms [cut]\n" +
            timeless(result.out))
        self.assertIn("taken from the log: 1 tests", result.err)

    def test_results_of_the_log_count(self):
        path = self.write("two.cp", "1 #1\n" + RIGHT + "2 #1\n" + RIGHT)
        self.write("RegressionTest.log", "[SnglSolution, 1thrd(s)] Test #1 M0 failed:\n"
                   "\tfound:\n\t\tRh1-h7\n\tshould be:\n\t\tRh1-h8\n")
        report = os.path.join(self.folder, "report.xml")
        result = self.batch(path, "--resume", "--json", "--junit", report)
        self.assertEqual(result.code, 1)
        rows = result.json()
        self.assertEqual([(row["problem"], row["resumed"], row["comparison"], row["verdict"])
                          for row in rows],
                         [(1, True, "different", "not known"), (2, False, "as expected", "mate")])
        self.assertEqual(rows[0]["keys"], [{"move": "Rh1-h7"}])
        suite = xml.etree.ElementTree.parse(report).getroot().find("testsuite")
        self.assertEqual((suite.get("tests"), suite.get("failures")), ("2", "1"))

    def test_a_file_changed_since_the_log_is_told(self):
        path = self.write("two.cp", "1 #1\n" + RIGHT + "2 #1\n" + RIGHT)
        log = self.write("RegressionTest.log", "[SnglSolution, 1thrd(s)] Test #1 M0 ok (5 msec).\n")
        os.utime(path, (1000, 1000))
        self.assertNotIn("was changed", self.batch(path, "--resume").err)
        os.utime(log, (500, 500))
        result = self.batch(path, "--resume")
        self.assertIn("two.cp was changed after ", result.err)
        self.assertEqual(result.code, 0)

    def test_a_report_never_takes_the_place_of_the_log_or_its_backup(self):
        path = self.write("one.cp", "1 #1\n" + RIGHT)
        self.write("RegressionTest.log", "an older log\n")
        for name in ("RegressionTest.log", "RegressionTest.log.BAK"):
            result = self.batch(path, "--junit", os.path.join(self.folder, name))
            self.assertEqual(result.code, 2, name)
            self.assertEqual(self.log(), "an older log\n")

    def test_a_report_never_replaces_what_is_no_file(self):
        path = self.write("one.cp", "1 #1\n" + RIGHT)
        pipe = os.path.join(self.folder, "pipe")
        os.mkfifo(pipe)
        self.assertNotEqual(self.batch(path, "--junit", pipe).code, 0)
        self.assertTrue(stat.S_ISFIFO(os.stat(pipe).st_mode))

    def test_lengths_and_verdicts_of_what_was_not_solved_are_not_made_up(self):
        path = self.write("odd.cp", "1\n{\n\tFEN: k7/8/1K6/8/8/8/8/7R\n}\n"
                          "2 #2\n{\n\tWhite: Rh1\n\tBlack: Ka8\n}\n")
        rows = self.batch(path, "--json").json()
        self.assertEqual([(row["halfMoves"], row["moves"], row["verdict"], row["threads"])
                          for row in rows], [(None, None, "not run", 0), (3, 2, "not run", 0)])

    def test_a_log_of_another_file_is_refused(self):
        path = self.write("one.cp", "1 #1\n" + RIGHT)
        log = self.write("other.log", "[SnglSolution, 1thrd(s)] Test #7 M0 ok (5 msec).\n")
        self.assert_refused(3, ["other.log", "problem 7"], "batch", path, "--resume", "--log", log)


class Interrupt(Batch):
    def test_ctrl_c_keeps_what_was_finished(self):
        path = self.write("endless.cp", "1 #1\n" + RIGHT + f"2 #{ENDLESS_MOVES}\n" +
                          f"{{\n\tFEN: {ENDLESS.split()[0]}\n}}\n3 #1\n" + RIGHT)
        log = os.path.join(self.folder, "RegressionTest.log")
        for options in ([], ["--jobs", "2"]):
            terminal = Terminal([PROGRAM, "batch", path, "--threads", "1", "--log", log, *options],
                                self.environment())
            while b"Test #1 " not in (line := terminal.process.stdout.readline()):
                self.assertTrue(line)
            self.assertTrue(terminal.read_until("tests done"), terminal.text)
            terminal.process.send_signal(signal.SIGINT)
            code, _ = terminal.close()
            self.assertEqual(code, 130)
            self.assertIn("--resume", terminal.text)
            self.assertIn("Test #1 M0 ok", self.log())
            self.assertNotIn("#2", self.log())
        result = self.batch(path, "--resume", "--time", "1")
        self.assertEqual(result.code, 4)
        self.assertIn("Test #2 M0 undecided", self.log())
        self.assertIn("Test #3 M0 ok", self.log())


if __name__ == "__main__":
    unittest.main()
