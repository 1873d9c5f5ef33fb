#!/usr/bin/env python3
"""The suite of the heuristics, and what bench/heuristics.py makes of answers."""

import os
import re
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "bench"))

import heuristics  # noqa: E402
from heuristics import COSTS, HELPS, Answer, Row, Task  # noqa: E402
from strength import MATE, NO_MATE, BadSet  # noqa: E402

CATALOGUE = os.path.join(ROOT, "heuristics", "catalogue.def")
DOCUMENT = os.path.join(ROOT, "docs", "measurements.md")
TASK = Task("0x4 helps", "0x4", HELPS, "fen", 4, "SH_KEEPKINGONTHEEDGE", "off")


def mate(made, key="a1a2", passes=("1a",)):
    return Answer(MATE, key, passes, made)


def row(off, word, base=None, task=TASK):
    return Row(task, off, base or off, word)


def bits_by_name():
    with open(CATALOGUE, encoding="utf-8") as file:
        rows = re.findall(r'^QUILLMERE_HEURISTIC\((0x\w+), +\w+, +"([^"]+)"', file.read(), re.M)
    return {name: bit.lower() for bit, name in rows}


def table_cells(heading):
    """The rows of the first table of a chapter of the document, the head left out."""
    with open(DOCUMENT, encoding="utf-8") as file:
        chapter = file.read().split(f"## {heading}\n", 1)[1].split("\n## ")[0]
    lines = [line for line in chapter.splitlines() if line.startswith("|")]
    return [[cell.strip() for cell in line.strip("|").split("|")] for line in lines[2:]]


class TheSuite(unittest.TestCase):
    def setUp(self):
        self.tasks = heuristics.read_suite(heuristics.SUITE)

    def test_every_text_names_the_heuristic_of_its_bit(self):
        bits = bits_by_name()
        for task in self.tasks:
            names = re.findall(r"SH_[A-Z0-9/]+", task.text)
            self.assertIn(task.bit, [bits.get(name) for name in names], task.name)

    def test_the_document_tells_of_every_position_and_of_no_other(self):
        measured = table_cells("What the heuristics bring and cost")
        shown = [(f"{bit} {role}", moves) for bit, role, _, moves, *_ in measured]
        self.assertEqual(shown, [(task.name, str(task.moves)) for task in self.tasks])

    def test_the_factors_of_the_document_keep_the_roles(self):
        for bit, role, _, _, without, with_word, factor, *_ in table_cells(
            "What the heuristics bring and cost"
        ):
            value = int(without) / int(with_word)
            self.assertEqual(f"{value:.2f}", factor, bit)
            self.assertTrue(value >= heuristics.LEAST_HELP if role == HELPS else value < 1, bit)

    def test_every_bit_has_each_role_or_the_document_says_that_there_is_none(self):
        found = {(task.bit, task.role) for task in self.tasks}
        missing = {
            (bit, role)
            for bit, roles, _ in table_cells("Heuristics without such a position")
            for role in roles.split(", ")
        }
        every = {(bit, role) for bit in bits_by_name().values() for role in (HELPS, COSTS)}
        self.assertEqual(found & missing, set())
        self.assertEqual(found | missing, every)


class Reading(unittest.TestCase):
    def read(self, *lines):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "a.epd")
            with open(path, "w", encoding="utf-8") as file:
                file.write("\n".join(lines))
            return heuristics.read_suite(path)

    def test_operations(self):
        (plain, compared) = self.read(
            "# head",
            '8/8 w - - bm Qa1; dm 4; id "0x4 helps"; c2 "SH_A(B,C)";',
            '8/8 w - - dm 5; id "0x20 costs"; c2 "SH_B, SH_C"; c3 "SH_B";',
        )
        self.assertEqual(plain, Task("0x4 helps", "0x4", HELPS, "8/8 w - -", 4, "SH_A(B,C)", "off"))
        self.assertEqual(
            (compared.role, compared.text, compared.base), (COSTS, "SH_B, SH_C", "SH_B")
        )

    def test_bad_lines(self):
        good = '8/8 w - - dm 4; id "0x4 helps"; c2 "SH_A";'
        for bad in (
            [good.replace("0x4 helps", "0x4 hurts")],
            [good.replace("0x4 helps", "four helps")],
            [good.replace("c2", "c1")],
            [good.replace("dm 4; ", "")],
            [good, good],
        ):
            with self.assertRaises(BadSet, msg=bad):
                self.read(*bad)


class Judging(unittest.TestCase):
    def test_factor_is_without_through_with(self):
        self.assertEqual(row(mate(600), mate(200)).factor(), 3.0)
        self.assertEqual(row(mate(900), mate(200), base=mate(100)).factor(), 0.5)
        self.assertEqual(row(mate(0), mate(0)).factor(), 1.0)

    def test_roles(self):
        costs = Task("0x4 costs", "0x4", COSTS, "fen", 4, "SH_KEEPKINGONTHEEDGE", "off")
        for task, made, is_kept in (
            (TASK, 50, True),
            (TASK, 51, False),
            (costs, 101, True),
            (costs, 100, False),
        ):
            tested = row(mate(100), mate(made), task=task)
            self.assertEqual(tested.keeps_role(), is_kept, (task.role, made))
            self.assertEqual("Not as the role says" in heuristics.report([tested]), not is_kept)

    def test_same_answers_are_no_alarm(self):
        self.assertEqual(heuristics.alarms(row(mate(5), mate(9, passes=("1a", "2")))), [])
        none = Answer(NO_MATE, "", ("2",), 7)
        self.assertEqual(heuristics.alarms(row(none, none)), [])

    def test_every_other_answer_is_an_alarm(self):
        for word in (
            mate(5, "b1b2"),
            Answer(NO_MATE, "", ("2",), 7),
            Answer("doubtful", "", ("1a",), 7),
            Answer("failed: exit code 5", "", (), 0),
        ):
            tested = row(mate(5), word)
            self.assertEqual(len(heuristics.alarms(tested)), 1, word)
            self.assertIn("ALARM: 1", heuristics.report([tested]))
            self.assertEqual(len(heuristics.alarms(row(mate(5), mate(5), base=word))), 1, word)


if __name__ == "__main__":
    unittest.main()
