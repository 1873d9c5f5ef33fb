#!/usr/bin/env python3
"""The register of solved positions: its limit, its figures, and when it is emptied."""

import os
import subprocess
import time
import unittest

from interrupt_test import Terminal
from program import ENDLESS, ENDLESS_MOVES, LOYD_3, LOYD_5, PROGRAM, REGISTER_6, ProgramTest

# Fills some twenty megabytes if it may.
REGISTER_7 = "8/8/7Q/5P2/1pP5/pP1B4/P2nppp1/K1k1bqrb w - -"
MEGABYTE = 1 << 20


def answer(record):
    return record["verdict"], record["complete"], [key["uci"] for key in record["keys"]]


class Figures(ProgramTest):
    def solve(self, *arguments):
        result = self.run_program("solve", REGISTER_6, "--moves", "6", *arguments, "--json")
        self.assertEqual((result.code, result.err), (0, ""))
        return result.json()[0]

    def test_json_of_solve(self):
        record = self.solve()
        self.assertGreater(record["registerElements"], 0)
        self.assertGreater(record["memoryMB"], 0)

    def test_a_short_task_uses_none(self):
        (record,) = self.run_program("solve", LOYD_5, "--moves", "5", "--json").json()
        self.assertEqual((record["registerElements"], record["memoryMB"]), (0, 0))
        self.assertNotIn("Register", self.run_program("solve", LOYD_5, "--moves", "5").out)

    def test_text_of_solve(self):
        rows = [
            ("en", r"\nVerdict +mate\nRegister +[1-9]\d* positions, 0 of them doubtful, \d+\.\d MB\n"),
            ("pl", r"\nWynik +mate\nRejestr +pozycje: [1-9]\d*, w tym wątpliwe: 0, \d+\.\d MB\n"),
            ("uk", r"\nПідсумок +mate\nРеєстр +позицій: [1-9]\d*, з них сумнівних: 0, \d+\.\d МБ\n"),
        ]
        for language, pattern in rows:
            result = self.run_program(
                "solve", REGISTER_6, "--moves", "6", "--language", language, "--heuristics", "off"
            )
            self.assertRegex(result.out, pattern)

    def test_json_of_epd(self):
        path = self.write("list.epd", f"{REGISTER_6} dm 6; bm Nh6;\n{LOYD_3} dm 3;\n")
        long, short = self.run_program("epd", path, "--json").json()
        self.assertGreater(long["registerElements"], 0)
        self.assertGreater(long["memoryMB"], 0)
        self.assertEqual((short["registerElements"], short["memoryMB"]), (0, 0))
        for record in self.run_program("epd", path, "--json", "--deterministic").json():
            self.assertNotIn("registerElements", record)
            self.assertNotIn("memoryMB", record)

    def test_progress_line(self):
        terminal = Terminal(
            [PROGRAM, "solve", ENDLESS, "--moves", ENDLESS_MOVES, "--time", "1", "--memory", "1",
             "--heuristics", "off"],
            self.environment(),
        )
        code, _ = terminal.close()
        self.assertEqual(code, 4)
        self.assertRegex(terminal.text, r", register [1-9]\d* \(\d+ doubtful\), \d+\.\d MB")


class Memory(ProgramTest):
    def test_answers_do_not_depend_on_it(self):
        for arguments in (["--moves", "6"], ["--moves", "6", "--all"], ["--moves", "5", "--all"]):
            one, two = (
                self.run_program("solve", REGISTER_6, *arguments, "--json", *extra).json()[0]
                for extra in ([], ["--memory", "1"])
            )
            self.assertEqual(answer(one), answer(two))
            self.assertLessEqual(two["memoryMB"], 1)

    def test_a_full_register_gives_the_same_nodes_in_every_run(self):
        arguments = ["solve", REGISTER_7, "--moves", "7", "--threads", "1", "--json"]
        arguments += ["--heuristics", "off"]  # the passes alone read what they have stored
        roomy = self.run_program(*arguments).json()[0]
        runs = [self.run_program(*arguments, "--memory", "1").json()[0] for _ in range(2)]
        self.assertEqual(runs[0]["nodes"], runs[1]["nodes"])
        self.assertEqual(runs[0]["madeMoves"], runs[1]["madeMoves"])
        self.assertEqual(answer(runs[0]), answer(roomy))
        # Else it was not full, and this tells nothing.
        self.assertGreater(runs[0]["nodes"], roomy["nodes"])

    def test_limit_of_the_options(self):
        self.assertEqual(self.run_program("options", "set", "MaxMemRatioForTempReg", "0").code, 0)
        arguments = ["solve", REGISTER_6, "--moves", "6", "--json"]
        (none,) = self.run_program(*arguments).json()
        self.assertEqual(none["registerElements"], 0)
        (some,) = self.run_program(*arguments, "--memory", "8").json()
        self.assertGreater(some["registerElements"], 0)
        self.assertEqual(answer(none), answer(some))

    def test_jobs_share_the_limit(self):
        path = self.write("list.epd", f"{REGISTER_7} dm 7; bm Bb1;\n" * 4)
        for jobs in ("1", "4"):
            result = self.run_program("epd", path, "--memory", "4", "--jobs", jobs, "--json")
            self.assertEqual(result.code, 0)
            for record in result.json():
                self.assertGreater(record["registerElements"], 0)
                self.assertLessEqual(record["memoryMB"], 4 / int(jobs))

    def test_more_jobs_than_positions_do_not_lessen_the_share(self):
        path = self.write("one.epd", f"{REGISTER_6} dm 6;\n")
        one, many = (
            self.run_program("epd", path, "--memory", "8", "--jobs", jobs, "--json").json()[0]
            for jobs in ("1", "100")
        )
        self.assertEqual(one["registerElements"], many["registerElements"])


class ClearRegister(ProgramTest):
    def nodes(self, command, stdin):
        result = self.run_program(*command, "--json", stdin=stdin)
        self.assertEqual(result.code, 0)
        records = result.json()
        self.assertEqual(answer(records[0]), answer(records[1]))
        return [record["nodes"] for record in records]

    COMMANDS = [
        (["solve", "-", "--moves", "6", "--threads", "1"], f"{REGISTER_6}\n{REGISTER_6}\n"),
        (["epd", "-"], f"{REGISTER_6} dm 6;\n{REGISTER_6} dm 6;\n"),
    ]

    def test_each_position_starts_with_an_empty_one(self):
        for command, stdin in self.COMMANDS:
            first, second = self.nodes(command, stdin)
            self.assertEqual(first, second)

    def test_the_option_lets_it_be_kept(self):
        self.run_program("options", "set", "ClearRegisterOnStartSolving", "0")
        for command, stdin in self.COMMANDS:
            first, second = self.nodes([*command, "--heuristics", "off"], stdin)
            self.assertLess(second, first)

    def test_deterministic_lists_clear_it_all_the_same(self):
        self.run_program("options", "set", "ClearRegisterOnStartSolving", "0")
        command, stdin = self.COMMANDS[1]
        first, second = self.nodes([*command, "--deterministic"], stdin)
        self.assertEqual(first, second)


@unittest.skipIf(os.environ.get("QUILLMERE_SANITIZE"), "a sanitizer needs memory of its own")
class ResidentSize(ProgramTest):
    # docs/cli.md tells what was measured, some 5; the rest is for other allocators and libraries.
    REST_OF_THE_PROCESS = 16 * MEGABYTE

    @staticmethod
    def high_water(process):
        """Largest resident size of the running program so far, in bytes; 0 if it has ended."""
        try:
            with open(f"/proc/{process.pid}/status", encoding="ascii") as status:
                rows = dict(line.split(":", 1) for line in status)
        except OSError:
            return 0
        return int(rows.get("VmHWM", "0 kB").split()[0]) * 1024

    def peak(self, *arguments):
        """Exit code and largest resident size of one run, in bytes.

        The system's account of an ended process also counts the interpreter that it was before it
        became the program, and that depends on the machine; so the program's own high-water mark is
        read while it runs. What it may still grow in its last milliseconds is not seen.
        """
        peak = 0
        with subprocess.Popen(
            [PROGRAM, "--quiet", "solve", *arguments],
            stdout=subprocess.DEVNULL,
            env=self.environment(),
        ) as process:
            while process.poll() is None:
                peak = max(peak, self.high_water(process))
                time.sleep(0.002)
        return process.returncode, peak

    def test_stays_near_the_limit(self):
        for megabytes in (1, 4):
            code, peak = self.peak(REGISTER_7, "--moves", "7", "--all", "--memory", str(megabytes))
            self.assertEqual(code, 0)
            self.assertGreater(peak, 0)
            self.assertLess(peak, megabytes * MEGABYTE + self.REST_OF_THE_PROCESS)

    def test_without_the_limit_it_would_not(self):
        code, peak = self.peak(REGISTER_7, "--moves", "7", "--all", "--memory", "256")
        self.assertEqual(code, 0)
        self.assertGreater(peak, 4 * MEGABYTE + self.REST_OF_THE_PROCESS)


if __name__ == "__main__":
    unittest.main()
